#include "siblings/tools/CUnpacker.h"

#include "foundation/OQString.h"
#include "siblings/tools/ArchiveReader.h"
#include "siblings/tools/UnpackFolder.h"

#include <algorithm>
#include <unistd.h>

using pxvis::os::Descriptor;
using pxvis::tools::ArchiveReader;
using pxvis::tools::UnpackFolder;

namespace {

// One archive on its way into a folder.
class Unpacking
{
public:
    Unpacking(ArchiveReader& reader, UnpackFolder& folder, IOQUnpackProgress* progress)
        : m_reader(reader)
        , m_folder(folder)
        , m_progress(progress)
        , m_mostBytes(std::min(CUnpacker::kMaxBytes,
              std::max(CUnpacker::kAnyRatioBytes, m_reader.Size() * CUnpacker::kMaxRatio)))
    {
    }

    OQUnpackResult Run()
    {
        ArchiveReader::Entry entry;
        for (;;) {
            const ArchiveReader::Next next = m_reader.NextEntry(entry);
            if (next == ArchiveReader::Next::End)
                return m_folder.Keep() ? OQUnpackDone : OQUnpackFailed;
            if (next == ArchiveReader::Next::Fault)
                return m_entries == 0 ? OQUnpackNoArchive : OQUnpackDamaged;
            const OQUnpackResult result = Add(entry);
            if (result != OQUnpackDone)
                return result;
        }
    }

private:
    bool CountEntries(int64_t count) { return (m_entries += count) <= CUnpacker::kMaxEntries; }

    OQUnpackResult Add(const ArchiveReader::Entry& entry)
    {
        if (m_reader.Unpacked() > m_mostBytes + (m_entries + 1) * CUnpacker::kMaxBytesAnEntry)
            return OQUnpackTooMuch;
        std::string path;
        if (entry.kind == ArchiveReader::Kind::Other || !UnpackFolder::Normalize(entry.name, path))
            return OQUnpackRefused;
        const bool isFile = entry.kind == ArchiveReader::Kind::File;
        if (isFile && path.empty())
            return OQUnpackRefused;
        const size_t slash = path.rfind('/');
        int folders = 0;
        const std::string folder
            = isFile ? path.substr(0, slash == std::string::npos ? 0 : slash) : path;
        if (!m_folder.MakeFolder(folder, folders))
            return OQUnpackFailed;
        if (!CountEntries(folders + 1))
            return OQUnpackTooMuch;
        return isFile ? AddFile(path, entry.isProgram) : Report();
    }

    OQUnpackResult AddFile(const std::string& path, bool isProgram)
    {
        Descriptor file = m_folder.MakeFile(path, isProgram);
        if (!file.IsOpen())
            return OQUnpackFailed;
        ArchiveReader::Block block;
        int64_t size = 0;
        for (;;) {
            const ArchiveReader::Next next = m_reader.NextBlock(block);
            if (next == ArchiveReader::Next::Fault || block.offset < size)
                return OQUnpackDamaged;
            const int64_t grown = block.offset - size + static_cast<int64_t>(block.bytes.size());
            if (block.offset > m_mostBytes || (m_bytes += grown) > m_mostBytes)
                return OQUnpackTooMuch;
            size += grown;
            if (next == ArchiveReader::Next::End)
                break;
            if (::lseek(file.Get(), block.offset, SEEK_SET) < 0 || !file.Write(block.bytes))
                return OQUnpackFailed;
            if (const OQUnpackResult result = Report(); result != OQUnpackDone)
                return result;
        }
        // A file may end with what no block holds, which is zeros.
        return ::ftruncate(file.Get(), size) == 0 && file.Close() ? OQUnpackDone : OQUnpackFailed;
    }

    OQUnpackResult Report()
    {
        const bool goesOn
            = !m_progress || m_progress->OnProgress(m_reader.Position(), m_reader.Size());
        return goesOn ? OQUnpackDone : OQUnpackCancelled;
    }

    ArchiveReader& m_reader;
    UnpackFolder& m_folder;
    IOQUnpackProgress* m_progress; // or null
    const int64_t m_mostBytes;
    int64_t m_entries = 0;
    int64_t m_bytes = 0;
};

}

int32_t CUnpacker::Unpack(const OQChar* archive, const OQChar* folder, IOQUnpackProgress* progress)
{
    try {
        ArchiveReader reader(OQString(archive).ToUtf8());
        if (!reader.IsOpen())
            return OQUnpackNoArchive;
        UnpackFolder target(OQString(folder).ToUtf8());
        if (!target.IsOpen())
            return OQUnpackFailed;
        return Unpacking(reader, target, progress).Run();
    } catch (...) {
        return OQUnpackFailed;
    }
}
