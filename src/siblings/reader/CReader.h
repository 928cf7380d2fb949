#pragma once

#include "foundation/IOQReader.h"
#include "foundation/OQPropertyMap.h"
#include "os/Descriptor.h"
#include "siblings/reader/HttpTransfer.h"

#include <atomic>
#include <memory>
#include <mutex>

class CReader final : public IOQReader
{
public:
    void SetProperty(const OQChar* name, const OQChar* value) override;
    bool GetProperty(const OQChar* name, IOQDllString& value) const override;
    bool Open(const OQChar* path, int32_t openMilliseconds, int32_t idleMilliseconds) override;
    int64_t Read(void* bytes, int64_t size) override;
    int64_t GetSize() const override;
    void Close() override;
    void Cancel() override;

private:
    bool OpenUrl(const OQString& url, int32_t openMilliseconds, int32_t idleMilliseconds);
    bool OpenFile(const OQString& path);
    OQString Learned(const OQString& name) const;

    OQPropertyMap m_properties;
    OQString m_path;
    OQString m_error; // of a file
    pxvis::os::Descriptor m_file;
    int64_t m_size = -1; // of the file

    std::atomic<bool> m_cancelled { false };
    std::mutex m_lock; // which transfer there is
    std::unique_ptr<pxvis::reader::HttpTransfer> m_transfer;
};
