#pragma once

#include "foundation/OQStringArray.h"

// Paths.
class OQFilenameArray : public OQStringArray
{
public:
    using OQStringArray::OQStringArray;
};
