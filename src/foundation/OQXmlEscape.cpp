#include "foundation/OQNumberText.h"
#include "foundation/OQTextEncoding.h"
#include "foundation/OQXmlDocument.h"

#include <algorithm>
#include <utility>

namespace {

struct Entity
{
    std::u16string_view name; // with the ";"
    OQChar character;
};

constexpr Entity entities[] = {
    { u"lt;", u'<' },
    { u"amp;", u'&' },
    { u"gt;", u'>' },
    { u"apos;", u'\'' },
    { u"quot;", u'"' },
};

// What a character is written as; empty: as it stands. No memory is taken for it, as a text may
// hold millions.
class EscapedCharacter
{
public:
    EscapedCharacter(OQChar character, uint32_t flags) { Choose(character, flags); }

    bool IsEmpty() const { return m_text.empty(); }

    std::u16string_view View() const { return m_text; }

private:
    void Choose(OQChar character, uint32_t flags)
    {
        switch (character) {
        case u'&':
            m_text = u"&amp;";
            break;
        case u'<':
            m_text = u"&lt;";
            break;
        case u'>':
            m_text = u"&gt;";
            break;
        case u'"':
            m_text = flags & OQXmlEscapeQuote ? u"&quot;" : u"";
            break;
        case u'\'':
            m_text = flags & OQXmlEscapeApostrophe ? u"&apos;" : u"";
            break;
        case u'\t':
        case u'\n':
        case u'\r':
            break;
        default:
            if (character < 32 && (flags & OQXmlEscapeControls))
                ChooseControl(character, flags);
        }
    }

    void ChooseControl(OQChar character, uint32_t flags)
    {
        if ((flags & OQXmlReplaceControls) && character != 1) {
            m_text = u"?";
            return;
        }
        OQChar* end = std::copy_n(u"&#x", 3, m_number);
        if (character >= 16)
            *end++ = u'1';
        *end++ = u"0123456789ABCDEF"[character & 15];
        *end++ = u';';
        m_text = { m_number, end };
    }

    OQChar m_number[8];
    std::u16string_view m_text;
};

struct Reference
{
    uint32_t character = 0; // 0: there is no reference here
    size_t length = 0;
};

// At the text behind "&#": up to 7 characters and a ";".
Reference ReadNumber(std::u16string_view text)
{
    constexpr size_t maximumLength = 7;
    const size_t end = text.substr(0, maximumLength + 1).find(u';');
    if (end == std::u16string_view::npos)
        return {};
    const uint32_t value = OQReferenceToUInt(text.substr(0, end));
    if (value > 0x10FFFF)
        return {};
    return { value, end + 1 };
}

// At the text behind "&".
Reference ReadReference(std::u16string_view text)
{
    if (text.starts_with(u'#')) {
        Reference number = ReadNumber(text.substr(1));
        ++number.length;
        return number;
    }
    for (const Entity& entity : entities) {
        if (text.starts_with(entity.name))
            return { entity.character, entity.name.size() };
    }
    return {};
}

}

OQString OQXmlDocument::Escape(const OQString& text, uint32_t escapeFlags)
{
    const std::u16string_view view = text.View();
    OQString result;
    size_t copied = 0;
    for (size_t i = 0; i < view.size(); ++i) {
        if (view[i] > u'>') // nothing above it is ever written otherwise
            continue;
        const EscapedCharacter escaped(view[i], escapeFlags);
        if (escaped.IsEmpty())
            continue;
        result.Append(view.substr(copied, i - copied));
        result.Append(escaped.View());
        copied = i + 1;
    }
    if (copied == 0)
        return text;
    return std::move(result.Append(view.substr(copied)));
}

OQString OQXmlDocument::Unescape(const OQString& text)
{
    const std::u16string_view view = text.View();
    OQString result;
    size_t copied = 0;
    size_t at = view.find(u'&');
    while (at != std::u16string_view::npos) {
        const Reference reference = ReadReference(view.substr(at + 1));
        size_t behind = at + 1;
        if (reference.character != 0) {
            behind += reference.length;
            result.Append(view.substr(copied, at - copied));
            copied = behind;
            OQAppendCharacter(result, reference.character);
        }
        at = view.find(u'&', behind);
    }
    if (copied == 0)
        return text;
    return std::move(result.Append(view.substr(copied)));
}
