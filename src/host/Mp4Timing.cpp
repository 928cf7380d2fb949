#include "host/Mp4Timing.h"

#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

namespace pxvis::host {

namespace {

constexpr uint64_t IndexLimit = uint64_t { 1 } << 30;

// A box of the file format: its content within the index, without size and type.
struct Box
{
    char type[5] = {};
    size_t begin = 0;
    size_t end = 0;

    bool Is(const char* name) const { return std::strcmp(type, name) == 0; }
};

// Big-endian numbers in a block of bytes. Reading or writing beyond it is remembered, not done.
class Index
{
public:
    std::vector<unsigned char> bytes;
    bool sound = true;

    uint64_t Get(size_t at, int size)
    {
        uint64_t value = 0;
        for (int i = 0; i < size; ++i)
            value = value << 8 | (Fits(at, size) ? bytes[at + i] : 0);
        return value;
    }

    void Put(size_t at, int size, uint64_t value)
    {
        for (int i = 0; i < size && Fits(at, size); ++i)
            bytes[at + i] = static_cast<unsigned char>(value >> 8 * (size - 1 - i));
    }

    // The boxes from begin to end, one behind the other.
    std::vector<Box> Boxes(size_t begin, size_t end)
    {
        std::vector<Box> boxes;
        while (sound && begin + 8 <= end) {
            Box box;
            const uint64_t size = Get(begin, 4);
            if (size < 8 || size > end - begin) {
                sound = false;
                break;
            }
            std::memcpy(box.type, bytes.data() + begin + 4, 4);
            box.begin = begin + 8;
            box.end = begin + size;
            boxes.push_back(box);
            begin = box.end;
        }
        return boxes;
    }

    // The first box along a path of types; an empty one when there is none.
    Box Find(Box within, std::initializer_list<const char*> path)
    {
        for (const char* name : path) {
            const std::vector<Box> boxes = Boxes(within.begin, within.end);
            const auto found = std::find_if(
                boxes.begin(), boxes.end(), [name](const Box& box) { return box.Is(name); });
            if (found == boxes.end())
                return {};
            within = *found;
        }
        return within;
    }

private:
    bool Fits(size_t at, int size)
    {
        const bool fits = at <= bytes.size() && static_cast<size_t>(size) <= bytes.size() - at;
        sound = sound && fits;
        return fits;
    }
};

bool ReadAt(int descriptor, void* to, size_t count, uint64_t offset)
{
    char* at = static_cast<char*>(to);
    while (count > 0) {
        const ssize_t got = pread(descriptor, at, count, static_cast<off_t>(offset));
        if (got <= 0)
            return false;
        at += got;
        offset += static_cast<uint64_t>(got);
        count -= static_cast<size_t>(got);
    }
    return true;
}

// Finds the movie box among the file's own boxes and reads its content.
bool ReadIndex(int descriptor, Index& index, uint64_t& offset)
{
    for (offset = 0;;) {
        Index head;
        head.bytes.resize(16);
        if (!ReadAt(descriptor, head.bytes.data(), 8, offset))
            return false;
        uint64_t size = head.Get(0, 4);
        uint64_t headSize = 8;
        if (size == 1) {
            headSize = 16;
            if (!ReadAt(descriptor, head.bytes.data(), headSize, offset))
                return false;
            size = head.Get(8, 8);
        }
        if (size < headSize)
            return false;
        if (std::memcmp(head.bytes.data() + 4, "moov", 4) == 0) {
            if (size - headSize > IndexLimit)
                return false;
            offset += headSize;
            index.bytes.resize(size - headSize);
            return ReadAt(descriptor, index.bytes.data(), index.bytes.size(), offset);
        }
        offset += size;
    }
}

// Where the fields of a full box lie that exist in a 32 and a 64 bit version.
struct WideBox
{
    size_t at = 0;
    int size = 4;
};

// Fields before the duration: two times, and what else is given.
WideBox DurationOf(Index& index, const Box& box, size_t between)
{
    const int size = index.Get(box.begin, 1) == 1 ? 8 : 4;
    return { box.begin + 4 + 2 * static_cast<size_t>(size) + between, size };
}

void WriteEdit(Index& index, const Box& list, uint64_t duration, uint32_t skip)
{
    const int size = index.Get(list.begin, 1) == 1 ? 8 : 4;
    const size_t entry = list.begin + 8;
    index.sound = index.sound && index.Get(list.begin + 4, 4) == 1;
    index.Put(entry, size, duration);
    index.Put(entry + static_cast<size_t>(size), size, skip);
}

}

bool WriteMp4SoundTiming(int descriptor, const Mp4SoundTiming& timing, std::string& error)
{
    error = "the index of the video is not as expected";
    Index index;
    uint64_t offset = 0;
    if (timing.rate == 0 || !ReadIndex(descriptor, index, offset))
        return false;
    const Box movie = { "moov", 0, index.bytes.size() };
    const Box movieHead = index.Find(movie, { "mvhd" });
    const WideBox movieDuration = DurationOf(index, movieHead, 4);
    const uint64_t movieScale = index.Get(movieDuration.at - 4, 4);
    const uint64_t heard = (timing.length * movieScale + timing.rate / 2) / timing.rate;

    uint64_t longest = 0;
    int soundTracks = 0;
    for (const Box& track : index.Boxes(movie.begin, movie.end)) {
        if (!track.Is("trak"))
            continue;
        const Box trackHead = index.Find(track, { "tkhd" });
        const WideBox duration = DurationOf(index, trackHead, 8);
        const Box handler = index.Find(track, { "mdia", "hdlr" });
        if (index.Get(handler.begin + 8, 4) == 0x736F756E) { // "soun"
            const Box list = index.Find(track, { "edts", "elst" });
            WriteEdit(index, list, heard, timing.skip);
            index.Put(duration.at, duration.size, heard);
            ++soundTracks;
            if (timing.opus) {
                // The description behind its head of 8 bytes, then a sound entry's 28 bytes. The
                // muxer may have stored the run-up with its bytes exchanged.
                Box description = index.Find(track, { "mdia", "minf", "stbl", "stsd" });
                description.begin += 8;
                Box entry = index.Find(description, { "Opus" });
                entry.begin += 28;
                const Box config = index.Find(entry, { "dOps" });
                index.sound = index.sound && config.end != 0;
                index.Put(config.begin + 2, 2, timing.skip);
            }
            index.sound = index.sound && list.end != 0;
        }
        longest = std::max(longest, index.Get(duration.at, duration.size));
    }
    index.Put(movieDuration.at, movieDuration.size, longest);
    if (!index.sound || soundTracks != 1 || movieHead.end == 0)
        return false;
    const ssize_t written
        = pwrite(descriptor, index.bytes.data(), index.bytes.size(), static_cast<off_t>(offset));
    if (written != static_cast<ssize_t>(index.bytes.size()))
        return false;
    error.clear();
    return true;
}

}
