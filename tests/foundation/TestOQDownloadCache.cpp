#include "foundation/OQDownloadCache.h"

#include "TestFolder.h"

#include <doctest/doctest.h>

#include <chrono>

TEST_CASE("A cache of downloads keeps within its bounds, the newest longest")
{
    const TestFolder folder;
    const OQDownloadCache cache(OQString::FromUtf8(folder.Path("a/b")));
    OQDownload found;
    const auto name = [](int number) { return "http://a/" + std::to_string(number); };
    const auto age = [&] { // all that is there
        for (const auto& entry : std::filesystem::directory_iterator(folder / "a/b"))
            std::filesystem::last_write_time(
                entry, entry.last_write_time() - std::chrono::hours(1));
    };
    const int most = static_cast<int>(OQDownloadCache::MostFiles);
    CHECK_FALSE(cache.Find(name(0), found));
    for (int i = 0; i < most; ++i) {
        REQUIRE(cache.Keep(name(i), { "\"tag\"", "", "text" }));
        if (i == 0 || i == 1)
            age();
    }
    CHECK(cache.Find(name(0), found));
    folder.Write("a/b/mine.txt", "not a copy");
    CHECK(cache.Keep("http://a/more", { "", "yesterday", std::string("a\nb\0c", 5) }));
    CHECK_FALSE(cache.Find(name(0), found));
    CHECK(found.bytes.empty());
    CHECK(cache.Find(name(1), found));
    CHECK(cache.Find("http://a/more", found));
    CHECK(found.bytes == std::string("a\nb\0c", 5));
    CHECK(found.lastModified == "yesterday");
    CHECK(found.entityTag.empty());

    age();
    const std::string large(OQDownloadCache::LargestFile, 'x');
    CHECK_FALSE(cache.Keep("http://a/large", { "t", "", large + "x" }));
    const auto mostLarge = OQDownloadCache::MostBytes / OQDownloadCache::LargestFile;
    for (uint64_t i = 0; i < mostLarge; ++i)
        CHECK(cache.Keep("http://b/" + std::to_string(i), { "t", "", large }));
    CHECK_FALSE(cache.Find(name(2), found));
    CHECK(cache.Find("http://b/" + std::to_string(mostLarge - 1), found));
    uint64_t bytes = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder / "a/b"))
        bytes += entry.file_size();
    CHECK(bytes <= OQDownloadCache::MostBytes + 100);
    CHECK(folder.Read("a/b/mine.txt") == "not a copy");

    CHECK_FALSE(cache.Keep("http://a/none", { "", "", "text" }));
    CHECK_FALSE(cache.Keep("http://a\nb", { "t", "", "text" }));
    CHECK_FALSE(cache.Keep("http://a", { "t\rHost: b", "", "text" }));
    CHECK_FALSE(OQDownloadCache(OQString()).Keep("http://a", { "t", "", "text" }));
}
