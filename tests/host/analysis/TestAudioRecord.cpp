#include "host/analysis/AudioRecord.h"

#include <doctest/doctest.h>

#include <cstring>
#include <sstream>

using namespace pxvis::host;

TEST_CASE("A record is 3088 bytes: level, beat, change, then the audio block, low bytes first")
{
    AudioRecord record;
    record.level = 0x01020304;
    record.beat = 1;
    record.change = -2;
    record.block.waveform[0][0] = -128;
    record.block.waveform[1][1023] = 127;
    record.block.spectrum[0][0] = 200;
    record.block.spectrum[1][511] = 255;

    std::stringstream stream;
    REQUIRE(WriteAudioRecord(stream, record));
    const std::string bytes = stream.str();
    REQUIRE(bytes.size() == 3088);
    CHECK(bytes.substr(0, 12) == std::string("\4\3\2\1\1\0\0\0\xFE\xFF\xFF\xFF", 12));
    CHECK(static_cast<unsigned char>(bytes[12]) == 0x80);
    CHECK(bytes[12 + 2047] == 127);
    CHECK(static_cast<unsigned char>(bytes[12 + 2052]) == 200);
    CHECK(static_cast<unsigned char>(bytes[3087]) == 255);

    AudioRecord read;
    CHECK(ReadAudioRecord(stream, read) == RecordRead::Record);
    CHECK(std::memcmp(&read, &record, sizeof read) == 0);
    CHECK(ReadAudioRecord(stream, read) == RecordRead::End);
}

TEST_CASE("A stream that ends inside a record is told from one that ends behind it")
{
    std::stringstream stream;
    WriteAudioRecord(stream, {});
    const std::string whole = stream.str();
    for (const size_t size : { 1, 12, 3087 }) {
        std::stringstream cut(whole + whole.substr(0, size));
        AudioRecord record;
        CHECK(ReadAudioRecord(cut, record) == RecordRead::Record);
        CHECK(ReadAudioRecord(cut, record) == RecordRead::Truncated);
    }
    std::stringstream failing;
    failing.setstate(std::ios::badbit);
    AudioRecord record;
    CHECK(ReadAudioRecord(failing, record) == RecordRead::Truncated);
    CHECK_FALSE(WriteAudioRecord(failing, record));
}
