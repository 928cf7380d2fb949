#pragma once

#include "foundation/OQArray.h"
#include "foundation/OQString.h"

class OQStringArray : public OQArray<OQString>
{
public:
    using OQArray<OQString>::OQArray;

    OQString Join(const OQString& separator) const;
};
