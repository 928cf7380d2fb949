#include "foundation/OQXmlParser.h"

#include "foundation/OQCharacters.h"
#include "foundation/OQNumberText.h"

#include <algorithm>
#include <climits>

namespace {

std::u16string_view TextOf(const OQXmlToken& token, std::u16string_view text)
{
    return text.substr(static_cast<size_t>(token.start), static_cast<size_t>(token.length));
}

OQString ToString(std::u16string_view text)
{
    return OQString(text.data(), static_cast<int>(text.size()));
}

}

bool OQXmlParser::LessName::operator()(std::u16string_view a, std::u16string_view b) const
{
    if (!ignoreCase)
        return a < b;
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
        [](OQChar x, OQChar y) { return OQToLower(x) < OQToLower(y); });
}

OQXmlParser::OQXmlParser(const OQString& text, bool ignoreCase, OQXmlElementTable& table)
    : m_text(text.View())
    , m_table(table)
    , m_names(LessName { ignoreCase })
{
}

void OQXmlParser::Report(const OQString& message)
{
    if (m_message.IsEmpty())
        m_message = message;
    m_table[0].flags |= OQXmlElement::IllFormed;
    m_table[CurrentElement()].flags |= OQXmlElement::FaultInContent;
}

// Only the first of a million faults is put into words.
void OQXmlParser::ReportIncorrect(const OQXmlToken& token)
{
    if (m_message.IsEmpty())
        Report(
            u"Incorrect " + OQString(token.faultName) + u" at offset " + OQIntToText(token.start));
    m_table[CurrentElement()].flags |= OQXmlElement::FaultInContent;
}

void OQXmlParser::ReportNotEnded(int element)
{
    if (!m_message.IsEmpty())
        return;
    const OQXmlElement& record = m_table[element];
    const std::u16string_view tag = m_text.substr(static_cast<size_t>(record.start));
    Report(u"Element '" + ToString(OQXmlTagName(tag)) + u"' at offset " + OQIntToText(record.start)
        + u" not ended");
}

OQString OQXmlParser::Parse()
{
    m_table.Reset(static_cast<int>(m_text.size()));
    m_table[0].length = static_cast<int>(m_text.size());
    if (m_text.empty()) {
        Report(u"Empty document");
        return m_message;
    }
    OQXmlTokenizer tokenizer(m_text, 0, static_cast<int>(m_text.size()));
    for (OQXmlToken token = tokenizer.Next(); token.kind != OQXmlTokenKind::End;
         token = tokenizer.Next()) {
        if (token.fault == OQXmlTokenFault::Unterminated) {
            Report(
                token.faultName + (u" at offset " + OQIntToText(token.start)) + u" unterminated");
            break;
        }
        if (token.fault == OQXmlTokenFault::Incorrect)
            ReportIncorrect(token);
        else if (token.kind == OQXmlTokenKind::StartTag)
            ReadStartTag(token);
        else if (token.kind == OQXmlTokenKind::EndTag)
            ReadEndTag(token);
    }
    if (!m_open.IsEmpty()) {
        ReportNotEnded(CurrentElement());
        CloseInner(0, 0);
    }
    if (!m_message.IsEmpty())
        m_table.SetLevels(); // children may have moved
    const int root = m_table[0].firstChild;
    if (root == 0)
        Report(u"No root element");
    else if (m_table[root].next != 0)
        Report(u"Root element has sibling");
    return m_message;
}

void OQXmlParser::ReadStartTag(const OQXmlToken& token)
{
    const std::u16string_view tag = TextOf(token, m_text);
    const int index = m_table.Take();
    OQXmlElement& element = m_table[index];
    element.start = token.start;
    element.length = token.length;
    element.SetStartTagLength(token.length);
    m_table.Link(index, CurrentElement(), 0);
    if (tag.ends_with(u"/>")) {
        element.flags |= OQXmlElement::NoEndTag;
        return;
    }
    const auto name = m_names.try_emplace(OQXmlTagName(tag), -1).first;
    const int outerSameName = std::exchange(name->second, m_open.GetCount());
    // Doubled: a text of nothing but start tags would be copied again and again otherwise.
    if (m_open.GetCount() == m_open.GetCapacity())
        m_open.SetGrowthStep(2 * std::clamp(m_open.GetCount(), 32, INT_MAX / 4));
    m_open.Add({ index, outerSameName, name });
}

// An end tag ends the innermost element whose name it begins with, if the name ends there.
int OQXmlParser::FindOpenElement(std::u16string_view tag) const
{
    const std::u16string_view endTag = tag.substr(2);
    constexpr std::u16string_view nameEnds = u" \t\r\n=/[]";
    // Names may hold some of these characters themselves; more of them than this aren't tried.
    constexpr int maximumCandidates = 16;
    const auto whole = m_names.find(OQXmlTagName(tag));
    int found = whole != m_names.end() ? whole->second : -1;
    size_t end = 0;
    for (int i = 0; i < maximumCandidates && end < endTag.size(); ++i) {
        end = std::min(endTag.find_first_of(nameEnds, end + (i > 0)), endTag.size());
        const auto name = m_names.find(endTag.substr(0, end));
        if (name != m_names.end())
            found = std::max(found, name->second);
    }
    return found;
}

void OQXmlParser::ReadEndTag(const OQXmlToken& token)
{
    const std::u16string_view tag = TextOf(token, m_text);
    const int place = FindOpenElement(tag.substr(0, tag.size() - 1));
    if (place < 0) {
        if (m_message.IsEmpty())
            Report(u"No start tag for end tag '" + ToString(OQXmlTagName(tag)) + u"' at offset "
                + OQIntToText(token.start));
        m_table[CurrentElement()].flags |= OQXmlElement::FaultInContent;
        return;
    }
    const int index = m_open[place].element;
    if (place + 1 < m_open.GetCount()) {
        ReportNotEnded(CurrentElement());
        CloseInner(place + 1, index);
        m_table[index].flags |= OQXmlElement::FaultInContent;
    }
    OQXmlElement& element = m_table[index];
    element.length = token.EndOffset() - element.start;
    element.SetEndTagLength(token.length);
    m_open.Last().name->second = m_open.Last().outerSameName;
    m_open.Remove(place);
}

// Everything from that place of the stack on isn't ended: such an element is its start tag alone,
// and its children go to the element around it. From the outermost inward, so that each child moves
// once and stays in the order of the text.
void OQXmlParser::CloseInner(int stackPlace, int newParent)
{
    for (int i = stackPlace; i < m_open.GetCount(); ++i) {
        m_table[m_open[i].element].flags |= OQXmlElement::NoEndTag;
        m_table.MoveChildren(m_open[i].element, newParent);
    }
    while (m_open.GetCount() > stackPlace) {
        m_open.Last().name->second = m_open.Last().outerSameName;
        m_open.Remove(m_open.GetCount() - 1);
    }
}
