#include "host/analysis/AudioRecord.h"

#include <cstring>
#include <istream>
#include <ostream>

namespace pxvis::host {

namespace {

constexpr size_t HeadSize = 12;

int32_t LoadLittleEndian(const unsigned char* bytes)
{
    return static_cast<int32_t>(uint32_t { bytes[0] } | uint32_t { bytes[1] } << 8
        | uint32_t { bytes[2] } << 16 | uint32_t { bytes[3] } << 24);
}

void StoreLittleEndian(int32_t value, unsigned char* bytes)
{
    const auto bits = static_cast<uint32_t>(value);
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(bits >> (8 * i));
}

}

RecordRead ReadAudioRecord(std::istream& stream, AudioRecord& record)
{
    unsigned char bytes[sizeof(AudioRecord)];
    stream.read(reinterpret_cast<char*>(bytes), sizeof bytes);
    if (stream.gcount() != sizeof bytes)
        return stream.gcount() == 0 && stream.eof() ? RecordRead::End : RecordRead::Truncated;
    record.level = LoadLittleEndian(bytes);
    record.beat = LoadLittleEndian(bytes + 4);
    record.change = LoadLittleEndian(bytes + 8);
    std::memcpy(&record.block, bytes + HeadSize, sizeof record.block);
    return RecordRead::Record;
}

bool WriteAudioRecord(std::ostream& stream, const AudioRecord& record)
{
    unsigned char bytes[sizeof(AudioRecord)];
    StoreLittleEndian(record.level, bytes);
    StoreLittleEndian(record.beat, bytes + 4);
    StoreLittleEndian(record.change, bytes + 8);
    std::memcpy(bytes + HeadSize, &record.block, sizeof record.block);
    stream.write(reinterpret_cast<const char*>(bytes), sizeof bytes);
    return stream.good();
}

}
