#pragma once

#include "foundation/OQString.h"
#include "foundation/OQXmlElementTable.h"

enum OQXmlFlags : uint32_t
{
    OQXmlCData = 1, // of an operation: the text is written as a CDATA section
    OQXmlNoLineEnds = 2, // no CR LF behind what is written
    OQXmlBlankBeforeSlash = 4, // an element without text ends in " />", not "/>"
    OQXmlIgnoreCase = 8, // of names, when reading; set before the document is
    OQXmlStartTagOnly = 16, // an element without text is a start tag
    OQXmlEscapeQuotes = 0x100, // of an operation: quotes in the text are escaped, too
    OQXmlChild = 0x4000, // of AddElem: as AddChildElem
};

enum OQXmlEscapeFlags : uint32_t
{
    OQXmlEscapeApostrophe = 4,
    OQXmlEscapeQuote = 8,
    OQXmlEscapeControls = 16, // control characters other than tab, LF and CR
    OQXmlReplaceControls = 32, // with OQXmlEscapeControls: by "?", but for the value 1
    OQXmlEscapeText = 50,
    OQXmlEscapeFilename = 26,
    OQXmlEscapeAll = 62, // attributes
};

// An XML document as its text with a table of where the elements stand: reading gives pieces of the
// text, writing edits it. Faults of a text don't stop the reading; GetError tells the first.
//
// There is a current position: an element, the parent in which FindElem looks, and a child in the
// element. After FindNode there may be a text, comment or the like in the element's place; all that
// works on the current element then finds none. After a failure the position stays where it was.
// One thread at a time; memory that can't be had throws std::bad_alloc.
class OQXmlDocument
{
public:
    explicit OQXmlDocument(uint32_t flags = 0)
        : m_flags(flags)
    {
    }

    OQXmlDocument(const OQXmlDocument&) = delete;
    OQXmlDocument& operator=(const OQXmlDocument&) = delete;

    // True if the text has one root and no fault. The position is reset.
    bool SetDocument(const OQString& text);

    const OQString& GetDoc() const { return m_text; }

    const OQString& GetError() const { return m_error; }

    // Of the current element, or of the document if there is none: a fault in the content.
    bool HasFault() const;

    // Flags 2, 4, 8 and 16; those of an operation are added to them.
    void SetDocumentFlags(uint32_t flags) { m_flags = flags; }

    // Moves to the next element of that name among the siblings, from the first if there is no
    // current one; null: of any name.
    bool FindElem(const OQChar* name = nullptr);
    // Moves to the next node of the parent, be it an element, a text, white space, a CDATA section,
    // a comment, a processing instruction or a doctype.
    bool FindNode();
    // The same as FindElem for the child.
    bool FindChildElem(const OQChar* name = nullptr);

    // The current element becomes the parent, its current child the element.
    bool IntoElem();
    // The parent becomes the current element, and the element its child.
    bool OutOfElem();

    // In front of the top level.
    void ResetPos();

    // The next FindChildElem starts at the first child.
    void ResetChildPos() { m_child = 0; }

    // Where the current element, and what is in it, begin in GetDoc(), and the element's length.
    // Without one 0, and the document's length.
    int GetOffset() const { return m_elements[m_element].start; }

    int GetLength() const { return m_elements[m_element].length; }

    int GetContentOffset() const { return m_element != 0 ? ContentStart(m_element) : 0; }

    // Of the current element; empty without one.
    OQString GetTagName() const;
    // Of the current node: "#text", also for white space, "#cdata-section", "#comment", what a
    // processing instruction is for, the root that a doctype names, or the name of an element.
    // Empty without one.
    OQString GetNodeName() const;

    // Elements from the root to the current one, both counted, 65535 at most; 0 without one.
    int GetLevel() const { return static_cast<int>(m_elements[m_element].Level()); }

    // The text directly in the element, CDATA sections included, with entities decoded. White space
    // alone counts as text only in an element without children.
    OQString GetData() const;

    OQString GetElemContent() const { return GetData(); }

    // Empty without such an attribute.
    OQString GetAttrib(const OQChar* name) const;

    // Writes an element behind the current one, at the end of the parent if there is none, and
    // makes it the current one. False for a name that can't be one.
    bool AddElem(const OQChar* name, const OQChar* text = nullptr, uint32_t flags = 0);
    // Behind the current child; it becomes the current child. False without a current element.
    bool AddChildElem(const OQChar* name, const OQChar* text = nullptr, uint32_t flags = 0);

    // False without a current element, or for a name that can't be one.
    bool SetAttrib(const OQChar* name, const OQChar* value);
    // Replaces all content of the element, its children included. False without one.
    bool SetData(const OQChar* text, uint32_t flags = 0);

    static OQString Escape(const OQString& text, uint32_t escapeFlags);
    // What isn't a known entity or number stays as it stands.
    static OQString Unescape(const OQString& text);

private:
    bool SameName(std::u16string_view a, std::u16string_view b) const;
    int NextNamed(int parent, int after, const OQChar* name) const;
    std::u16string_view NameOf(int element) const;
    std::u16string_view AttributesOf(int element) const;

    int StartTagLength(int element) const;
    int EndTagLength(int element) const;

    int ContentStart(int element) const
    {
        return m_elements[element].start + StartTagLength(element);
    }

    int ContentEnd(int element) const { return m_elements[element].End() - EndTagLength(element); }

    bool IsSelfClosed(int element) const;

    void MoveTo(int element);

    int Insert(int parent, int before, const OQChar* name, const OQChar* text, uint32_t flags);
    void MakeRoomForChildren(int parent, uint32_t flags);
    void GiveEndTag(int element, const OQString& content);
    void RemoveContent(int element, uint32_t flags);
    int EditText(int offset, int removed, const OQString& inserted);
    void MoveBehind(int element, int distance);
    void MoveBelow(int element, int distance);

    OQString m_text;
    OQString m_error;
    OQXmlElementTable m_elements;
    uint32_t m_flags = 0;
    int m_parent = 0;
    int m_element = 0;
    int m_child = 0;
    // A node that isn't an element: its place in the text, and the element in front of it.
    int m_nodeStart = 0;
    int m_nodeEnd = 0; // 0: there is none
    int m_nodePrevious = 0;
};
