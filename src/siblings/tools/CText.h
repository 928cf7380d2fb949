#pragma once

#include "foundation/IOQTools.h"

// Orders and searches texts, the same in every locale. Texts that differ in case alone are
// different unless case is ignored (the small letter comes first), and so are numbers that differ
// in zeros in front (more zeros come first): a sorted list has one order only.
class CText final : public IOQText
{
public:
    int32_t Compare(const OQChar* a, const OQChar* b, int32_t mode, int32_t numbers,
        int32_t length) const override;
    int32_t Find(const OQChar* text, const OQChar* needle, int32_t flags) const override;
};
