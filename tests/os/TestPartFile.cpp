#include "os/PartFile.h"

#include "TestFolder.h"

#include <doctest/doctest.h>

using pxvis::os::PartFile;

TEST_CASE("A part file takes its name when it is kept, and leaves no trace when it isn't")
{
    const TestFolder folder;
    const std::string target = folder.Path("a");
    folder.Write("a", "old");
    {
        PartFile first(target);
        PartFile second(target);
        REQUIRE(first.IsOpen());
        REQUIRE(second.IsOpen());
        CHECK(first.Write("one"));
        CHECK(second.Write("two"));
        CHECK(folder.Read("a") == "old");
        CHECK(second.KeepAs(target));
        CHECK(folder.Read("a") == "two");
        CHECK(folder.Count() == 2);
    }
    CHECK(folder.Names() == "a ");
    CHECK(folder.Read("a") == "two");
    {
        PartFile file(target);
        CHECK_FALSE(file.KeepAs(folder.Path("missing/a")));
    }
    CHECK(folder.Names() == "a ");
    CHECK_FALSE(PartFile(folder.Path("missing/a")).IsOpen());
}

TEST_CASE("A part file of a given name takes the place of what a killed writer left")
{
    const TestFolder folder;
    folder.Write("a.new", "half");
    PartFile file(folder.Path("a"), "a.new");
    REQUIRE(file.IsOpen());
    CHECK(file.Write("whole"));
    CHECK(folder.Names() == "a.new ");
    CHECK(file.KeepAs(folder.Path("a")));
    CHECK(folder.Names() == "a ");
    CHECK(folder.Read("a") == "whole");
}
