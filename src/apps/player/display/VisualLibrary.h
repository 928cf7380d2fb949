#pragma once

#include "os/DynamicLibrary.h"

#include <pxvis/IOQVisualization.h>

#include <QString>

#include <memory>

namespace pxvis::player {

// libpxvis.so, loaded at run time: nothing of it is linked. Outlives what it made.
class VisualLibrary
{
public:
    // `path`: "" for the one of this installation. False with one line.
    bool Load(const QString& path, QString& error);

    bool IsLoaded() const { return m_create != nullptr; }

    // Null if the library can't start; its log tells why.
    std::unique_ptr<IOQVisualization> Create(IOQVisualizationHost& host);

private:
    os::DynamicLibrary m_library;
    decltype(&CreateVisualization) m_create = nullptr;
};

QString VisualProperty(IOQVisualization& visualization, const char16_t* name);
bool SetVisualProperty(IOQVisualization& visualization, const char16_t* name, const QString& value);

}
