#include "foundation/OQXmlDocument.h"

#include "foundation/StringPrinting.h"

#include <chrono>
#include <string>

namespace {

// The names of all nodes at the position, each with "," behind it.
OQString NodeNames(OQXmlDocument& document)
{
    OQString names;
    while (document.FindNode())
        names += document.GetNodeName() + u",";
    return names;
}

}

TEST_CASE("Nodes of every kind are told by name")
{
    OQXmlDocument document;
    document.SetDocument(
        u"<?xml version='1.0'?>\r\n<!DOCTYPE  html [<!ENTITY a 'b'>]><!-- <x> -->"
        u"<!ELEMENT skipped>text<r>a<![CDATA[<c>]]></none> <?go?><b>in</b>z</r><?>");
    CHECK(document.GetNodeName().IsEmpty());
    CHECK(NodeNames(document) == u"xml,#text,html,#comment,#text,r,,");
    document.ResetPos();
    REQUIRE(document.FindElem(u"r"));
    CHECK(document.GetNodeName() == u"r");
    REQUIRE(document.IntoElem());
    CHECK(NodeNames(document) == u"#text,#cdata-section,#text,go,b,#text,");
    for (const OQChar* nameless : { u"<!D>", u"<!DOCTYPE", u"<!DOCTYPE >", u"<?", u"<? ?>" }) {
        document.SetDocument(nameless);
        CHECK(document.FindNode());
        CHECK(document.GetNodeName().IsEmpty());
        CHECK_FALSE(document.FindNode());
    }
}

TEST_CASE("At a node that is no element there is no element, and searches go on behind it")
{
    OQXmlDocument document;
    REQUIRE(document.SetDocument(u"<r>1<a/>2<b/>3</r>"));
    document.FindElem();
    document.IntoElem();
    CHECK(document.FindNode());
    CHECK(document.FindElem());
    CHECK(document.GetTagName() == u"a");
    CHECK(document.FindNode());
    CHECK(document.GetNodeName() == u"#text");
    CHECK(document.GetTagName().IsEmpty());
    CHECK_FALSE(document.SetData(u"x"));
    CHECK_FALSE(document.IntoElem());
    CHECK_FALSE(document.FindElem(u"a"));
    CHECK(document.GetNodeName() == u"#text");
    CHECK(document.FindElem(u"b"));
    CHECK(document.FindNode());
    CHECK_FALSE(document.FindNode());
    CHECK(document.OutOfElem());
    CHECK(document.GetNodeName() == u"r");
    CHECK(document.IntoElem());
    CHECK(document.FindNode());
    CHECK(document.AddElem(u"c", u"4"));
    CHECK(document.GetNodeName() == u"c");
    CHECK(document.GetDoc() == u"<r>1<a/>2<b/>3<c>4</c>\r\n</r>");
}

TEST_CASE("Levels count from the root, also behind elements that aren't ended")
{
    const auto levels = [](OQXmlDocument& document) {
        document.ResetPos();
        OQString text;
        while (document.FindElem() || (document.OutOfElem() && document.FindElem())) {
            text += document.GetTagName() + static_cast<OQChar>(u'0' + document.GetLevel());
            document.IntoElem();
        }
        return text;
    };
    OQXmlDocument document;
    CHECK(document.GetLevel() == 0);
    document.SetDocument(u"<r><a><b><c><d/></a></r>");
    CHECK(levels(document) == u"r1a2b3c3d3");
    document.SetDocument(u"<r><a><b>");
    CHECK(levels(document) == u"r1a1b1");
    document.SetDocument(u"<r/>");
    document.FindElem();
    document.AddChildElem(u"a");
    document.IntoElem();
    document.AddChildElem(u"b");
    CHECK(levels(document) == u"r1a2b3");
}

TEST_CASE("A long end tag doesn't hold up each step from node to node")
{
    constexpr int count = 50000;
    std::u16string text = u"<r>";
    for (int i = 0; i < count; ++i)
        text += u"<!---->";
    text += u"</r" + std::u16string(2000, u' ') + u">";
    OQXmlDocument document;
    REQUIRE(document.SetDocument(text.c_str()));
    document.FindElem();
    document.IntoElem();
    const auto start = std::chrono::steady_clock::now();
    int found = 0;
    while (document.FindNode())
        ++found;
    CHECK(found == count);
    CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(20));
}
