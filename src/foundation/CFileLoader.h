#pragma once

#include "foundation/OQByteBuffer.h"
#include "foundation/OQStringArray.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

class IOQReader;
struct OQDownload;

class IFileLoaderProgress
{
public:
    // `text` is for the user, in his language; `size` -1: it isn't known. False ends the load.
    virtual bool OnProgress(const OQString& text, int64_t done, int64_t size) = 0;

protected:
    ~IFileLoaderProgress() = default;
};

struct OQLoadSettings
{
    OQStringArray requestHeaders; // "Name: value"; gzip is asked for anyway
    OQString label = u"Working..."; // what the user sees until the first byte is there
    int32_t idleTimeout = 4000; // ms without a byte
    int32_t openTimeout = 20'000; // ms until a server's answer begins
    size_t maximumSize = 64 << 20; // bytes, of what comes as of what it becomes
    // Of an address: keep a copy of what comes, and as long as the server says that it is still
    // current take it from there.
    bool useCache = false;
    IFileLoaderProgress* progress = nullptr; // Not owned
};

// Loads the whole of a file or of an address of http or https by the reader module, and gives plain
// bytes. One thread at a time but for Cancel.
class CFileLoader
{
public:
    explicit CFileLoader(OQLoadSettings settings = {});

    // A path that holds "://" is an address.
    static bool IsAddress(const OQString& path);
    // "Internet resource" or "Local resource".
    static const OQChar* GetKind(const OQString& path);

    // Bytes of what an address leads to, without loading it; -1 if the server doesn't tell.
    static int64_t GetSizeAt(const OQString& address, const OQLoadSettings& settings = {});

    // False, and no bytes, if they can't be had as a whole: a server's refusal is a failure, too.
    bool Load(const OQString& path, OQByteBuffer& bytes);

    // From any thread, while the loader lives: ends the load that runs and all later ones.
    void Cancel();

    // What the last load learned; empty, or 0, what it didn't.
    const OQString& GetLocation() const { return m_location; } // behind all redirects

    const OQString& GetAllHeaders() const { return m_allHeaders; }

    int GetStatusCode() const { return m_statusCode; } // 304: the bytes are the copy's

    const OQString& GetLastModified() const { return m_lastModified; }

    const OQString& GetContentEncoding() const { return m_contentEncoding; }

    // In English, why it failed.
    const OQString& GetError() const { return m_error; }

private:
    class CurrentReader;

    void ForgetAnswer();
    bool LoadFrom(IOQReader& reader, const OQString& path, OQByteBuffer& bytes);
    OQString RequestLines(const OQDownload& copy) const;
    bool Open(IOQReader& reader, const OQString& path, const OQDownload& copy);
    bool ReadAll(IOQReader& reader, const OQString& path, OQByteBuffer& bytes);
    bool Decompress(OQByteBuffer& bytes);
    bool Show(const OQString& text, int64_t done, int64_t size);
    bool Fail(const OQString& reason);

    const OQLoadSettings m_settings;
    OQString m_location;
    OQString m_allHeaders;
    int m_statusCode = 0;
    OQString m_lastModified;
    OQString m_contentEncoding;
    OQString m_error;

    std::atomic<bool> m_cancelled { false };
    std::mutex m_lock; // which reader runs
    IOQReader* m_reader = nullptr;
};
