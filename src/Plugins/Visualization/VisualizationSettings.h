#pragma once

#include "foundation/OQString.h"

#include <cstdint>

// One key of the user's settings, by its path. Without the store reads give what they fall back to,
// and writes give false.
class VisualizationSettings
{
public:
    explicit VisualizationSettings(OQString path)
        : m_path(std::move(path))
    {
    }

    OQString ReadString(const OQChar* name, const OQString& fallback) const;
    int32_t ReadInt(
        const OQChar* name, int32_t fallback) const; // also for a value that is no number
    bool WriteString(const OQChar* name, const OQString& value) const;
    bool WriteInt(const OQChar* name, int32_t value) const;

private:
    OQString m_path;
};
