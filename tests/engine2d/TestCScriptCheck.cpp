#include "engine2d/CGradientEx.h"
#include "engine2d/CScriptCheck.h"
#include "engine2d/VisLimits.h"

#include <doctest/doctest.h>

namespace {

constexpr const char* transform
    = "<Component GUID=\"EB13A0B7-0B36-4bea-B95A-92ED8FEA86CD\" Name=\"Transform\">";
constexpr const char* spectrum
    = "<Component GUID=\"B21F9002-EF2E-4d5b-9D40-F61B8F3B34D8\" Name=\"Spectrum Analyzer\">";
constexpr const char* flush = "<Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\"/>";

std::vector<CScriptFinding> CheckText(const std::string& text)
{
    return CScriptCheck().Check(OQString::FromUtf8(text));
}

std::vector<CScriptFinding> CheckBody(const std::string& body)
{
    return CheckText("<PXV Version=\"1.0\">" + body + "</PXV>");
}

// The one finding about a row of a Spectrum Analyzer or, with `component`, of another one.
CScriptFinding CheckRow(
    const std::string& row, const std::string& text, const char* component = spectrum)
{
    const auto findings = CheckBody(std::string(component) + "<Properties><" + row + ">" + text
        + "</" + row + "></Properties></Component>" + flush);
    if (findings.empty())
        return {};
    INFO(findings[0].message.ToUtf8());
    CHECK(findings.size() == 1);
    CHECK(findings[0].row.ToUtf8() == row);
    return findings[0];
}

bool IsGood(const std::string& row, const std::string& text, const char* component = spectrum)
{
    return CheckRow(row, text, component).message.IsEmpty();
}

bool Tells(const CScriptFinding& finding, const OQChar* part)
{
    INFO(finding.message.ToUtf8());
    return finding.message.Find(part) >= 0;
}

}

TEST_CASE("A script that loads as it is meant has no findings")
{
    CHECK(CheckBody(flush).empty());
    CHECK(CheckBody("<!-- words --><Layer><Properties><OnEquation>Beat On</OnEquation>"
                    "<OutputMode>Add</OutputMode><ClearEachFrame>1</ClearEachFrame>"
                    "<Rectangle>0;0;.5;1</Rectangle>"
                    "<TransparentColor>0xFFFFFFFF</TransparentColor></Properties>"
        + std::string(spectrum)
        + "<Properties><Gradient>Yellow Metal</Gradient>"
          "<PeakGravity>300</PeakGravity></Properties></Component></Layer>")
              .empty());
}

TEST_CASE("A finding stands at the line and column of the file, and at the character of the row")
{
    const auto findings = CheckText("<PXV Version=\"1.0\">\r\n" + std::string(flush) + "\r\n"
        + transform + "<Properties>\r\n  <ColorEquation>r=1;g=1&lt;2;\r\n</ColorEquation>\r\n"
        + "</Properties></Component></PXV>");
    REQUIRE(findings.size() == 1);
    CHECK(findings[0].line == 4);
    CHECK(findings[0].column == 18);
    CHECK(findings[0].component == u"Transform");
    CHECK(findings[0].row == u"ColorEquation");
    CHECK(findings[0].position == 11); // of the decoded text
    CHECK(Tells(
        CheckText("<PXV Version=\"1.0\">\n<Layer>\n</PXV>").at(0), u"\"Layer\" is never closed"));
    CHECK(CheckText("<PXV Version=\"1.0\">\n<Layer>\n</PXV>").at(0).line == 2);
}

TEST_CASE("A file that was cut off is told as that alone, wherever the cut is")
{
    const std::string whole = std::string("<PXV Version=\"1.0\">\n") + flush + "\n" + transform
        + "<Properties><Name>a</Name></Properties></Component></PXV>";
    for (size_t length = 1; length < whole.size(); ++length) {
        CAPTURE(whole.substr(0, length));
        const auto findings = CheckText(whole.substr(0, length));
        CHECK(findings.size() == 1);
        CHECK(Tells(findings.at(0), u"cut off"));
    }
    CHECK(Tells(CheckText("no script").at(0), u"no script"));
}

TEST_CASE("Equations that do not compile are told with the reason, empty ones are none")
{
    CHECK(Tells(CheckRow("ScrollEquation", "x=1;\r\n", transform), u"after the last \";\""));
    CHECK(IsGood("ScrollEquation", "", transform));
    CHECK(Tells(CheckRow("OnEquation", "on=1;\n"), u"isn't drawn"));
    CHECK(Tells(CheckRow("OnEquation", ""), u"isn't drawn"));
    CHECK(Tells(CheckRow("OnEquation", "x=beat"), u"isn't drawn"));
    CHECK(Tells(CheckRow("OnEquation", "beat on"), u"\"Beat On\""));
}

TEST_CASE(
    "Of equations in one row the first fault is told with its number and its place in the row")
{
    constexpr const char* scope = "<Component GUID=\"D6CC94F2-998C-40ee-A29E-D9CBED46A145\">";
    CHECK(IsGood("ScopeEquation", "n=9 | |t=t+1|| ", scope));
    CHECK(IsGood("ScopeEquation", "Satellite Dish", scope));
    CHECK(IsGood("ScopeEquation", "|||| | |", scope));
    const CScriptFinding stage = CheckRow("ScopeEquation", "n=9;|x=i;y=(v|t=", scope);
    CHECK(Tells(stage, u"in equation 2 of 3 "));
    CHECK(stage.position == 12); // the parenthesis that is never closed
    CHECK(Tells(CheckRow("ScopeEquation", "n=9;|x=i; |t=1", scope), u"after the last \";\""));
    const CScriptFinding surplus = CheckRow("ScopeEquation", "n=1|||||t=(", scope);
    CHECK(Tells(surplus, u"only the first 5 equations"));
    CHECK(surplus.position == 8); // its "|"
    CHECK_FALSE(Tells(CheckRow("ScopeEquation", "n=", scope), u"equation 1")); // there is only one

    constexpr const char* feedback = "<Component GUID=\"DCE4B5AB-25A0-432f-B4A2-8E91B9FD1060\">";
    CHECK(IsGood("TransformEquation", "", feedback));
    CHECK(IsGood("TransformEquation", "(none)", feedback));
    CHECK(IsGood("TransformEquation", "d=d*.9||\r\n|r=r+1||||d=1", feedback));
    const CScriptFinding third = CheckRow("TransformEquation", "d=1||d=", feedback);
    CHECK(Tells(third, u"in equation 3 of 3 "));
    CHECK(third.position == 8);
}

TEST_CASE("Values that count as something else are told")
{
    CHECK(IsGood("PeakGravity", " +12 "));
    CHECK(Tells(CheckRow("PeakGravity", "1.5"), u"counts as 1"));
    CHECK(Tells(CheckRow("PeakGravity", ""), u"counts as 0"));
    CHECK(Tells(CheckRow("PeakGravity", "3000000000"), u"2147483647"));
    CHECK(Tells(CheckRow("Mirrored", "2"), u"0 (No) 1 (Yes)"));
    CHECK(IsGood("BarWidth", "-.5e-1"));
    CHECK(Tells(CheckRow("BarWidth", "0,5"), u"decimal point"));
    CHECK(Tells(CheckRow("BarWidth", "1e99"), u"out of range"));
    CHECK(IsGood("MainRectangle", "0,0,1,.5"));
    CHECK(Tells(CheckRow("MainRectangle", "0,0,1"), u"4 numbers"));
    CHECK(Tells(CheckRow("MainRectangle", "0;0;a;1"), u"\"a\""));
    CHECK(Tells(CheckRow("CenterPoint", "0;0", transform), u"2 numbers"));
    CHECK(IsGood("PeakColor", "ff8000"));
    CHECK(Tells(CheckRow("PeakColor", "#ff8000"), u"0x000000"));
    CHECK(Tells(CheckRow("PeakColor", "0Xff"), u"0x000000"));
}

TEST_CASE("A gradient is told by its first fault, and the check agrees with the reading")
{
    const std::pair<const char*, const OQChar*> texts[] = {
        { "red", u"size" },
        { "{0, 1} [[0xFF0000]]", u"size" },
        { "{300, 300} [[0xFF0000]]", u"at most 65536" },
        { "{2, 1} [[0xFF0000]]", u"ends" },
        { "{2, 2} [[0xFF0000,0]]", u"ends" },
        { "{2, 1} [[0xFF0000, 0x00FF00]]", u"blank" },
        { "{2, 1} [[0xFF0000,green]]", u"0xRRGGBB" },
        { "{1, 1} [[0xFF0000,0x00FF00]]", u"more colours" },
        { "{1, 1} [[0xFF0000][0x00FF00]]", u"more colours" },
    };
    CGradientEx standard;
    standard.SetDefault();
    for (const auto& [text, reason] : texts) {
        const CScriptFinding finding = CheckRow("Gradient", text);
        CHECK(Tells(finding, reason));
        CGradientEx gradient;
        gradient.SetText(OQString::FromUtf8(text));
        CHECK((gradient.GetText() == standard.GetText()) == Tells(finding, u"default"));
    }
    CHECK(IsGood("Gradient", "{2, 1} [[0xFF0000,0x0000ff]]"));
}

TEST_CASE("Hidden and unknown elements are told")
{
    const auto one = [](const std::string& body) {
        const auto findings = CheckBody(body + flush);
        CHECK(findings.size() == 1);
        return findings.empty() ? CScriptFinding() : findings[0];
    };
    CHECK(Tells(one(std::string("<Layer>") + flush + "<Properties/></Layer>"), u"in front of"));
    CHECK(Tells(one(std::string("<Group><Layer>") + flush + "</Layer></Group>"), u"2 layers"));
    CHECK(Tells(one("<layer/>"), u"case counts"));
    CHECK(Tells(one("<Layer><Properties/><Properties/></Layer>"), u"second"));
    CHECK(Tells(one("<Properties/>"), u"no rows"));
    CHECK(Tells(one("<Component Name=\"Flush\"/>"), u"36267E6D-70E1-435e-9E2A-428EEA2D3C7E"));
    CHECK(Tells(one("<Component GUID=\"eb13a0b7-0b36-4bea-b95a-92ed8fea86cd\"/>"), u"case counts"));
    CHECK(Tells(one(std::string(transform) + flush + "</Component>"), u"skipped"));
    CHECK(Tells(one("<Layer><Properties><Colour/></Properties></Layer>"), u"no row"));
    CHECK(Tells(one("<Layer><Properties><OutputMode>1</OutputMode><OutputMode>2</OutputMode>"
                    "</Properties></Layer>"),
        u"last one"));
    CHECK(Tells(
        one("<Layer><Properties><Rectangle>0;1;1;1</Rectangle></Properties></Layer>"), u"no area"));
    CHECK(Tells(one("<Component GUID=\"36267E6D-70E1-435e-9E2A-428EEA2D3C7E\"><Properties>"
                    "<Rectangle>1;0;0;1</Rectangle></Properties></Component>"),
        u"no area"));
    CHECK(Tells(CheckText("<pxv Version=\"1.0\"/>").at(0), u"\"PXV\""));
    CHECK(Tells(CheckText("<PXV Version=\"2.0\"/>").at(0), u"\"2.0\""));
    CHECK(Tells(CheckText("").at(0), u"is empty"));
    CHECK(Tells(CheckBody("").at(0), u"draws nothing"));
    CHECK(Tells(CheckBody(std::string(transform) + "</Component>").at(0), u"no component paints"));
}

TEST_CASE("What is past a limit is told once, with the limit")
{
    const auto repeat = [](int count, const std::string& text) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    };
    const auto nested = [&](int depth) {
        // Ever smaller ones, so that they fit the memory.
        const std::string layer
            = "<Layer><Properties><Rectangle>0;0;.9;.9</Rectangle></Properties>";
        return CheckBody(repeat(depth, layer) + flush + repeat(depth, "</Layer>"));
    };
    CHECK(nested(VisLimits::layerNesting - 1).empty());
    CHECK(Tells(nested(VisLimits::layerNesting).at(0), u"no component"));
    CHECK(Tells(nested(VisLimits::layerNesting).at(1), u"64 nested layers"));
    CHECK(CheckBody(repeat(VisLimits::piecesPerScript, flush)).empty());
    const auto findings = CheckBody(repeat(VisLimits::piecesPerScript + 9, flush));
    REQUIRE(findings.size() == 1);
    CHECK(Tells(findings[0], u"4096"));

    const auto large = CheckBody("<Layer><Properties><Rectangle>0;0;9;9</Rectangle></Properties>"
        + std::string(transform) + "</Component><Layer/></Layer>" + flush);
    REQUIRE(large.size() == 1); // two images of 168 million pixels
    CHECK(Tells(large[0], u"134217728 pixels"));
    CHECK(large[0].component == u"Layer");

    // Pictures count by what is seen of them, so that a small one takes little.
    const auto picture = [&](int count, const char* rectangle, int entries) {
        return CheckBody(repeat(count,
            std::string("<Component GUID=\"63B96C06-29A4-4de2-9A9D-9F3E08F8C014\">"
                        "<Properties><MainRectangle>")
                + rectangle + "</MainRectangle><ImageFile>" + repeat(entries - 1, "a|")
                + "</ImageFile></Properties></Component>"));
    };
    CHECK(picture(500, "0;0;.2;.2", 1).empty());
    CHECK(picture(63, "0;0;1;1", 1).empty());
    CHECK(Tells(picture(16, "0;0;1;1", 9).at(0), u"134217728 pixels"));
    CHECK(picture(1, "0;0;.1;.1", VisLimits::picturesInList).empty());
    const auto longList = picture(1, "0;0;.1;.1", VisLimits::picturesInList + 1);
    CHECK(Tells(longList.at(0), u"more than 4096 pictures"));

    // The findings themselves have one, too.
    const auto many = CheckBody(flush + repeat(100000, "<x/>"));
    CHECK(many.size() == CScriptCheck::mostFindings + 1);
    CHECK(Tells(many.back(), u"99000 more"));
}

TEST_CASE("Forgotten quotes are found where they are")
{
    const auto unclosed
        = CheckText("<PXV Version=\"1.0\">\n<Component GUID=\"x\" Name=\"Transform>\n"
                    "<Properties/></Component>\n<Layer Name=\"\"/></PXV>");
    REQUIRE(!unclosed.empty());
    CHECK(unclosed[0].line == 2);
    CHECK(unclosed[0].column == 21);
    CHECK(unclosed[0].message.Find(u"quote missing") > 0);

    const auto bare = CheckBody("<Component GUID=36267E6D-70E1-435e-9E2A-428EEA2D3C7E/>");
    REQUIRE(bare.size() == 1);
    CHECK(bare[0].message == u"the attribute \"GUID\" has no value in quotes");
    CHECK(
        CheckBody(std::string("<Component Name=\"\" GUID='36267E6D-70E1-435e-9E2A-428EEA2D3C7E'/>"))
            .empty());

    const auto less
        = CheckBody("<Component><Properties><a>if(d<0.5,1,2)</a></Properties></Component>");
    REQUIRE(!less.empty());
    CHECK(less[0].message.Find(u"write &lt;") > 0);
}
