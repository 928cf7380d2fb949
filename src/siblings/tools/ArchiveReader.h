#pragma once

#include "os/Descriptor.h"

#include <cstdint>
#include <locale.h>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

struct archive;

namespace pxvis::tools {

// Goes through an archive from its first entry to its last. One thread at a time.
class ArchiveReader
{
public:
    enum class Next
    {
        Here,
        End,
        Fault,
    };

    enum class Kind
    {
        File,
        Folder,
        Other, // links, devices and the like
    };

    struct Entry
    {
        Kind kind = Kind::Other;
        std::string name; // as it stands in the archive, in UTF-8 if that is known
        bool isProgram = false;
    };

    struct Block
    {
        std::string_view bytes; // until the next call
        int64_t offset = 0; // in the file; what lies between blocks is zeros
    };

    // A regular file, opened without waiting.
    explicit ArchiveReader(const std::string& path);

    bool IsOpen() const { return m_archive != nullptr; }

    Next NextEntry(Entry& entry);

    // Of the entry's file. At its end the block is empty and its offset is the file's size.
    Next NextBlock(Block& block);

    int64_t Size() const { return m_size; } // of the archive, in bytes

    int64_t Position() const; // up to Size()

    int64_t Unpacked() const; // bytes so far, of which not all are the entries' files

private:
    struct Close
    {
        void operator()(archive* opened) const;
        void operator()(locale_t locale) const;
    };

    // libarchive turns names into those of the thread's locale, and what that can't hold into "?".
    // So the calling thread has one that holds all, for the length of a call.
    std::unique_ptr<std::remove_pointer_t<locale_t>, Close> m_utf8;
    os::Descriptor m_file;
    int64_t m_size = 0;
    int64_t m_entrySize = 0; // that its header tells; 0 if it doesn't
    int64_t m_entryEnd = 0; // of the blocks so far
    std::unique_ptr<archive, Close> m_archive; // in front of its file
};

}
