#include "VisTesting.h"
#include "components/CTextExpansion.h"
#include "components/CTextVisComponent.h"
#include "engine2d/CVisPropertyList.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisRowCheck.h"
#include "engine2d/VisTextPages.h"
#include "foundation/OQEngineContext.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace {

using Rows = std::initializer_list<std::pair<const OQChar*, OQString>>;

struct Scene
{
    explicit Scene(Rows rows, int32_t width = 200, int32_t height = 100)
        : scope(&context)
    {
        context.virtualClock = true;
        SetTime(1'000'000);
        Load(rows);
        SetSize(width, height);
    }

    void Load(Rows rows)
    {
        CVisPropertyList list;
        // 20 pixels high in a picture of 200 x 100.
        list.AddRow(u"FontSize", u"0.045");
        for (const auto& [name, value] : rows)
            list.AddRow(name, value);
        text.LoadProperties(&list);
    }

    void SetSize(int32_t width, int32_t height)
    {
        text.SetRect({ 0, 0, width, height });
        buffer.MakeImages(width, height);
    }

    void SetTime(int64_t milliseconds) { context.virtualNanoseconds = milliseconds * 1'000'000; }

    // The smallest rectangle round what is drawn on black; all 0 for nothing.
    OQRect Draw()
    {
        FillBuffer(buffer, 0);
        text.Draw(buffer, audio);
        OQSize size;
        buffer.GetSize(&size);
        OQRect ink { size.cx, size.cy, 0, 0 };
        brightest = 0;
        for (int32_t y = 0; y < size.cy; ++y) {
            for (int32_t x = 0; x < size.cx; ++x) {
                const uint32_t pixel = PixelAt(buffer, x, y);
                if (pixel == 0)
                    continue;
                ink = { std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                    std::max(ink.bottom, y + 1) };
                brightest = std::max(brightest, pixel);
            }
        }
        return ink.right ? ink : OQRect {};
    }

    // Which of the pages "i", "iiii", "iiiiiiiii" is shown, or -1: told by the width of the ink.
    int PageShown()
    {
        const int32_t width = Draw().Width();
        return width == 0 ? -1 : width < 10 ? 0 : width < 40 ? 1 : 2;
    }

    OQEngineContext context;
    OQEngineContextScope scope;
    CDibBuffer buffer;
    TestAudio audio;
    CTextVisComponent text;
    uint32_t brightest = 0; // pixel of the last draw
};

const OQString threePages = u"i\r\n|\r\niiii\r\n|\r\niiiiiiiii";

std::u16string Expanded(const OQChar* page, TestAudio& audio)
{
    return CTextExpansion().Expand(page, audio);
}

}

TEST_CASE("Text has its rows in order, each with its kind, its default and its choices")
{
    CTextVisComponent text;
    CVisPropertyList rows;
    text.SaveProperties(rows);

    const struct
    {
        const OQChar* name;
        const OQChar* value;
        int32_t kind;
    } expected[] = {
        { u"Text", u"ARTIST - NAME", 2 },
        { u"RenderDelayMilliseconds", u"0", 1 },
        { u"RenderDuration", u"0", 1 },
        { u"TextLocationEquation", u"x1=0;y1=.4;x2=1;y2=.6", 1 },
        { u"FontName", u"DEFAULT", 3 },
        { u"FontSize", u"0.012", 1 },
        { u"TextColorEquation", u"r=1;g=1;b=1;", 1 },
        { u"TextAlignment", u"5", 0 },
    };

    REQUIRE(rows.GetCount() == 8);
    for (int32_t i = 0; i < 8; ++i) {
        CHECK(rows[i].Name == expected[i].name);
        CHECK(rows[i].Value == expected[i].value);
        CHECK(rows[i].Kind == expected[i].kind);
    }
    CHECK(rows[0].Presets == u"Edit");
    CHECK(rows[4].Presets.StartsWith(u"DEFAULT|"));
    CHECK(rows[4].Presets.Find(u"|DejaVu Sans|") >= 0);
    CHECK(rows[4].Presets.EndsWith(u"|"));
    OQStringArray alignments;
    rows[7].Presets.Split(u'|', alignments);
    CHECK(alignments.GetCount() == 9 + 1);
    CVisPropertyList friendly(true);
    text.SaveProperties(friendly);
    CHECK(friendly[7].Value == u"Center/Center");
}

TEST_CASE("Pages are cut at the exact separator only, and there are only so many")
{
    OQStringArray pages;
    CutTextPages(u"|\r\na\r\n|\r\nb\n|\nc\r\n|\r\n\r\n|", pages);
    REQUIRE(pages.GetCount() == 3);
    CHECK(pages[0] == u"|\r\na");
    CHECK(pages[1] == u"b\n|\nc");
    CHECK(pages[2] == u"\r\n|");

    std::u16string many;
    for (int i = 0; i < 1'000'000; ++i)
        many += u"\r\n|\r\n";
    const OQString flood(many.data(), static_cast<int>(many.size()));
    CutTextPages(flood, pages);
    CHECK(pages.GetCount() == VisLimits::textPages);
    const CVisRowInfo row { u"Text", CVisRowForm::Pages, nullptr };
    CHECK(CheckRowText(row, flood).reason.StartsWith(u"past the limit of 4096 pages"));
    CHECK(CheckRowText(row, threePages).reason.IsEmpty());

    // A page's end goes with the whole of the character that would be split.
    std::u16string page(VisLimits::textUnits - 1, u'a');
    page += u"\U0001F3B5";
    const OQString longPage(page.data(), static_cast<int>(page.size()));
    CutTextPages(u"\r\n|\r\n" + longPage, pages);
    CHECK(pages[1].GetLength() == VisLimits::textUnits - 1);
    CHECK(CheckRowText(row, u"\r\n|\r\n" + longPage).reason.StartsWith(u"page 2 is past"));
}

TEST_CASE("Tokens become what the host tells, in the order of their table")
{
    TestAudio audio;
    audio.fields = { { VisTrackFieldArtist, u"The NOTES" }, { VisTrackFieldAlbum, u"al" },
        { VisTrackFieldName, u"ARTIST" }, { VisTrackFieldYear, u"1999" },
        { VisTrackFieldNotes, u"nn" }, { VisTrackFieldLyrics, u"la NOTES" },
        { VisTrackFieldCustom1, u"c1" }, { VisTrackFieldCustom3, u"c3" } };
    audio.playInfo = { .playlistPosition = 3,
        .playlistLength = 12,
        .totalSeconds = 3725,
        .elapsedSeconds = 65,
        .bitRate = 320,
        .channels = 2,
        .sampleRate = 44100 };
    // A value may hold a later token, not an earlier one.
    CHECK(Expanded(u"ARTIST", audio) == u"The nn");
    CHECK(Expanded(u"NAME", audio) == u"ARTIST");
    CHECK(Expanded(u"ALBUM, YEAR: artist ALBUM", audio) == u"al, 1999: artist al");
    CHECK(Expanded(u"LYRICS/NOTES", audio) == u"la nn/nn");
    CHECK(Expanded(u"CUSTOM_1,CUSTOM_2,CUSTOM_3", audio) == u"c1,,c3");
    CHECK(Expanded(u"PN_POSITION/PN_TRACKS SAMPLE_RATE CHANNELS BITRATE", audio)
        == u"3/12 44100 2 320");
    CHECK(Expanded(u"ELAPSED_TIME REMAINING_TIME TOTAL_TIME", audio) == u"1:05 1:01:00 1:02:05");

    const int asked = audio.fieldsAsked;
    CHECK(Expanded(u"no token", audio) == u"no token");
    CHECK(audio.fieldsAsked == asked);
    audio.expandsTo = u"[YEAR]";
    CHECK(Expanded(u"anything", audio) == u"[1999]");

    for (const auto& [code, text] : { std::pair(0, u"???"), std::pair(10000, u"Analog (CD)"),
             std::pair(10001, u"Digital (CD)"), std::pair(9999, u"9999") }) {
        audio.playInfo.bitRate = code;
        audio.expandsTo = u"BITRATE";
        CHECK(Expanded(u"", audio) == text);
    }
    CHECK(FormatTrackTime(0) == u"0:00");
    CHECK(FormatTrackTime(3599) == u"59:59");
    CHECK(FormatTrackTime(3600) == u"1:00:00");
    CHECK_FALSE(FormatTrackTime(INT32_MIN).IsEmpty());
    CHECK_FALSE(FormatTrackTime(INT32_MAX).IsEmpty());
}

TEST_CASE("An expansion that changes is not taken for the one before")
{
    TestAudio audio;
    CTextExpansion expansion;
    for (const OQChar* page : { u"plain", u"plain", u"YEAR", u"plain", u"other" }) {
        audio.fields[VisTrackFieldYear] = u"plain";
        CHECK(expansion.Expand(page, audio) == (page[0] == u'o' ? u"other" : u"plain"));
    }
    audio.fields[VisTrackFieldYear] = u"1";
    CHECK(expansion.Expand(u"YEAR", audio) == u"1");
    audio.fields[VisTrackFieldYear] = u"2";
    CHECK(expansion.Expand(u"YEAR", audio) == u"2");
}

TEST_CASE("Tokens that multiply end at the limit of a text")
{
    TestAudio audio;
    std::u16string lyrics(1 << 20, u'x');
    lyrics[1] = u'N'; // of "NOTES", which multiplies once more
    lyrics.replace(1, 5, u"NOTES");
    audio.fields = { { VisTrackFieldLyrics, lyrics },
        { VisTrackFieldNotes, std::u16string(1 << 20, u'y') } };
    std::u16string page;
    for (int i = 0; i < 10'000; ++i)
        page += u"LYRICS";
    const std::u16string text = Expanded(page.c_str(), audio);
    CHECK(text.size() == VisLimits::textUnits);
    CHECK(text.starts_with(u"xyyyy"));
}

TEST_CASE("Text lies in its box by its alignment, in the colour of its equation")
{
    const OQString all = u"x1=0;y1=0;x2=1;y2=1";
    Scene scene({ { u"Text", u"H" }, { u"TextLocationEquation", all },
        { u"TextAlignment", u"Left/Top" }, { u"TextColorEquation", u"r=1;g=.5;b=0" } });
    const OQRect topLeft = scene.Draw();
    CHECK(topLeft.Height() == 14); // 0.73 em of 20 pixels
    CHECK(topLeft.left < 5);
    CHECK(topLeft.top < 10);
    CHECK(scene.brightest == 0x00FF7F00); // black's alpha stays

    scene.Load({ { u"Text", u"H" },
        { u"TextLocationEquation", u"x1=.5;x2=x1+2*width;y1=.5;y2=y1+2*height" },
        { u"TextAlignment", u"10" } });
    const OQRect moved = scene.Draw();
    CHECK(moved.Width() == topLeft.Width());
    CHECK(moved.left > 115);
    CHECK(moved.right <= 100 + 2 * 16);
    CHECK(moved.top > 70);
}

TEST_CASE("A bad place leaves the middle fifth, and a bad colour is nearly black")
{
    Scene scene({ { u"Text", u"H" }, { u"TextLocationEquation", u"x1=" },
        { u"TextColorEquation", u"r=1;g=1;b=1; " } });
    const OQRect ink = scene.Draw();
    CHECK(std::abs(ink.left + ink.right - 200) <= 2);
    CHECK(std::abs(ink.top + ink.bottom - 100) <= 6);
    CHECK(ink.top >= 40);
    CHECK(ink.bottom <= 60);
    CHECK(scene.brightest == 0x010101);
}

TEST_CASE("The equations hear the beat, and colours wrap")
{
    Scene scene({ { u"Text", u"H" }, { u"TextColorEquation", u"r=beat;g=impact;b=2+1/255" } });
    scene.audio.values[0] = 101;
    scene.audio.values[1] = 1;
    scene.Draw();
    CHECK(scene.brightest == 0xFFFFFF);
    scene.audio.values[0] = 100;
    scene.audio.values[1] = 0;
    scene.Draw();
    CHECK(scene.brightest == 0x0000FF);
}

TEST_CASE("Pages take turns by time: shown, then a gap, then the next one")
{
    Scene scene({ { u"Text", threePages }, { u"RenderDelayMilliseconds", u"500" },
        { u"RenderDuration", u"300" } });
    const std::pair<int64_t, int> expected[] = { { 0, 0 }, { 1, 0 }, { 300, 0 }, { 301, -1 },
        { 499, -1 }, { 500, 1 }, { 800, 1 }, { 801, -1 }, { 1100, 2 }, { 1700, 0 } };
    for (const auto& [time, page] : expected) {
        CAPTURE(time);
        scene.SetTime(1'000'000 + time);
        CHECK(scene.PageShown() == page);
    }

    // Without a gap.
    scene.Load({ { u"Text", threePages }, { u"RenderDelayMilliseconds", u"100" },
        { u"RenderDuration", u"300" } });
    for (const auto& [time, page] : { std::pair(0, 0), std::pair(300, 0), std::pair(301, 1),
             std::pair(601, 1), std::pair(602, 2) }) {
        CAPTURE(time);
        scene.SetTime(2'000'000 + time);
        CHECK(scene.PageShown() == page);
    }

    // With both at 0 in every frame in which the clock has moved on.
    scene.Load({ { u"Text", threePages } });
    for (const auto& [time, page] : { std::pair(0, 0), std::pair(0, 0), std::pair(1, 1),
             std::pair(17, 2), std::pair(17, 2), std::pair(18, 0) }) {
        CAPTURE(time);
        scene.SetTime(3'000'000 + time);
        CHECK(scene.PageShown() == page);
    }

    // A duration longer than the clock has run: the first page comes all the same.
    scene.Load({ { u"Text", threePages }, { u"RenderDuration", u"2147483647" } });
    CHECK(scene.PageShown() == 0);
    // The clock passes 2^32.
    scene.Load({ { u"Text", threePages }, { u"RenderDuration", u"100" } });
    scene.SetTime((int64_t { 1 } << 32) - 50);
    CHECK(scene.PageShown() == 0);
    scene.SetTime((int64_t { 1 } << 32) + 50);
    CHECK(scene.PageShown() == 0);
    scene.SetTime((int64_t { 1 } << 32) + 51);
    CHECK(scene.PageShown() == 1);
}

TEST_CASE("An empty page takes its time, and a new size starts before the first page again")
{
    Scene scene({ { u"Text", u"\r\n|\r\niiii" }, { u"RenderDuration", u"100" } });
    CHECK(scene.PageShown() == -1);
    scene.SetTime(1'000'100);
    CHECK(scene.PageShown() == -1);
    scene.SetTime(1'000'101);
    CHECK(scene.PageShown() == 1);
    const int32_t small = scene.Draw().Height();
    scene.SetSize(400, 200);
    CHECK(scene.PageShown() == -1);
    scene.SetTime(1'000'202);
    CHECK(scene.Draw().Height() > small * 3 / 2);
}

TEST_CASE("A frame with the same text costs no layout, wherever and in whatever colour it is")
{
    Scene scene({ { u"Text", u"Hamburg YEAR" },
        { u"TextLocationEquation", u"t=t+1;x1=t*.01;x2=x1+.9;y1=.1;y2=.9" },
        { u"TextColorEquation", u"t=t+.1;r=1;g=sin(t)^2;b=0" } });
    CTextVisComponent other; // in turns with the first
    other.SetRect({ 0, 0, 200, 100 });
    scene.audio.fields[VisTrackFieldYear] = u"1999";
    const auto workOfDraw = [&] {
        constexpr int64_t enough = int64_t { 1 } << 40;
        scene.context.workLeft = enough;
        scene.text.Draw(scene.buffer, scene.audio);
        const int64_t work = enough - scene.context.workLeft;
        other.Draw(scene.buffer, scene.audio);
        return work;
    };
    const int64_t first = workOfDraw();
    int64_t most = 0;
    for (int i = 0; i < 10; ++i)
        most = std::max(most, workOfDraw());
    CHECK(most < first / 10);
    scene.audio.fields[VisTrackFieldYear] = u"2000";
    CHECK(workOfDraw() > 3 * most / 2);

    // Without work left, nothing is drawn, and all of it later.
    const OQRect ink = scene.Draw();
    scene.context.workLeft = 0;
    CHECK(scene.Draw() == OQRect {});
    scene.context.workLeft = int64_t { 1 } << 40;
    CHECK(scene.Draw().Width() == ink.Width());
}

TEST_CASE("Whatever the numbers are, nothing is drawn outside and nothing breaks")
{
    const OQChar* numbers[] = { u"0/0", u"log(0)", u"-log(0)", u"1e300", u"-1e300", u"2147483648",
        u"-2147483649", u"4e9", u"0", u"-1" };
    for (const OQSize size : { OQSize { 1, 1 }, OQSize { 5, 5 }, OQSize { 7, 3 } }) {
        for (const OQChar* number : numbers) {
            const OQString n = number;
            Scene scene({ { u"Text", u"H\r\nARTIST" },
                            { u"TextLocationEquation",
                                u"v=" + n + u";x1=v;y1=-v;x2=if(t>0,v,1);y2=-v;t=1" },
                            { u"TextColorEquation", u"r=" + n + u";g=r;b=-r" },
                            { u"TextAlignment", n }, { u"FontSize", n }, { u"RenderDuration", n },
                            { u"RenderDelayMilliseconds", n } },
                size.cx, size.cy);
            scene.Draw();
            scene.Draw();
        }
    }
    for (const OQChar* fontSize : { u"1e38", u"-1e38", u"nan", u"1000", u"0", u"-3" }) {
        Scene scene({ { u"Text", u"HHH\r\nHH" }, { u"FontSize", fontSize },
            { u"TextLocationEquation", u"x1=-1e9;y1=-1;x2=1e9;y2=2" },
            { u"FontName", u"/etc/passwd" } });
        scene.Draw();
    }
    // A host that knows nothing.
    Scene scene({ { u"Text", u"BITRATE" } });
    scene.audio.expandsTo = u"";
    scene.audio.playInfo = {};
    CHECK(scene.Draw().Width() > 10);
}
