#pragma once

#include "foundation/OQChar.h"

#include <cstdint>
#include <string_view>

enum class OQXmlTokenKind
{
    End, // of the text
    WhiteSpace, // nothing else up to the next "<"
    Text,
    Comment,
    CData,
    Doctype,
    ProcessingInstruction,
    StartTag,
    EndTag,
    Skipped, // other declarations, and what isn't XML
};

enum class OQXmlTokenFault
{
    None,
    Unterminated, // the text ends inside
    Incorrect,
};

struct OQXmlToken
{
    OQXmlTokenKind kind = OQXmlTokenKind::End;
    int start = 0;
    int length = 0;
    OQXmlTokenFault fault = OQXmlTokenFault::None;
    const OQChar* faultName = u""; // what of is unterminated or incorrect

    int EndOffset() const { return start + length; }
};

// Cuts a document into tags and what stands between them. Every character belongs to one token, and
// each step is as long as its token.
class OQXmlTokenizer
{
public:
    OQXmlTokenizer(std::u16string_view text, int from, int to)
        : m_text(text.substr(0, static_cast<size_t>(to)))
        , m_position(from)
    {
    }

    OQXmlToken Next();

    void SetPosition(int position) { m_position = position; }

private:
    OQXmlToken ReadMarkup();
    OQXmlToken ReadDeclaration();
    OQXmlToken ReadStartTag();
    OQXmlToken ReadDoctype();
    OQXmlToken ReadUpTo(
        OQXmlTokenKind kind, std::u16string_view mark, int from, const OQChar* name);
    OQXmlToken SkipIncorrect(const OQChar* name);
    OQXmlToken Take(OQXmlTokenKind kind, int end);

    // 0 behind the end.
    OQChar At(int offset) const
    {
        return static_cast<size_t>(offset) < m_text.size() ? m_text[static_cast<size_t>(offset)]
                                                           : 0;
    }

    std::u16string_view m_text;
    int m_position;
};

inline bool OQIsXmlSpace(OQChar character)
{
    return character == u' ' || character == u'\t' || character == u'\n' || character == u'\r';
}

bool OQIsXmlNameStart(OQChar character);

// The name behind the "<" or "</" of a tag: up to white space, "/" or ">".
std::u16string_view OQXmlTagName(std::u16string_view tag);

// Walks the attributes of a start tag, given without its "<" and ">" or "/>".
class OQXmlAttributes
{
public:
    explicit OQXmlAttributes(std::u16string_view tag);

    // False at the end.
    bool Next();

    std::u16string_view GetName() const { return m_text.substr(m_nameStart, m_nameLength); }

    // Without the quotes; entities as they stand. Empty without one.
    std::u16string_view GetValue() const { return m_text.substr(m_valueStart, m_valueLength); }

    // The tag ends behind the "=": what is written there would be taken for the value.
    bool LacksValue() const { return m_valueMissing; }

    // The whole attribute, in the text that the constructor was given.
    size_t GetStart() const { return m_nameStart; }

    size_t GetEnd() const { return m_position; }

private:
    void SkipSpace();
    void ReadValue();

    std::u16string_view m_text;
    size_t m_position = 0;
    size_t m_nameStart = 0;
    size_t m_nameLength = 0;
    size_t m_valueStart = 0;
    size_t m_valueLength = 0;
    bool m_valueMissing = false;
};
