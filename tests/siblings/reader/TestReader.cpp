#include "SlotOf.h"
#include "TestFile.h"
#include "TestVariable.h"
#include "foundation/IOQReader.h"
#include "foundation/OQDllString.h"
#include "foundation/OQSiblingModules.h"
#include "siblings/reader/HttpServer.h"

#include <doctest/doctest.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <sys/stat.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int32_t kOpenTime = 5000; // ms, of what isn't about time
constexpr int32_t kIdleTime = 3000;

// A reader of the module, on its own way to this machine's servers.
struct Reader
{
    Reader()
    {
        reader.reset(OQCreateReader());
        REQUIRE_MESSAGE(reader, OQSiblingModules::Get().ReaderFailure());
    }

    bool Open(const std::string& path, int32_t open = kOpenTime, int32_t idle = kIdleTime)
    {
        return reader->Open(OQString::FromUtf8(path).GetText(), open, idle);
    }

    // `result` is what the last Read gave.
    std::string ReadAll()
    {
        std::string all;
        char block[1000];
        while ((result = reader->Read(block, sizeof block)) > 0)
            all.append(block, static_cast<size_t>(result));
        return all;
    }

    std::string Get(const OQChar* name) const
    {
        OQString text = u"stale";
        OQDllString crossing(text);
        const bool known = reader->GetProperty(name, crossing);
        CHECK(known == !text.IsEmpty());
        return text.ToUtf8();
    }

    TestVariable noProxy { "no_proxy", "*" };
    std::unique_ptr<IOQReader> reader;
    int64_t result = 1;
};

int MillisecondsSince(Clock::time_point start)
{
    return static_cast<int>(
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
}

}

TEST_CASE("A file is read as it is, and only if it is a regular one")
{
    const std::string text(2500, 'x');
    const TestFile file("a.txt", text);
    Reader reader;
    REQUIRE(reader.Open(file.Path()));
    CHECK(reader.reader->GetSize() == 2500);
    CHECK(reader.Get(u"Location") == file.Path());
    CHECK(reader.Get(u"StatusCode").empty());
    CHECK(reader.ReadAll() == text);
    CHECK(reader.result == 0);

    CHECK_FALSE(reader.Open(file.Path() + ".not"));
    CHECK(reader.Get(u"Error") == "no such file");
    CHECK(reader.reader->GetSize() == -1);
    CHECK(reader.ReadAll().empty());
    CHECK(reader.result == -1);
    const std::string pipe = file.Path() + ".pipe";
    REQUIRE(mkfifo(pipe.c_str(), 0600) == 0);
    for (const std::string& path :
        { pipe, std::string("/dev/zero"), std::string("/"), std::string() })
        CHECK_FALSE_MESSAGE(reader.Open(path), path);
    REQUIRE(reader.Open(file.Path()));
    reader.reader->Cancel();
    CHECK(reader.ReadAll().empty());
    CHECK_FALSE(reader.Open(file.Path()));
}

TEST_CASE("An answer is given with its status, its headers and where it was found")
{
    HttpServer server(
        [](const std::string& target, const std::string&, const HttpConnection& client) {
            if (target == "/from")
                client.Send(
                    HttpAnswer("moved", "Location: /to?a=b%20c\r\nETag: \"no\"\r\n", "302 Found"));
            else if (target.starts_with("/to"))
                client.Send(HttpAnswer("Hello",
                    "Last-Modified: Tue, 01 Jan 2030 00:00:00 GMT\r\n"
                    "content-ENCODING:  x-Gzip \r\n"));
            else
                client.Send(HttpAnswer("no such page", "", "404 Not Found"));
        });
    Reader reader;
    reader.reader->SetProperty(
        u"info_headers", u"Accept-Encoding: gzip\r\nbad line\nX-A: 1\rX-B: 2");
    REQUIRE(reader.Open(server.Url("/from")));
    CHECK(reader.reader->GetSize() == 5);
    CHECK(reader.Get(u"Location") == server.Url("/to?a=b%20c"));
    CHECK(reader.Get(u"StatusCode") == "200");
    CHECK(reader.Get(u"Last-Modified") == "Tue, 01 Jan 2030 00:00:00 GMT");
    CHECK(reader.Get(u"ContentEncoding") == "x-Gzip");
    CHECK(reader.Get(u"ETag").empty());
    CHECK(reader.Get(u"AllHeaders").starts_with("HTTP/1.1 200 OK\r\n"));
    CHECK(reader.Get(u"AllHeaders").ends_with("Content-Length: 5\r\n"));
    CHECK(reader.ReadAll() == "Hello");
    CHECK(reader.result == 0);
    for (const std::string& request : server.Requests()) {
        CHECK(request.find("\r\nAccept-Encoding: gzip\r\n") != request.npos);
        CHECK(request.find("\r\nX-A: 1\r\nX-B: 2\r\n") != request.npos);
        CHECK(request.find("bad") == request.npos);
    }

    REQUIRE(reader.Open(server.Url("/a b\u00E4")));
    CHECK(server.Requests().back().starts_with("GET /a%20b%c3%a4 HTTP/1.1\r\n"));
    CHECK(reader.Get(u"StatusCode") == "404");
    CHECK(reader.ReadAll() == "no such page");

    reader.reader->SetProperty(u"HTTPREQUEST_TYPE", u"HEAD");
    REQUIRE(reader.Open(server.Url("/to")));
    CHECK(server.Requests().back().starts_with("HEAD /to "));
    CHECK(reader.reader->GetSize() == 5);
    CHECK(reader.ReadAll().empty());
    CHECK(reader.result == 0);
}

TEST_CASE("Only http and https are asked, also behind redirects, of which there are ten at most")
{
    HttpServer server(
        [](const std::string& target, const std::string&, const HttpConnection& client) {
            const int step = std::atoi(target.c_str() + 1);
            const std::string to = target == "/file" ? "file:///etc/passwd"
                : target == "/ftp"                   ? "ftp://127.0.0.1/x"
                : target == "/loop"                  ? "/loop"
                                                     : "/" + std::to_string(step - 1);
            client.Send(target == "/0" ? HttpAnswer("end")
                                       : HttpAnswer("", "Location: " + to + "\r\n", "301 Moved"));
        });
    Reader reader;
    REQUIRE(reader.Open(server.Url("/10")));
    CHECK(reader.ReadAll() == "end");
    for (const std::string& path : { server.Url("/11"), server.Url("/loop"), server.Url("/file"),
             server.Url("/ftp"), std::string("file:///etc/passwd"), "ftp://" + server.Host() + "/0",
             "https://" + server.Host() + "/0", std::string("://"), std::string("http://") }) {
        CHECK_FALSE_MESSAGE(reader.Open(path, kOpenTime, 500), path);
        CHECK_FALSE(reader.Get(u"Error").empty());
        CHECK(reader.ReadAll().empty());
        CHECK(reader.result == -1);
    }
}

TEST_CASE("A password is for the server that it was given for")
{
    HttpServer other([](const std::string&, const std::string&, const HttpConnection& client) {
        client.Send(HttpAnswer("end"));
    });
    HttpServer server([&](const std::string&, const std::string&, const HttpConnection& client) {
        client.Send(
            HttpAnswer("", "Set-Cookie: a=b\r\nLocation: " + other.Url("/") + "\r\n", "302 Found"));
    });
    Reader reader;
    REQUIRE(reader.Open("http://me:secret@" + server.Host() + "/"));
    CHECK(reader.ReadAll() == "end");
    CHECK(server.Requests().front().find("Authorization: Basic") != std::string::npos);
    REQUIRE(other.Requests().size() == 1);
    for (const char* header : { "Authorization", "Cookie", "secret", "Referer" })
        CHECK(other.Requests().front().find(header) == std::string::npos);
}

TEST_CASE("A body that breaks off and headers without an end are failures")
{
    HttpServer server(
        [](const std::string& target, const std::string&, const HttpConnection& client) {
            if (target == "/short")
                client.Send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nHello");
            else if (target == "/chunks")
                client.Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nHello\r\n");
            else if (target == "/huge")
                client.Send("HTTP/1.1 200 OK\r\nContent-Length: 1099511627776\r\n\r\nHello");
            else if (target == "/headers")
                for (client.Send("HTTP/1.1 200 OK\r\n");
                     client.Send("X-A: " + std::string(1000, 'a') + "\r\n");) { }
            else
                client.Send("Hello"); // no headers at all
        });
    Reader reader;
    for (const char* target : { "/short", "/chunks" }) {
        REQUIRE(reader.Open(server.Url(target)));
        CHECK(reader.ReadAll() == "Hello");
        CHECK(reader.result == -1);
        CHECK_FALSE(reader.Get(u"Error").empty());
    }
    for (const char* target : { "/huge", "/headers", "/bare" })
        CHECK_FALSE_MESSAGE(reader.Open(server.Url(target)), target);
}

TEST_CASE("A server that is silent, slow or too slow in the end is given up")
{
    HttpServer server(
        [](const std::string& target, const std::string&, const HttpConnection& client) {
            if (target == "/never") {
                client.EndsWithin(20'000);
            } else if (target == "/headers") {
                for (client.Send("HTTP/1.1 200 OK\r\n");
                     !client.EndsWithin(50) && client.Send("X: 1\r\n");) { }
            } else if (target == "/stops") {
                client.Send("HTTP/1.1 200 OK\r\n\r\nHello");
                client.EndsWithin(20'000);
            } else {
                for (client.Send("HTTP/1.1 200 OK\r\n\r\n");
                     !client.EndsWithin(50) && client.Send("a");) { }
            }
        });
    Reader reader;
    const auto takes = [&](const char* target, int32_t open, int32_t idle) {
        const auto start = Clock::now();
        if (reader.Open(server.Url(target), open, idle))
            reader.ReadAll();
        CHECK(reader.Get(u"Error") == "timed out");
        return MillisecondsSince(start);
    };
    for (const char* target : { "/never", "/stops" }) {
        const int time = takes(target, 5000, 300);
        CHECK(time >= 290);
        CHECK(time < 2000);
    }
    for (const char* target : { "/headers", "/drip" }) {
        const int time = takes(target, 400, 5000);
        CHECK(time >= 390);
        CHECK(time < 2500);
    }
}

TEST_CASE("Another thread ends a wait at once, and for good")
{
    HttpServer server(
        [](const std::string& target, const std::string&, const HttpConnection& client) {
            if (target == "/body")
                client.Send("HTTP/1.1 200 OK\r\n\r\nHello");
            client.EndsWithin(20'000);
        });
    for (const char* target : { "/never", "/body" }) {
        Reader reader;
        Clock::time_point cancelled;
        std::thread other([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            cancelled = Clock::now();
            reader.reader->Cancel();
        });
        if (reader.Open(server.Url(target), 20'000, 20'000))
            reader.ReadAll();
        const auto ended = Clock::now();
        other.join();
        CHECK(ended >= cancelled);
        CHECK(ended - cancelled < std::chrono::milliseconds(500)); // 50 on a machine with time
        CHECK(reader.Get(u"Error") == "cancelled");
        CHECK(reader.ReadAll().empty());
        CHECK(reader.result == -1);
        CHECK_FALSE(reader.Open(server.Url(target)));
    }
}

TEST_CASE("The reader's operations keep their places")
{
    CHECK(SlotOf(&IOQReader::SetProperty) == 2);
    CHECK(SlotOf(&IOQReader::GetProperty) == 3);
    CHECK(SlotOf(&IOQReader::Open) == 4);
    CHECK(SlotOf(&IOQReader::Read) == 5);
    CHECK(SlotOf(&IOQReader::GetSize) == 6);
    CHECK(SlotOf(&IOQReader::Close) == 7);
    CHECK(SlotOf(&IOQReader::Cancel) == 8);
}

TEST_CASE("The module shows three operations and nothing else")
{
    FILE* list
        = popen("nm -D --defined-only --format=posix " PXVIS_BINARY_DIR "/bin/OQReader.so", "r");
    REQUIRE(list);
    std::string names;
    for (char line[1000]; fgets(line, sizeof line, list);)
        names += std::string(line).substr(0, std::string(line).find(' ')) + " ";
    CHECK(pclose(list) == 0);
    CHECK(names == "CreateGenericReaderDLL OQReaderInitialize OQReaderUninitialize ");
}

TEST_CASE("The module starts with its first reader and comes back after an unload")
{
    OQSiblingModules modules;
    std::unique_ptr<IOQReader> reader(modules.CreateReader());
    REQUIRE_MESSAGE(reader, modules.ReaderFailure());
    reader.reset();
    modules.Unload();
    reader.reset(modules.CreateReader());
    CHECK(reader);
    reader.reset();

    OQSiblingModules missing({}, {}, { .name = "/no/OQReader.so" });
    CHECK(missing.CreateReader() == nullptr);
    CHECK(missing.ReaderFailure().find("/no/OQReader.so") != std::string::npos);
    OQSiblingModules wrong({}, {}, { .name = PXVIS_BINARY_DIR "/bin/OQTools.so" });
    CHECK(wrong.CreateReader() == nullptr);
    CHECK(wrong.ReaderFailure().find("OQReaderInitialize") != std::string::npos);
}
