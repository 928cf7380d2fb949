#include "foundation/OQCharacters.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

// Every step-th character from first to last; the lower case is the character plus offset.
struct CaseRange
{
    OQChar first;
    OQChar last;
    int8_t step;
    int32_t offset;
};

struct CharacterRange
{
    OQChar first;
    OQChar last;
};

// Made from the Unicode 14 character data, in rising order.

// Upper case characters, each the one upper case of its lower case.
constexpr CaseRange upperCaseRanges[] = {
    { 0x0100, 0x012E, 2, 1 },
    { 0x0132, 0x0136, 2, 1 },
    { 0x0139, 0x0147, 2, 1 },
    { 0x014A, 0x0176, 2, 1 },
    { 0x0178, 0x0178, 1, -121 },
    { 0x0179, 0x017D, 2, 1 },
    { 0x0181, 0x0181, 1, 210 },
    { 0x0182, 0x0184, 2, 1 },
    { 0x0186, 0x0186, 1, 206 },
    { 0x0187, 0x0187, 1, 1 },
    { 0x0189, 0x018A, 1, 205 },
    { 0x018B, 0x018B, 1, 1 },
    { 0x018E, 0x018E, 1, 79 },
    { 0x018F, 0x018F, 1, 202 },
    { 0x0190, 0x0190, 1, 203 },
    { 0x0191, 0x0191, 1, 1 },
    { 0x0193, 0x0193, 1, 205 },
    { 0x0194, 0x0194, 1, 207 },
    { 0x0196, 0x0196, 1, 211 },
    { 0x0197, 0x0197, 1, 209 },
    { 0x0198, 0x0198, 1, 1 },
    { 0x019C, 0x019C, 1, 211 },
    { 0x019D, 0x019D, 1, 213 },
    { 0x019F, 0x019F, 1, 214 },
    { 0x01A0, 0x01A4, 2, 1 },
    { 0x01A6, 0x01A6, 1, 218 },
    { 0x01A7, 0x01A7, 1, 1 },
    { 0x01A9, 0x01A9, 1, 218 },
    { 0x01AC, 0x01AC, 1, 1 },
    { 0x01AE, 0x01AE, 1, 218 },
    { 0x01AF, 0x01AF, 1, 1 },
    { 0x01B1, 0x01B2, 1, 217 },
    { 0x01B3, 0x01B5, 2, 1 },
    { 0x01B7, 0x01B7, 1, 219 },
    { 0x01B8, 0x01B8, 1, 1 },
    { 0x01BC, 0x01BC, 1, 1 },
    { 0x01C4, 0x01C4, 1, 2 },
    { 0x01C7, 0x01C7, 1, 2 },
    { 0x01CA, 0x01CA, 1, 2 },
    { 0x01CD, 0x01DB, 2, 1 },
    { 0x01DE, 0x01EE, 2, 1 },
    { 0x01F1, 0x01F1, 1, 2 },
    { 0x01F4, 0x01F4, 1, 1 },
    { 0x01F6, 0x01F6, 1, -97 },
    { 0x01F7, 0x01F7, 1, -56 },
    { 0x01F8, 0x021E, 2, 1 },
    { 0x0220, 0x0220, 1, -130 },
    { 0x0222, 0x0232, 2, 1 },
    { 0x023A, 0x023A, 1, 10795 },
    { 0x023B, 0x023B, 1, 1 },
    { 0x023D, 0x023D, 1, -163 },
    { 0x023E, 0x023E, 1, 10792 },
    { 0x0241, 0x0241, 1, 1 },
    { 0x0243, 0x0243, 1, -195 },
    { 0x0244, 0x0244, 1, 69 },
    { 0x0245, 0x0245, 1, 71 },
    { 0x0246, 0x024E, 2, 1 },
    { 0x0370, 0x0372, 2, 1 },
    { 0x0376, 0x0376, 1, 1 },
    { 0x037F, 0x037F, 1, 116 },
    { 0x0386, 0x0386, 1, 38 },
    { 0x0388, 0x038A, 1, 37 },
    { 0x038C, 0x038C, 1, 64 },
    { 0x038E, 0x038F, 1, 63 },
    { 0x0391, 0x03A1, 1, 32 },
    { 0x03A3, 0x03AB, 1, 32 },
    { 0x03CF, 0x03CF, 1, 8 },
    { 0x03D8, 0x03EE, 2, 1 },
    { 0x03F7, 0x03F7, 1, 1 },
    { 0x03F9, 0x03F9, 1, -7 },
    { 0x03FA, 0x03FA, 1, 1 },
    { 0x03FD, 0x03FF, 1, -130 },
    { 0x0400, 0x040F, 1, 80 },
    { 0x0410, 0x042F, 1, 32 },
    { 0x0460, 0x0480, 2, 1 },
    { 0x048A, 0x04BE, 2, 1 },
    { 0x04C0, 0x04C0, 1, 15 },
    { 0x04C1, 0x04CD, 2, 1 },
    { 0x04D0, 0x052E, 2, 1 },
    { 0x0531, 0x0556, 1, 48 },
    { 0x10A0, 0x10C5, 1, 7264 },
    { 0x10C7, 0x10C7, 1, 7264 },
    { 0x10CD, 0x10CD, 1, 7264 },
    { 0x1C90, 0x1CBA, 1, -3008 },
    { 0x1CBD, 0x1CBF, 1, -3008 },
    { 0x1E00, 0x1E94, 2, 1 },
    { 0x1EA0, 0x1EFE, 2, 1 },
    { 0x1F08, 0x1F0F, 1, -8 },
    { 0x1F18, 0x1F1D, 1, -8 },
    { 0x1F28, 0x1F2F, 1, -8 },
    { 0x1F38, 0x1F3F, 1, -8 },
    { 0x1F48, 0x1F4D, 1, -8 },
    { 0x1F59, 0x1F5F, 2, -8 },
    { 0x1F68, 0x1F6F, 1, -8 },
    { 0x1F88, 0x1F8F, 1, -8 },
    { 0x1F98, 0x1F9F, 1, -8 },
    { 0x1FA8, 0x1FAF, 1, -8 },
    { 0x1FB8, 0x1FB9, 1, -8 },
    { 0x1FBA, 0x1FBB, 1, -74 },
    { 0x1FBC, 0x1FBC, 1, -9 },
    { 0x1FC8, 0x1FCB, 1, -86 },
    { 0x1FCC, 0x1FCC, 1, -9 },
    { 0x1FD8, 0x1FD9, 1, -8 },
    { 0x1FDA, 0x1FDB, 1, -100 },
    { 0x1FE8, 0x1FE9, 1, -8 },
    { 0x1FEA, 0x1FEB, 1, -112 },
    { 0x1FEC, 0x1FEC, 1, -7 },
    { 0x1FF8, 0x1FF9, 1, -128 },
    { 0x1FFA, 0x1FFB, 1, -126 },
    { 0x1FFC, 0x1FFC, 1, -9 },
    { 0x2132, 0x2132, 1, 28 },
    { 0x2160, 0x216F, 1, 16 },
    { 0x2183, 0x2183, 1, 1 },
    { 0x24B6, 0x24CF, 1, 26 },
    { 0x2C00, 0x2C2F, 1, 48 },
    { 0x2C60, 0x2C60, 1, 1 },
    { 0x2C62, 0x2C62, 1, -10743 },
    { 0x2C63, 0x2C63, 1, -3814 },
    { 0x2C64, 0x2C64, 1, -10727 },
    { 0x2C67, 0x2C6B, 2, 1 },
    { 0x2C6D, 0x2C6D, 1, -10780 },
    { 0x2C6E, 0x2C6E, 1, -10749 },
    { 0x2C6F, 0x2C6F, 1, -10783 },
    { 0x2C70, 0x2C70, 1, -10782 },
    { 0x2C72, 0x2C72, 1, 1 },
    { 0x2C75, 0x2C75, 1, 1 },
    { 0x2C7E, 0x2C7F, 1, -10815 },
    { 0x2C80, 0x2CE2, 2, 1 },
    { 0x2CEB, 0x2CED, 2, 1 },
    { 0x2CF2, 0x2CF2, 1, 1 },
    { 0xA640, 0xA66C, 2, 1 },
    { 0xA680, 0xA69A, 2, 1 },
    { 0xA722, 0xA72E, 2, 1 },
    { 0xA732, 0xA76E, 2, 1 },
    { 0xA779, 0xA77B, 2, 1 },
    { 0xA77D, 0xA77D, 1, -35332 },
    { 0xA77E, 0xA786, 2, 1 },
    { 0xA78B, 0xA78B, 1, 1 },
    { 0xA78D, 0xA78D, 1, -42280 },
    { 0xA790, 0xA792, 2, 1 },
    { 0xA796, 0xA7A8, 2, 1 },
    { 0xA7AA, 0xA7AA, 1, -42308 },
    { 0xA7AB, 0xA7AB, 1, -42319 },
    { 0xA7AC, 0xA7AC, 1, -42315 },
    { 0xA7AD, 0xA7AD, 1, -42305 },
    { 0xA7AE, 0xA7AE, 1, -42308 },
    { 0xA7B0, 0xA7B0, 1, -42258 },
    { 0xA7B1, 0xA7B1, 1, -42282 },
    { 0xA7B2, 0xA7B2, 1, -42261 },
    { 0xA7B3, 0xA7B3, 1, 928 },
    { 0xA7B4, 0xA7C2, 2, 1 },
    { 0xA7C4, 0xA7C4, 1, -48 },
    { 0xA7C5, 0xA7C5, 1, -42307 },
    { 0xA7C6, 0xA7C6, 1, -35384 },
    { 0xA7C7, 0xA7C9, 2, 1 },
    { 0xA7D0, 0xA7D0, 1, 1 },
    { 0xA7D6, 0xA7D8, 2, 1 },
    { 0xA7F5, 0xA7F5, 1, 1 },
    { 0xFF21, 0xFF3A, 1, 32 },
};

// Characters that fold to another but aren't its upper case, such as the sign of the kelvin.
constexpr CaseRange otherFoldings[] = {
    { 0x017F, 0x017F, 1, -268 },
    { 0x01C5, 0x01C5, 1, 1 },
    { 0x01C8, 0x01C8, 1, 1 },
    { 0x01CB, 0x01CB, 1, 1 },
    { 0x01F2, 0x01F2, 1, 1 },
    { 0x0345, 0x0345, 1, 116 },
    { 0x03C2, 0x03C2, 1, 1 },
    { 0x03D0, 0x03D0, 1, -30 },
    { 0x03D1, 0x03D1, 1, -25 },
    { 0x03D5, 0x03D5, 1, -15 },
    { 0x03D6, 0x03D6, 1, -22 },
    { 0x03F0, 0x03F0, 1, -54 },
    { 0x03F1, 0x03F1, 1, -48 },
    { 0x03F4, 0x03F4, 1, -60 },
    { 0x03F5, 0x03F5, 1, -64 },
    { 0x13F8, 0x13FD, 1, -8 },
    { 0x1C80, 0x1C80, 1, -6222 },
    { 0x1C81, 0x1C81, 1, -6221 },
    { 0x1C82, 0x1C82, 1, -6212 },
    { 0x1C83, 0x1C84, 1, -6210 },
    { 0x1C85, 0x1C85, 1, -6211 },
    { 0x1C86, 0x1C86, 1, -6204 },
    { 0x1C87, 0x1C87, 1, -6180 },
    { 0x1C88, 0x1C88, 1, 35267 },
    { 0x1E9B, 0x1E9B, 1, -58 },
    { 0x1E9E, 0x1E9E, 1, -7615 },
    { 0x1FBE, 0x1FBE, 1, -7173 },
    { 0x2126, 0x2126, 1, -7517 },
    { 0x212A, 0x212A, 1, -8383 },
    { 0x212B, 0x212B, 1, -8262 },
    { 0xAB70, 0xABBF, 1, -38864 },
};

// Letters, with the marks that combine with them.
constexpr CharacterRange letterRanges[] = {
    { 0x0100, 0x02C1 },
    { 0x02C6, 0x02D1 },
    { 0x02E0, 0x02E4 },
    { 0x02EC, 0x02EC },
    { 0x02EE, 0x02EE },
    { 0x0370, 0x0374 },
    { 0x0376, 0x037D },
    { 0x037F, 0x037F },
    { 0x0386, 0x0386 },
    { 0x0388, 0x03F5 },
    { 0x03F7, 0x0481 },
    { 0x048A, 0x0559 },
    { 0x0560, 0x0588 },
    { 0x05D0, 0x05F2 },
    { 0x0620, 0x064A },
    { 0x066E, 0x06D3 },
    { 0x06D5, 0x06D5 },
    { 0x06E5, 0x06E6 },
    { 0x06EE, 0x06EF },
    { 0x06FA, 0x06FC },
    { 0x06FF, 0x06FF },
    { 0x0710, 0x07B1 },
    { 0x07CA, 0x07F5 },
    { 0x07FA, 0x07FA },
    { 0x0800, 0x0828 },
    { 0x0840, 0x0858 },
    { 0x0860, 0x0887 },
    { 0x0889, 0x088E },
    { 0x08A0, 0x08C9 },
    { 0x0904, 0x0961 },
    { 0x0971, 0x09E1 },
    { 0x09F0, 0x09F1 },
    { 0x09FC, 0x09FC },
    { 0x0A05, 0x0A5E },
    { 0x0A72, 0x0A74 },
    { 0x0A85, 0x0AE1 },
    { 0x0AF9, 0x0B61 },
    { 0x0B71, 0x0B71 },
    { 0x0B83, 0x0BD0 },
    { 0x0C05, 0x0C61 },
    { 0x0C80, 0x0C80 },
    { 0x0C85, 0x0CE1 },
    { 0x0CF1, 0x0D4E },
    { 0x0D54, 0x0D56 },
    { 0x0D5F, 0x0D61 },
    { 0x0D7A, 0x0DC6 },
    { 0x0E01, 0x0E33 },
    { 0x0E40, 0x0E46 },
    { 0x0E81, 0x0EC6 },
    { 0x0EDC, 0x0F00 },
    { 0x0F40, 0x0F6C },
    { 0x0F88, 0x0F8C },
    { 0x1000, 0x103F },
    { 0x1050, 0x108E },
    { 0x10A0, 0x10FA },
    { 0x10FC, 0x135A },
    { 0x1380, 0x138F },
    { 0x13A0, 0x13FD },
    { 0x1401, 0x166C },
    { 0x166F, 0x167F },
    { 0x1681, 0x169A },
    { 0x16A0, 0x16EA },
    { 0x16F1, 0x1731 },
    { 0x1740, 0x17B3 },
    { 0x17D7, 0x17D7 },
    { 0x17DC, 0x17DC },
    { 0x1820, 0x191E },
    { 0x1950, 0x19C9 },
    { 0x1A00, 0x1A16 },
    { 0x1A20, 0x1A54 },
    { 0x1AA7, 0x1AA7 },
    { 0x1B05, 0x1B4C },
    { 0x1B83, 0x1BAF },
    { 0x1BBA, 0x1BE5 },
    { 0x1C00, 0x1C23 },
    { 0x1C4D, 0x1C4F },
    { 0x1C5A, 0x1C7D },
    { 0x1C80, 0x1CBF },
    { 0x1CE9, 0x1FBC },
    { 0x1FBE, 0x1FBE },
    { 0x1FC2, 0x1FCC },
    { 0x1FD0, 0x1FDB },
    { 0x1FE0, 0x1FEC },
    { 0x1FF2, 0x1FFC },
    { 0x2071, 0x2071 },
    { 0x207F, 0x207F },
    { 0x2090, 0x209C },
    { 0x2102, 0x2102 },
    { 0x2107, 0x2107 },
    { 0x210A, 0x2113 },
    { 0x2115, 0x2115 },
    { 0x2119, 0x211D },
    { 0x2124, 0x2124 },
    { 0x2126, 0x2126 },
    { 0x2128, 0x2128 },
    { 0x212A, 0x212D },
    { 0x212F, 0x2139 },
    { 0x213C, 0x213F },
    { 0x2145, 0x2149 },
    { 0x214E, 0x214E },
    { 0x2183, 0x2184 },
    { 0x2C00, 0x2CE4 },
    { 0x2CEB, 0x2CF3 },
    { 0x2D00, 0x2D6F },
    { 0x2D80, 0x2DDE },
    { 0x2E2F, 0x2E2F },
    { 0x3005, 0x3006 },
    { 0x3031, 0x3035 },
    { 0x303B, 0x303C },
    { 0x3041, 0x3096 },
    { 0x309D, 0x309F },
    { 0x30A1, 0x30FA },
    { 0x30FC, 0x318E },
    { 0x31A0, 0x31BF },
    { 0x31F0, 0x31FF },
    { 0x3400, 0x4DBF },
    { 0x4E00, 0xA48C },
    { 0xA4D0, 0xA4FD },
    { 0xA500, 0xA60C },
    { 0xA610, 0xA61F },
    { 0xA62A, 0xA66E },
    { 0xA67F, 0xA6E5 },
    { 0xA717, 0xA71F },
    { 0xA722, 0xA788 },
    { 0xA78B, 0xA822 },
    { 0xA840, 0xA873 },
    { 0xA882, 0xA8B3 },
    { 0xA8F2, 0xA8F7 },
    { 0xA8FB, 0xA8FB },
    { 0xA8FD, 0xA8FE },
    { 0xA90A, 0xA925 },
    { 0xA930, 0xA946 },
    { 0xA960, 0xA9B2 },
    { 0xA9CF, 0xA9CF },
    { 0xA9E0, 0xA9EF },
    { 0xA9FA, 0xAA4B },
    { 0xAA60, 0xAA76 },
    { 0xAA7A, 0xAADD },
    { 0xAAE0, 0xAAEA },
    { 0xAAF2, 0xAB5A },
    { 0xAB5C, 0xAB69 },
    { 0xAB70, 0xABE2 },
    { 0xAC00, 0xD7FB },
    { 0xF900, 0xFB28 },
    { 0xFB2A, 0xFBB1 },
    { 0xFBD3, 0xFD3D },
    { 0xFD50, 0xFDC7 },
    { 0xFDF0, 0xFDFB },
    { 0xFE70, 0xFEFC },
    { 0xFF21, 0xFF3A },
    { 0xFF41, 0xFF5A },
    { 0xFF66, 0xFFDC },
};

constexpr CharacterRange spaceRanges[] = { { 0x1680, 0x1680 }, { 0x2000, 0x200A },
    { 0x2028, 0x2029 }, { 0x202F, 0x202F }, { 0x205F, 0x205F }, { 0x3000, 0x3000 } };

constexpr CharacterRange punctuationRanges[] = { { 0x2010, 0x2027 }, { 0x2030, 0x205E },
    { 0x2190, 0x23FF }, { 0x2500, 0x27BF }, { 0x2E00, 0x2E5D }, { 0x3001, 0x3004 },
    { 0x3008, 0x3020 }, { 0xFE10, 0xFE19 }, { 0xFE30, 0xFE52 }, { 0xFF01, 0xFF0F } };

constexpr uint8_t LatinClass(int c)
{
    const bool digit = c >= '0' && c <= '9';
    const bool upper = (c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7);
    const bool lower
        = (c >= 'a' && c <= 'z') || c == 0xAA || c == 0xB5 || c == 0xBA || (c >= 0xDF && c != 0xF7);
    const bool space = (c >= 9 && c <= 13) || c == ' ' || c == 0x85 || c == 0xA0;
    const bool printable = (c >= ' ' && c < 0x7F) || c >= 0xA0;
    int result = 0;
    result |= digit ? OQClassDigit : 0;
    result |= upper ? OQClassLetter | OQClassUpperCase : 0;
    result |= lower ? OQClassLetter | OQClassLowerCase : 0;
    result |= space ? OQClassSpace : 0;
    result |= printable ? OQClassPrintable : 0;
    result |= printable && !digit && !upper && !lower && !space ? OQClassPunctuation : 0;
    return static_cast<uint8_t>(result);
}

constexpr auto latinClasses = [] {
    std::array<uint8_t, 256> classes {};
    for (int c = 0; c < 256; ++c)
        classes[c] = LatinClass(c);
    return classes;
}();

constexpr auto latinLowerCase = [] {
    std::array<uint8_t, 256> lower {};
    for (int c = 0; c < 256; ++c)
        lower[c] = static_cast<uint8_t>(latinClasses[c] & OQClassUpperCase ? c + 32 : c);
    return lower;
}();

template <size_t N>
bool Contains(const CharacterRange (&ranges)[N], OQChar character)
{
    const auto* after = std::upper_bound(std::begin(ranges), std::end(ranges), character,
        [](OQChar c, const CharacterRange& range) { return c < range.first; });
    return after != std::begin(ranges) && character <= after[-1].last;
}

template <size_t N>
const CaseRange* FindRange(const CaseRange (&ranges)[N], OQChar character)
{
    const auto* after = std::upper_bound(std::begin(ranges), std::end(ranges), character,
        [](OQChar c, const CaseRange& range) { return c < range.first; });
    if (after == std::begin(ranges))
        return nullptr;
    const CaseRange* range = after - 1;
    const bool inside = character <= range->last && (character - range->first) % range->step == 0;
    return inside ? range : nullptr;
}

// The upper case of a character above 255, or the character itself.
OQChar FindUpperCase(OQChar character)
{
    for (const CaseRange& range : upperCaseRanges) {
        const int32_t upper = character - range.offset;
        if (upper >= range.first && upper <= range.last && (upper - range.first) % range.step == 0)
            return static_cast<OQChar>(upper);
    }
    return character;
}

}

uint8_t OQGetCharacterClass(OQChar character)
{
    if (character < 256)
        return latinClasses[character];
    if (character >= 0xD800 && character < 0xE000) // half a character says nothing
        return 0;
    if (Contains(spaceRanges, character))
        return OQClassSpace;
    if (Contains(letterRanges, character)) {
        int result = OQClassLetter | OQClassPrintable;
        if (FindRange(upperCaseRanges, character))
            result |= OQClassUpperCase;
        else if (FindUpperCase(character) != character)
            result |= OQClassLowerCase;
        return static_cast<uint8_t>(result);
    }
    return Contains(punctuationRanges, character) ? OQClassPunctuation | OQClassPrintable
                                                  : OQClassPrintable;
}

OQChar OQToLower(OQChar character)
{
    if (character < 256)
        return latinLowerCase[character];
    const CaseRange* range = FindRange(upperCaseRanges, character);
    if (!range)
        range = FindRange(otherFoldings, character);
    return range ? static_cast<OQChar>(character + range->offset) : character;
}

OQChar OQToUpper(OQChar character)
{
    if (character < 128)
        return character >= u'a' && character <= u'z' ? static_cast<OQChar>(character - 32)
                                                      : character;
    if (character >= 0xE0 && character < 0xFF && character != 0xF7)
        return static_cast<OQChar>(character - 32);
    return character < 255 ? character : FindUpperCase(character);
}
