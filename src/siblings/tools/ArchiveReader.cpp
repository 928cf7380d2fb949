#include "siblings/tools/ArchiveReader.h"

#include "os/File.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>

namespace pxvis::tools {

namespace {

constexpr size_t kBlockSize = 64 * 1024;

class ThreadLocale
{
public:
    explicit ThreadLocale(locale_t locale) // null: as it is
        : m_before(::uselocale(locale))
    {
    }

    ~ThreadLocale() { ::uselocale(m_before); }

    ThreadLocale(const ThreadLocale&) = delete;
    ThreadLocale& operator=(const ThreadLocale&) = delete;

private:
    locale_t m_before;
};

// The thread's own in all but the letters.
locale_t MakeUtf8Locale()
{
    const locale_t base = ::duplocale(::uselocale(nullptr));
    const locale_t made = base ? ::newlocale(LC_CTYPE_MASK, "C.UTF-8", base) : nullptr;
    if (base && !made)
        ::freelocale(base);
    return made;
}

// Only what is built in: for others libarchive would start programs.
bool EnableFormats(archive* reader)
{
    if (archive_zlib_version())
        archive_read_support_filter_gzip(reader);
    if (archive_bzlib_version())
        archive_read_support_filter_bzip2(reader);
    if (archive_liblzma_version())
        archive_read_support_filter_xz(reader);
    if (archive_libzstd_version())
        archive_read_support_filter_zstd(reader);
    return archive_read_support_format_tar(reader) == ARCHIVE_OK
        && archive_read_support_format_zip(reader) >= ARCHIVE_WARN;
}

ArchiveReader::Kind KindOf(archive_entry* entry)
{
    if (archive_entry_hardlink(entry) || archive_entry_hardlink_utf8(entry)
        || archive_entry_symlink(entry) || archive_entry_symlink_utf8(entry))
        return ArchiveReader::Kind::Other;
    switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
        return ArchiveReader::Kind::File;
    case AE_IFDIR:
        return ArchiveReader::Kind::Folder;
    default:
        return ArchiveReader::Kind::Other;
    }
}

}

void ArchiveReader::Close::operator()(archive* opened) const
{
    archive_read_free(opened);
}

void ArchiveReader::Close::operator()(locale_t locale) const
{
    ::freelocale(locale);
}

ArchiveReader::ArchiveReader(const std::string& path)
    : m_utf8(MakeUtf8Locale())
{
    if (os::OpenRegularFile(path, m_file, m_size) != os::FileError::None || m_size == 0)
        return;
    const ThreadLocale names(m_utf8.get());
    std::unique_ptr<archive, Close> reader(archive_read_new());
    if (reader && EnableFormats(reader.get())
        && archive_read_open_fd(reader.get(), m_file.Get(), kBlockSize) == ARCHIVE_OK)
        m_archive = std::move(reader);
}

ArchiveReader::Next ArchiveReader::NextEntry(Entry& entry)
{
    constexpr int mostFilters = 2; // one, and the one that does nothing
    const ThreadLocale names(m_utf8.get());
    archive_entry* header = nullptr;
    const int status = archive_read_next_header(m_archive.get(), &header);
    if (status == ARCHIVE_EOF)
        return Next::End;
    // A warning says that something of no matter here, such as an owner, can't be told.
    if (status < ARCHIVE_WARN || archive_filter_count(m_archive.get()) > mostFilters)
        return Next::Fault;
    const char* name = archive_entry_pathname_utf8(header);
    if (!name)
        name = archive_entry_pathname(header);
    entry.kind = name ? KindOf(header) : Kind::Other;
    entry.name = name ? name : "";
    entry.isProgram = archive_entry_perm(header) & 0100;
    m_entrySize = archive_entry_size_is_set(header) ? archive_entry_size(header) : 0;
    m_entryEnd = 0;
    return Next::Here;
}

ArchiveReader::Next ArchiveReader::NextBlock(Block& block)
{
    const void* bytes = nullptr;
    size_t size = 0;
    la_int64_t offset = 0;
    const int status = archive_read_data_block(m_archive.get(), &bytes, &size, &offset);
    block = {};
    if (status == ARCHIVE_EOF) {
        block.offset = std::max(m_entrySize, m_entryEnd);
        return Next::End;
    }
    if (status != ARCHIVE_OK)
        return Next::Fault;
    block.bytes = { static_cast<const char*>(bytes), size };
    block.offset = offset;
    m_entryEnd = offset + static_cast<int64_t>(size);
    return Next::Here;
}

int64_t ArchiveReader::Position() const
{
    return std::clamp<int64_t>(archive_filter_bytes(m_archive.get(), -1), 0, m_size);
}

int64_t ArchiveReader::Unpacked() const
{
    return archive_filter_bytes(m_archive.get(), 0);
}

}
