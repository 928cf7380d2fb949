#pragma once

#include "foundation/OQString.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

// One argument of OQFormat. Points at texts; they must live until the call is done.
struct OQFormatArgument
{
    enum Tag
    {
        NarrowText = 1, // bytes, widened as they stand
        WideText = 2,
        String = 3,
        Integer = 4,
        FloatingPoint = 5,
    };

    OQFormatArgument(const char* value)
        : tag(NarrowText)
        , narrow(value)
    {
    }

    OQFormatArgument(const OQChar* value)
        : tag(WideText)
        , wide(value)
    {
    }

    OQFormatArgument(const OQString& value)
        : tag(String)
        , wide(value.GetText())
    {
    }

    template <std::integral T>
    OQFormatArgument(T value)
        : tag(Integer)
        , integer(static_cast<int64_t>(value))
    {
    }

    OQFormatArgument(double value)
        : tag(FloatingPoint)
        , floatingPoint(value)
    {
    }

    Tag tag;

    union
    {
        const char* narrow;
        const OQChar* wide;
        int64_t integer;
        double floatingPoint;
    };
};

// The system's own small printf: "%", a blank (numbers are padded with blanks, not zeros), a width
// (of numbers the least digits, of texts the most characters), "." and a precision, "l" or "I64"
// (without effect), and one of: % s S d i u x X h (0x and 8 digits at least) p (16 digits at least)
// c f. Any other character stands for itself. Each but "%%" takes the next argument; one that is
// missing or of another kind counts as no text, or as 0.
OQString OQFormat(const OQChar* format, std::initializer_list<OQFormatArgument> arguments);
OQString OQFormat(const OQChar* format, const OQFormatArgument* arguments, size_t count);
