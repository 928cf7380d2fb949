#include "foundation/OQProcessBlock.h"

#include "TestFolderVariable.h"
#include "foundation/OQDllString.h"
#include "foundation/OQSharedMemory.h"
#include "foundation/StringPrinting.h"
#include "foundation/files/FakeTools.h"
#include "os/DynamicLibrary.h"
#include "os/ModulePath.h"
#include "os/SharedMemory.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <fcntl.h>
#include <memory>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// What somebody put where the block belongs.
class Squatter
{
public:
    Squatter(size_t size, mode_t mode, uint32_t version, uid_t owner = geteuid())
    {
        OQSharedMemory::Get().Forget();
        const int file = shm_open(m_name.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
        REQUIRE(file >= 0);
        CHECK(fchmod(file, mode) == 0);
        CHECK(ftruncate(file, static_cast<off_t>(size)) == 0);
        CHECK(pwrite(file, &version, sizeof version, 0) == sizeof version);
        CHECK(pwrite(file, u"/evil/", 14, offsetof(OQProcessBlock, data)) == 14);
        CHECK(fchown(file, owner, static_cast<gid_t>(-1)) == 0);
        close(file);
    }

    ~Squatter()
    {
        OQSharedMemory::Get().Forget();
        CHECK(shm_unlink(m_name.c_str()) == 0);
    }

private:
    std::string m_name = "/" + OQProcessBlock::GetName();
};

bool IsThere(const std::string& name)
{
    return pxvis::os::SharedMemory().Open(name, sizeof(OQProcessBlock))
        == pxvis::os::SharedMemory::Found::Opened;
}

// What `work` gives in a process that was forked off.
template <class Work>
bool InChild(Work work)
{
    const pid_t child = fork();
    if (child == 0)
        std::exit(work() ? 0 : 1); // with the handlers of the end
    int status = -1;
    waitpid(child, &status, 0);
    return status == 0;
}

}

TEST_CASE("A block gives back the folders that fit into it and no half of one")
{
    const auto block = std::make_unique<OQProcessBlock>();
    OQProcessFolders read { u"mine", u"mine", u"mine", u"mine", false };
    CHECK_FALSE(block->Read(read));
    CHECK(read.install == u"mine");

    const OQString longest = u"/" + OQString::FromUtf8(std::string(259, 'x'));
    block->Fill({ u"/usr/share/pxvis/", longest, longest + u"x", u"", true });
    CHECK(block->Read(read));
    CHECK(read.install == u"/usr/share/pxvis/");
    CHECK(read.data == longest);
    CHECK(read.module == u"mine");
    CHECK(read.applicationData.IsEmpty());
    CHECK(read.portable);

    std::fill(std::begin(block->install), std::end(block->install), u'x');
    block->version = OQProcessBlock::Version + 1;
    read.install = u"mine";
    CHECK_FALSE(block->Read(read));
    block->version = OQProcessBlock::Version;
    CHECK(block->Read(read));
    CHECK(read.install == u"mine");
}

TEST_CASE("The first module of a process says where its folders are, and writes it to the log")
{
    FakeTools& tools = FakeTools::Fresh();
    const TestFolderVariable data("XDG_DATA_HOME", "/first");
    const OQProcessFolders folders = OQProcessFolders::Get();
    CHECK(folders.data == u"/first/pxvis/");
    REQUIRE(tools.log.size() == 1);
    CHECK(tools.log[0]
        == "OQSharedMemory::GetFolders: Tarnwick install path (process: " + std::to_string(getpid())
            + "): " + folders.install.ToUtf8() + "\r\n");

    const TestVariable later("XDG_DATA_HOME", "/later");
    pxvis::os::DynamicLibrary module;
    REQUIRE(module.Open(pxvis::os::ModuleFolder() + "/OQTools.so"));
    auto* get = reinterpret_cast<void (*)(IOQDllString&)>(module.Symbol("GetModulesDataFolder"));
    REQUIRE(static_cast<bool>(get));
    OQString text;
    OQDllString crossing(text);
    get(crossing);
    CHECK(text == u"/first/pxvis/");
    CHECK(OQProcessFolders::Get().data == u"/first/pxvis/");
    CHECK(tools.log.size() == 1);

    const std::string name = OQProcessBlock::GetName();
    CHECK(IsThere(name));
    OQSharedMemory::Get().Forget();
    CHECK_FALSE(IsThere(name));
}

TEST_CASE("A process that was forked off has a block of its own, which goes with it")
{
    FakeTools::Fresh();
    const TestFolderVariable data("XDG_DATA_HOME", "/parent");
    OQProcessFolders::Get();
    const std::string parents = OQProcessBlock::GetName();
    int ends[2] = {};
    REQUIRE(pipe(ends) == 0);
    CHECK(InChild([&] {
        setenv("XDG_DATA_HOME", "/child", 1);
        const std::string own = OQProcessBlock::GetName();
        return OQProcessFolders::Get().data == u"/child/pxvis/" && own != parents && IsThere(own)
            && write(ends[1], own.data(), own.size()) > 0;
    }));
    char own[256] = {};
    CHECK(read(ends[0], own, sizeof own - 1) > 0);
    CHECK_FALSE(IsThere(own));
    CHECK(IsThere(parents));
    close(ends[0]);
    close(ends[1]);
}

TEST_CASE("A process that goes on with another program works its folders out anew")
{
    FakeTools::Fresh();
    const pid_t child = fork();
    if (child == 0) {
        setenv("XDG_DATA_HOME", "/before", 1);
        OQProcessFolders::Get();
        execl("/proc/self/exe", "after", "--no-skip", "-tc=After another program*", nullptr);
        _exit(1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    CHECK(status == 0);
}

TEST_CASE("After another program of the same process" * doctest::skip())
{
    CHECK(OQProcessFolders::Get().data
        == OQString::FromUtf8((std::string(getenv("XDG_DATA_HOME")) + "/pxvis/").c_str()));
    const auto names = pxvis::os::SharedMemory::Names();
    CHECK(std::count_if(names.begin(), names.end(), [](const std::string& name) {
        return name.find("(" + std::to_string(getpid()) + ")") != name.npos;
    }) == 1);
}

TEST_CASE("The block of a process that was killed goes with the next one's, those of others stay")
{
    FakeTools::Fresh();
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    const auto name = [](pid_t process) {
        return "Tarnwick Process v1 (" + std::to_string(process) + ") of the test's";
    };
    const std::string names[] = { name(child), name(getppid()), "Some (1)", "Tarnwick Process" };
    for (const std::string& one : names)
        CHECK(pxvis::os::SharedMemory().Make(one, sizeof(OQProcessBlock)));
    OQSharedMemory::Get().Forget();
    OQProcessFolders::Get();
    CHECK_FALSE(IsThere(names[0]));
    for (const std::string& one : names) {
        CHECK(IsThere(one) == (&one != names));
        pxvis::os::SharedMemory::Remove(one);
    }
}

TEST_CASE("What only looks like the process's block is left alone, and nothing waits for it long")
{
    FakeTools::Fresh();
    constexpr size_t size = sizeof(OQProcessBlock);
    constexpr uint32_t version = OQProcessBlock::Version;
    const TestVariable data("XDG_DATA_HOME", "/mine");
    const auto folder = [] { return OQProcessFolders::Get().data; };
    {
        const Squatter real(size, 0600, version);
        CHECK(folder() == u"/evil/");
    }
    for (const size_t other : { size - 1, size + 1, size_t { 4 } }) {
        const Squatter squatter(other, 0600, version);
        CHECK(folder() == u"/mine/pxvis/");
    }
    for (const mode_t mode : { 0644, 0666, 0620, 0400 }) {
        const Squatter squatter(size, mode, version);
        CHECK(folder() == u"/mine/pxvis/");
    }
    if (geteuid() == 0) { // only root can put somebody else's there
        const Squatter squatter(size, 0600, version, 12345);
        CHECK(folder() == u"/mine/pxvis/");
    }
    for (const uint32_t other : { uint32_t { 0 }, version + 1 }) {
        const Squatter squatter(size, 0600, other);
        CHECK(folder() == u"/mine/pxvis/");
    }
    const std::string pipe = "/dev/shm/" + OQProcessBlock::GetName();
    OQSharedMemory::Get().Forget();
    REQUIRE(mkfifo(pipe.c_str(), 0600) == 0);
    CHECK(folder() == u"/mine/pxvis/");
    OQSharedMemory::Get().Forget();
    CHECK(unlink(pipe.c_str()) == 0);
}
