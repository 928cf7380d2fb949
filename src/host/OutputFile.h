#pragma once

#include "os/Descriptor.h"

#include <cstddef>
#include <memory>
#include <string>

namespace pxvis::host {

// A file that appears under its name only when it is whole. It grows as PATH.part in the same
// folder; Commit() gives it its name, the destructor removes what was not committed.
class OutputFile
{
public:
    // Null, and one line that starts with the path, when the file can't be made. Without replace an
    // existing PATH or PATH.part is an error, but for a PATH.part that an OutputFile of a process
    // now dead left behind. What is replaced is a regular file that nobody is writing to.
    static std::unique_ptr<OutputFile> Open(
        const std::string& path, bool replace, std::string& error);

    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::string& Path() const { return m_path; }

    const std::string& PartPath() const { return m_partPath; }

    // For others that write; stays ours to close.
    int Descriptor() const { return m_file.Get(); }

    bool Write(const void* bytes, size_t count, std::string& error);

    // Makes the content safe on the disk, then renames. Without replace a file that has appeared
    // under the name meanwhile stays, and so does the finished PATH.part.
    bool Commit(std::string& error);

    // Removes PATH.part. Nothing may be done with the object afterwards.
    void Discard();

private:
    OutputFile(std::string path, bool replace, os::Descriptor file);

    bool Rename(std::string& error);

    std::string m_path;
    std::string m_partPath;
    bool m_replace;
    os::Descriptor m_file; // none: committed or discarded
};

}
