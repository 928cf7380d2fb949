#include "siblings/reader/CReader.h"

#include "foundation/OQNumberText.h"
#include "foundation/OQStringArray.h"
#include "os/File.h"

#include <algorithm>

using pxvis::reader::HttpRequest;
using pxvis::reader::HttpTransfer;

namespace {

constexpr int32_t kLongestWait = 60 * 60 * 1000; // ms

// Lines that aren't headers are left out: the library would take some of them for orders.
std::vector<std::string> HeaderLines(OQString text)
{
    text.Replace(u'\r', u'\n');
    OQStringArray lines;
    text.Split(u'\n', lines);
    std::vector<std::string> headers;
    for (OQString& line : lines) {
        line.Trim();
        const int colon = line.Find(u':');
        if (colon > 0 && colon + 1 < line.GetLength())
            headers.push_back(line.ToUtf8());
    }
    return headers;
}

const OQChar* Reason(pxvis::os::FileError error)
{
    switch (error) {
    case pxvis::os::FileError::NotFound:
        return u"no such file";
    case pxvis::os::FileError::NotRegular:
        return u"not a file";
    case pxvis::os::FileError::Denied:
        return u"permission denied";
    default:
        return u"the file can't be read";
    }
}

}

void CReader::SetProperty(const OQChar* name, const OQChar* value)
{
    try {
        m_properties.SetString(name, value, true);
    } catch (...) {
    }
}

OQString CReader::Learned(const OQString& name) const
{
    if (name.CompareNoCase(u"Error") == 0)
        return m_transfer ? OQString::FromUtf8(m_transfer->Error()) : m_error;
    if (!m_transfer)
        return name.CompareNoCase(u"Location") == 0 && m_file.IsOpen() ? m_path : OQString();
    if (name.CompareNoCase(u"Location") == 0)
        return OQString::FromUtf8(m_transfer->Location());
    if (name.CompareNoCase(u"StatusCode") == 0)
        return m_transfer->StatusCode() > 0 ? OQIntToText(m_transfer->StatusCode()) : OQString();
    if (name.CompareNoCase(u"AllHeaders") == 0)
        return OQString::FromUtf8(m_transfer->Headers().Text());
    const OQString header
        = name.CompareNoCase(u"ContentEncoding") == 0 ? u"Content-Encoding" : name;
    return OQString::FromUtf8(m_transfer->Headers().Value(header.ToUtf8()));
}

bool CReader::GetProperty(const OQChar* name, IOQDllString& value) const
{
    try {
        value.Clear();
        const OQString text = Learned(name);
        value.SetText(text.GetText(), text.GetLength());
        return !text.IsEmpty();
    } catch (...) {
        return false;
    }
}

bool CReader::Open(const OQChar* path, int32_t openMilliseconds, int32_t idleMilliseconds)
{
    Close();
    try {
        m_path = path;
        m_error.Clear();
        if (m_cancelled) {
            m_error = u"cancelled";
            return false;
        }
        return m_path.Find(u"://") >= 0 ? OpenUrl(m_path, openMilliseconds, idleMilliseconds)
                                        : OpenFile(m_path);
    } catch (...) {
        return false;
    }
}

bool CReader::OpenUrl(const OQString& url, int32_t openMilliseconds, int32_t idleMilliseconds)
{
    HttpRequest request;
    request.url = url.ToUtf8();
    request.headers = HeaderLines(m_properties.GetString(u"INFO_HEADERS"));
    request.headersOnly = m_properties.GetString(u"HTTPREQUEST_TYPE").CompareNoCase(u"HEAD") == 0;
    request.openMilliseconds = std::clamp(openMilliseconds, 1, kLongestWait);
    request.idleMilliseconds = std::clamp(idleMilliseconds, 1, kLongestWait);
    auto transfer = std::make_unique<HttpTransfer>(m_cancelled);
    {
        const std::lock_guard lock(m_lock);
        m_transfer = std::move(transfer);
    }
    return m_transfer->Open(request);
}

bool CReader::OpenFile(const OQString& path)
{
    const auto error = pxvis::os::OpenRegularFile(path.ToUtf8(), m_file, m_size);
    if (error != pxvis::os::FileError::None)
        m_error = Reason(error);
    return error == pxvis::os::FileError::None;
}

int64_t CReader::Read(void* bytes, int64_t size)
{
    if (!bytes || size < 0)
        return -1;
    try {
        if (m_transfer)
            return m_transfer->Read(bytes, static_cast<size_t>(size));
        if (!m_file.IsOpen() || m_cancelled)
            return -1;
        const int64_t count = m_file.Read(bytes, static_cast<size_t>(size));
        if (count < 0)
            m_error = Reason(pxvis::os::FileError::Failed);
        return count;
    } catch (...) {
        return -1;
    }
}

int64_t CReader::GetSize() const
{
    return m_transfer ? m_transfer->Size() : m_size;
}

void CReader::Close()
{
    std::unique_ptr<HttpTransfer> ended;
    {
        const std::lock_guard lock(m_lock);
        ended = std::move(m_transfer);
    }
    m_file.Close();
    m_size = -1;
}

void CReader::Cancel()
{
    m_cancelled = true;
    const std::lock_guard lock(m_lock);
    if (m_transfer)
        m_transfer->Wake();
}
