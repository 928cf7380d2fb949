#include "siblings/tools/CDecompressor.h"

#include "foundation/IOQDllString.h"

#include <algorithm>
#include <zlib.h>

namespace {

constexpr uint64_t kFirstRoom = 64 * 1024;
constexpr uint64_t kLongestStep = 1 << 30; // zlib counts in 32 bits

class Inflation
{
public:
    Inflation()
        : m_isOpen(inflateInit2(&m_stream, kWindowBits + kEitherHeader) == Z_OK)
    {
    }

    ~Inflation()
    {
        if (m_isOpen)
            inflateEnd(&m_stream);
    }

    Inflation(const Inflation&) = delete;
    Inflation& operator=(const Inflation&) = delete;

    bool Run(const uint8_t* bytes, uint64_t size, uint64_t maximumSize, IOQDllBuffer& plain)
    {
        if (!m_isOpen || !bytes)
            return false;
        const uint8_t* const end = bytes + size;
        uint64_t given = 0;
        for (;;) {
            if (given == plain.GetSize() && !Grow(plain, maximumSize))
                return false;
            m_stream.next_in = const_cast<uint8_t*>(bytes); // only read
            m_stream.avail_in
                = static_cast<uInt>(std::min(static_cast<uint64_t>(end - bytes), kLongestStep));
            m_stream.next_out = plain.GetData() + given;
            m_stream.avail_out = static_cast<uInt>(std::min(plain.GetSize() - given, kLongestStep));
            const int result = inflate(&m_stream, Z_NO_FLUSH);
            bytes = m_stream.next_in;
            given = static_cast<uint64_t>(m_stream.next_out - plain.GetData());
            if (given > maximumSize)
                return false;
            if (result == Z_STREAM_END && !StartsGzip(bytes, end))
                return plain.SetSize(given);
            if (result == Z_STREAM_END ? inflateReset(&m_stream) != Z_OK : result != Z_OK)
                return false; // without progress, too: there is always room
        }
    }

private:
    static constexpr int kWindowBits = 15;
    static constexpr int kEitherHeader = 32; // of gzip or of zlib

    static bool StartsGzip(const uint8_t* bytes, const uint8_t* end)
    {
        return end - bytes >= 2 && bytes[0] == 0x1F && bytes[1] == 0x8B;
    }

    // One byte more than may be given tells that there is too much.
    static bool Grow(IOQDllBuffer& plain, uint64_t maximumSize)
    {
        const uint64_t size = plain.GetSize();
        return plain.SetSize(size + std::min(std::max(size, kFirstRoom), maximumSize - size + 1));
    }

    z_stream m_stream {};
    bool m_isOpen;
};

}

bool CDecompressor::Decompress(
    const uint8_t* bytes, uint64_t size, uint64_t maximumSize, IOQDllBuffer& plain) const
{
    plain.SetSize(0);
    constexpr uint64_t mostBytes = PTRDIFF_MAX / 2;
    if (Inflation().Run(bytes, size, std::min(maximumSize, mostBytes), plain))
        return true;
    plain.SetSize(0);
    return false;
}
