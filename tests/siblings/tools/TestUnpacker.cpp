#include "SlotOf.h"
#include "foundation/IOQUnpacker.h"
#include "siblings/tools/ToolsTesting.h"

#include <archive.h>
#include <archive_entry.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

struct Entry
{
    std::string name;
    std::string text;
    unsigned type = AE_IFREG;
    std::string link = {}; // what a symbolic or, of a file, a hard one leads to
    std::string attribute = {}; // which stands in its header
};

// A name's ending says which kind of archive it is.
void Pack(const std::string& path, const std::vector<Entry>& entries)
{
    archive* writer = archive_write_new();
    if (path.ends_with(".zst")) { // which libarchive doesn't know by its name
        archive_write_add_filter_zstd(writer);
        archive_write_set_format_pax(writer);
    } else {
        archive_write_set_format_filter_by_ext(writer, path.c_str());
    }
    REQUIRE(archive_write_open_filename(writer, path.c_str()) == ARCHIVE_OK);
    for (const Entry& entry : entries) {
        archive_entry* header = archive_entry_new();
        archive_entry_copy_pathname(header, entry.name.c_str());
        archive_entry_set_filetype(header, entry.type);
        archive_entry_set_perm(header, entry.name.ends_with("program") ? 0755 : 0644);
        archive_entry_set_size(header, static_cast<la_int64_t>(entry.text.size()));
        if (entry.type == AE_IFLNK)
            archive_entry_copy_symlink(header, entry.link.c_str());
        else if (!entry.link.empty())
            archive_entry_copy_hardlink(header, entry.link.c_str());
        if (!entry.attribute.empty())
            archive_entry_xattr_add_entry(
                header, "user.a", entry.attribute.data(), entry.attribute.size());
        CHECK(archive_write_header(writer, header) >= ARCHIVE_WARN);
        if (!entry.text.empty())
            CHECK(archive_write_data(writer, entry.text.data(), entry.text.size()) >= 0);
        archive_entry_free(header);
    }
    CHECK(archive_write_close(writer) == ARCHIVE_OK);
    archive_write_free(writer);
}

class Progress final : public IOQUnpackProgress
{
public:
    bool OnProgress(int64_t done, int64_t all) override
    {
        CHECK(done >= m_done);
        CHECK(done <= all);
        m_done = done;
        return ++calls < mostCalls;
    }

    int calls = 0;
    int mostCalls = 1'000'000;

private:
    int64_t m_done = 0;
};

// Archives in one folder, unpacked to another one.
struct Unpacking
{
    TestTools tools;
    TestFolder archives;
    TestFolder place;

    int32_t operator()(const std::string& name, IOQUnpackProgress* progress = nullptr)
    {
        const OQString archive = OQString::FromUtf8(archives.Path(name));
        const OQString folder = OQString::FromUtf8(place.Path("out"));
        return tools->GetUnpacker(1)->Unpack(archive.GetText(), folder.GetText(), progress);
    }

    // Of an archive that is refused: nothing has appeared anywhere.
    int32_t Refused(const std::vector<Entry>& entries, const std::string& name = "a.tar.gz")
    {
        Pack(archives.Path(name), entries);
        const int32_t result = (*this)(name);
        CHECK(place.Names().empty());
        return result;
    }
};

}

TEST_CASE("Archives of each kind come out as they went in")
{
    Unpacking unpack;
    const std::string large(300'000, 'x');
    for (const char* name :
        { "a.zip", "a.tar", "a.tar.gz", "a.tar.bz2", "a.tar.xz", "a.tar.zst" }) {
        CAPTURE(name);
        Pack(unpack.archives.Path(name),
            { { "./", "", AE_IFDIR }, { "folder/", "", AE_IFDIR }, { "folder/large", large },
                { "./new/deep/program", "run" }, { "empty", "" },
                { "\xC3\xA4\xE2\x82\xAC 1: \xF0\x9F\x8E\xB5", "music" } });
        Progress progress;
        CHECK(unpack(name, &progress) == OQUnpackDone);
        CHECK(progress.calls > 3);
        CHECK(unpack.place.Names() == "out ");
        CHECK(unpack.place.Read("out/folder/large") == large);
        CHECK(unpack.place.Read("out/new/deep/program") == "run");
        CHECK(unpack.place.Read("out/\xC3\xA4\xE2\x82\xAC 1: \xF0\x9F\x8E\xB5") == "music");
        CHECK(fs::file_size(unpack.place.Path("out/empty")) == 0);
        const auto mode = fs::status(unpack.place.Path("out/new/deep/program")).permissions();
        CHECK((mode & fs::perms::owner_exec) != fs::perms::none);
        CHECK(fs::status(unpack.place.Path("out")).permissions()
            == fs::status(unpack.place.Path("out/folder")).permissions());

        CHECK(unpack(name) == OQUnpackFailed); // there is something now
        CHECK(unpack.place.Read("out/new/deep/program") == "run");
        fs::remove_all(unpack.place.Path("out"));
        fs::create_directory(unpack.place.Path("out"));
        fs::permissions(unpack.place.Path("out"), fs::perms::owner_all);
        CHECK(unpack(name) == OQUnpackDone);
        CHECK(fs::status(unpack.place.Path("out")).permissions() == fs::perms::owner_all);
        fs::remove_all(unpack.place.Path("out"));
    }
    CHECK(SlotOf(&IOQUnpacker::Unpack) == 0);
    CHECK(SlotOf(&IOQUnpackProgress::OnProgress) == 0);
}

TEST_CASE("What would lead out of the folder refuses the whole archive")
{
    Unpacking unpack;
    const std::string outside = unpack.archives.Path("outside");
    const Entry good { "good", "x" };
    for (const char* name : { "a.tar.gz", "a.zip" }) {
        for (const std::string& hostile : { std::string("../x"), std::string(".."), outside,
                 std::string("a/../../x"), std::string("..\\x"), std::string("\\x"),
                 std::string("C:\\x"), std::string("a/.."), std::string(2000, 'x') }) {
            CAPTURE(hostile);
            CHECK(unpack.Refused({ good, { hostile, "evil" } }, name) == OQUnpackRefused);
        }
        CHECK(unpack.Refused({ good, { "link", "", AE_IFLNK, unpack.archives.Path("") },
                                 { "link/outside", "evil" } },
                  name)
            == OQUnpackRefused);
    }
    CHECK(unpack.Refused({ good, { "hard", "", AE_IFREG, "/etc/passwd" } }) == OQUnpackRefused);
    CHECK(unpack.Refused({ good, { "pipe", "", AE_IFIFO } }) == OQUnpackRefused);
    CHECK(unpack.Refused({ good, { "device", "", AE_IFCHR } }) == OQUnpackRefused);
    CHECK(unpack.Refused({ good, { "good/below", "x" } }) == OQUnpackFailed);
    CHECK_FALSE(fs::exists(outside));
}

TEST_CASE("An archive that would grow beyond all measure is given up")
{
    Unpacking unpack;
    const std::string zeros(17 << 20, '\0');
    CHECK(unpack.Refused({ { "zeros", zeros } }) == OQUnpackTooMuch);
    CHECK(unpack.Refused({ { "zeros", zeros } }, "a.zip") == OQUnpackTooMuch);
    CHECK(unpack.Refused(std::vector<Entry>(100'001, { "./", "", AE_IFDIR })) == OQUnpackTooMuch);
    const std::string attribute(300'000, '\0');
    CHECK(unpack.Refused(std::vector<Entry>(30, { "a", "", AE_IFREG, "", attribute }))
        == OQUnpackTooMuch);
    std::string deep;
    for (int level = 0; level <= 64; ++level)
        deep += "d/";
    CHECK(unpack.Refused({ { deep, "", AE_IFDIR } }) == OQUnpackRefused);
}

TEST_CASE("What is damaged, no archive or not wanted any more leaves nothing")
{
    Unpacking unpack;
    const std::string text(100'000, 'x');
    Pack(unpack.archives.Path("a.tar"), { { "a", text }, { "b", text } });
    const std::string tar = unpack.archives.Read("a.tar");
    unpack.archives.Write("cut.tar", tar.substr(0, tar.size() / 2));
    CHECK(unpack("cut.tar") == OQUnpackDamaged);
    Pack(unpack.archives.Path("a.zip"), { { "a", text }, { "b", text } });
    std::string zip = unpack.archives.Read("a.zip");
    zip[60] = static_cast<char>(zip[60] ^ 0x55);
    unpack.archives.Write("bits.zip", zip);
    CHECK(unpack("bits.zip") == OQUnpackDamaged);
    unpack.archives.Write("text.zip", "no archive at all");
    unpack.archives.Write("empty.zip", "");
    REQUIRE(mkfifo(unpack.archives.Path("pipe").c_str(), 0600) == 0);
    for (const char* name : { "text.zip", "empty.zip", "missing.zip", "pipe", "" })
        CHECK(unpack(name) == OQUnpackNoArchive);
    Progress progress;
    progress.mostCalls = 1;
    CHECK(unpack("a.tar", &progress) == OQUnpackCancelled);
    CHECK(unpack.place.Names().empty());

    IOQUnpacker* unpacker = unpack.tools->GetUnpacker(1);
    const OQString archive = OQString::FromUtf8(unpack.archives.Path("a.tar"));
    for (const OQChar* folder : { u"", u"relative", u"/", u"/no/such/folder/out", u"/proc/out" })
        CHECK(unpacker->Unpack(archive.GetText(), folder, nullptr) == OQUnpackFailed);
    CHECK(unpacker->Unpack(nullptr, nullptr, nullptr) == OQUnpackNoArchive);
}
