#include "foundation/OQXmlDocument.h"

#include "foundation/OQCharacters.h"
#include "foundation/OQXmlParser.h"
#include "foundation/OQXmlTokenizer.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

namespace {

constexpr const OQChar* LineEnd = u"\r\n";
constexpr std::u16string_view CDataStart = u"<![CDATA[";
constexpr std::u16string_view CDataEnd = u"]]>";

// What would end a name, or open a quote, when it is read again.
constexpr std::u16string_view notInNames = u" \t\r\n<>=\\/?!\"'";

bool IsTagName(const OQChar* name)
{
    return name && OQIsXmlNameStart(name[0])
        && std::u16string_view(name).find_first_of(u" \t\r\n<>=/\"'") == std::u16string_view::npos;
}

bool IsAttributeName(const OQChar* name)
{
    return name && name[0]
        && std::u16string_view(name).find_first_of(notInNames) == std::u16string_view::npos;
}

OQString ToString(std::u16string_view text)
{
    return OQString(text.data(), static_cast<int>(text.size()));
}

// The text of an element as it stands in the document.
OQString MarkupOf(const OQChar* text, uint32_t flags)
{
    if (!(flags & OQXmlCData))
        return OQXmlDocument::Escape(
            text, flags & OQXmlEscapeQuotes ? OQXmlEscapeAll : OQXmlEscapeText);
    OQString content(text);
    content.Replace(u"]]>", u"]]]]><![CDATA[>"); // the mark is cut in two sections
    return ToString(CDataStart) + content + ToString(CDataEnd).GetText();
}

std::u16string_view CDataContent(std::u16string_view section)
{
    if (!section.starts_with(CDataStart) || section.size() < CDataStart.size() + CDataEnd.size())
        return {};
    section.remove_suffix(CDataEnd.size());
    return section.substr(CDataStart.size());
}

// How a start tag without an end tag closes.
const OQChar* EmptyTagEnd(uint32_t flags)
{
    return flags & OQXmlStartTagOnly ? u">" : flags & OQXmlBlankBeforeSlash ? u" />" : u"/>";
}

}

bool OQXmlDocument::SetDocument(const OQString& text)
{
    m_text = text;
    OQXmlParser parser(m_text, m_flags & OQXmlIgnoreCase, m_elements);
    m_error = parser.Parse();
    ResetPos();
    return m_error.IsEmpty();
}

bool OQXmlDocument::HasFault() const
{
    constexpr uint32_t faults = OQXmlElement::FaultInContent | OQXmlElement::IllFormed;
    return m_elements[m_element].flags & faults;
}

void OQXmlDocument::ResetPos()
{
    m_parent = 0;
    MoveTo(0);
}

void OQXmlDocument::MoveTo(int element)
{
    m_element = element;
    m_child = 0;
    m_nodeEnd = 0;
}

bool OQXmlDocument::SameName(std::u16string_view a, std::u16string_view b) const
{
    if (!(m_flags & OQXmlIgnoreCase))
        return a == b;
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
        [](OQChar x, OQChar y) { return OQToLower(x) == OQToLower(y); });
}

std::u16string_view OQXmlDocument::NameOf(int element) const
{
    return OQXmlTagName(m_text.View().substr(static_cast<size_t>(m_elements[element].start)));
}

bool OQXmlDocument::IsSelfClosed(int element) const
{
    return m_text[m_elements[element].start + StartTagLength(element) - 2] == u'/';
}

std::u16string_view OQXmlDocument::AttributesOf(int element) const
{
    const int length = StartTagLength(element) - (IsSelfClosed(element) ? 3 : 2);
    return m_text.View().substr(
        static_cast<size_t>(m_elements[element].start) + 1, static_cast<size_t>(length));
}

int OQXmlDocument::StartTagLength(int element) const
{
    const OQXmlElement& record = m_elements[element];
    if (record.startTagLength < OQXmlElement::MaximumStartTag)
        return static_cast<int>(record.startTagLength);
    OQXmlTokenizer tokenizer(m_text.View(), record.start, record.End());
    return tokenizer.Next().length;
}

int OQXmlDocument::EndTagLength(int element) const
{
    const OQXmlElement& record = m_elements[element];
    if (record.endTagLength < OQXmlElement::MaximumEndTag)
        return static_cast<int>(record.endTagLength);
    // The token that ends where the element does.
    const int lastChild = m_elements.LastChild(element);
    const int from = lastChild != 0 ? m_elements[lastChild].End() : ContentStart(element);
    OQXmlTokenizer tokenizer(m_text.View(), from, record.End());
    OQXmlToken token = tokenizer.Next();
    while (token.EndOffset() < record.End())
        token = tokenizer.Next();
    return token.length;
}

int OQXmlDocument::NextNamed(int parent, int after, const OQChar* name) const
{
    int element = after != 0 ? m_elements[after].next : m_elements[parent].firstChild;
    while (element != 0 && name && !SameName(NameOf(element), name))
        element = m_elements[element].next;
    return element;
}

bool OQXmlDocument::FindElem(const OQChar* name)
{
    const int found = NextNamed(m_parent, m_nodeEnd != 0 ? m_nodePrevious : m_element, name);
    if (found == 0)
        return false;
    MoveTo(found);
    return true;
}

bool OQXmlDocument::FindChildElem(const OQChar* name)
{
    const int found = m_element != 0 ? NextNamed(m_element, m_child, name) : 0;
    if (found == 0)
        return false;
    m_child = found;
    return true;
}

bool OQXmlDocument::IntoElem()
{
    if (m_element == 0)
        return false;
    m_parent = m_element;
    MoveTo(m_child);
    return true;
}

bool OQXmlDocument::OutOfElem()
{
    if (m_parent == 0)
        return false;
    const int child = m_element;
    MoveTo(m_parent);
    m_child = child;
    m_parent = m_elements[m_element].parent;
    return true;
}

OQString OQXmlDocument::GetTagName() const
{
    return m_element != 0 ? ToString(NameOf(m_element)) : OQString();
}

OQString OQXmlDocument::GetData() const
{
    OQString data;
    if (m_element == 0 || (m_elements[m_element].flags & OQXmlElement::NoEndTag))
        return data;
    int child = m_elements[m_element].firstChild;
    const bool hasChildren = child != 0;
    OQXmlTokenizer tokenizer(m_text.View(), ContentStart(m_element), ContentEnd(m_element));
    for (;;) {
        const OQXmlToken token = tokenizer.Next();
        const std::u16string_view piece = m_text.View().substr(
            static_cast<size_t>(token.start), static_cast<size_t>(token.length));
        switch (token.kind) {
        case OQXmlTokenKind::End:
            return data;
        case OQXmlTokenKind::CData:
            data.Append(CDataContent(piece));
            break;
        case OQXmlTokenKind::WhiteSpace:
            if (!hasChildren)
                data.Append(piece);
            break;
        case OQXmlTokenKind::Text:
            data += Unescape(ToString(piece));
            break;
        case OQXmlTokenKind::StartTag:
            if (child != 0 && token.start == m_elements[child].start) {
                tokenizer.SetPosition(m_elements[child].End());
                child = m_elements[child].next;
            }
            break;
        default:
            break;
        }
    }
}

OQString OQXmlDocument::GetAttrib(const OQChar* name) const
{
    if (m_element == 0 || !name)
        return {};
    OQXmlAttributes attributes(AttributesOf(m_element));
    while (attributes.Next()) {
        if (SameName(attributes.GetName(), name))
            return Unescape(ToString(attributes.GetValue()));
    }
    return {};
}

bool OQXmlDocument::AddElem(const OQChar* name, const OQChar* text, uint32_t flags)
{
    if (flags & OQXmlChild)
        return AddChildElem(name, text, flags);
    if (!IsTagName(name))
        return false;
    MoveTo(Insert(m_parent, m_element, name, text, flags));
    return true;
}

bool OQXmlDocument::AddChildElem(const OQChar* name, const OQChar* text, uint32_t flags)
{
    if (m_element == 0 || !IsTagName(name))
        return false;
    m_child = Insert(m_element, m_child, name, text, flags);
    return true;
}

int OQXmlDocument::Insert(
    int parent, int before, const OQChar* name, const OQChar* text, uint32_t flags)
{
    flags |= m_flags;
    OQString markup = OQString(u"<") + name;
    int startTagLength = 0;
    int endTagLength = 0;
    if (text && text[0]) {
        markup += u'>';
        startTagLength = markup.GetLength();
        markup += MarkupOf(text, flags) + u"</" + name + u'>';
        endTagLength = static_cast<int>(std::char_traits<OQChar>::length(name)) + 3;
    } else {
        markup += EmptyTagEnd(flags);
        startTagLength = markup.GetLength();
    }
    const int length = markup.GetLength();
    if (!(flags & OQXmlNoLineEnds))
        markup += LineEnd;

    if (parent != 0)
        MakeRoomForChildren(parent, flags);
    const int end = parent != 0 ? ContentEnd(parent) : m_text.GetLength();
    int start = end;
    if (before != 0) {
        start = m_elements[before].End();
        if (start + 2 <= end && m_text[start] == u'\r' && m_text[start + 1] == u'\n')
            start += 2;
    }

    const int index = m_elements.Take();
    const int distance = EditText(start, 0, markup);
    OQXmlElement& element = m_elements[index];
    element.start = start;
    element.length = length;
    element.SetStartTagLength(startTagLength);
    element.SetEndTagLength(endTagLength);
    if (endTagLength == 0)
        element.flags |= OQXmlElement::NoEndTag;
    m_elements.Link(index, parent, before);
    MoveBehind(index, distance);
    return index;
}

// An element that is empty so far gets a line end behind its start tag, if it is to have lines.
void OQXmlDocument::MakeRoomForChildren(int parent, uint32_t flags)
{
    const OQChar* lineEnd = flags & OQXmlNoLineEnds ? u"" : LineEnd;
    if (m_elements[parent].flags & OQXmlElement::NoEndTag) {
        GiveEndTag(parent, lineEnd);
    } else if (ContentStart(parent) == ContentEnd(parent)) {
        const int distance = EditText(ContentStart(parent), 0, lineEnd);
        m_elements[parent].length += distance;
        MoveBehind(parent, distance);
    }
}

void OQXmlDocument::GiveEndTag(int element, const OQString& content)
{
    OQXmlElement& record = m_elements[element];
    const OQString endTag = OQString(u"</") + ToString(NameOf(element)) + u'>';
    const int oldEnd = record.start + StartTagLength(element);
    int tagEnd = oldEnd - (IsSelfClosed(element) ? 2 : 1);
    while (OQIsXmlSpace(m_text[tagEnd - 1]))
        --tagEnd;
    // A slash that belongs to the attributes must not close the tag.
    const OQString tagClose = m_text[tagEnd - 1] == u'/' ? u" >" : u">";
    const int distance = EditText(tagEnd, oldEnd - tagEnd, tagClose + content + endTag);
    record.SetStartTagLength(tagEnd + tagClose.GetLength() - record.start);
    record.SetEndTagLength(endTag.GetLength());
    record.length += distance;
    record.flags &= ~uint32_t { OQXmlElement::NoEndTag };
    MoveBehind(element, distance);
}

void OQXmlDocument::RemoveContent(int element, uint32_t flags)
{
    OQXmlElement& record = m_elements[element];
    const OQString tagEnd = EmptyTagEnd(flags | m_flags);
    const int offset = ContentStart(element) - 1;
    const int distance = EditText(offset, record.End() - offset, tagEnd);
    record.SetStartTagLength(offset + tagEnd.GetLength() - record.start);
    record.SetEndTagLength(0);
    record.length += distance;
    record.flags |= OQXmlElement::NoEndTag;
    MoveBehind(element, distance);
}

bool OQXmlDocument::SetData(const OQChar* text, uint32_t flags)
{
    if (m_element == 0)
        return false;
    const bool empty = !text || !text[0];
    m_child = 0;
    if (m_elements[m_element].flags & OQXmlElement::NoEndTag) {
        if (!empty)
            GiveEndTag(m_element, MarkupOf(text, flags));
        return true;
    }
    const int start = ContentStart(m_element);
    const int length = ContentEnd(m_element) - start;
    m_elements.GiveBackChildren(m_element);
    if (empty) {
        RemoveContent(m_element, flags);
        return true;
    }
    const int distance = EditText(start, length, MarkupOf(text, flags));
    m_elements[m_element].length += distance;
    MoveBehind(m_element, distance);
    return true;
}

bool OQXmlDocument::SetAttrib(const OQChar* name, const OQChar* value)
{
    if (m_element == 0 || !IsAttributeName(name))
        return false;
    OQString attribute = OQString(name) + u"=\"" + Escape(value, OQXmlEscapeAll) + u'"';
    const std::u16string_view tag = AttributesOf(m_element);
    OQXmlAttributes attributes(tag);
    bool found = false;
    bool valueMissing = false; // as in <a b=>
    while (!found && attributes.Next()) {
        found = SameName(attributes.GetName(), name);
        valueMissing = attributes.LacksValue();
    }
    size_t start = found ? attributes.GetStart() : tag.size();
    while (!found && OQIsXmlSpace(tag[start - 1]))
        --start;
    const size_t end = found ? attributes.GetEnd() : start;
    if (!found)
        attribute = (valueMissing ? u"\"\" " : u" ") + attribute;
    OQXmlElement& record = m_elements[m_element];
    const int tagLength = StartTagLength(m_element);
    const int distance = EditText(
        record.start + 1 + static_cast<int>(start), static_cast<int>(end - start), attribute);
    record.SetStartTagLength(tagLength + distance);
    record.length += distance;
    MoveBelow(m_element, distance);
    MoveBehind(m_element, distance);
    return true;
}

// Gives by how much the text behind it moved.
int OQXmlDocument::EditText(int offset, int removed, const OQString& inserted)
{
    const int length = m_text.GetLength();
    const int added = inserted.GetLength();
    const int64_t newLength = int64_t { length } - removed + added;
    if (newLength > INT_MAX / 2)
        throw std::bad_alloc();
    OQChar* text = m_text.GetBuffer(std::max(length, static_cast<int>(newLength)));
    std::memmove(text + offset + added, text + offset + removed,
        sizeof(OQChar) * static_cast<size_t>(length - offset - removed));
    std::memcpy(text + offset, inserted.GetText(), sizeof(OQChar) * static_cast<size_t>(added));
    m_text.ReleaseBuffer(static_cast<int>(newLength));
    m_elements[0].length = static_cast<int>(newLength);
    return added - removed;
}

// Moves all that stands behind the element, and makes the elements around it longer.
void OQXmlDocument::MoveBehind(int element, int distance)
{
    for (int around = element; around != 0; around = m_elements[around].parent) {
        if (around != element)
            m_elements[around].length += distance;
        for (int behind = m_elements[around].next; behind != 0; behind = m_elements[behind].next) {
            m_elements[behind].start += distance;
            MoveBelow(behind, distance);
        }
    }
}

void OQXmlDocument::MoveBelow(int element, int distance)
{
    for (int below = m_elements.NextBelow(element, element); below != 0;
         below = m_elements.NextBelow(below, element))
        m_elements[below].start += distance;
}
