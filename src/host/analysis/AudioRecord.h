#pragma once

#include <pxvis/IVisAudioData.h>

#include <cstdint>
#include <iosfwd>

namespace pxvis::host {

// What one step of the engine hears. As a stream of bytes, 3088 a record, little endian, it is what
// `pxvis analyze` writes and `pxvis frames` reads.
struct AudioRecord
{
    int32_t level = 0; // 0 to 255; 101 or more is an impact
    int32_t beat = 0; // 1 in the step of a beat
    int32_t change = 0; // 1 in a song's first record: its picture is new
    VisAudioBlock block {};
};

static_assert(sizeof(AudioRecord) == 3088);

enum class RecordRead
{
    Record,
    End, // the stream ended behind a whole record
    Truncated, // the stream ended, or failed, inside a record
};

RecordRead ReadAudioRecord(std::istream& stream, AudioRecord& record);

// False when the stream can't take it.
bool WriteAudioRecord(std::ostream& stream, const AudioRecord& record);

}
