#include "foundation/OQDownloadCache.h"

#include "foundation/OQFolders.h"
#include "foundation/OQNumberText.h"
#include "os/File.h"
#include "os/Folder.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::string_view kFirstLine = "pxvis download 1";
constexpr const char* kExtension = ".download";
constexpr const char* kUnfinishedExtension = ".part"; // of writers that were killed

// A server may send "\r" in the midst of a line; given back to it, it would begin another header.
bool IsOneLine(std::string_view text)
{
    return text.find_first_of("\r\n") == text.npos;
}

// Cuts the first line off.
std::string_view TakeLine(std::string_view& text)
{
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::string SizeText(size_t size)
{
    return OQIntToText(static_cast<int64_t>(size)).ToUtf8();
}

}

OQDownloadCache::OQDownloadCache(const OQString& folder)
    : m_folder(folder.ToUtf8())
{
}

OQDownloadCache OQDownloadCache::OfUser()
{
    const OQString folder = OQFolders::GetCacheFolder();
    return OQDownloadCache(folder.IsEmpty() ? folder : folder + u"downloads");
}

// Requests may meet in one hash: the file says whose it is.
std::string OQDownloadCache::PathOf(std::string_view request) const
{
    uint64_t hash = 14695981039346656037ULL; // FNV-1a
    for (const char byte : request)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211ULL;
    OQString name;
    OQAppendUnsigned(name, hash, 16, 16, OQNumberLowerCase);
    return m_folder + "/" + name.ToUtf8() + kExtension;
}

bool OQDownloadCache::Find(std::string_view request, OQDownload& copy) const
{
    copy = {};
    std::string text;
    constexpr size_t mostLines = 64 * 1024;
    if (m_folder.empty()
        || pxvis::os::ReadFile(PathOf(request), LargestFile + mostLines, text)
            != pxvis::os::FileError::None)
        return false;
    std::string_view rest = text;
    if (TakeLine(rest) != kFirstLine || TakeLine(rest) != request)
        return false;
    copy.entityTag = TakeLine(rest);
    copy.lastModified = TakeLine(rest);
    const std::string_view size = TakeLine(rest);
    copy.bytes = rest;
    if (size == SizeText(rest.size()))
        return true;
    copy = {};
    return false;
}

bool OQDownloadCache::Keep(std::string_view request, const OQDownload& download) const
{
    if (m_folder.empty() || download.bytes.size() > LargestFile
        || (download.entityTag.empty() && download.lastModified.empty()) || !IsOneLine(request)
        || !IsOneLine(download.entityTag) || !IsOneLine(download.lastModified)
        || !pxvis::os::MakeFolders(m_folder, 0700))
        return false;
    std::string text(kFirstLine);
    for (const std::string_view line :
        { request, std::string_view(download.entityTag), std::string_view(download.lastModified) })
        text.append("\n").append(line);
    text += "\n" + SizeText(download.bytes.size()) + "\n" + download.bytes;
    const bool kept = pxvis::os::WriteFile(PathOf(request), text, { .temporary = {}, .mode = 0600 })
        == pxvis::os::FileError::None;
    RemoveOldest();
    return kept;
}

void OQDownloadCache::RemoveOldest() const
{
    struct File
    {
        std::string path;
        double written;
        uint64_t size;
    };

    std::vector<pxvis::os::FolderEntry> entries;
    bool isComplete = false;
    constexpr size_t mostEntries = 16 * MostFiles;
    if (!pxvis::os::ListFolder(m_folder, mostEntries, entries, isComplete))
        return;
    std::vector<File> files;
    uint64_t bytes = 0;
    for (const pxvis::os::FolderEntry& entry : entries) {
        if (!entry.name.ends_with(kExtension) && !entry.name.ends_with(kUnfinishedExtension))
            continue;
        const std::string path = m_folder + "/" + entry.name;
        const int64_t size = std::max<int64_t>(pxvis::os::FileSize(path), 0);
        files.push_back({ path, pxvis::os::LastWriteTime(path), static_cast<uint64_t>(size) });
        bytes += files.back().size;
    }
    std::sort(files.begin(), files.end(),
        [](const File& a, const File& b) { return a.written < b.written; });
    size_t count = files.size();
    for (const File& file : files) {
        if (count <= MostFiles && bytes <= MostBytes)
            return;
        pxvis::os::DeleteFile(file.path);
        --count;
        bytes -= file.size;
    }
}
