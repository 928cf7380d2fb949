#include "foundation/OQNumberText.h"

#include "foundation/StringPrinting.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

double ReadDouble(const OQString& text, int* consumed = nullptr)
{
    return OQTextToDouble(text.GetText(), text.GetLength(), consumed);
}

int Consumed(const OQString& text)
{
    int consumed = -1;
    ReadDouble(text, &consumed);
    return consumed;
}

OQString Number(int64_t value, int minimumDigits, int base, uint32_t flags)
{
    OQString text;
    OQAppendNumber(text, value, minimumDigits, base, flags);
    return text;
}

}

TEST_CASE("Whole numbers from text stop at the first other character and are clamped")
{
    CHECK(OQTextToInt(u"12abc") == 12);
    CHECK(OQTextToInt(u"abc") == 0);
    CHECK(OQTextToInt(nullptr) == 0);
    CHECK(OQTextToInt(u" \t\r\n+7") == 7);
    CHECK(OQTextToInt(u"-+7") == 0);
    CHECK(OQTextToInt(u"- 7") == 0);
    CHECK(OQTextToInt(u"2147483647") == 2147483647);
    CHECK(OQTextToInt(u"2147483648") == 2147483647);
    CHECK(OQTextToInt(u"-99999999999") == -2147483647);
    CHECK(OQTextToInt64(u"9223372036854775808") == INT64_MAX);
    CHECK(OQTextToInt64(u"-99999999999999999999999") == -INT64_MAX);
    CHECK(OQTextToInt64(u"4294967296") == 4294967296);
}

TEST_CASE("Hexadecimal text wraps at 32 bits")
{
    int consumed = -1;
    CHECK(OQHexTextToUInt(u"FF123456", &consumed) == 0xFF123456u);
    CHECK(consumed == 8);
    CHECK(OQHexTextToUInt(u"1FF123456") == 0xFF123456u);
    CHECK(OQHexTextToUInt(u"  -1g", &consumed) == 0xFFFFFFFFu);
    CHECK(consumed == 4);
    CHECK(OQHexTextToUInt(u"0xFF", &consumed) == 0); // a prefix is the caller's business
    CHECK(consumed == 1);
    CHECK(OQHexTextToUInt(u" +x", &consumed) == 0);
    CHECK(consumed == 0);
}

TEST_CASE("A decimal number is whole + fraction / 10^n, times a power of ten")
{
    CHECK(ReadDouble(u"3.14159") == 3 + 14159 / 100000.0);
    CHECK(ReadDouble(u"1.5.2") == 1.5);
    CHECK(Consumed(u"1.5.2") == 3);
    CHECK(ReadDouble(u".2") == 0.2);
    CHECK(ReadDouble(u"1e2") == 100);
    CHECK(ReadDouble(u"-1.5e+1x") == -15);
    CHECK(Consumed(u"-1.5e+1x") == 7);
    CHECK(ReadDouble(u"1e2.9") == 100); // the exponent is cut to a whole number
    CHECK(ReadDouble(u"1e1e1") == 1e10);
    CHECK(ReadDouble(u"5e-400") == 0);
    CHECK(ReadDouble(u"1e99999999999") == std::numeric_limits<double>::infinity());
}

TEST_CASE("An \"e\" is taken even without an exponent, a lone point is 0, and blanks end it")
{
    CHECK(ReadDouble(u"2e") == 2);
    CHECK(Consumed(u"2e") == 2);
    CHECK(Consumed(u"2e*3") == 2);
    CHECK(ReadDouble(u".") == 0);
    CHECK(Consumed(u".") == 1);
    CHECK(Consumed(u"") == 0);
    CHECK(Consumed(u" 1") == 0);
    CHECK(Consumed(u"1 .5") == 1);
    CHECK(Consumed(u"1E5") == 1); // upper case doesn't count
    CHECK(OQTextToDouble(nullptr, 5, nullptr) == 0);
    CHECK(OQTextToDouble(u"123", 2, nullptr) == 12);
}

TEST_CASE("The digits are collected modulo 2^64, signed")
{
    CHECK(ReadDouble(u"18446744073709551617") == 1);
    CHECK(ReadDouble(u"9223372036854775808") == -9223372036854775808.0);
    CHECK(ReadDouble(u"0.9223372036854775808") == -9223372036854775808.0 / 1e19);
}

TEST_CASE("Endless exponents and endless digits end soon and without deep recursion")
{
    OQString exponents;
    OQString digits = u"0.";
    for (int i = 0; i < 500000; ++i) {
        exponents += u"1e";
        digits += u"9";
    }
    int consumed = 0;
    CHECK(ReadDouble(exponents, &consumed) >= 1);
    CHECK(consumed == 1000000);
    CHECK(ReadDouble(digits) == 0);
}

TEST_CASE("Numbers to text, with every flag")
{
    CHECK(Number(0, 1, 10, 0) == u"0");
    CHECK(Number(-5, 3, 10, 0) == u"-005");
    CHECK(Number(-5, 3, 10, OQNumberPadBlanks) == u"  -5");
    CHECK(Number(INT64_MIN, 1, 10, 0) == u"-9223372036854775808");
    CHECK(Number(INT64_MIN, 1, 2, 0).GetLength() == 65);
    CHECK(Number(35, 1, 36, 0) == u"Z");
    CHECK(Number(35, 1, 36, OQNumberLowerCase) == u"z");
    CHECK(Number(255, 4, 16, OQNumberHexPrefix) == u"0x00FF");
    CHECK(Number(255, 1, 10, OQNumberHexPrefix) == u"255");
    CHECK(Number(7, 1, 10, OQNumberPlus) == u"+7");
    CHECK(Number(0, 1, 10, OQNumberPlus) == u"0");
    CHECK(Number(999, 1, 10, OQNumberThousands) == u"999");
    CHECK(Number(-1234567, 1, 10, OQNumberThousands) == u"-1,234,567");
    CHECK(Number(7, 1, 99, 0) == u"7");
    CHECK(Number(7, INT32_MAX, 10, OQNumberThousands).GetLength() < 1000);

    const char16_t* const ordinals[] = { u"0th", u"1st", u"2nd", u"3rd", u"4th" };
    for (int i = 0; i < 5; ++i)
        CHECK(Number(i, 1, 10, OQNumberOrdinal) == ordinals[i]);
    CHECK(Number(11, 1, 10, OQNumberOrdinal) == u"11th");
    CHECK(Number(112, 1, 10, OQNumberOrdinal) == u"112th");
    CHECK(Number(121, 1, 10, OQNumberOrdinal) == u"121st");
    CHECK(OQHexToText(0xABC, 6) == u"000ABC");
}

TEST_CASE("Floats and doubles take as many decimals as they need, 16 at most")
{
    CHECK(OQFloatToText(0.1f) == u"0.1");
    CHECK(OQDoubleToText(0.1f) == u"0.1000000014901161");
    CHECK(OQFloatToText(1.0f) == u"1");
    CHECK(OQFloatToText(-0.0f) == u"0");
    CHECK(OQDoubleToText(-2.5e-3) == u"-0.0025");
    CHECK(OQDoubleToText(1e-20) == u"0");
    CHECK(OQDoubleToText(-1e-20) == u"0");
    CHECK(OQDoubleToText(1e22) == u"10000000000000000000000");
    CHECK(OQDoubleToText(DBL_MAX).GetLength() == 309);
    CHECK(OQDoubleToText(DBL_TRUE_MIN) == u"0");
    CHECK(OQDoubleToText(-INFINITY) == u"-inf");
    CHECK(OQDoubleToText(-std::nan("")) == u"nan");
    for (int i = 1; i < 2000; ++i) { // what scripts hold comes back the same
        const float value = static_cast<float>(i) / 997;
        const std::string text = OQFloatToText(value).ToUtf8();
        float back = 0;
        std::from_chars(text.data(), text.data() + text.size(), back);
        REQUIRE(back == value);
    }
}

TEST_CASE("Fixed decimals are rounded from the binary value")
{
    CHECK(OQFixedToText(2.5, 0) == u"2");
    CHECK(OQFixedToText(3.5, 0) == u"4");
    CHECK(OQFixedToText(1.005, 2) == u"1.00");
    CHECK(OQFixedToText(-0.001, 2) == u"-0.00");
    CHECK(OQFixedToText(1.0f / 3, 6) == u"0.333333");
    CHECK(OQFixedToText(-DBL_MAX, 1000).GetLength() == 1 + 309 + 1 + 64);
    CHECK(OQFixedToText(0.5, -3) == u"0");
    CHECK(OQFixedToText(INFINITY, 2) == u"inf");
    CHECK(OQFixedToText(NAN, 2) == u"nan");
}
