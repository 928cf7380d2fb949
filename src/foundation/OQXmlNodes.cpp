#include "foundation/OQXmlDocument.h"
#include "foundation/OQXmlTokenizer.h"

namespace {

// What a processing instruction or a doctype is called, behind `from` characters of its tag.
OQString WordBehind(std::u16string_view tag, size_t from)
{
    constexpr std::u16string_view ends = u" \t\r\n<>=\\/?!";
    tag.remove_prefix(std::min(from, tag.size()));
    const std::u16string_view word = tag.substr(0, tag.find_first_of(ends));
    return OQString(word.data(), static_cast<int>(word.size()));
}

OQString DoctypeName(std::u16string_view tag)
{
    constexpr std::u16string_view spaces = u" \t\r\n";
    const size_t keywordEnd = tag.find_first_of(spaces);
    return WordBehind(tag, tag.find_first_not_of(spaces, keywordEnd));
}

bool IsNode(const OQXmlToken& token)
{
    return token.kind != OQXmlTokenKind::EndTag && token.kind != OQXmlTokenKind::Skipped;
}

}

bool OQXmlDocument::FindNode()
{
    const int before = m_nodeEnd != 0 ? m_nodePrevious : m_element;
    const int next = before != 0 ? m_elements[before].next : m_elements[m_parent].firstChild;
    const int from = m_nodeEnd != 0 ? m_nodeEnd
        : before != 0               ? m_elements[before].End()
        : m_parent != 0             ? ContentStart(m_parent)
                                    : 0;
    // The end tag of the parent, which is no node, ends the search as well as its start would, and
    // that would have to be looked for each time where the tag is long.
    OQXmlTokenizer tokenizer(m_text.View(), from, m_elements[m_parent].End());
    OQXmlToken token = tokenizer.Next();
    // End tags of nothing, and tags that the text ends in, are no nodes.
    while (!IsNode(token)
        || (token.kind == OQXmlTokenKind::StartTag
            && (next == 0 || token.start != m_elements[next].start)))
        token = tokenizer.Next();
    if (token.kind == OQXmlTokenKind::End)
        return false;
    if (token.kind == OQXmlTokenKind::StartTag) {
        MoveTo(next);
        return true;
    }
    MoveTo(0);
    m_nodeStart = token.start;
    m_nodeEnd = token.EndOffset();
    m_nodePrevious = before;
    return true;
}

OQString OQXmlDocument::GetNodeName() const
{
    if (m_nodeEnd == 0)
        return GetTagName();
    const OQXmlToken token = OQXmlTokenizer(m_text.View(), m_nodeStart, m_nodeEnd).Next();
    const std::u16string_view tag = m_text.View().substr(
        static_cast<size_t>(m_nodeStart), static_cast<size_t>(m_nodeEnd - m_nodeStart));
    switch (token.kind) {
    case OQXmlTokenKind::CData:
        return u"#cdata-section";
    case OQXmlTokenKind::Comment:
        return u"#comment";
    case OQXmlTokenKind::ProcessingInstruction:
        return WordBehind(tag, std::u16string_view(u"<?").size());
    case OQXmlTokenKind::Doctype:
        return DoctypeName(tag);
    default:
        return u"#text";
    }
}
