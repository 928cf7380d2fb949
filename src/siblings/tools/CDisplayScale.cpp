#include "siblings/tools/CDisplayScale.h"

#include "foundation/OQNumberText.h"
#include "os/UserFolders.h"

#include <algorithm>
#include <cmath>

void CDisplayScale::Open()
{
    constexpr double least = 0.5;
    constexpr double most = 8;
    const OQString text = OQString::FromUtf8(pxvis::os::EnvironmentValue("PXVIS_SCALE"));
    int consumed = 0;
    const double scale = OQTextToDouble(text.GetText(), text.GetLength(), &consumed);
    const bool isNumber = consumed > 0 && consumed == text.GetLength() && scale > 0;
    m_scale = isNumber ? std::clamp(scale, least, most) : 1;
}

int32_t CDisplayScale::Scale(int32_t value) const
{
    const double scaled = std::round(value * m_scale);
    return static_cast<int32_t>(std::clamp<double>(scaled, INT32_MIN, INT32_MAX));
}
