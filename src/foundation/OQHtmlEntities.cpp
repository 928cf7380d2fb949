#include "foundation/OQHtmlEntities.h"

#include "foundation/OQNumberText.h"
#include "foundation/OQTextEncoding.h"

#include <algorithm>
#include <utility>

namespace {

// HTML 4's names of the characters from FirstLatin1 on.
constexpr OQChar FirstLatin1 = 160;
constexpr std::u16string_view latin1Names[] = { u"nbsp", u"iexcl", u"cent", u"pound", u"curren",
    u"yen", u"brvbar", u"sect", u"uml", u"copy", u"ordf", u"laquo", u"not", u"shy", u"reg", u"macr",
    u"deg", u"plusmn", u"sup2", u"sup3", u"acute", u"micro", u"para", u"middot", u"cedil", u"sup1",
    u"ordm", u"raquo", u"frac14", u"frac12", u"frac34", u"iquest", u"Agrave", u"Aacute", u"Acirc",
    u"Atilde", u"Auml", u"Aring", u"AElig", u"Ccedil", u"Egrave", u"Eacute", u"Ecirc", u"Euml",
    u"Igrave", u"Iacute", u"Icirc", u"Iuml", u"ETH", u"Ntilde", u"Ograve", u"Oacute", u"Ocirc",
    u"Otilde", u"Ouml", u"times", u"Oslash", u"Ugrave", u"Uacute", u"Ucirc", u"Uuml", u"Yacute",
    u"THORN", u"szlig", u"agrave", u"aacute", u"acirc", u"atilde", u"auml", u"aring", u"aelig",
    u"ccedil", u"egrave", u"eacute", u"ecirc", u"euml", u"igrave", u"iacute", u"icirc", u"iuml",
    u"eth", u"ntilde", u"ograve", u"oacute", u"ocirc", u"otilde", u"ouml", u"divide", u"oslash",
    u"ugrave", u"uacute", u"ucirc", u"uuml", u"yacute", u"thorn", u"yuml" };
static_assert(std::size(latin1Names) == 256 - FirstLatin1);

struct Entity
{
    std::u16string_view name;
    OQChar character;
};

constexpr Entity otherEntities[] = {
    { u"quot", u'"' },
    { u"amp", u'&' },
    { u"lt", u'<' },
    { u"gt", u'>' },
    { u"apos", u'\'' },
    { u"ndash", u'-' },
    { u"mdash", u'-' },
    { u"rsquo", u'\'' },
    { u"ldquo", 0x201C },
    { u"rdquo", 0x201D },
    { u"hellip", 0x2026 },
};
static_assert(std::size(latin1Names) + std::size(otherEntities) == 107);

constexpr size_t LongestReference = 8; // "#x10000;", without the "&"

// 0 for none.
uint32_t CharacterOfName(std::u16string_view name)
{
    const auto* const latin1 = std::find(std::begin(latin1Names), std::end(latin1Names), name);
    if (latin1 == std::begin(latin1Names))
        return u' ';
    if (latin1 != std::end(latin1Names))
        return static_cast<uint32_t>(FirstLatin1 + (latin1 - std::begin(latin1Names)));
    for (const Entity& entity : otherEntities) {
        if (entity.name == name)
            return entity.character;
    }
    return 0;
}

// The text behind "#", of 2 to 5 digits. 0 for none, and for what is half a character.
uint32_t CharacterOfNumber(std::u16string_view text)
{
    const size_t digits = text.size() - text.starts_with(u'x');
    const uint32_t value = digits >= 2 && digits <= 5 ? OQReferenceToUInt(text) : 0;
    return value >= 0xD800 && value < 0xE000 ? 0 : value;
}

}

OQString DecodeHtmlEntities(const OQString& text)
{
    const std::u16string_view view = text.View();
    OQString result;
    size_t copied = 0;
    for (size_t at = view.find(u'&'); at != std::u16string_view::npos;
         at = view.find(u'&', std::max(at + 1, copied))) {
        const std::u16string_view ahead = view.substr(at + 1, LongestReference);
        const size_t end = ahead.find(u';');
        if (end == std::u16string_view::npos)
            continue;
        const std::u16string_view name = ahead.substr(0, end);
        const uint32_t character
            = name.starts_with(u'#') ? CharacterOfNumber(name.substr(1)) : CharacterOfName(name);
        if (character == 0)
            continue;
        result.Append(view.substr(copied, at - copied));
        OQAppendCharacter(result, character);
        copied = at + 1 + end + 1;
    }
    if (copied == 0)
        return text;
    return std::move(result.Append(view.substr(copied)));
}
