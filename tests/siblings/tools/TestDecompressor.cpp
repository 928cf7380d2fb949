#include "SlotOf.h"
#include "siblings/GzipBytes.h"
#include "siblings/tools/ToolsTesting.h"

namespace {

// What comes out; "-" if it failed, which leaves nothing.
std::string Plain(TestTools& tools, const std::string& bytes, uint64_t maximumSize = 1000)
{
    OQByteBuffer buffer;
    buffer.SetSize(7);
    OQDllBuffer plain(buffer);
    const bool done = tools->GetDecompressor(1)->Decompress(
        reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), maximumSize, plain);
    if (!done) {
        CHECK(buffer.GetSize() == 0);
        return "-";
    }
    return { reinterpret_cast<const char*>(buffer.GetData()), buffer.GetSize() };
}

}

TEST_CASE("Streams of gzip and zlib become plain bytes, up to the size that is allowed")
{
    TestTools tools;
    const std::string hello = "Hello, hello, hello";
    for (const std::string& bytes : { kGzipHello, kZlibHello }) {
        CHECK(Plain(tools, bytes) == hello);
        CHECK(Plain(tools, bytes, hello.size()) == hello);
        CHECK(Plain(tools, bytes, hello.size() - 1) == "-");
        CHECK(Plain(tools, bytes, 0) == "-");
        CHECK(Plain(tools, bytes + "\n and more", hello.size()) == hello);
    }
    CHECK(Plain(tools, kGzipHello + kGzipHello) == hello + hello);
    CHECK(Plain(tools, kGzipHello + kGzipHello, hello.size()) == "-");

    constexpr size_t zeros = 65536;
    CHECK(Plain(tools, GzipBomb(3), UINT64_MAX) == std::string(3 * zeros, '\0'));
    CHECK(Plain(tools, GzipBomb(3), 3 * zeros) == std::string(3 * zeros, '\0'));
    CHECK(Plain(tools, GzipBomb(3), 3 * zeros - 1) == "-");
    CHECK(Plain(tools, GzipBomb(20000), 3 * zeros) == "-");
}

TEST_CASE("A stream that is cut off or damaged anywhere gives nothing")
{
    TestTools tools;
    for (const std::string& bytes : { kGzipHello, kZlibHello, kGzipZeros }) {
        for (size_t length = 0; length < bytes.size(); ++length)
            CHECK(Plain(tools, bytes.substr(0, length), 100'000) == "-");
    }
    CHECK(Plain(tools, kGzipHello + kGzipHello.substr(0, 15)) == "-");
    for (size_t at = 10; at < kGzipHello.size(); ++at) { // what is before has no checksum
        std::string damaged = kGzipHello;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x40);
        CHECK(Plain(tools, damaged) == "-");
    }
    CHECK(Plain(tools, "just a text") == "-");
    OQByteBuffer buffer;
    OQDllBuffer plain(buffer);
    CHECK_FALSE(tools->GetDecompressor(1)->Decompress(nullptr, 0, 10, plain));
    CHECK(SlotOf(&IOQDecompressor::Decompress) == 0);
}
