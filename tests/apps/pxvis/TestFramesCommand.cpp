#include "TestFolder.h"
#include "TestFolderVariable.h"
#include "VisTesting.h"
#include "apps/pxvis/AnalyzeCommand.h"
#include "apps/pxvis/FramesCommand.h"
#include "host/analysis/AudioRecord.h"
#include "kernels/KernelForm.h"

#include <doctest/doctest.h>
#include <hwy/targets.h>

#include <filesystem>
#include <sstream>

namespace {

const std::string demoSong = PXVIS_SOURCE_DIR "/data/demo/pxvis-demo.opus";
const std::string shippedScripts = PXVIS_SOURCE_DIR "/data/Visualizations/Vis Studio";
const std::string demoScript = shippedScripts + "/Bright/Undertow.pxv";

std::string Records(int count, int32_t level)
{
    std::ostringstream stream;
    for (int i = 0; i < count; ++i) {
        pxvis::host::AudioRecord record;
        record.level = level;
        for (int band = 0; band < 512; ++band)
            record.block.spectrum[0][band] = record.block.spectrum[1][band]
                = static_cast<uint8_t>(band * i);
        pxvis::host::WriteAudioRecord(stream, record);
    }
    return stream.str();
}

struct Outcome
{
    int status;
    std::string output;
    std::string errors;
};

Outcome Frames(const std::string& script, int32_t width, int32_t height, const std::string& records,
    int64_t clockStartMs = 1'000'000, int32_t threads = 0)
{
    std::istringstream input(records);
    std::ostringstream output;
    std::ostringstream errors;
    pxvis::FramesOptions options;
    options.script = script;
    options.session.width = width;
    options.session.height = height;
    options.session.clockStartMs = clockStartMs;
    options.session.threads = threads;
    const int status = pxvis::RunFrames(options, input, output, errors);
    return { status, output.str(), errors.str() };
}

bool IsOneLine(const std::string& text)
{
    return !text.empty() && text.find('\n') == text.size() - 1;
}

}

TEST_CASE("Frames come top row first as blue, green, red, alpha, one for each record")
{
    // A plain bar that fills the picture from its base line, and a peak of its own colour at the
    // top.
    const TestFile script("frames.pxv",
        "<PXV Version=\"1.0\"><Component GUID=\"B21F9002-EF2E-4d5b-9D40-F61B8F3B34D8\"><Properties>"
        "<Mirrored>No</Mirrored><BarWidth>1</BarWidth><BarSpacing>0</BarSpacing><FFTElements>1</"
        "FFTElements>"
        "<TopWeight>0</TopWeight><UpScale>100</UpScale><Gradient>{1, 1} [[0x010203]]</Gradient>"
        "<PeakColor>0x0A0B0C</PeakColor></Properties></Component></PXV>");
    std::string records = Records(2, 0);
    std::fill_n(
        records.data() + 3088 + 12 + 2052, 1024, '\xFF'); // 255 * 2 / 3 = 170, a height of 664
    const Outcome frames = Frames(script.Path(), 10, 10, records);
    CHECK(frames.status == 0);
    REQUIRE(frames.output.size() == 800);
    const std::string second = frames.output.substr(400);
    const auto pixel
        = [&](int x, int y) { return second.substr(static_cast<size_t>(y * 10 + x) * 4, 4); };
    CHECK(pixel(0, 0) == std::string("\0\0\0\xFF", 4));
    CHECK(pixel(0, 2) == std::string("\x0C\x0B\x0A\0", 4));
    CHECK(pixel(9, 4) == std::string("\x03\x02\x01\0", 4));
    CHECK(pixel(9, 9) == std::string("\x03\x02\x01\0", 4));
}

TEST_CASE("The same records give the same pictures, and the clock's start gives other ones")
{
    const std::string records = Records(12, 255);
    const TestFile script("random.pxv",
        "<PXV Version=\"1.0\"><Component GUID=\"B21F9002-EF2E-4d5b-9D40-F61B8F3B34D8\"/>"
        "<Component GUID=\"EB13A0B7-0B36-4bea-B95A-92ED8FEA86CD\"><Properties><ScrollEquation>"
        "Impact Swerve "
        "(large)</ScrollEquation><DrawFrequency>1</DrawFrequency></Properties></Component></PXV>");
    const Outcome first = Frames(script.Path(), 64, 36, records);
    CHECK(first.status == 0);
    CHECK(first.output == Frames(script.Path(), 64, 36, records).output);
    CHECK(first.output != Frames(script.Path(), 64, 36, records, 1'000'001).output);
}

TEST_CASE(
    "Each shipped script's pictures are the same on any number of threads and instruction set")
{
    using namespace pxvis::kernels;
    const std::string records = Records(3, 120);
    int scripts = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(shippedScripts)) {
        if (entry.path().extension() != ".pxv")
            continue;
        ++scripts;
        INFO(entry.path().string());
        // Beyond 50,000 pixels passes run in bands; odd sizes have rows that no vector fits.
        const auto frames = [&](int32_t threads) {
            return Frames(entry.path(), 287, 179, records, 1'000'000, threads).output;
        };
        ChooseKernels(KernelForm::Scalar);
        const std::string expected = frames(1);
        CHECK(expected.size() == size_t { 3 } * 287 * 179 * 4);
        ChooseKernels(KernelForm::Auto);
        for (const int32_t threads : { 1, 2, 3, 7 })
            CHECK(frames(threads) == expected);
        // The best set was the one just now.
        const int64_t sets = hwy::SupportedTargets();
        for (int64_t left = sets & (sets - 1); left != 0; left &= left - 1) {
            hwy::SetSupportedTargetsForTest(left & -left);
            CHECK(frames(2) == expected);
        }
        hwy::SetSupportedTargetsForTest(0);
    }
    CHECK(scripts > 20);
}

TEST_CASE("A map's equation leaves to others what its last point sets, in whatever form it runs")
{
    const TestFile script("shared.pxv",
        "<PXV Version=\"1.0\"><Component GUID=\"B21F9002-EF2E-4d5b-9D40-F61B8F3B34D8\"/>"
        "<Component GUID=\"DCE4B5AB-25A0-432f-B4A2-8E91B9FD1060\"><Properties><TransformEquation>"
        "beat=1;d=d*.98|beat=d;d=d*.97</TransformEquation><ScrollEquation>x=beat*.1</"
        "ScrollEquation>"
        "<TransformChangeEquation>c=1</TransformChangeEquation></Properties></Component></PXV>");
    using namespace pxvis::kernels;
    ChooseKernels(KernelForm::Scalar);
    const std::string expected = Frames(script.Path(), 287, 179, Records(6, 255)).output;
    ChooseKernels(KernelForm::Auto);
    CHECK(Frames(script.Path(), 287, 179, Records(6, 255)).output == expected);
}

TEST_CASE("A truncated record stream gives the whole frames, one line and a failure")
{
    const std::string records = Records(2, 0);
    const Outcome frames = Frames(demoScript, 16, 16, records.substr(0, records.size() - 1));
    CHECK(frames.status == 1);
    CHECK(frames.output.size() == 16u * 16 * 4);
    CHECK(IsOneLine(frames.errors));
    CHECK(Frames(demoScript, 16, 16, "").status == 0);
}

TEST_CASE("Bad scripts and sizes are refused in one line before any picture")
{
    const TestFile unclosed("unclosed.pxv", "<PXV Version=\"1.0\"><Layer></PXV>");
    const TestFile other("other.pxv", "<html/>");
    const TestFile version("version.pxv", "<PXV Version=\"2.0\"/>");
    for (const std::string& script : { unclosed.Path(), other.Path(), version.Path(),
             std::string("/nowhere.pxv"), std::string("/"), std::string("Dense"), demoSong }) {
        const Outcome frames = Frames(script, 16, 16, Records(1, 0));
        CHECK(frames.status == 1);
        CHECK(frames.output.empty());
        CHECK(IsOneLine(frames.errors));
    }
    for (const int32_t side : { 0, -1, 7, 100000, INT32_MAX, INT32_MIN }) {
        const Outcome frames = Frames(demoScript, side, 16, Records(1, 0));
        CHECK(frames.status == 2);
        CHECK(IsOneLine(frames.errors));
    }
}

TEST_CASE("Frames take a script by its name")
{
    const std::string records = Records(2, 255);
    const Outcome named = Frames("undertow", 16, 16, records);
    CHECK(named.status == 0);
    CHECK(named.output == Frames(demoScript, 16, 16, records).output);
    const TestFolder folder;
    const TestFolderVariable data("XDG_DATA_HOME", folder.Path("").c_str());
    const std::string own = "pxvis/Visualizations/Vis Studio/Folder of One";
    std::filesystem::create_directories(folder / own);
    folder.Write(own + "/Only.pxv", "<PXV Version=\"1.0\"/>");
    CHECK(Frames("folder of one", 16, 16, records).status == 0);
    CHECK(Frames("undertwo", 16, 16, records).errors
        == "pxvis: undertwo: no such script; pxvis list scripts tells the names\n");
}

TEST_CASE(
    "Analysis writes 60 records a second of the part that is asked for, the same as of the whole")
{
    const auto analyze = [](double from, double to) {
        std::ostringstream output;
        std::ostringstream errors;
        CHECK(pxvis::RunAnalyze({ demoSong, {}, from, to }, output, errors) == 0);
        CHECK(errors.str().empty());
        return output.str();
    };
    const std::string whole = analyze(0, 3);
    REQUIRE(whole.size() == 180u * 3088);
    const std::string part = analyze(2, 3);
    REQUIRE(part.size() == 60u * 3088);
    CHECK(part.substr(12) == whole.substr(120 * 3088 + 12)); // but for the change flag

    std::ostringstream output;
    std::ostringstream errors;
    CHECK(pxvis::RunAnalyze({ "/nowhere.mp3", {}, 0, -1 }, output, errors) == 1);
    CHECK(IsOneLine(errors.str()));
    CHECK(output.str().empty());
}
