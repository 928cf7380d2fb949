#include "foundation/OQXmlDocument.h"

#include "foundation/OQNumberText.h"
#include "foundation/StringPrinting.h"

#include <chrono>

namespace {

OQString ErrorOf(const OQString& text, uint32_t flags = 0)
{
    OQXmlDocument document(flags);
    const bool clean = document.SetDocument(text);
    CHECK(clean == document.GetError().IsEmpty());
    return document.GetError();
}

OQString Repeat(const OQChar* piece, int count)
{
    OQString text;
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

// The text of the root, and of the element on the way to it.
OQString DataOf(const OQString& text, const OQChar* child = nullptr)
{
    OQXmlDocument document;
    document.SetDocument(text);
    document.FindElem();
    if (child) {
        document.IntoElem();
        CHECK(document.FindElem(child));
    }
    return document.GetData();
}

// Tags and texts of all elements below the position, each level in brackets.
OQString Outline(OQXmlDocument& document)
{
    OQString text;
    while (document.FindElem()) {
        text += document.GetTagName();
        const OQString data = document.GetData();
        document.IntoElem();
        const OQString below = Outline(document);
        document.OutOfElem();
        text += below.IsEmpty() ? u"'" + data + u"' " : u"(" + below + u")";
    }
    return text;
}

// The table of positions must be the one that reading the text anew gives. Moves the position.
void CheckPositions(OQXmlDocument& document)
{
    OQXmlDocument again;
    again.SetDocument(document.GetDoc());
    document.ResetPos();
    CHECK(Outline(document) == Outline(again));
}

}

TEST_CASE("The faults of a text are told in exact words, the first one only")
{
    CHECK(ErrorOf(u"<a/>") == u"");
    CHECK(ErrorOf(u"") == u"Empty document");
    CHECK(ErrorOf(u"<!-- x --> ") == u"No root element");
    CHECK(ErrorOf(u"<a/><b/>") == u"Root element has sibling");
    CHECK(ErrorOf(u"<a><b></a>") == u"Element 'b' at offset 3 not ended");
    CHECK(ErrorOf(u"<a><b>") == u"Element 'b' at offset 3 not ended");
    CHECK(ErrorOf(u"</x>") == u"No start tag for end tag 'x' at offset 0");
    CHECK(ErrorOf(u"<a></b></c></a>") == u"No start tag for end tag 'b' at offset 3");
    CHECK(ErrorOf(u"<A></a>") == u"No start tag for end tag 'a' at offset 3");
    CHECK(ErrorOf(u"<A></a>", OQXmlIgnoreCase) == u"");

    CHECK(ErrorOf(u"<a><!-- </a>") == u"Comment at offset 3 unterminated");
    CHECK(ErrorOf(u"<!-->") == u"Comment at offset 0 unterminated");
    CHECK(ErrorOf(u"<a><![CDATA[]]</a>") == u"CDATA Section at offset 3 unterminated");
    CHECK(ErrorOf(u"<!DOCTYPE a [<!ENTITY b>") == u"Doctype at offset 0 unterminated");
    CHECK(ErrorOf(u"<?xml >") == u"Processing instruction at offset 0 unterminated");
    CHECK(ErrorOf(u"<a></a") == u"Element end tag at offset 3 unterminated");
    CHECK(ErrorOf(u" <a b='>") == u"Element tag at offset 1 unterminated");

    CHECK(ErrorOf(u"<a>1 < 2 > 0</a>") == u"Incorrect tag name character at offset 5");
    CHECK(ErrorOf(u"<a/><!E") == u"Incorrect ! tag at offset 4");
    CHECK(ErrorOf(u"<!X><a/>") == u"Incorrect ! tag at offset 0");
    CHECK(ErrorOf(u"<!-x--><a/>") == u"Incorrect comment tag at offset 0");
    CHECK(ErrorOf(u"<![X]]><a/>") == u"Incorrect tag at offset 0");
}

TEST_CASE("What a well-formed document may hold is no fault")
{
    CHECK(ErrorOf(u"<?xml version=\"1.0\"?><!DOCTYPE a [<!ENTITY b \"c\">]>\r\n<!ELEMENT x>"
                  u"<a:b c='>' d=\"'\"\r\n>x<!-- <c> --><![CDATA[<d>]]></a:b >")
        == u"");
    CHECK(ErrorOf(u"<_x/>") == u"");
    CHECK(ErrorOf(u"<\u00e9/>") == u"");
    CHECK(ErrorOf(u"<a b=it's></a>") == u""); // a quote opens a value only behind "="
    CHECK(ErrorOf(u"<a=b></a=b>") == u"");
    CHECK(ErrorOf(u"<a></a/>") == u""); // the name ends there
}

TEST_CASE("Elements that aren't ended lose their content to the element around them")
{
    OQXmlDocument document;
    document.SetDocument(u"<a>x<b>y<c/><d>z<e/></a>");
    CHECK(document.HasFault());
    CHECK(Outline(document) == u"a(b'' c'' d'' e'' )");
    CHECK(DataOf(u"<a>x<b>y</a>") == u"xy");
    document.SetDocument(u"<a/><b/>");
    CHECK(document.FindElem(u"a"));
    document.SetDocument(u"<r><p><q></x></p><s>t</s></r>");
    CHECK(Outline(document) == u"r(p(q'' )s't' )");
}

TEST_CASE("Positions: searches go on from where they are and stay there when they fail")
{
    OQXmlDocument document;
    REQUIRE(document.SetDocument(u"<r><a/><b><c/><c/></b><a/></r>"));
    CHECK_FALSE(document.IntoElem());
    CHECK_FALSE(document.OutOfElem());
    CHECK(document.GetTagName().IsEmpty());
    CHECK_FALSE(document.FindElem(u"a")); // the top level has only r
    CHECK(document.FindElem(u"r"));
    CHECK(document.IntoElem());
    CHECK_FALSE(document.FindElem(u"x"));
    CHECK(document.FindElem(u"b"));
    CHECK_FALSE(document.FindElem(u"b"));
    CHECK(document.GetTagName() == u"b");
    CHECK(document.FindChildElem(u"c"));
    CHECK(document.FindChildElem(u"c"));
    CHECK_FALSE(document.FindChildElem(u"c"));
    document.ResetChildPos();
    CHECK(document.FindChildElem());
    CHECK(document.IntoElem());
    CHECK(document.GetTagName() == u"c");
    CHECK(document.OutOfElem());
    CHECK(document.GetTagName() == u"b");
    CHECK(document.FindElem(u"a")); // the second one
    CHECK_FALSE(document.FindElem());
    CHECK(document.OutOfElem());
    CHECK(document.GetTagName() == u"r");
    document.ResetPos();
    CHECK(document.FindElem());
    CHECK(document.GetTagName() == u"r");
}

TEST_CASE("The text of an element: entities, CDATA, white space and what stands between children")
{
    CHECK(DataOf(u"<a> on=1 </a>") == u" on=1 ");
    CHECK(DataOf(u"<a>\r\n</a>") == u"\r\n");
    CHECK(DataOf(u"<a>t&lt;1&amp;&amp;u&gt;0</a>") == u"t<1&&u>0");
    CHECK(DataOf(u"<a>1<![CDATA[<2>&lt;]]>3<!-- no -->4<?no?></a>") == u"1<2>&lt;34");
    CHECK(DataOf(u"<a>\r\n<b>no</b>\r\nx<c/> y</a>") == u"\r\nx y");
    CHECK(DataOf(u"<a><b/>\r\n<b>no</b></a>").IsEmpty());
    CHECK(DataOf(u"<a><b>yes</b></a>", u"b") == u"yes");
    CHECK(DataOf(u"<a><b/></a>", u"b").IsEmpty());
    CHECK(DataOf(u"<a>x<![CDATA]]></a>") == u"x");
}

TEST_CASE("Attributes in every form")
{
    OQXmlDocument document;
    REQUIRE(document.SetDocument(
        u"<a one=\"1\" two='&lt;&quot;' three=3 four = \"4>\" five six=\"\" Version=7/>"));
    document.FindElem();
    CHECK(document.GetAttrib(u"one") == u"1");
    CHECK(document.GetAttrib(u"two") == u"<\"");
    CHECK(document.GetAttrib(u"three") == u"3");
    CHECK(document.GetAttrib(u"four") == u"4>");
    CHECK(document.GetAttrib(u"five").IsEmpty());
    CHECK(document.GetAttrib(u"six").IsEmpty());
    CHECK(document.GetAttrib(u"Version") == u"7"); // the slash ends the tag
    CHECK(document.GetAttrib(u"version").IsEmpty());
    CHECK(document.GetAttrib(u"a").IsEmpty());
    CHECK(document.GetAttrib(nullptr).IsEmpty());

    document.SetDocumentFlags(OQXmlIgnoreCase);
    CHECK(document.GetAttrib(u"version") == u"7");
    document.SetDocument(u"<a b= c='x'/>");
    document.FindElem();
    CHECK(document.GetAttrib(u"b") == u"c='x'");
}

TEST_CASE("A new attribute isn't taken for the value that the last one lacks")
{
    OQXmlDocument document;
    for (const OQChar* text : { u"<a b=/>", u"<a b = >x</a>", u"<a b==/>", u"<a b=''/>" }) {
        CAPTURE(text);
        document.SetDocument(text);
        document.FindElem();
        const OQString before = document.GetAttrib(u"b");
        CHECK(document.SetAttrib(u"c", u"y"));
        CHECK(document.GetAttrib(u"c") == u"y");
        CHECK(document.GetAttrib(u"b") == before);
    }
    CHECK(document.GetDoc() == u"<a b='' c=\"y\"/>");
}

TEST_CASE("A document is written with every element on a line of its own")
{
    OQXmlDocument document;
    CHECK(document.AddElem(u"PXV"));
    CHECK(document.SetAttrib(u"Version", u"1.0"));
    CHECK(document.GetDoc() == u"<PXV Version=\"1.0\"/>\r\n");
    CHECK(document.AddChildElem(u"Layer"));
    CHECK(document.IntoElem());
    CHECK(document.AddChildElem(u"On", u"t<1"));
    CHECK(document.AddChildElem(u"Off"));
    CHECK(document.IntoElem());
    CHECK(document.GetTagName() == u"Off");
    CHECK(document.SetData(u""));
    CHECK(document.AddElem(u"Last", u"a\"b", OQXmlEscapeQuotes));
    CHECK(document.GetDoc()
        == u"<PXV Version=\"1.0\">\r\n<Layer>\r\n<On>t&lt;1</On>\r\n<Off/>\r\n"
           u"<Last>a&quot;b</Last>\r\n</Layer>\r\n</PXV>\r\n");
    CheckPositions(document);
}

TEST_CASE("Flags choose the form of what is written")
{
    const auto write = [](uint32_t flags, const OQChar* text) {
        OQXmlDocument document(OQXmlNoLineEnds);
        document.AddElem(u"a", text, flags);
        return document.GetDoc();
    };
    CHECK(write(0, nullptr) == u"<a/>");
    CHECK(write(OQXmlBlankBeforeSlash, u"") == u"<a />");
    CHECK(write(OQXmlStartTagOnly, u"") == u"<a>");
    CHECK(write(0, u"\"'\x02\t") == u"<a>\"'?\t</a>");
    CHECK(write(OQXmlCData, u"<x>") == u"<a><![CDATA[<x>]]></a>");

    OQXmlDocument document(OQXmlNoLineEnds);
    document.AddElem(u"a");
    document.AddElem(u"b", u"", OQXmlChild | OQXmlBlankBeforeSlash);
    document.IntoElem();
    document.SetData(u"x]]>y", OQXmlCData);
    CHECK(document.GetDoc() == u"<a><b><![CDATA[x]]]]><![CDATA[>y]]></b></a>");
    CHECK(DataOf(document.GetDoc(), u"b") == u"x]]>y");
}

TEST_CASE("Edits anywhere leave the table as reading the text anew would make it")
{
    OQXmlDocument document;
    REQUIRE(document.SetDocument(u"<r><a x='1' y/>\r\n<b><c>1</c><d/></b><e>5</e></r>"));
    document.FindElem();
    document.IntoElem();
    document.FindElem(u"a");
    CHECK(document.SetAttrib(u"x", u"it's \"2\""));
    CHECK(document.SetAttrib(u"y", u"<"));
    CHECK(document.SetAttrib(u"z", nullptr));
    CHECK(document.GetAttrib(u"x") == u"it's \"2\"");
    CHECK(document.GetAttrib(u"y") == u"<");
    CHECK(document.AddElem(u"a2", u"new"));
    CheckPositions(document);

    document.ResetPos();
    document.FindElem();
    document.IntoElem();
    document.FindElem(u"b");
    CHECK(document.SetAttrib(u"k", u"v"));
    document.FindChildElem(u"c");
    CHECK(document.AddChildElem(u"c2"));
    document.IntoElem();
    CHECK(document.SetData(u"grown"));
    CHECK(document.AddChildElem(u"deep", u"er"));
    CheckPositions(document);
    CHECK(document.GetDoc()
        == u"<r><a x=\"it&apos;s &quot;2&quot;\" y=\"&lt;\" z=\"\"/>\r\n<a2>new</a2>\r\n"
           u"<b k=\"v\"><c>1</c><c2>grown<deep>er</deep>\r\n</c2>\r\n<d/></b><e>5</e></r>");

    document.ResetPos();
    document.FindElem();
    document.IntoElem();
    document.FindElem(u"b");
    CHECK(document.SetData(u"flat"));
    CHECK_FALSE(document.FindChildElem());
    CHECK(document.GetDoc().Find(u"<b k=\"v\">flat</b><e>") > 0);
    CHECK(document.SetData(nullptr));
    CheckPositions(document);
    CHECK(document.GetDoc().Find(u"<b k=\"v\"/><e>") > 0);
}

TEST_CASE("An unended or self-closed element gets an end tag with its first content")
{
    OQXmlDocument document;
    document.SetDocument(u"<r><p ><q  /></r>");
    document.FindElem();
    document.IntoElem();
    document.FindElem(u"q");
    CHECK(document.SetData(u"2"));
    document.OutOfElem();
    document.ResetChildPos();
    document.IntoElem();
    document.FindElem(u"p");
    CHECK(document.AddChildElem(u"n"));
    CHECK(document.GetDoc() == u"<r><p>\r\n<n/>\r\n</p><q>2</q></r>");
    CheckPositions(document);
    for (const OQChar* text : { u"<a //>", u"<a b=x/ / />", u"<a///>" }) {
        document.SetDocument(text);
        CAPTURE(text);
        CHECK(document.FindElem());
        const OQString before = document.GetAttrib(u"b");
        CHECK(document.SetData(u"text"));
        CheckPositions(document);
        document.ResetPos();
        CHECK(document.FindElem());
        CHECK(document.GetAttrib(u"b") == before);
    }
}

TEST_CASE("Names that would be read as something else are refused")
{
    OQXmlDocument document;
    for (const OQChar* name : { u"", u"1", u"a b", u"a>", u"a/", u"a=\"", u"<" })
        CHECK_FALSE(document.AddElem(name));
    CHECK_FALSE(document.AddElem(nullptr));
    CHECK_FALSE(document.AddChildElem(u"a"));
    CHECK_FALSE(document.SetData(u"x"));
    CHECK_FALSE(document.SetAttrib(u"a", u"x"));
    document.AddElem(u"a");
    for (const OQChar* name : { u"", u"a b", u"a=", u"a\"", u"a\\b" })
        CHECK_FALSE(document.SetAttrib(name, u"x"));
    CHECK(document.GetDoc() == u"<a/>\r\n");
}

TEST_CASE("Escaping by flags, and unescaping of what is a reference")
{
    CHECK(OQXmlDocument::Escape(u"<&>", 0) == u"&lt;&amp;&gt;");
    CHECK(OQXmlDocument::Escape(u"'\"\x1f", OQXmlEscapeText) == u"'\"?");
    CHECK(OQXmlDocument::Escape(u"'\"\x01\x1f", OQXmlEscapeAll) == u"&apos;&quot;&#x1;?");
    CHECK(OQXmlDocument::Escape(u"'\"\x1f\r\n", OQXmlEscapeFilename) == u"'&quot;&#x1F;\r\n");
    CHECK(OQXmlDocument::Escape(u"\x1f", 0) == u"\x1f");

    CHECK(OQXmlDocument::Unescape(u"&#65;&#x42;&#x1F3B5;") == u"AB\U0001F3B5");
    for (const OQChar* kept : { u"&#0;", u"&bogus;", u"&", u"&#", u"&#;", u"&#x;", u"&lt", u"&LT;",
             u"&#65", u"&#6a;", u"&#x110000;", u"&#00000065;", u"&#-5;" })
        CHECK(OQXmlDocument::Unescape(kept) == kept);
    CHECK(OQXmlDocument::Unescape(u"&amp;lt;&apos;&quot;") == u"&lt;'\"");
    const OQString text = u"a<b>&amp;\"'\x01";
    CHECK(OQXmlDocument::Unescape(OQXmlDocument::Escape(text, OQXmlEscapeAll)) == text);
}

TEST_CASE("Tags longer than the table's fields are measured anew")
{
    const OQString blanks = Repeat(u" ", 2000);
    OQXmlDocument document;
    REQUIRE(document.SetDocument(u"<a><b/>x<!-- y --></a" + blanks + u">"));
    document.FindElem();
    CHECK(document.GetData() == u"x");
    CHECK(document.AddChildElem(u"c", u"1"));
    CheckPositions(document);
    CHECK(document.GetDoc().Find(u"--><c>1</c>\r\n</a  ") > 0);

    OQString tag = u"<a x='" + Repeat(u"0123456789abcdef", 0x40000) + u"'>y</a>";
    REQUIRE(document.SetDocument(tag));
    document.FindElem();
    CHECK(document.GetData() == u"y");
    CHECK(document.SetAttrib(u"x", u"short"));
    CHECK(document.GetDoc() == u"<a x=\"short\">y</a>");
}

TEST_CASE("Hostile texts take time and memory in proportion to their length")
{
    const auto start = std::chrono::steady_clock::now();
    CHECK(ErrorOf(Repeat(u"<a>", 300000)).StartsWith(u"Element 'a'"));
    CHECK(ErrorOf(Repeat(u"<a>", 200000) + Repeat(u"</b>", 200000)).StartsWith(u"No start tag"));
    CHECK(ErrorOf(Repeat(u"<a><b></a>", 100000)).StartsWith(u"Element 'b'"));
    CHECK(ErrorOf(u"<a" + Repeat(u"=", 500000) + u"></a" + Repeat(u"=", 500000) + u">") == u"");
    CHECK(ErrorOf(u"<a" + Repeat(u" b=1", 500000) + u"/>") == u"");
    CHECK(ErrorOf(Repeat(u"<a></b>", 200000) + Repeat(u"</a>", 200000)).StartsWith(u"No start"));
    CHECK(OQXmlDocument::Unescape(Repeat(u"&", 500000)).GetLength() == 500000);
    CHECK(OQXmlDocument::Unescape(Repeat(u"&#x", 300000)).GetLength() == 900000);

    OQXmlDocument document;
    document.SetDocument(Repeat(u"<a>", 200000) + Repeat(u"</a>", 200000));
    int depth = 0;
    while (document.FindElem()) {
        document.IntoElem();
        ++depth;
    }
    CHECK(depth == 200000);
    // Generous: with anything quadratic this would be hours.
    CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(60));
}

TEST_CASE("A document of thousands of elements is written in a moment")
{
    const auto start = std::chrono::steady_clock::now();
    OQXmlDocument document;
    document.AddElem(u"PXV");
    document.IntoElem();
    for (int i = 0; i < 4096; ++i) {
        document.AddElem(u"Component");
        document.SetAttrib(u"Name", OQIntToText(i).GetText());
        document.AddChildElem(u"Properties");
        document.IntoElem();
        for (int row = 0; row < 5; ++row) {
            document.AddChildElem(u"Row");
            document.IntoElem();
            document.SetData(u"t<1");
            document.OutOfElem();
        }
        document.OutOfElem();
    }
    CHECK(ErrorOf(document.GetDoc()) == u"");
    CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(30));
}
