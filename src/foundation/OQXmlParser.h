#pragma once

#include "foundation/OQString.h"
#include "foundation/OQXmlElementTable.h"
#include "foundation/OQXmlTokenizer.h"

#include <map>

// Fills an element table from a text. A fault ends nothing: the first one is told in words, and
// elements that aren't ended lose their content to the element around them. Takes time in
// proportion to the text, whatever it holds, and doesn't recurse.
class OQXmlParser
{
public:
    OQXmlParser(const OQString& text, bool ignoreCase, OQXmlElementTable& table);

    // The first fault, or an empty text.
    OQString Parse();

private:
    struct LessName
    {
        bool operator()(std::u16string_view a, std::u16string_view b) const;
        bool ignoreCase;
    };

    // By tag name: the place of the innermost open element of that name on the stack, or -1.
    using OpenNames = std::map<std::u16string_view, int, LessName>;

    struct OpenElement
    {
        int element;
        int outerSameName; // as in OpenNames
        OpenNames::iterator name;
    };

    void ReadStartTag(const OQXmlToken& token);
    void ReadEndTag(const OQXmlToken& token);
    int FindOpenElement(std::u16string_view tag) const;
    void CloseInner(int stackPlace, int newParent);
    void Report(const OQString& message);
    void ReportIncorrect(const OQXmlToken& token);
    void ReportNotEnded(int element);

    int CurrentElement() const { return m_open.IsEmpty() ? 0 : m_open.Last().element; }

    std::u16string_view m_text;
    OQXmlElementTable& m_table;
    OpenNames m_names;
    OQArray<OpenElement> m_open;
    OQString m_message;
};
