#include "host/OutputFile.h"

#include "FileSizeLimit.h"
#include "TestFolder.h"

#include <doctest/doctest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

using pxvis::host::OutputFile;

TEST_CASE("An output file has its name only after the commit")
{
    const TestFolder folder;
    const std::string path = folder.Path("out.png");
    std::string error;
    {
        auto file = OutputFile::Open(path, false, error);
        REQUIRE_MESSAGE(file, error);
        CHECK(file->Write("half", 4, error));
        CHECK(folder.Names() == "out.png.part ");
    }
    CHECK(folder.Names().empty());

    auto file = OutputFile::Open(path, false, error);
    REQUIRE_MESSAGE(file, error);
    CHECK(file->Write("wh", 2, error));
    CHECK(file->Write("ole", 3, error));
    CHECK_MESSAGE(file->Commit(error), error);
    CHECK(folder.Names() == "out.png ");
    CHECK(folder.Read("out.png") == "whole");
}

TEST_CASE("An existing file stays without replace and is exchanged at once with it")
{
    const TestFolder folder;
    folder.Write("out.mp4", "old");
    const std::string path = folder.Path("out.mp4");
    std::string error;
    CHECK_FALSE(OutputFile::Open(path, false, error));
    CHECK(error == path + ": exists already; --force replaces it");

    auto file = OutputFile::Open(path, true, error);
    REQUIRE_MESSAGE(file, error);
    CHECK(file->Write("new", 3, error));
    CHECK(folder.Read("out.mp4") == "old");
    CHECK(file->Commit(error));
    CHECK(folder.Read("out.mp4") == "new");
    CHECK(folder.Names() == "out.mp4 ");
}

TEST_CASE("A file that appears meanwhile is not overwritten, and the finished work is kept")
{
    const TestFolder folder;
    const std::string path = folder.Path("out.mp4");
    std::string error;
    auto file = OutputFile::Open(path, false, error);
    REQUIRE(file);
    CHECK(file->Write("mine", 4, error));
    folder.Write("out.mp4", "theirs");
    CHECK_FALSE(file->Commit(error));
    CHECK(error == path + ": has appeared meanwhile; the finished file is " + path + ".part");
    file.reset();
    CHECK(folder.Read("out.mp4") == "theirs");
    CHECK(folder.Read("out.mp4.part") == "mine");
}

TEST_CASE("Another's file under the unfinished name is replaced only when told, a busy one never")
{
    const TestFolder folder;
    folder.Write("out.mp4.part", "leftover");
    REQUIRE(link(folder.Path("out.mp4.part").c_str(), folder.Path("second").c_str()) == 0);
    const std::string path = folder.Path("out.mp4");
    std::string error;
    CHECK_FALSE(OutputFile::Open(path, false, error));
    CHECK(error.find(path + ".part: exists already") == 0);

    auto first = OutputFile::Open(path, true, error);
    REQUIRE_MESSAGE(first, error);
    CHECK(folder.Read("second") == "leftover");
    CHECK_FALSE(OutputFile::Open(path, true, error));
    CHECK(error == path + ": is being written by another process");
    CHECK(first->Write("x", 1, error));
    CHECK(first->Commit(error));
    CHECK(folder.Read("out.mp4") == "x");
}

TEST_CASE("What a killed writer left is taken over, what is whole or being written is not")
{
    const TestFolder folder;
    const std::string path = folder.Path("out.mp4");
    const pid_t writer = fork();
    if (writer == 0) {
        std::string error;
        auto file = OutputFile::Open(path, false, error);
        _exit(file && file->Write("half", 4, error) ? 0 : 1); // no destructor, as when killed
    }
    int status = -1;
    REQUIRE(waitpid(writer, &status, 0) == writer);
    REQUIRE(status == 0);
    CHECK(folder.Names() == "out.mp4.part ");

    std::string error;
    auto file = OutputFile::Open(path, false, error);
    REQUIRE_MESSAGE(file, error);
    CHECK_FALSE(OutputFile::Open(path, false, error));
    CHECK(error == path + ": is being written by another process");
    folder.Write("out.mp4", "theirs");
    CHECK_FALSE(file->Commit(error));
    file.reset();
    std::filesystem::remove(path);
    CHECK_FALSE(OutputFile::Open(path, false, error));
    CHECK(error.find(path + ".part: exists already") == 0);

    auto last = OutputFile::Open(path, true, error);
    REQUIRE_MESSAGE(last, error);
    CHECK_MESSAGE(last->Commit(error), error);
    struct stat whole = {};
    REQUIRE(stat(path.c_str(), &whole) == 0);
    CHECK((whole.st_mode & 07000) == 0);
}

TEST_CASE("Only regular files are replaced")
{
    const TestFolder folder;
    REQUIRE(mkdir(folder.Path("sub").c_str(), 0700) == 0);
    REQUIRE(mkfifo(folder.Path("pipe").c_str(), 0600) == 0);
    REQUIRE(symlink("/dev/null", folder.Path("null").c_str()) == 0);
    for (const char* name : { "sub", "pipe", "null", "sub/", "", "missing/out.png" }) {
        std::string error;
        CHECK_FALSE(OutputFile::Open(*name ? folder.Path(name) : "", true, error));
        CHECK_FALSE(error.empty());
    }
    std::string error;
    CHECK_FALSE(OutputFile::Open("/proc/out.png", false, error));
    CHECK_FALSE(OutputFile::Open(folder.Path(std::string(300, 'x')), false, error));
    CHECK(folder.Names() == "null pipe sub ");
}

TEST_CASE("A full disk is an error and leaves nothing behind")
{
    const TestFolder folder;
    const FileSizeLimit limit(1000);
    std::string error;
    auto file = OutputFile::Open(folder.Path("out.png"), false, error);
    REQUIRE(file);
    CHECK_FALSE(file->Write(std::string(2000, 'x').data(), 2000, error));
    CHECK(error.find(folder.Path("out.png") + ": ") == 0);
    file.reset();
    CHECK(folder.Names().empty());
}
