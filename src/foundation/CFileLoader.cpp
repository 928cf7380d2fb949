#include "foundation/CFileLoader.h"

#include "foundation/IOQReader.h"
#include "foundation/IOQTools.h"
#include "foundation/OQDllString.h"
#include "foundation/OQDownloadCache.h"
#include "foundation/OQFilename.h"
#include "foundation/OQFormat.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQSiblingModules.h"
#include "foundation/OQTranslate.h"
#include "os/Clock.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

constexpr int kNotModified = 304;

OQString PropertyOf(const IOQReader& reader, const OQChar* name)
{
    OQString value;
    OQDllString crossing(value);
    reader.GetProperty(name, crossing);
    return value;
}

const IOQDecompressor* Decompressor()
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    return tools ? tools->GetDecompressor(1) : nullptr;
}

bool Contains(const OQString& text, const OQChar* needle)
{
    const IOQText* tools = OQToolsText();
    return tools ? tools->Find(text.GetText(), needle, OQTextIgnoreCase | OQTextOrdinal) >= 0
                 : text.FindNoCase(needle) >= 0;
}

OQString SizeText(int64_t bytes)
{
    constexpr int64_t kilobyte = 1024;
    constexpr int64_t megabyte = kilobyte * kilobyte;
    if (bytes < kilobyte)
        return OQFormat(OQTranslated(u"%d bytes").GetText(), { bytes });
    if (bytes < megabyte)
        return OQFormat(u"%d KB", { bytes / kilobyte });
    return OQFormat(u"%.1f MB", { static_cast<double>(bytes) / megabyte });
}

// Such as "Downloading 'a.txt'  (12 KB of 34 KB)"; `size` below 0: not known.
OQString ProgressText(const OQString& path, int64_t done, int64_t size)
{
    const OQString label = OQTranslated(CFileLoader::IsAddress(path) ? u"Downloading" : u"Reading");
    OQFilename filename;
    filename.SetPath(path);
    const OQString name = filename.GetName();
    const OQString doneText = SizeText(done);
    OQString text = name.IsEmpty() ? OQFormat(u"%s  (%s", { label, doneText })
                                   : OQFormat(u"%s '%s'  (%s", { label, name, doneText });
    if (size >= 0)
        text += u" " + OQTranslated(u"of") + u" " + SizeText(size);
    return text + u")";
}

// What holds a password stays out of files.
bool IsSecret(const OQString& address, const OQStringArray& headers)
{
    for (const OQString& header : headers) {
        if (header.StartsWithNoCase(u"Authorization") || header.StartsWithNoCase(u"Cookie"))
            return true;
    }
    const std::u16string_view view = address.View();
    const size_t host = view.find(u"://") + 3;
    return view.substr(host, view.find_first_of(u"/?#", host) - host).find(u'@') != view.npos;
}

}

// The reader of one load, where Cancel finds it.
class CFileLoader::CurrentReader
{
public:
    explicit CurrentReader(CFileLoader& loader)
        : m_reader(OQCreateReader())
        , m_loader(loader)
    {
        const std::lock_guard lock(m_loader.m_lock);
        m_loader.m_reader = m_reader.get();
        if (m_reader && m_loader.m_cancelled)
            m_reader->Cancel();
    }

    ~CurrentReader()
    {
        const std::lock_guard lock(m_loader.m_lock);
        m_loader.m_reader = nullptr;
    }

    CurrentReader(const CurrentReader&) = delete;
    CurrentReader& operator=(const CurrentReader&) = delete;

    IOQReader* Get() const { return m_reader.get(); }

private:
    std::unique_ptr<IOQReader> m_reader;
    CFileLoader& m_loader;
};

CFileLoader::CFileLoader(OQLoadSettings settings)
    : m_settings(std::move(settings))
{
}

bool CFileLoader::IsAddress(const OQString& path)
{
    return path.Find(u"://") >= 0;
}

const OQChar* CFileLoader::GetKind(const OQString& path)
{
    return IsAddress(path) ? u"Internet resource" : u"Local resource";
}

int64_t CFileLoader::GetSizeAt(const OQString& address, const OQLoadSettings& settings)
{
    const std::unique_ptr<IOQReader> reader(IsAddress(address) ? OQCreateReader() : nullptr);
    if (!reader)
        return -1;
    reader->SetProperty(u"HTTPREQUEST_TYPE", u"HEAD");
    reader->SetProperty(u"INFO_HEADERS", settings.requestHeaders.Join(u"\r\n").GetText());
    if (!reader->Open(address.GetText(), settings.openTimeout, settings.idleTimeout))
        return -1;
    const int status = OQTextToInt(PropertyOf(*reader, u"StatusCode").GetText());
    return status >= 200 && status < 300 ? reader->GetSize() : -1;
}

void CFileLoader::Cancel()
{
    m_cancelled = true;
    const std::lock_guard lock(m_lock);
    if (m_reader)
        m_reader->Cancel();
}

bool CFileLoader::Fail(const OQString& reason)
{
    m_error = reason;
    return false;
}

bool CFileLoader::Show(const OQString& text, int64_t done, int64_t size)
{
    const bool goesOn = !m_settings.progress || m_settings.progress->OnProgress(text, done, size);
    return (goesOn && !m_cancelled) || Fail(u"cancelled");
}

void CFileLoader::ForgetAnswer()
{
    m_location.Clear();
    m_allHeaders.Clear();
    m_statusCode = 0;
    m_lastModified.Clear();
    m_contentEncoding.Clear();
    m_error.Clear();
}

bool CFileLoader::Load(const OQString& path, OQByteBuffer& bytes)
{
    bytes.Clear();
    ForgetAnswer();
    if (!Show(OQTranslated(m_settings.label.GetText()), 0, -1))
        return false;
    const CurrentReader reader(*this);
    if (!reader.Get())
        return Fail(u"the reader module is missing");
    if (LoadFrom(*reader.Get(), path, bytes))
        return true;
    bytes.Clear();
    return false;
}

bool CFileLoader::LoadFrom(IOQReader& reader, const OQString& path, OQByteBuffer& bytes)
{
    const bool useCache
        = m_settings.useCache && IsAddress(path) && !IsSecret(path, m_settings.requestHeaders);
    const OQDownloadCache cache
        = useCache ? OQDownloadCache::OfUser() : OQDownloadCache(OQString());
    const std::string request = (path + u" " + m_settings.requestHeaders.Join(u" ")).ToUtf8();
    OQDownload copy;
    cache.Find(request, copy);
    if (!Open(reader, path, copy))
        return false;
    if (m_statusCode == kNotModified) {
        if (m_lastModified.IsEmpty())
            m_lastModified = OQString::FromUtf8(copy.lastModified);
        if (copy.bytes.size() > m_settings.maximumSize)
            return Fail(u"the file is too large");
        uint8_t* const target = bytes.Add(copy.bytes.size());
        if (target)
            std::copy(copy.bytes.begin(), copy.bytes.end(), target);
        return target || Fail(u"out of memory");
    }
    if (!ReadAll(reader, path, bytes))
        return false;
    if (Contains(m_contentEncoding, u"gzip") && !Decompress(bytes))
        return false;
    if (useCache && m_statusCode == 200 && bytes.GetSize() <= OQDownloadCache::LargestFile
        && !Contains(PropertyOf(reader, u"Cache-Control"), u"no-store")) {
        const std::string_view text(
            reinterpret_cast<const char*>(bytes.GetData()), bytes.GetSize());
        cache.Keep(request,
            { PropertyOf(reader, u"ETag").ToUtf8(), m_lastModified.ToUtf8(), std::string(text) });
    }
    return true;
}

// Without the tools nothing could be made of gzip.
OQString CFileLoader::RequestLines(const OQDownload& copy) const
{
    OQStringArray lines = m_settings.requestHeaders;
    if (Decompressor())
        lines.Add(u"Accept-Encoding: gzip");
    if (!copy.entityTag.empty())
        lines.Add(u"If-None-Match: " + OQString::FromUtf8(copy.entityTag));
    if (!copy.lastModified.empty())
        lines.Add(u"If-Modified-Since: " + OQString::FromUtf8(copy.lastModified));
    return lines.Join(u"\r\n");
}

bool CFileLoader::Open(IOQReader& reader, const OQString& path, const OQDownload& copy)
{
    reader.SetProperty(u"INFO_HEADERS", RequestLines(copy).GetText());
    if (!reader.Open(path.GetText(), m_settings.openTimeout, m_settings.idleTimeout))
        return Fail(PropertyOf(reader, u"Error"));
    m_location = PropertyOf(reader, u"Location");
    m_allHeaders = PropertyOf(reader, u"AllHeaders");
    m_statusCode = OQTextToInt(PropertyOf(reader, u"StatusCode").GetText());
    m_lastModified = PropertyOf(reader, u"Last-Modified");
    m_contentEncoding = PropertyOf(reader, u"ContentEncoding");
    const bool hasCopy = !copy.entityTag.empty() || !copy.lastModified.empty();
    const bool isGiven = (m_statusCode >= 200 && m_statusCode < 300)
        || (m_statusCode == kNotModified && hasCopy) || !IsAddress(path);
    return isGiven || Fail(OQFormat(u"the server answered %d", { m_statusCode }));
}

bool CFileLoader::ReadAll(IOQReader& reader, const OQString& path, OQByteBuffer& bytes)
{
    constexpr size_t blockSize = 64 * 1024;
    constexpr int64_t progressInterval = 100'000'000; // ns
    const int64_t size = reader.GetSize();
    int64_t lastShown = -progressInterval;
    if (size > 0 && static_cast<uint64_t>(size) > m_settings.maximumSize)
        return Fail(u"the file is too large");
    for (;;) {
        const auto done = static_cast<int64_t>(bytes.GetSize());
        const int64_t now = pxvis::os::MonotonicNanoseconds();
        if (now - lastShown >= progressInterval) {
            lastShown = now;
            if (!Show(ProgressText(path, done, size), done, size))
                return false;
        }
        uint8_t* const room = bytes.Add(blockSize, false, bytes.GetSize(), false);
        if (!room)
            return Fail(u"out of memory");
        const int64_t count = reader.Read(room, blockSize);
        if (count < 0)
            return Fail(PropertyOf(reader, u"Error"));
        if (count == 0)
            return Show(ProgressText(path, done, size), done, size);
        bytes.Add(static_cast<size_t>(count));
        if (bytes.GetSize() > m_settings.maximumSize)
            return Fail(u"the file is too large");
    }
}

bool CFileLoader::Decompress(OQByteBuffer& bytes)
{
    if (bytes.GetSize() == 0)
        return true;
    const IOQDecompressor* decompressor = Decompressor();
    OQByteBuffer plain;
    OQDllBuffer crossing(plain);
    if (!decompressor
        || !decompressor->Decompress(
            bytes.GetData(), bytes.GetSize(), m_settings.maximumSize, crossing))
        return Fail(u"what came can't be decompressed");
    bytes = std::move(plain);
    return true;
}
