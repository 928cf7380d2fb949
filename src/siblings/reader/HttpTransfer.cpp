#include "siblings/reader/HttpTransfer.h"

#include "os/Clock.h"
#include "os/NetworkAddress.h"

#include <algorithm>
#include <cstring>
#include <sys/socket.h>

namespace pxvis::reader {

namespace {

int64_t Milliseconds()
{
    return os::MonotonicNanoseconds() / 1'000'000;
}

// Never given back: threads that look up names may still run in the library.
bool StartLibrary()
{
    static const bool started = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    return started;
}

bool IsSecure(CURLU* url)
{
    char* scheme = nullptr;
    const bool isSecure = curl_url_get(url, CURLUPART_SCHEME, &scheme, 0) == CURLUE_OK
        && std::string_view(scheme) == "https"; // the library gives it in lower case
    curl_free(scheme);
    return isSecure;
}

}

HttpTransfer::HttpTransfer(const std::atomic<bool>& cancelled)
    : m_cancelled(cancelled)
{
    if (!StartLibrary())
        return;
    m_easy.reset(curl_easy_init());
    m_multi.reset(curl_multi_init());
}

HttpTransfer::~HttpTransfer()
{
    if (m_easy && m_multi)
        curl_multi_remove_handle(m_multi.get(), m_easy.get());
}

bool HttpTransfer::Fail(const char* reason)
{
    m_failed = true;
    if (m_error.empty())
        m_error = reason;
    return false;
}

// What isn't set here stays off as the library has it: cookies, the user's password file, passwords
// for other hosts than the one that they were given for, answers without headers.
bool HttpTransfer::Configure(const HttpRequest& request)
{
    CURL* const easy = m_easy.get();
    m_url.reset(curl_url());
    if (!easy || !m_multi || !m_url)
        return Fail("out of memory");
    if (curl_url_set(m_url.get(), CURLUPART_URL, request.url.c_str(), CURLU_URLENCODE) != CURLUE_OK)
        return Fail("not an address of http or https");
    for (const std::string& line : request.headers) {
        curl_slist* const longer = curl_slist_append(m_requestHeaders.get(), line.c_str());
        if (!longer)
            return Fail("out of memory");
        (void)m_requestHeaders.release();
        m_requestHeaders.reset(longer);
    }
    CURLcode result = CURLE_OK;
    const auto set = [&](CURLoption option, auto value) {
        if (result == CURLE_OK)
            result = curl_easy_setopt(easy, option, value);
    };
    set(CURLOPT_CURLU, m_url.get());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, IsSecure(m_url.get()) ? "https" : "http,https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, kMostRedirects);
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
    set(CURLOPT_UNRESTRICTED_AUTH, 0L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // the end of a transfer doesn't wait for a name to be looked up
    set(CURLOPT_NOBODY, request.headersOnly ? 1L : 0L);
    set(CURLOPT_HTTPHEADER, m_requestHeaders.get());
    set(CURLOPT_USERAGENT, "pxvis");
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L); // a proxy's answers are not the server's
    // A host's next address is tried while there is time.
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(request.idleMilliseconds));
    set(CURLOPT_OPENSOCKETFUNCTION, &OpenSocket);
    set(CURLOPT_OPENSOCKETDATA, static_cast<void*>(this));
    set(CURLOPT_HEADERFUNCTION, &OnHeader);
    set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    set(CURLOPT_WRITEFUNCTION, &OnBody);
    set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    if (result != CURLE_OK)
        return Fail(curl_easy_strerror(result));
    return curl_multi_add_handle(m_multi.get(), easy) == CURLM_OK || Fail("out of memory");
}

// Programs that this process starts don't get our connections. A server out there must not lead to
// one that only this machine, or its network, can reach: the machine's own addresses are for those
// who begin with them.
curl_socket_t HttpTransfer::OpenSocket(void* transfer, curlsocktype, curl_sockaddr* address)
{
    auto& self = *static_cast<HttpTransfer*>(transfer);
    const bool isPublic = os::IsPublicAddress(address->addr);
    if (self.m_wentOut && !isPublic)
        return CURL_SOCKET_BAD;
    self.m_wentOut = self.m_wentOut || isPublic;
    return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

size_t HttpTransfer::OnHeader(const char* bytes, size_t, size_t size, void* transfer) noexcept
{
    auto& self = *static_cast<HttpTransfer*>(transfer);
    self.m_lastHeard = Milliseconds();
    try {
        if (self.m_headers.Add({ bytes, size }))
            return size;
        self.Fail("the answer's headers are too large");
    } catch (...) {
        self.m_failed = true;
    }
    return 0;
}

size_t HttpTransfer::OnBody(const char* bytes, size_t, size_t size, void* transfer) noexcept
{
    auto& self = *static_cast<HttpTransfer*>(transfer);
    self.m_lastHeard = Milliseconds();
    self.m_bodyStarted = true;
    try {
        self.m_received += static_cast<int64_t>(size);
        if (self.m_received <= kMostBytes) {
            self.m_body.append(bytes, size);
            return size;
        }
        self.Fail("the file is too large");
    } catch (...) {
        self.m_failed = true;
    }
    return 0;
}

// Does what can be done at once. False when nothing more will come.
bool HttpTransfer::Perform()
{
    if (m_cancelled)
        return Fail("cancelled");
    if (m_ended || m_failed)
        return false;
    int running = 0;
    if (curl_multi_perform(m_multi.get(), &running) != CURLM_OK)
        return Fail("the connection failed");
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi.get(), &left)) {
        m_ended = true;
        if (message->data.result != CURLE_OK)
            Fail(curl_easy_strerror(message->data.result));
    }
    return !m_ended && !m_failed;
}

// Until there may be something to do.
bool HttpTransfer::WaitUntil(int64_t deadline)
{
    const int64_t left = deadline - Milliseconds();
    if (left <= 0)
        return Fail("timed out");
    return curl_multi_poll(m_multi.get(), nullptr, 0, static_cast<int>(left), nullptr) == CURLM_OK
        || Fail("the connection failed");
}

// A redirect isn't the answer that was asked for, unless it leads nowhere.
bool HttpTransfer::IsAnswered() const
{
    if (m_bodyStarted || (m_ended && !m_failed))
        return true;
    const long status = StatusCode();
    return m_headers.IsComplete()
        && ((status >= 200 && status < 300) || status == 304 || status >= 400);
}

bool HttpTransfer::Open(const HttpRequest& request)
{
    m_patience = request.openMilliseconds;
    m_idle = request.idleMilliseconds;
    if (!Configure(request))
        return false;
    const int64_t start = Milliseconds();
    m_lastHeard = start;
    while (Perform() && !IsAnswered()
        && WaitUntil(std::min(start + m_patience, m_lastHeard + m_idle))) { }
    if (!IsAnswered())
        return Fail("no answer");
    return request.headersOnly || Size() <= kMostBytes
        || Fail("the file is too large"); // what failed later is Read's
}

int64_t HttpTransfer::Read(void* bytes, size_t size)
{
    // The time in which nobody waits for the server isn't its fault.
    const int64_t start = Milliseconds();
    while (m_given == m_body.size() && Perform() && m_given == m_body.size()) {
        const int64_t allowed = m_patience + m_received * 1000 / kLeastBytesPerSecond;
        const int64_t silentFrom = std::max(m_lastHeard, start);
        if (!WaitUntil(std::min(silentFrom + m_idle, start + allowed - m_waited)))
            break;
    }
    m_waited += Milliseconds() - start;
    if (m_cancelled)
        return -1;
    const size_t count = std::min(size, m_body.size() - m_given);
    if (count == 0)
        return m_failed ? -1 : 0;
    std::memcpy(bytes, m_body.data() + m_given, count);
    m_given += count;
    if (m_given == m_body.size()) {
        m_body.clear();
        m_given = 0;
    }
    return static_cast<int64_t>(count);
}

int64_t HttpTransfer::Size() const
{
    curl_off_t size = -1;
    curl_easy_getinfo(m_easy.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
    return size;
}

long HttpTransfer::StatusCode() const
{
    long status = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    return status;
}

std::string HttpTransfer::Location() const
{
    const char* url = nullptr;
    curl_easy_getinfo(m_easy.get(), CURLINFO_EFFECTIVE_URL, &url);
    return url ? url : "";
}

}
