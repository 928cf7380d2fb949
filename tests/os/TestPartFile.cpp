#include "os/PartFile.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;
using pxvis::os::PartFile;

TEST_CASE("A part file takes its name when it is kept, and leaves no trace when it isn't")
{
    std::string name = (fs::temp_directory_path() / "pxvis-part-XXXXXX").string();
    const fs::path folder = mkdtemp(name.data());
    const std::string target = (folder / "a").string();
    const auto content = [&target] {
        std::ifstream file(target);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    const auto count = [&folder] { return std::distance(fs::directory_iterator(folder), {}); };
    std::ofstream(target) << "old";
    {
        PartFile first(target);
        PartFile second(target);
        REQUIRE(first.IsOpen());
        REQUIRE(second.IsOpen());
        CHECK(first.Write("one"));
        CHECK(second.Write("two"));
        CHECK(content() == "old");
        CHECK(second.KeepAs(target));
        CHECK(content() == "two");
        CHECK(count() == 2);
    }
    CHECK(count() == 1);
    CHECK(content() == "two");
    {
        PartFile file(target);
        CHECK_FALSE(file.KeepAs((folder / "missing" / "a").string()));
    }
    CHECK(count() == 1);
    CHECK_FALSE(PartFile((folder / "missing" / "a").string()).IsOpen());
    fs::remove_all(folder);
}
