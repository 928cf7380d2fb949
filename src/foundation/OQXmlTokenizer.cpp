#include "foundation/OQXmlTokenizer.h"

#include "foundation/OQCharacters.h"

bool OQIsXmlNameStart(OQChar character)
{
    return character == u':' || character == u'_' || character > 96 || OQIsLetter(character);
}

std::u16string_view OQXmlTagName(std::u16string_view tag)
{
    tag.remove_prefix(tag.starts_with(u"</") ? 2 : 1);
    size_t length = 0;
    while (length < tag.size() && !OQIsXmlSpace(tag[length]) && tag[length] != u'/'
        && tag[length] != u'>')
        ++length;
    return tag.substr(0, length);
}

OQXmlToken OQXmlTokenizer::Take(OQXmlTokenKind kind, int end)
{
    OQXmlToken token;
    token.kind = kind;
    token.start = m_position;
    token.length = end - m_position;
    m_position = end;
    return token;
}

OQXmlToken OQXmlTokenizer::Next()
{
    const int length = static_cast<int>(m_text.size());
    if (m_position >= length)
        return Take(OQXmlTokenKind::End, m_position);
    if (At(m_position) == u'<')
        return ReadMarkup();
    int end = m_position;
    while (end < length && OQIsXmlSpace(At(end)))
        ++end;
    const bool onlySpace = end == length || At(end) == u'<';
    while (end < length && At(end) != u'<')
        ++end;
    return Take(onlySpace ? OQXmlTokenKind::WhiteSpace : OQXmlTokenKind::Text, end);
}

OQXmlToken OQXmlTokenizer::ReadMarkup()
{
    switch (const OQChar next = At(m_position + 1)) {
    case u'!':
        return ReadDeclaration();
    case u'?':
        return ReadUpTo(OQXmlTokenKind::ProcessingInstruction, u"?>", 2, u"Processing instruction");
    case u'/':
        return ReadUpTo(OQXmlTokenKind::EndTag, u">", 2, u"Element end tag");
    default:
        return OQIsXmlNameStart(next) ? ReadStartTag() : SkipIncorrect(u"tag name character");
    }
}

OQXmlToken OQXmlTokenizer::ReadDeclaration()
{
    const OQChar after = At(m_position + 3);
    switch (At(m_position + 2)) {
    case u'-':
        if (after != u'-')
            return SkipIncorrect(u"comment tag");
        return ReadUpTo(OQXmlTokenKind::Comment, u"-->", 4, u"Comment");
    case u'[':
        if (after != u'C')
            return SkipIncorrect(u"tag");
        return ReadUpTo(OQXmlTokenKind::CData, u"]]>", 4, u"CDATA Section");
    case u'D':
        return ReadDoctype();
    case u'E': // <!ELEMENT, <!ENTITY
    case u'A': // <!ATTLIST
    case u'N': // <!NOTATION
    {
        // Nothing to us, and no fault unless it swallows the rest of the text.
        OQXmlToken token = SkipIncorrect(u"! tag");
        if (At(token.EndOffset() - 1) == u'>')
            token.fault = OQXmlTokenFault::None;
        return token;
    }
    default:
        return SkipIncorrect(u"! tag");
    }
}

OQXmlToken OQXmlTokenizer::ReadUpTo(
    OQXmlTokenKind kind, std::u16string_view mark, int from, const OQChar* name)
{
    const size_t at = m_text.find(mark, static_cast<size_t>(m_position + from));
    const bool found = at != std::u16string_view::npos;
    OQXmlToken token = Take(kind, static_cast<int>(found ? at + mark.size() : m_text.size()));
    if (!found) {
        token.fault = OQXmlTokenFault::Unterminated;
        token.faultName = name;
    }
    return token;
}

OQXmlToken OQXmlTokenizer::SkipIncorrect(const OQChar* name)
{
    OQXmlToken token = ReadUpTo(OQXmlTokenKind::Skipped, u">", 1, name);
    token.fault = OQXmlTokenFault::Incorrect;
    token.faultName = name;
    return token;
}

OQXmlToken OQXmlTokenizer::ReadDoctype()
{
    const int length = static_cast<int>(m_text.size());
    int depth = 0;
    for (int end = m_position; end < length; ++end) {
        depth += At(end) == u'<' ? 1 : At(end) == u'>' ? -1 : 0;
        if (depth == 0)
            return Take(OQXmlTokenKind::Doctype, end + 1);
    }
    OQXmlToken token = Take(OQXmlTokenKind::Doctype, length);
    token.fault = OQXmlTokenFault::Unterminated;
    token.faultName = u"Doctype";
    return token;
}

OQXmlToken OQXmlTokenizer::ReadStartTag()
{
    const int length = static_cast<int>(m_text.size());
    OQChar quote = 0;
    // A quote opens a value only behind "="; the apostrophe in <a b=it's> is a plain character.
    bool valueFollows = false;
    for (int end = m_position + 1; end < length; ++end) {
        const OQChar character = At(end);
        if (quote) {
            quote = character == quote ? u'\0' : quote;
        } else if (character == u'>') {
            return Take(OQXmlTokenKind::StartTag, end + 1);
        } else if (valueFollows && (character == u'"' || character == u'\'')) {
            quote = character;
            valueFollows = false;
        } else if (!OQIsXmlSpace(character)) {
            valueFollows = character == u'=';
        }
    }
    OQXmlToken token = Take(OQXmlTokenKind::StartTag, length);
    token.fault = OQXmlTokenFault::Unterminated;
    token.faultName = u"Element tag";
    return token;
}

OQXmlAttributes::OQXmlAttributes(std::u16string_view tag)
    : m_text(tag)
{
    while (m_position < m_text.size() && !OQIsXmlSpace(m_text[m_position])
        && m_text[m_position] != u'/')
        ++m_position;
}

void OQXmlAttributes::SkipSpace()
{
    while (m_position < m_text.size() && OQIsXmlSpace(m_text[m_position]))
        ++m_position;
}

bool OQXmlAttributes::Next()
{
    constexpr std::u16string_view nameEnds = u" \t\r\n<>=\\/?!";
    m_position = m_text.find_first_not_of(nameEnds, m_position);
    if (m_position == std::u16string_view::npos) {
        m_position = m_text.size();
        return false;
    }
    m_nameStart = m_position;
    m_position = m_text.find_first_of(nameEnds, m_position);
    if (m_position == std::u16string_view::npos)
        m_position = m_text.size();
    m_nameLength = m_position - m_nameStart;
    m_valueStart = m_position;
    m_valueLength = 0;
    const size_t nameEnd = m_position;
    SkipSpace();
    if (m_position < m_text.size() && m_text[m_position] == u'=') {
        ++m_position;
        SkipSpace();
        ReadValue();
    } else {
        m_position = nameEnd;
    }
    return true;
}

void OQXmlAttributes::ReadValue()
{
    m_valueStart = m_position;
    m_valueMissing = m_position == m_text.size();
    if (m_valueMissing)
        return;
    const OQChar quote = m_text[m_position];
    if (quote == u'"' || quote == u'\'') {
        ++m_valueStart;
        const size_t end = m_text.find(quote, m_valueStart);
        m_valueLength = (end == std::u16string_view::npos ? m_text.size() : end) - m_valueStart;
        m_position = end == std::u16string_view::npos ? m_text.size() : end + 1;
        return;
    }
    while (m_position < m_text.size() && !OQIsXmlSpace(m_text[m_position]))
        ++m_position;
    m_valueLength = m_position - m_valueStart;
}
