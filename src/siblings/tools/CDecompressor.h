#pragma once

#include "foundation/IOQTools.h"

class CDecompressor final : public IOQDecompressor
{
public:
    bool Decompress(const uint8_t* bytes, uint64_t size, uint64_t maximumSize,
        IOQDllBuffer& plain) const override;
};
