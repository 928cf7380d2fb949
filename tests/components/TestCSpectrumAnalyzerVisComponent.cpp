#include "ComponentScene.h"
#include "components/CSpectrumAnalyzerVisComponent.h"
#include "components/CSpectrumBarValues.h"
#include "engine2d/CVisPropertyList.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQString.h"

#include <doctest/doctest.h>

#include <utility>
#include <vector>

namespace {

struct Scene : ComponentScene<CSpectrumAnalyzerVisComponent, 0x00555555>
{
    // One flat colour, bars of 4 with gaps of 1 in a picture 50 wide, no lift, straight heights.
    explicit Scene(Rows rows, int32_t width = 50, int32_t height = 100)
        : ComponentScene(
            { { u"Gradient", u"{1, 1} [[0x0000FF]]" }, { u"BarWidth", u"0.08" },
                { u"BarSpacing", u"0.02" }, { u"TopWeight", u"0" }, { u"UpScale", u"100" },
                { u"FrequencyScale", u"1" }, { u"PeakColor", u"0xFF0000" } },
            rows, width, height)
    {
    }

    void SetSpectrum(uint8_t left, uint8_t right)
    {
        for (int i = 0; i < 512; ++i) {
            audio.block.spectrum[0][i] = left;
            audio.block.spectrum[1][i] = right;
        }
    }

    // Rows of a column in one colour, as first and last; -1, -1 for none.
    std::pair<int32_t, int32_t> Span(int32_t x, uint32_t pixel)
    {
        std::pair<int32_t, int32_t> span { -1, -1 };
        OQSize size;
        buffer.GetSize(&size);
        for (int32_t y = 0; y < size.cy; ++y) {
            if (Pixel(x, y) == pixel) {
                span.first = span.first < 0 ? y : span.first;
                span.second = y;
            }
        }
        return span;
    }
};

constexpr uint32_t background = Scene::background;

// A picture in which no two pixels near each other are alike.
uint32_t PicturePixel(int32_t x, int32_t y)
{
    return 0xFF000000u | static_cast<uint32_t>(x * 5) << 16 | static_cast<uint32_t>(y * 2) << 8 | 7;
}

void WritePicture(const TestFile& file, int32_t width, int32_t height)
{
    CDibBuffer picture;
    picture.MakeImages(width, height);
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x)
            PixelAt(picture, x, y) = PicturePixel(x, y);
    }
    REQUIRE(picture.GetImage(0)->SavePng(OQString::FromUtf8(file.Path()).GetText(), true));
}

using Span = std::pair<int32_t, int32_t>;
constexpr uint32_t blue = 0x0000FF;
constexpr uint32_t red = 0xFF0000;

}

TEST_CASE("The first bar sums bins 0 and 1 and divides by 3, and the next one shares its last bin")
{
    VisAudioBlock block {};
    block.spectrum[0][0] = 90;
    block.spectrum[0][1] = 120;
    block.spectrum[0][2] = 30;
    const CSpectrumBarValues::Settings settings { 1, 512, 5, 0, 100 };
    CSpectrumBarValues values(block, settings, 50);
    CHECK(values.Next() == 70 * 1000 / 256); // (90 + 120) / 3
    CHECK(values.Next() == 50 * 1000 / 256); // (120 + 30) / 3
    CHECK(values.Next() == 10 * 1000 / 256);
}

TEST_CASE("Each bar moves on by a bin at least, so that bar 25 of 50 ends at bin 26")
{
    VisAudioBlock block {};
    block.spectrum[0][26] = 240;
    const CSpectrumBarValues::Settings settings { 1, 512, 5, 0, 100 };
    CSpectrumBarValues values(block, settings, 50);
    for (int i = 0; i < 25; ++i)
        CHECK(values.Next() == 0);
    CHECK(values.Next() == 80 * 1000 / 256);
}

TEST_CASE("Past the last bin it counts again, and a bar behind the end is empty")
{
    VisAudioBlock block {};
    block.spectrum[0][511] = 255;
    // One bin a bar: of 512 bars the last one asks for bins 511 and 512.
    const CSpectrumBarValues::Settings all { 1, 512, 1, 0, 100 };
    CSpectrumBarValues values(block, all, 512);
    for (int i = 0; i < 510; ++i)
        CHECK(values.Next() == 0);
    CHECK(values.Next() == 85 * 1000 / 256);
    CHECK(values.Next() == 170 * 1000 / 256);

    for (const int32_t elements : { INT32_MAX, 1'000'000, 1, 0, -5, INT32_MIN }) {
        const CSpectrumBarValues::Settings odd { 0, elements, -3, INT32_MAX, INT32_MIN };
        CSpectrumBarValues any(block, odd, 30);
        for (int i = 0; i < 30; ++i) {
            const int32_t value = any.Next();
            CHECK((value >= 0 && value <= 996));
        }
    }
}

TEST_CASE("Channels are the truncated mean, the left or the right one, and heights stop at 996")
{
    const auto first = [](const OQChar* channels) {
        Scene scene({ { u"Channels", channels }, { u"Mirrored", u"No" }, { u"DrawPeaks", u"No" } });
        scene.SetSpectrum(255, 128);
        scene.Draw();
        return scene.Span(20, blue);
    };
    // 3 or more bins sum to n * value / (n + 1): 7 bins a bar
    CHECK(first(u"Left").first < first(u"Middle").first);
    CHECK(first(u"Middle").first < first(u"Right").first);

    VisAudioBlock block {};
    std::fill_n(block.spectrum[1], 512, uint8_t { 255 });
    const CSpectrumBarValues::Settings lifted { 2, 512, 1, 15, 30 };
    CSpectrumBarValues values(block, lifted, 4);
    values.Next();
    values.Next();
    CHECK(values.Next() == 996);
}

TEST_CASE("A plain bar stands on the base line with both ends painted, its peak 2 rows above")
{
    Scene scene({ { u"Mirrored", u"No" }, { u"FFTElements", u"10" } }); // bins i and i + 1 a bar
    scene.SetSpectrum(150, 150); // 2 bins of 150 over 3: 100, a height of 390
    scene.Draw();
    CHECK(scene.Span(0, blue) == Span(61, 99)); // row 100 lies on row 99
    CHECK(scene.Span(0, red) == Span(59, 60));
    CHECK(scene.Span(3, blue) == Span(61, 99));
    CHECK(scene.Span(4, blue) == Span(-1, -1)); // the gap
    CHECK(scene.Span(45, blue) == Span(61, 99)); // the tenth and last bar
}

TEST_CASE("Mirrored bars grow both ways from the middle, their peaks as thick as told")
{
    Scene scene({ { u"FFTElements", u"10" }, { u"PeakHeight", u"0.03" } });
    scene.SetSpectrum(150, 150);
    scene.Draw();
    CHECK(
        scene.Span(0, blue) == Span(31, 68)); // 390 * 50 / 1000 = 19; the lower peak paints over 69
    CHECK(scene.Pixel(0, 31 - 1) == red);
    CHECK(scene.Pixel(0, 31 - 3) == red);
    CHECK(scene.Pixel(0, 31 - 4) == background);
    CHECK(scene.Pixel(0, 69) == red);
    CHECK(scene.Pixel(0, 71) == red);
    CHECK(scene.Pixel(0, 72) == background);
}

TEST_CASE("The gradient starts at the base line of a bar")
{
    Scene scene({ { u"Mirrored", u"No" }, { u"DrawPeaks", u"No" }, { u"FFTElements", u"10" },
        { u"Gradient", u"{2, 1} [[0xFF0000,0x000000]]" } });
    scene.SetSpectrum(255, 255);
    scene.Draw();
    // Colour n of 101; row 99 is first the base row 100, then color 1.
    CHECK(scene.Pixel(0, 99) == static_cast<uint32_t>(255 * (1 - 1.0f / 101)) << 16);
    CHECK((scene.Pixel(0, 50) >> 16) < (scene.Pixel(0, 90) >> 16));
    CHECK((scene.Pixel(0, 90) & 0xFFFF) == 0);
}

TEST_CASE("Bars fall by gravity, peaks rest and fall from a velocity of 0, a throw lifts them")
{
    Scene scene({ { u"Mirrored", u"No" }, { u"FFTElements", u"10" }, { u"BarGravity", u"1024" },
        { u"PeakGravity", u"512" } });
    scene.SetSpectrum(150, 150);
    scene.Draw();
    CHECK(scene.Span(0, blue).first == 61);
    scene.SetSpectrum(0, 0);
    // Heights 390, then -0, -4, -8, -12 ...: 390, 386, 378, 366, 350
    const int32_t tops[] = { 61, 62, 63, 64, 65 };
    for (const int32_t top : tops) {
        scene.Draw();
        CHECK(scene.Span(0, blue).first == top);
    }
    // Peaks fall half as fast: 390, 388, 384, 378, 370
    CHECK(scene.Span(0, red) == Span(61, 62));

    Scene thrown(
        { { u"Mirrored", u"No" }, { u"FFTElements", u"10" }, { u"PeakThrowForce", u"100" } });
    thrown.SetSpectrum(150, 150);
    thrown.Draw();
    thrown.Draw();
    CHECK(thrown.Span(0, red) == Span(44, 45)); // 390 + 390 * 100 / 256 = 542

    Scene limited(
        { { u"Mirrored", u"No" }, { u"FFTElements", u"10" }, { u"BarTerminalVelocity", u"256" } });
    limited.SetSpectrum(150, 150);
    limited.Draw();
    limited.SetSpectrum(0, 0);
    for (int i = 0; i < 21; ++i)
        limited.Draw();
    CHECK(limited.Span(0, blue).first == 100 - 370 * 100 / 1000);
}

TEST_CASE("Bars are centred, at least 1 pixel wide, and at most 512, none if one does not fit")
{
    Scene wide(
        { { u"BarWidth", u"0" }, { u"BarSpacing", u"0" }, { u"FFTElements", u"600" } }, 1030, 8);
    wide.SetSpectrum(255, 255);
    wide.Draw();
    CHECK(wide.Pixel(258, 4) == background); // (1030 - 512) / 2 = 259
    CHECK(wide.Pixel(259, 4) != background);
    CHECK(wide.Pixel(770, 4) != background);
    CHECK(wide.Pixel(771, 4) == background);
    Scene none({ { u"BarWidth", u"1.1" } });
    none.SetSpectrum(255, 255);
    none.Draw();
    CHECK(none.Span(25, background) == Span(0, 99));
}

TEST_CASE("A reversed rectangle mirrors the row, and one that reaches outside lands on the edges")
{
    Scene reversed(
        { { u"Mirrored", u"No" }, { u"DrawPeaks", u"No" }, { u"MainRectangle", u"1;1;0;0" } });
    reversed.SetSpectrum(150, 150);
    reversed.audio.block.spectrum[0][0] = 255;
    reversed.Draw();
    CHECK(reversed.Pixel(49, 0) == blue); // the base line is at the top, the first bar on the right
    CHECK(reversed.Pixel(45, 0) == background);

    Scene outside({ { u"Mirrored", u"No" }, { u"MainRectangle", u"-3;-3;3;0.5" },
        { u"Gradient", u"{2, 1} [[0xFF0000,0x0000FF]]" } });
    outside.SetSpectrum(255, 255);
    outside.Draw();
    CHECK(outside.Pixel(0, 60) == background);
    CHECK(outside.Pixel(0, 10) != background);
}

TEST_CASE("A picture shows through bars and peaks where they are, stretched to the rectangle")
{
    const TestFile file("cover.png", "");
    WritePicture(file, 50, 100);
    Scene scene({ { u"DrawSource", u"Image" }, { u"Mirrored", u"No" }, { u"FFTElements", u"10" } });
    scene.audio.coverFile = OQString::FromUtf8(file.Path()).View();
    scene.SetSpectrum(150, 150); // bars from row 61 on, peaks on rows 59 and 60
    scene.Draw();
    for (int32_t y = 0; y < 100; ++y) {
        for (int32_t x = 0; x < 50; ++x) {
            INFO(x << ", " << y);
            const bool filled = x % 5 < 4 && y >= 59;
            REQUIRE(scene.Pixel(x, y) == (filled ? PicturePixel(x, y) : background));
        }
    }

    // The picture has the size of the rectangle but lies at the top left of all.
    Scene half({ { u"DrawSource", u"1" }, { u"FFTElements", u"10" }, { u"DrawPeaks", u"No" },
        { u"MainRectangle", u"0;0.5;1;1" } });
    half.audio.coverFile = scene.audio.coverFile;
    WritePicture(file, 50, 50);
    half.SetSpectrum(255, 255); // rows 58 to 91
    half.Draw();
    CHECK(half.Span(0, background) == Span(0, 99));
    Scene reversed({ { u"DrawSource", u"1" }, { u"FFTElements", u"10" }, { u"DrawPeaks", u"No" },
        { u"MainRectangle", u"1;0.5;0;0" } });
    reversed.audio.coverFile = scene.audio.coverFile;
    reversed.SetSpectrum(255, 255); // 170 x 1000 / 256 = 664; 25 +- 664 x 25 / 1000
    reversed.Draw();
    CHECK(reversed.Pixel(1, 8) == background);
    CHECK(reversed.Pixel(1, 9) == PicturePixel(1, 9));
    CHECK(reversed.Pixel(1, 40) == PicturePixel(1, 40));
    CHECK(reversed.Pixel(1, 41) == background);
}

TEST_CASE(
    "A new cover is loaded when the track's picture changes, and without one nothing is filled")
{
    const TestFile file("new-cover.png", "no picture");
    const Rows rows { { u"DrawSource", u"1" }, { u"Mirrored", u"No" }, { u"FFTElements", u"10" } };
    Scene scene(rows);
    scene.audio.coverFile = OQString::FromUtf8(file.Path()).View();
    scene.SetSpectrum(150, 150);
    scene.Draw();
    CHECK(scene.Span(0, background) == Span(0, 99));
    WritePicture(file, 50, 100);
    scene.SetSpectrum(0, 0);
    scene.Draw();
    CHECK(scene.Span(0, background) == Span(0, 99));
    scene.audio.values[VisAudioValueChange] = 1;
    scene.Draw();
    CHECK(scene.Pixel(0, 61) == PicturePixel(0, 61)); // a peak that began to fall
    CHECK(scene.Pixel(0, 62) == PicturePixel(0, 62)); // and a bar
    CHECK(scene.Pixel(0, 58) == background);

    // A URL isn't fetched, not even as a path.
    scene.audio.coverFile = u"https://example.com/cover.png";
    scene.Draw();
    CHECK(scene.Span(0, background) == Span(0, 99));
}

TEST_CASE("A picture counts as what the script keeps and costs, and one too large isn't loaded")
{
    const TestFile file("kept-cover.png", "");
    WritePicture(file, 50, 100);
    const auto kept = [](const OQChar* rectangle, const OQChar* source = u"1") {
        return Scene({ { u"DrawSource", source }, { u"MainRectangle", rectangle } })
            .component.KeptPixels();
    };
    CHECK(kept(u"0;0;1;1", u"0") == 0);
    CHECK(kept(u"0;0;1;1") == 50 * 100);
    CHECK(kept(u"1;1;0.5;0") == 25 * 100);
    CHECK(kept(u"0;0;0;1") == 0);
    CHECK(kept(u"0;0.5;1;0.5") == 50 * 16384);
    CHECK(kept(u"0;0;300;150") == 0); // 15000 x 15000
    CHECK(kept(u"-1e30;-1e30;1e30;1e30") == 0);

    Scene scene({ { u"DrawSource", u"1" }, { u"Mirrored", u"No" } });
    scene.audio.coverFile = OQString::FromUtf8(file.Path()).View();
    scene.SetSpectrum(255, 255);
    OQEngineContext& context = scene.context;
    context.workLeft = VisLimits::pictureLoadWork - 1;
    scene.Draw();
    CHECK(scene.Pixel(0, 99) == background);
    context.workLeft = VisLimits::workAtLeast;
    scene.Draw();
    CHECK(scene.Pixel(0, 99) == PicturePixel(0, 99));
}

TEST_CASE("Rows come in their order with their defaults, and any number in them is harmless")
{
    CSpectrumAnalyzerVisComponent analyzer;
    CVisPropertyList saved;
    analyzer.SaveProperties(saved);
    const std::pair<const OQChar*, const OQChar*> expected[] = { { u"DrawSource", u"0" },
        { u"Channels", u"0" }, { u"DrawPeaks", u"1" }, { u"DrawBars", u"1" }, { u"Mirrored", u"1" },
        { u"ImageFile", u"COVER_ART" }, { u"PeakGravity", u"512" }, { u"BarGravity", u"1024" },
        { u"PeakTerminalVelocity", u"0" }, { u"BarTerminalVelocity", u"0" },
        { u"PeakThrowForce", u"0" }, { u"FFTElements", u"512" }, { u"FrequencyScale", u"5" },
        { u"TopWeight", u"5" }, { u"UpScale", u"80" }, { u"BarWidth", u"0.01" },
        { u"BarSpacing", u"0.003" }, { u"PeakHeight", u"0" }, { u"PeakColor", u"0xFFFFFF" },
        { u"Gradient",
            u"{2, 4} "
            u"[[0xFF0000,0x000000][0x00FF00,0x000000][0x0000FF,0x000000][0xFF0000,0x000000]]" },
        { u"MainRectangle", u"0;0;1;1" } };
    REQUIRE(saved.GetCount() == 21);
    for (int i = 0; i < 21; ++i) {
        CHECK(saved[i].Name == expected[i].first);
        CHECK(saved[i].Value == expected[i].second);
    }

    for (const OQChar* number : { u"2147483647", u"-99999999999", u"1e30", u"-1e30" }) {
        CVisPropertyList list;
        for (const CVisPropertyRow& row : saved) {
            if (row.Name != u"DrawSource" && row.Name != u"Gradient")
                list.AddRow(row.Name.GetText(), number);
        }
        const OQString rectangle = OQString(u"-1e30;-1e30;1e30;") + number;
        list.AddRow(u"MainRectangle", rectangle);
        Scene scene({});
        scene.component.LoadProperties(&list);
        scene.SetSpectrum(255, 3);
        for (int i = 0; i < 3; ++i)
            scene.Draw();
    }
}

TEST_CASE("Bars that lie over each other in their hundreds stop when the draw may cost no more")
{
    Scene scene({ { u"BarWidth", u"1" }, { u"BarSpacing", u"-0.98" }, { u"DrawPeaks", u"0" },
        { u"Mirrored", u"0" } });
    scene.SetSpectrum(200, 200);
    OQEngineContext& context = scene.context;
    context.workLeft = 1'000'000;
    scene.Draw();
    CHECK(context.workLeft < 1'000'000 - 49 * 50 * 50 * VisLimits::fillPixelWork);
    CHECK(scene.Pixel(0, 99) != background);
    context.workLeft = 100;
    scene.Draw();
    CHECK(scene.Pixel(0, 99) == background);
}
