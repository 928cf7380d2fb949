#include "siblings/tools/SettingsFile.h"

#include "foundation/IOQTools.h"
#include "foundation/OQFormat.h"
#include "foundation/OQTextEncoding.h"
#include "os/FileLock.h"
#include "os/Folder.h"
#include "os/UserFolders.h"

#include <string_view>
#include <unistd.h>

namespace pxvis::tools {

namespace {

// Line by line, so that a byte that was damaged spoils one element and not how all are read. What
// isn't UTF-8 is windows-1252; false if there is any, or a zero.
bool ReadText(std::string_view bytes, OQString& text)
{
    int markLength = 0;
    const OQTextEncoding encoding = OQDetectEncoding(bytes, markLength);
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        text = OQBytesToText(bytes, encoding);
        return true;
    }
    bytes.remove_prefix(static_cast<size_t>(markLength));
    bool isWhole = true;
    while (!bytes.empty()) {
        const size_t end = bytes.find('\n');
        const std::string_view line
            = bytes.substr(0, end == std::string_view::npos ? end : end + 1);
        const OQString utf8 = OQString::FromUtf8(line);
        const bool isUtf8 = utf8.ToUtf8() == line && line.find('\0') == std::string_view::npos;
        text += isUtf8 ? utf8 : OQBytesToText(line, OQTextEncoding::CodePage);
        isWhole = isWhole && isUtf8;
        bytes.remove_prefix(line.size());
    }
    return isWhole;
}

}

SettingsFile::SettingsFile(Place place, IOQLog& log)
    : m_place(std::move(place))
    , m_path(m_place.folder.empty() ? std::string() : m_place.folder + "/" + m_place.name)
    , m_log(log)
{
}

void SettingsFile::Report(const OQChar* text, const std::string& path)
{
    const OQString wide = OQString::FromUtf8(path);
    const OQFormatArgument argument(wide);
    m_log.Write(OQLogError, u"SettingsFile", text, &argument, 1);
}

SettingsFile::Contents SettingsFile::Load()
{
    Contents contents;
    contents.document = std::make_shared<SettingsDocument>();
    const os::FileError error = os::ReadFile(m_path, kMaxBytes, contents.bytes);
    const OQChar* complaint = u"";
    switch (error) {
    case os::FileError::None:
        if (!contents.bytes.empty()) {
            OQString text;
            contents.isWhole = ReadText(contents.bytes, text);
            contents.isWhole = contents.document->Load(text) && contents.isWhole;
        }
        if (!contents.isWhole)
            complaint = u"%s is damaged; what can be read of it is used";
        break;
    case os::FileError::NotFound:
        break;
    case os::FileError::TooLarge:
        complaint = u"%s is too large and is left alone; settings can't be kept";
        break;
    case os::FileError::NotRegular:
        complaint = u"%s is no file and is left alone; settings can't be kept";
        break;
    default:
        complaint = u"%s can't be read and is left alone; settings can't be kept";
        break;
    }
    contents.isUsable = error == os::FileError::None || error == os::FileError::NotFound;
    const std::string reported = OQString(complaint).ToUtf8();
    const std::lock_guard lock(m_lock);
    if (!reported.empty() && reported != m_reported)
        Report(complaint, m_path);
    m_reported = reported;
    if (!reported.empty())
        m_fault = contents.isUsable ? OQSettingsDamaged : OQSettingsUnusable;
    return contents;
}

int32_t SettingsFile::Fault()
{
    const std::lock_guard lock(m_lock);
    return m_fault;
}

std::shared_ptr<const SettingsDocument> SettingsFile::Read()
{
    // Taken before the file is read: one that changes in between is read once more by the next.
    const os::FileStamp stamp = os::StampOf(m_path);
    const bool isSettled = stamp.IsSettled();
    {
        const std::lock_guard lock(m_lock);
        if (m_document && m_isSettled && m_stamp == stamp)
            return m_document;
    }
    const Contents contents = Load();
    const std::lock_guard lock(m_lock);
    m_document = contents.document;
    m_stamp = stamp;
    m_isSettled = isSettled;
    return m_document;
}

bool SettingsFile::Change(const Edit& edit)
{
    if (m_path.empty())
        return false;
    os::FileLock lock;
    if (!os::MakeFolders(m_place.folder, m_place.folderMode)
        || !lock.Acquire(m_path + ".lock", kLockWait)) {
        Report(u"%s can't be locked", m_path);
        return false;
    }
    const Contents contents = Load();
    switch (edit(*contents.document)) {
    case Outcome::Unchanged:
        return true;
    case Outcome::Changed:
        return Replace(contents, *contents.document);
    default:
        return false;
    }
}

bool SettingsFile::Replace(const Contents& old, const SettingsDocument& document)
{
    if (!old.isUsable)
        return false;
    const std::string bytes = document.Save().ToUtf8();
    if (bytes.size() > kMaxBytes) {
        Report(u"%s would become too large", m_path);
        return false;
    }
    if (!old.isWhole && !KeepDamaged(old.bytes)) {
        Report(u"No copy of the damaged %s can be kept, so it stays as it is", m_path);
        return false;
    }
    if (!Write(m_place.name, bytes)) {
        Report(u"%s can't be written", m_path);
        return false;
    }
    return true;
}

// Beside the file, at most a few: the oldest one makes room.
bool SettingsFile::KeepDamaged(const std::string& bytes)
{
    std::string target;
    double oldest = 0;
    for (int number = 1; number <= kMaxDamagedCopies; ++number) {
        const std::string name = m_place.name + ".damaged-" + std::to_string(number);
        const std::string path = m_place.folder + "/" + name;
        std::string copy;
        const os::FileError error = os::ReadFile(path, kMaxBytes, copy);
        if (error == os::FileError::None && copy == bytes)
            return true;
        const double written = os::LastWriteTime(path);
        if (error == os::FileError::NotFound || target.empty() || written < oldest) {
            target = name;
            oldest = written;
        }
        if (error == os::FileError::NotFound)
            break;
    }
    return Write(target, bytes);
}

bool SettingsFile::Write(const std::string& name, const std::string& bytes)
{
    return os::WriteFile(m_place.folder + "/" + name, bytes,
               { .temporary = "." + m_place.name + ".new", .mode = m_place.fileMode })
        == os::FileError::None;
}

bool SettingsFile::MakeWritable()
{
    return os::MakeFolders(m_place.folder, m_place.folderMode)
        && ::access(m_place.folder.c_str(), W_OK | X_OK) == 0
        && (!os::FileExists(m_path) || ::access(m_path.c_str(), W_OK) == 0);
}

}
