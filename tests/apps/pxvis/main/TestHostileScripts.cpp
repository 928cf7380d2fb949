#include "TestFolder.h"
#include "apps/pxvis/main/Program.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>

// Scripts from strangers, one for each thing that could go wrong, drawn by the program itself as a
// process of its own: it may neither hang, crash, nor exhaust the machine.

namespace fs = std::filesystem;

namespace {

const fs::path hostileFolder = fs::path(PXVIS_SOURCE_DIR) / "tests" / "data" / "hostile";

#ifdef __SANITIZE_ADDRESS__
constexpr double mostSeconds = 20;
constexpr long mostKilobytes = 2 << 20;
#else
constexpr double mostSeconds = 1;
constexpr long mostKilobytes = 1 << 20;
#endif

constexpr int width = 320;
constexpr int height = 240;

const std::string transform = "EB13A0B7-0B36-4bea-B95A-92ED8FEA86CD";
const std::string spectrum = "B21F9002-EF2E-4d5b-9D40-F61B8F3B34D8";
const std::string superTransform = "DCE4B5AB-25A0-432f-B4A2-8E91B9FD1060";
const std::string dynamicTransform = "91A53739-48CC-425c-89EB-0DB399261FD9";
const std::string text = "BBEC668A-420F-4faa-856D-880DACE05B5B";
const std::string superScope = "D6CC94F2-998C-40ee-A29E-D9CBED46A145";
const std::string oscilloscope = "01F7B01F-B355-4152-83D6-DBEB8CE7C8D4";
const std::string blob = "2657C682-8576-4bd3-8EBB-60B01409FF14";
const std::string starfield = "B8173E2F-8740-4357-8CFF-33479461B3CD";
const std::string particle = "50DAC8D1-E2A8-42a0-AF97-7D3E7B1C494F";
const std::string picture = "63B96C06-29A4-4de2-9A9D-9F3E08F8C014";

// One loud record: level 120, a beat, no change; a saw tooth and a full spectrum.
std::string LoudRecord()
{
    std::string record({ 120, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0 });
    for (int i = 0; i < 2048; ++i)
        record += static_cast<char>(i);
    return record + std::string(4, '\0') + std::string(1024, '\xC8');
}

ProgramResult DrawFrame(const fs::path& script)
{
    const ProgramResult result
        = RunProgram({ "frames", "--script", script.string(), "--size",
                         std::to_string(width) + "x" + std::to_string(height) },
            LoudRecord());
    CHECK(result.processorSeconds < mostSeconds);
    CHECK(result.mostKilobytes < mostKilobytes);
    return result;
}

// What isn't cut off is drawn: every script here has a Spectrum Analyzer that can be seen.
void CheckDrawn(const fs::path& script)
{
    CAPTURE(script.string());
    const ProgramResult result = DrawFrame(script);
    CHECK(result.status == 0);
    CHECK(result.errors == "");
    REQUIRE(result.output.size() == size_t { width } * height * 4);
    size_t lit = 0;
    for (size_t i = 0; i < result.output.size(); ++i)
        lit += i % 4 != 3 && result.output[i] != 0;
    CHECK(lit > 100);
}

// One line tells why, and no picture comes.
void CheckRefused(const fs::path& script)
{
    CAPTURE(script.string());
    const ProgramResult result = DrawFrame(script);
    CHECK(result.status == 1);
    CHECK(result.output == "");
    CHECK(result.errors.starts_with("pxvis: " + script.string() + ": "));
    CHECK(std::count(result.errors.begin(), result.errors.end(), '\n') == 1);
    CHECK(result.errors.size() < 1100);
}

std::string Repeat(const std::string& text, int count)
{
    std::string result;
    result.reserve(text.size() * static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

std::string Row(const std::string& name, const std::string& value)
{
    return "<" + name + ">" + value + "</" + name + ">\n";
}

std::string Piece(const std::string& guid, const std::string& rows = {})
{
    return "<Component GUID=\"" + guid + "\"><Properties>" + rows + "</Properties></Component>\n";
}

std::string Layer(const std::string& rows, const std::string& content)
{
    return "<Layer><Properties>" + rows + "</Properties>" + content + "</Layer>\n";
}

std::string Script(const std::string& content)
{
    return "<PXV Version=\"1.0\">\n" + content + "</PXV>\n";
}

// Of a layer that covers nothing.
const std::string add = Row("OutputMode", "2");

// What is seen.
const std::string bars = Piece(spectrum, Row("BarGravity", "2147483647") + Row("UpScale", "30"));

void CheckDrawn(const std::string& name, const std::string& text)
{
    const TestFolder folder;
    folder.Write(name + ".pxv", text);
    CheckDrawn(folder / (name + ".pxv"));
}

void CheckRefused(const std::string& name, const std::string& text)
{
    const TestFolder folder;
    folder.Write(name + ".pxv", text);
    CheckRefused(folder / (name + ".pxv"));
}

}

TEST_CASE("The hostile scripts on file are drawn")
{
    int count = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(hostileFolder)) {
        if (!entry.is_regular_file())
            continue;
        CheckDrawn(entry.path());
        ++count;
    }
    CHECK(count > 15);
}

TEST_CASE("Files on file that are no scripts are refused with one line")
{
    int count = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(hostileFolder / "refused")) {
        CheckRefused(entry.path());
        ++count;
    }
    CHECK(count > 10);
}

TEST_CASE("Names that lead to no file of a script's size are refused without waiting")
{
    const TestFolder folder;
    mkfifo((folder / "pipe.pxv").c_str(), 0600);
    fs::create_symlink("loop.pxv", folder / "loop.pxv");
    fs::create_symlink("/dev/zero", folder / "zero.pxv");
    fs::create_directory(folder / "folder.pxv");
    folder.Write("sparse.pxv", "");
    fs::resize_file(folder / "sparse.pxv", uintmax_t { 1 } << 40);
    for (const char* name : { "pipe", "loop", "zero", "folder", "sparse" })
        CheckRefused(folder / (std::string(name) + ".pxv"));
    CheckRefused("/dev/zero");
    CheckRefused("file-of-4-MiB-and-1", Script(bars) + std::string((4 << 20) + 1, ' '));
    CheckDrawn("file-of-4-MiB", Script(bars) + std::string((4 << 20) - Script(bars).size(), ' '));
}

TEST_CASE("Nesting and numbers of pieces and rows are cut off")
{
    CheckDrawn("nesting-100000",
        Script(Repeat("<Layer>", 100'000) + bars + Repeat("</Layer>", 100'000) + bars));
    CheckDrawn("pieces-300000", Script(bars + Repeat("<Component/>", 300'000)));
    CheckDrawn("layers-30000", Script(bars + Repeat(Layer(add, ""), 30'000)));
    CheckDrawn("components-30000", Script(Repeat(Piece(spectrum), 30'000)));
    CheckDrawn("rows-300000", Script(bars + Piece(picture, Repeat("<a>1</a>\n", 300'000))));
    CheckDrawn("row-of-3-MiB", Script(bars + Piece(picture, Row("a", std::string(3 << 20, 'x')))));
    CheckDrawn(
        "row-name-of-1-MiB", Script(bars + Piece(picture, Row(std::string(1 << 20, 'x'), "1"))));
}

TEST_CASE("Gradients of too many cells take the standard colours")
{
    const auto gradient = [](int cells) {
        return Row("Gradient",
            "{" + std::to_string(cells) + ", 1} [[" + Repeat("0xFF0000,", cells) + "0xFF0000]]");
    };
    for (const int cells : { 65536, 65537, 300'000 })
        CheckDrawn("gradient-cells-" + std::to_string(cells),
            Script(Piece(spectrum, gradient(cells)) + bars));
}

TEST_CASE("Long, deep and many-named equations compile in time, or not at all")
{
    const auto script = [](const std::string& equation) {
        return Script(bars
            + Piece(transform, Row("DrawFrequency", "1") + Row("TransformEquation", equation)));
    };
    CheckDrawn("equation-terms-1000000", script("d=d" + Repeat("+1", 1'000'000)));
    CheckDrawn("equation-parentheses-1000000", script("d=" + Repeat("(", 1'000'000)));
    CheckDrawn("equation-signs-2000000", script("d=" + Repeat("-", 2'000'000) + "d"));
    CheckDrawn("equation-stack-600", script("d=" + Repeat("1+(", 600) + "d" + Repeat(")", 600)));
    CheckDrawn("equation-powers-300000", script("d=d" + Repeat("^1", 300'000)));
    CheckDrawn("equation-statements-1000000", script(Repeat("d=d;", 700'000)));
    std::string names;
    for (int i = 0; i < 300'000; ++i)
        names += "v" + std::to_string(i) + "=1;";
    CheckDrawn("equation-variables-300000", script(names));
    CheckDrawn("equation-name-3000000", script(std::string(3'000'000, 'a') + "=1"));
}

TEST_CASE("What a script may keep and compute has an end")
{
    // A large layer is shown in part; only its size costs.
    const std::string large = add + Row("Rectangle", "0;0;20;20");
    CheckDrawn("layers-of-30-megapixels-1000", Script(bars + Repeat(Layer(large, ""), 1000)));
    CheckDrawn("layers-added-4000",
        Script(bars + Repeat(Layer(add + Row("ClearEachFrame", "1"), ""), 4000)));
    CheckDrawn(
        "maps-4000", Script(bars + Repeat(Piece(transform, Row("DrawFrequency", "1")), 4000)));
    CheckDrawn("map-of-large-layer",
        Script(bars + Layer(large, Piece(transform, Row("DrawFrequency", "1")))));
    CheckDrawn("work-of-on-equations",
        Script(bars
            + Repeat(Layer(add + Row("OnEquation", "on=1" + Repeat("^sin(1)", 100)), ""), 4000)));
    CheckDrawn("work-of-bars",
        Script(Repeat(Piece(spectrum, Row("BarWidth", "0.0001") + Row("Channels", "2")), 4000)));
}

TEST_CASE("Feedback that changes each frame or costs much per pixel has an end")
{
    const std::string change = Row("TransformChangeEquation", "c=1");
    const auto super = [&](const std::string& list) {
        return Script(Piece(superTransform, Row("TransformEquation", list) + change) + bars);
    };
    CheckDrawn("transforms-100000", super(Repeat("d=d*sin(r)|", 100'000)));
    CheckDrawn("transforms-empty-4000000", super(std::string(4'000'000, '|')));
    CheckDrawn("transforms-dear",
        super("d=d" + Repeat("^sin(d)", 90) + "|d=d" + Repeat("^cos(r)", 100'000)));
    CheckDrawn("super-transforms-4000", Script(Repeat(Piece(superTransform, change), 4000) + bars));
    const std::string large = add + Row("Rectangle", "0;0;20;20");
    for (const std::string& guid : { superTransform, dynamicTransform })
        CheckDrawn("feedback-of-large-layer-" + guid, Script(bars + Layer(large, Piece(guid))));
    CheckDrawn("dynamic-transforms-4000", Script(Repeat(Piece(dynamicTransform), 4000) + bars));
    CheckDrawn("dynamic-transforms-dear-200",
        Script(
            Repeat(
                Piece(dynamicTransform, Row("PixelEquation", "d=d" + Repeat("^sin(d)", 1000))), 200)
            + bars));
    CheckDrawn("dynamic-transform-long",
        Script(
            Piece(dynamicTransform, Row("FrameEquation", "d=d" + Repeat("+1", 1'900'000))) + bars));
}

TEST_CASE("Texts made to cost much are laid out in time, or later")
{
    const std::string all = Row("TextLocationEquation", "x1=0;y1=0;x2=1;y2=1");
    const std::string narrow = Row("TextLocationEquation", "x1=0;y1=0;x2=.003;y2=1");
    const auto script = [](const std::string& rows, const std::string& words, int count = 1) {
        return Script(bars + Repeat(Piece(text, Row("Text", words) + rows), count));
    };
    for (const std::string& box : { all, narrow }) {
        CheckDrawn("text-word-of-1000000", script(box, std::string(1'000'000, 'W')));
        CheckDrawn("text-blanks-1000000", script(box, std::string(1'000'000, ' ')));
        CheckDrawn("text-lines-10000", script(box, Repeat("a\n", 10'000)));
        CheckDrawn("text-marks-100000", script(box, "W" + Repeat("\xCC\xB8", 100'000)));
        CheckDrawn("text-directions", script(box, Repeat("a\xD7\x90", 100'000)));
    }
    CheckDrawn("text-pages-600000", script(all, Repeat("a\r\n|\r\n", 600'000)));
    CheckDrawn("texts-4000", script(all, Repeat("word ", 100), 4000));
    CheckDrawn("texts-400-long", script(all, Repeat("word\n", 1600), 400));
    CheckDrawn("texts-tokens", script(all, Repeat("PN_POSITIONELAPSED_TIME", 400), 400));
    std::string sizes;
    for (int i = 1; i <= 4000; ++i)
        sizes += Piece(text,
            all + Row("Text", "H") + Row("FontSize", std::to_string(i) + "e-2")
                + Row("FontName", "Font " + std::to_string(i)));
    CheckDrawn("text-fonts-4000", Script(bars + sizes));
}

TEST_CASE("Pictures that are no pictures are passed over")
{
    const TestFolder folder;
    mkfifo((folder / "pipe.png").c_str(), 0600);
    fs::create_symlink("loop.png", folder / "loop.png");
    folder.Write("sparse.png", "");
    fs::resize_file(folder / "sparse.png", uintmax_t { 1 } << 40);
    // The head of a picture of 50000 x 50000 pixels.
    folder.Write("huge.png",
        std::string("\x89PNG\r\n\x1a\n\0\0\0\x0DIHDR\0\0\xC3\x50\0\0\xC3\x50\x08\x06\0\0\0", 29)
            + std::string(1 << 20, '\0'));
    std::string pieces;
    for (const char* name : { "pipe.png", "loop.png", "sparse.png", "huge.png" }) {
        const std::string file = Row("ImageFile", (folder / name).string());
        pieces += Piece(spectrum, Row("DrawSource", "1") + file) + Piece(picture, file);
    }
    folder.Write("image-files.pxv", Script(pieces + bars));
    CheckDrawn(folder / "image-files.pxv");
}

TEST_CASE("Large pictures are not all loaded for one frame")
{
    const TestFolder folder;
    // 6000 x 6000 pixels of one bit, all of them 0.
    const std::string head(
        "BM\0\0\0\0\0\0\0\0\x3E\0\0\0\x28\0\0\0\x70\x17\0\0\x70\x17\0\0\1\0\1\0", 30);
    folder.Write("large.bmp", head + std::string(24 + 8 + 752 * 6000, '\0'));
    const std::string file = Row("ImageFile", (folder / "large.bmp").string());
    CheckDrawn("pictures-large-40",
        Script(bars + Repeat(Piece(spectrum, Row("DrawSource", "1") + file), 40)));
    CheckDrawn("pictures-large-stretched-40",
        Script(bars + Repeat(Piece(picture, file + Row("MainRectangle", "-99;-99;99;99")), 40)));
}

TEST_CASE("Pictures by the thousand and lists by the million end, too")
{
    CheckDrawn("pictures-4000", Script(bars + Repeat(Piece(picture), 4000)));
    CheckDrawn("picture-list-1000000",
        Script(bars
            + Piece(picture,
                Row("ImageFile", std::string(1'000'000, '|'))
                    + Row("ImageChangeEquation", "i=rand(1000)/1000"))));
    for (const std::string name : { "/", "\\", "COVER_ART" })
        CheckDrawn("picture-name-of-4-MB",
            Script(bars + Piece(picture, Row("ImageFile", Repeat(name, 4'000'000 / name.size())))));
}

TEST_CASE("Scopes, blobs, stars and discs without end have one")
{
    const auto many = [](const std::string& guid, const std::string& rows, int count = 400) {
        return Script(bars + Repeat(Piece(guid, rows), count));
    };
    CheckDrawn("scope-points", many(superScope, Row("ScopeEquation", "n=10^9|x=rand(9)-4;y=v")));
    CheckDrawn("oscilloscope-swing",
        many(oscilloscope,
            Row("MaxHeight", "9e9") + Row("LineEquation", "x1=-10^9;y1=-10^9;x2=10^9;y2=10^9")));
    CheckDrawn("blob-rays", many(blob, Row("BaseRadius", "5e6") + Row("MaxDeltaRadius", "5e6")));
    CheckDrawn("stars", many(starfield, Row("StarDensity", "2147483647") + Row("Speed", "0")));
    CheckDrawn("starfields-4000", many(starfield, Row("StarDensity", "32768"), 4000));
    CheckDrawn("discs", many(particle, Row("ParticleEquation", "s=10^6")));
}

TEST_CASE("Floods of XML are read in time")
{
    CheckDrawn(
        "xml-attributes-500000", Script(bars + "<Component" + Repeat(" a=\"1\"", 500'000) + "/>"));
    CheckDrawn(
        "xml-entities-700000", Script(bars + Piece(picture, Row("a", Repeat("&amp;", 700'000)))));
    CheckDrawn(
        "xml-ampersands-4000000", Script(bars + Piece(picture, Row("a", Repeat("&", 4'000'000)))));
    CheckDrawn("xml-cdata-200000",
        Script(bars + Piece(picture, Row("a", Repeat("<![CDATA[x]]>", 200'000)))));
    CheckDrawn("xml-comments-400000", Repeat("<!---->", 400'000) + Script(bars));
    CheckDrawn("xml-line-ends-3000000", Script(bars + Repeat("\n", 3'000'000)));
    CheckRefused("xml-deep-1000000", Repeat("<a>", 1'000'000));
    CheckRefused("xml-end-tags-1000000", Script(bars) + Repeat("</a>", 1'000'000));
    std::string names;
    for (int i = 0; i < 300'000; ++i)
        names += "<n" + std::to_string(i) + ">";
    CheckRefused("xml-names-unclosed-300000", names);
    CheckRefused("xml-doctype-4000000", "<!DOCTYPE " + Repeat("<", 4'000'000));
    CheckRefused("xml-tag-of-4-MB", "<" + std::string(4'000'000, 'a') + ">");
}
