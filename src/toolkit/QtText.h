#pragma once

#include "foundation/OQString.h"

#include <QString>

// Between our texts and Qt's, which hold the same units. Internal.

inline QString OQToQt(const OQString& text)
{
    return QString(reinterpret_cast<const QChar*>(text.GetText()), text.GetLength());
}

inline OQString OQFromQt(const QString& text)
{
    return OQString(reinterpret_cast<const OQChar*>(text.utf16()), static_cast<int>(text.size()));
}
