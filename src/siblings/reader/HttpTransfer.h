#pragma once

#include "siblings/reader/ResponseHeaders.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <curl/curl.h>
#include <memory>
#include <string>
#include <vector>

namespace pxvis::reader {

struct HttpRequest
{
    std::string url;
    std::vector<std::string> headers; // "Name: value"
    bool headersOnly = false;
    int32_t openMilliseconds = 0; // until the answer's headers are there, all redirects included
    int32_t idleMilliseconds = 0; // without a byte
};

// One request to a server and its answer, which is taken in while its owner waits in Open or Read,
// and at no other time. One thread at a time but for Wake. May throw std::bad_alloc.
class HttpTransfer
{
public:
    static constexpr int64_t kMostBytes = int64_t { 1 } << 30; // of a body
    static constexpr long kMostRedirects = 10;
    // How fast a body must come in the long run: one that drips is given up.
    static constexpr int64_t kLeastBytesPerSecond = 8 * 1024;

    // `cancelled` outlives the transfer.
    explicit HttpTransfer(const std::atomic<bool>& cancelled);
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    // Once. False, with the reason in Error(), if no answer came.
    bool Open(const HttpRequest& request);

    // As IOQReader's.
    int64_t Read(void* bytes, size_t size);

    // From any thread: ends the wait so that `cancelled` is looked at.
    void Wake() { curl_multi_wakeup(m_multi.get()); }

    int64_t Size() const; // -1: not told
    long StatusCode() const;
    std::string Location() const;

    const ResponseHeaders& Headers() const { return m_headers; }

    const std::string& Error() const { return m_error; }

private:
    template <auto function>
    struct Deleter
    {
        template <class T>
        void operator()(T* object) const
        {
            function(object);
        }
    };

    static curl_socket_t OpenSocket(void* transfer, curlsocktype, curl_sockaddr* address);
    static size_t OnHeader(const char* bytes, size_t, size_t size, void* transfer) noexcept;
    static size_t OnBody(const char* bytes, size_t, size_t size, void* transfer) noexcept;
    bool Configure(const HttpRequest& request);
    bool Perform();
    bool WaitUntil(int64_t deadline);
    bool Fail(const char* reason);
    bool IsAnswered() const;

    const std::atomic<bool>& m_cancelled;
    std::unique_ptr<curl_slist, Deleter<curl_slist_free_all>> m_requestHeaders;
    std::unique_ptr<CURLU, Deleter<curl_url_cleanup>> m_url;
    std::unique_ptr<CURLM, Deleter<curl_multi_cleanup>> m_multi;
    std::unique_ptr<CURL, Deleter<curl_easy_cleanup>> m_easy;

    ResponseHeaders m_headers;
    std::string m_body; // what came in and wasn't asked for yet, from m_given on
    size_t m_given = 0;
    int64_t m_received = 0;
    int64_t m_lastHeard = 0; // ms of the monotonic clock
    int64_t m_waited = 0; // ms in Read
    int32_t m_patience = 0;
    int32_t m_idle = 0;
    bool m_wentOut = false; // to a public address
    bool m_bodyStarted = false;
    bool m_ended = false;
    bool m_failed = false;
    std::string m_error;
};

}
