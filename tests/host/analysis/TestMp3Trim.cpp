#include "host/analysis/Mp3Trim.h"

#include <doctest/doctest.h>

#include <string>

using namespace pxvis::host;

namespace {

struct FrameParts
{
    std::string head = std::string("\xFF\xFB\xE0\x00", 4); // MPEG-1 layer III, stereo
    size_t sideInformation = 32;
    std::string tag = "Info";
    uint32_t fields = 0xF;
    uint32_t count = 231;
    std::string encoder = "LAME3.100";
    int delay = 576;
    int padding = 936;
};

Mp3Trim Trim(const FrameParts& parts)
{
    const auto number = [](uint32_t value) {
        return std::string { static_cast<char>(value >> 24), static_cast<char>(value >> 16),
            static_cast<char>(value >> 8), static_cast<char>(value) };
    };
    std::string frame
        = parts.head + std::string(parts.sideInformation, '\0') + parts.tag + number(parts.fields);
    if (parts.fields & 1)
        frame += number(parts.count);
    if (parts.fields & 2)
        frame += number(242415);
    if (parts.fields & 4)
        frame += std::string(100, '\1');
    if (parts.fields & 8)
        frame += number(57);
    frame += parts.encoder + std::string(9 - parts.encoder.size() + 12, '\0');
    const uint32_t both = static_cast<uint32_t>(parts.delay << 12 | parts.padding);
    frame += number(both << 8);
    return ReadMp3Trim(reinterpret_cast<const unsigned char*>(frame.data()), frame.size());
}

}

TEST_CASE("The start and the length of an mp3 come from its header frame")
{
    const Mp3Trim trim = Trim({});
    CHECK(trim.isLayer3);
    CHECK(trim.isHeaderFrame);
    CHECK(trim.start == 576 + 529);
    CHECK(trim.length == 231 * 1152 - 576 - 936);

    // The header moves with the channels, the version and the fields in front.
    FrameParts mono;
    mono.head = std::string("\xFF\xFB\xE0\xC0", 4);
    mono.sideInformation = 17;
    mono.tag = "Xing";
    mono.delay = 0xABC;
    mono.padding = 0x123;
    CHECK(Trim(mono).start == 0xABC + 529);
    CHECK(Trim(mono).length == 231 * 1152 - 0xABC - 0x123);

    FrameParts version2;
    version2.head = std::string("\xFF\xF3\xE0\x00", 4);
    version2.sideInformation = 17;
    version2.fields = 0x1;
    CHECK(Trim(version2).start == 576 + 529);
    CHECK(Trim(version2).length == 231 * 576 - 576 - 936);

    FrameParts uncounted;
    uncounted.fields = 0;
    CHECK(Trim(uncounted).start == 576 + 529);
    CHECK(Trim(uncounted).length == -1);
}

TEST_CASE("Without a usable header an mp3 has the usual delay and runs to its end")
{
    FrameParts unnamed;
    unnamed.encoder.clear();
    unnamed.delay = unnamed.padding = 0;
    FrameParts sound;
    sound.tag = "\1\2\3\4";
    FrameParts shrunk; // cut from a longer file, fewer samples than it pads
    shrunk.count = 1;
    for (const FrameParts& parts : { unnamed, sound, shrunk }) {
        CHECK(Trim(parts).start == 576 + 529);
        CHECK(Trim(parts).length == -1);
    }
    CHECK(Trim(unnamed).isHeaderFrame);
    CHECK_FALSE(Trim(sound).isHeaderFrame);
}

TEST_CASE("Other layers and fragments have no trim, and short frames are not read past their end")
{
    const unsigned char layer2[] = { 0xFF, 0xFD, 0xE0, 0x00 };
    const unsigned char aac[] = { 0xFF, 0xF1, 0x50, 0x80 };
    CHECK_FALSE(ReadMp3Trim(layer2, sizeof layer2).isLayer3);
    CHECK_FALSE(ReadMp3Trim(aac, sizeof aac).isLayer3);
    std::string frame = std::string("\xFF\xFB\xE0\x00", 4) + std::string(32, '\0') + "Info"
        + std::string(4 + 24, '\xFF');
    for (size_t size = 0; size <= frame.size(); ++size) {
        const std::string exact = frame.substr(0, size); // on the heap, so that a sanitizer sees it
        const Mp3Trim trim
            = ReadMp3Trim(reinterpret_cast<const unsigned char*>(exact.data()), exact.size());
        CHECK(trim.isLayer3 == (size >= 4));
        CHECK(trim.length == -1);
    }
}
