#pragma once

#include "foundation/IOQTools.h"

// From PXVIS_SCALE in the environment, such as "1.5"; otherwise 1.
// FIXME: what the display says (Xft.dpi, the toolkit's screens), once there are windows.
class CDisplayScale final : public IOQDisplayScale
{
public:
    double GetScale() const override { return m_scale; }

    int32_t Scale(int32_t value) const override;

    void Open();

private:
    double m_scale = 1;
};
