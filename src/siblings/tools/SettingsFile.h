#pragma once

#include "os/File.h"
#include "siblings/tools/SettingsDocument.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>

class IOQLog;

namespace pxvis::tools {

// One settings file, shared with other processes. Readers take the newest whole file; writers take
// turns by a lock file, read anew and replace the file, so that none loses what another one wrote.
// A file with faults is copied aside before it is replaced; one that can't be read, or that no
// settings file can be, is left alone: it has no values and can't be written. Any thread.
class SettingsFile
{
public:
    static constexpr size_t kMaxBytes = 4 * 1024 * 1024;
    static constexpr int kMaxDamagedCopies = 5;
    static constexpr int32_t kLockWait = 5000; // milliseconds

    struct Place
    {
        std::string folder; // absolute; empty: nowhere, and nothing can be written
        std::string name;
        unsigned folderMode = 0700;
        unsigned fileMode = 0600;
    };

    SettingsFile(Place place, IOQLog& log);
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    // What stands in the file now; never null.
    std::shared_ptr<const SettingsDocument> Read();

    enum class Outcome
    {
        Unchanged,
        Changed,
        Refused,
    };

    using Edit = std::function<Outcome(SettingsDocument&)>;

    // True if the file is then as `edit` left the document: on the disk, or there was nothing to
    // do.
    bool Change(const Edit& edit);

    // The last one that was found, an OQSettingsFault.
    int32_t Fault();

    const std::string& Path() const { return m_path; }

    // Makes the folder; false where the system tells already that a write would fail.
    bool MakeWritable();

private:
    struct Contents
    {
        std::shared_ptr<SettingsDocument> document;
        std::string bytes;
        bool isUsable = true; // may be replaced
        bool isWhole = true; // nothing is lost when it is
    };

    Contents Load();
    bool Replace(const Contents& old, const SettingsDocument& document);
    bool KeepDamaged(const std::string& bytes);
    bool Write(const std::string& name, const std::string& bytes);
    void Report(const OQChar* text, const std::string& path);

    const Place m_place;
    const std::string m_path;
    IOQLog& m_log;
    std::mutex m_lock; // of what was read last
    std::shared_ptr<const SettingsDocument> m_document;
    os::FileStamp m_stamp;
    bool m_isSettled = false;
    std::string m_reported; // the last complaint, which needn't be repeated
    int32_t m_fault = 0;
};

}
