#include "TestFolder.h"
#include "TestFolderVariable.h"
#include "apps/pxvis/RenderCommand.h"
#include "foundation/IOQImage.h"
#include "foundation/OQSiblingModules.h"
#include "foundation/OQString.h"
#include "host/GStreamer.h"
#include "host/SongFile.h"

#include <doctest/doctest.h>

#include <memory>
#include <random>
#include <sstream>

namespace {

constexpr int32_t width = 64;
constexpr int32_t height = 36;

// Rows bottom-up, as an image keeps them.
uint32_t CoverPixel(int32_t i)
{
    return 0xFF000000u | (0x010203u * static_cast<uint32_t>(i % 80 + 1));
}

std::string WriteCover(const TestFolder& folder)
{
    const std::unique_ptr<IOQImage> cover(OQCreateImage());
    REQUIRE(cover);
    REQUIRE(cover->Create(width, height, 0, 0));
    for (int32_t i = 0; i < width * height; ++i)
        cover->GetBits()[i] = CoverPixel(i);
    REQUIRE(cover->SavePng(OQString::FromUtf8(folder.Path("cover.png")).GetText(), true));
    return folder.Read("cover.png");
}

// Two seconds of noise, which moves all bars.
std::string WriteSong(const TestFolder& folder, const std::string& picture)
{
    std::string error;
    REQUIRE(pxvis::host::InitializeGStreamer(error));
    std::mt19937 random(1);
    std::vector<float> samples(2 * 2 * 44100);
    for (float& sample : samples)
        sample = static_cast<float>(random() % 2000) / 1000.0f - 1.0f;
    GstTagList* tags = gst_tag_list_new_empty();
    const pxvis::host::GstHolder<GstTagList> holder(tags);
    if (!picture.empty()) {
        GstBuffer* buffer = gst_buffer_new_memdup(picture.data(), picture.size());
        GstCaps* caps = gst_caps_new_empty_simple("image/png");
        GstSample* cover = gst_sample_new(buffer, caps, nullptr, nullptr);
        gst_tag_list_add(tags, GST_TAG_MERGE_APPEND, GST_TAG_IMAGE, cover, nullptr);
        gst_sample_unref(cover);
        gst_caps_unref(caps);
        gst_buffer_unref(buffer);
    }
    const std::string path = folder.Path("song.flac");
    REQUIRE_MESSAGE(WriteSongFile(path, samples, "flacenc", tags, error), error);
    return path;
}

// The picture at one second, through a script whose bars take the cover.
std::unique_ptr<IOQImage> Render(const TestFolder& folder, const std::string& song)
{
    folder.Write("cover.pxv",
        "<PXV Version=\"1.0\">\r\n"
        "<Component GUID=\"B21F9002-EF2E-4d5b-9D40-F61B8F3B34D8\" Name=\"Spectrum Analyzer\">\r\n"
        "<Properties>\r\n<DrawSource>Image</DrawSource>\r\n<DrawPeaks>No</DrawPeaks>\r\n"
        "</Properties>\r\n</Component>\r\n</PXV>\r\n");
    pxvis::RenderOptions options;
    options.song = song;
    options.output = folder.Path("out.png");
    options.script = folder.Path("cover.pxv");
    options.width = width;
    options.height = height;
    options.at = 1;
    options.replace = true;
    std::ostringstream errors;
    REQUIRE_MESSAGE(pxvis::RunRender(options, errors) == 0, errors.str());
    std::unique_ptr<IOQImage> picture(OQCreateImage());
    REQUIRE(picture->Load(
        OQString::FromUtf8(options.output).GetText(), width, height, 0, -1, 1, 0, 0, 0, 0));
    return picture;
}

}

TEST_CASE("The cover in a song's file fills the bars of its picture")
{
    const TestFolder folder;
    const TestVariable cache("XDG_CACHE_HOME", folder.Path("cache").c_str());
    const TestFolderVariable data("XDG_DATA_HOME", folder.Path("data").c_str());
    const auto picture = Render(folder, WriteSong(folder, WriteCover(folder)));
    int filled = 0;
    for (int32_t i = 0; i < width * height; ++i) {
        const uint32_t pixel = picture->GetBits()[i];
        if ((pixel & 0xFFFFFF) == 0)
            continue;
        ++filled;
        CHECK(pixel == CoverPixel(i));
    }
    CHECK(filled > width);
    // The file that carried the cover to the picture is gone.
    CHECK(std::filesystem::is_empty(folder.Path("cache/pxvis")));
}
