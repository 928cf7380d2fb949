#include "TestFile.h"
#include "TestVariable.h"
#include "foundation/CFileLoader.h"
#include "foundation/OQFileSystem.h"
#include "foundation/OQFilename.h"
#include "foundation/StringPrinting.h"
#include "siblings/GzipBytes.h"
#include "siblings/reader/HttpServer.h"

#include <doctest/doctest.h>

#include <chrono>
#include <filesystem>

namespace {

const TestVariable noProxy("no_proxy", "*");

OQString Text(const std::string& text)
{
    return OQString::FromUtf8(text);
}

// "-" for a failure, which leaves nothing.
std::string Loaded(CFileLoader& loader, const std::string& path)
{
    OQByteBuffer bytes;
    bytes.SetSize(3);
    if (!loader.Load(Text(path), bytes)) {
        CHECK(bytes.GetSize() == 0);
        CHECK_FALSE(loader.GetError().IsEmpty());
        return "-";
    }
    CHECK(loader.GetError().IsEmpty());
    return { reinterpret_cast<const char*>(bytes.GetData()), bytes.GetSize() };
}

struct ProgressRecord final : IFileLoaderProgress
{
    bool OnProgress(const OQString& text, int64_t, int64_t) override
    {
        texts.push_back(text.ToUtf8());
        return --calls > 0;
    }

    std::vector<std::string> texts;
    int calls = 1000; // that go well
};

}

TEST_CASE("Files and addresses are loaded as plain bytes, gzip or not")
{
    HttpServer server(
        [](const std::string& target, const std::string&, const HttpConnection& client) {
            const std::string headers
                = target.starts_with("/gzip") ? "Content-Encoding: X-GZIP\r\n" : "";
            if (target == "/moved")
                client.Send(HttpAnswer("", "Location: /gzip\r\n", "307 Temporary Redirect"));
            else if (target == "/gzip")
                client.Send(HttpAnswer(kGzipHello, headers + "Last-Modified: yesterday\r\n"));
            else if (target == "/gzip/cut")
                client.Send(HttpAnswer(kGzipHello.substr(0, 20), headers));
            else if (target == "/gzip/bomb")
                client.Send(HttpAnswer(GzipBomb(3000), headers)); // 187 MiB
            else if (target == "/gzip/empty")
                client.Send(HttpAnswer("", headers));
            else if (target == "/missing")
                client.Send(HttpAnswer("no such page", "", "404 Not Found"));
            else if (target == "/odd")
                client.Send(HttpAnswer("", "", "304 Not Modified"));
            else if (target == "/short")
                client.Send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nHello");
            else
                client.Send(HttpAnswer("Hello"));
        });
    OQLoadSettings settings;
    settings.requestHeaders = { u"X-Song: a" };
    CFileLoader loader(settings);
    CHECK(Loaded(loader, server.Url("/plain")) == "Hello");
    CHECK(loader.GetStatusCode() == 200);
    CHECK(server.Requests().back().find("X-Song: a\r\nAccept-Encoding: gzip\r\n")
        != std::string::npos);
    CHECK(Loaded(loader, server.Url("/moved")) == "Hello, hello, hello");
    CHECK(loader.GetLocation() == Text(server.Url("/gzip")));
    CHECK(loader.GetLastModified() == u"yesterday");
    CHECK(loader.GetContentEncoding() == u"X-GZIP");
    CHECK(loader.GetAllHeaders().StartsWith(u"HTTP/1.1 200 OK\r\n"));
    CHECK(Loaded(loader, server.Url("/gzip/empty")).empty());
    for (const char* target : { "/gzip/cut", "/gzip/bomb", "/missing", "/odd", "/short" })
        CHECK_MESSAGE(Loaded(loader, server.Url(target)) == "-", target);
    CHECK(Loaded(loader, "file:///etc/passwd") == "-");

    const TestFile file("a.txt", "local");
    CHECK(Loaded(loader, file.Path()) == "local");
    CHECK(loader.GetLocation() == Text(file.Path()));
    CHECK(loader.GetStatusCode() == 0);
    CHECK(Loaded(loader, file.Path() + "x") == "-");
    CHECK(Loaded(loader, "") == "-");

    settings.maximumSize = 5;
    CFileLoader small(settings);
    CHECK(Loaded(small, server.Url("/plain")) == "Hello");
    CHECK(Loaded(small, server.Url("/gzip")) == "-");
    settings.maximumSize = 4;
    CFileLoader smaller(settings);
    CHECK(Loaded(smaller, server.Url("/plain")) == "-");
    CHECK(CFileLoader::GetKind(u"http://a") == OQString(u"Internet resource"));
    CHECK(CFileLoader::GetKind(u"/http:/a") == OQString(u"Local resource"));
}

TEST_CASE("Progress is told in words, and whoever hears it may end the load")
{
    HttpServer server([](const std::string&, const std::string&, const HttpConnection& client) {
        client.Send("HTTP/1.1 200 OK\r\n\r\n" + std::string(3 << 19, 'x'));
    });
    const TestFile file("a.txt", std::string(5000, 'x'));
    ProgressRecord progress;
    OQLoadSettings settings;
    settings.progress = &progress;
    CFileLoader loader(settings);
    CHECK(Loaded(loader, file.Path()).size() == 5000);
    REQUIRE(progress.texts.size() == 3);
    CHECK(progress.texts[0] == "Working...");
    CHECK(progress.texts[1] == "Reading 'a.txt'  (0 bytes of 4 KB)");
    CHECK(progress.texts[2] == "Reading 'a.txt'  (4 KB of 4 KB)");
    CHECK(Loaded(loader, server.Url("/b?c=/d")).size() == 3 << 19);
    CHECK(progress.texts.back() == "Downloading 'b'  (1.5 MB)");
    CHECK(Loaded(loader, server.Url("/")).size() == 3 << 19);
    CHECK(progress.texts.back() == "Downloading  (1.5 MB)");

    progress.calls = 2;
    CHECK(Loaded(loader, file.Path()) == "-");
    CHECK(loader.GetError() == u"cancelled");
    progress.calls = 1000;
    CHECK(Loaded(loader, file.Path()).size() == 5000);
}

TEST_CASE("A load is ended by another thread, and with it all later ones")
{
    HttpServer server([](const std::string&, const std::string&, const HttpConnection& client) {
        client.EndsWithin(20'000);
    });
    OQLoadSettings settings;
    settings.idleTimeout = 20'000;
    CFileLoader loader(settings);
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        loader.Cancel();
    });
    const auto start = std::chrono::steady_clock::now();
    CHECK(Loaded(loader, server.Url("/")) == "-");
    CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(2));
    other.join();
    CHECK(Loaded(loader, server.Url("/")) == "-");
    CHECK(server.Requests().size() == 1);
}

TEST_CASE("A copy stands in for what the server says is unchanged")
{
    const TestFolder folder;
    const TestVariable cache("XDG_CACHE_HOME", folder.Path("cache").c_str());
    std::string page = "first";
    std::string headers = "ETag: W/\"1\"\r\nLast-Modified: yesterday\r\n";
    HttpServer server([&](const std::string&, const std::string& request,
                          const HttpConnection& client) {
        const bool current
            = request.find("If-None-Match: W/\"1\"\r\nIf-Modified-Since: yesterday") != request.npos
            && page == "first";
        client.Send(current ? "HTTP/1.1 304 Not Modified\r\nConnection: close\r\n\r\n"
                            : HttpAnswer(page, headers));
    });
    const std::string url = server.Url("/a");
    const std::filesystem::path copies = folder / "cache/pxvis/downloads";
    CFileLoader plain;
    CHECK(Loaded(plain, url) == "first");
    CHECK_FALSE(std::filesystem::exists(copies));

    OQLoadSettings settings;
    settings.useCache = true;
    CFileLoader loader(settings);
    for (const int status : { 200, 304, 304 }) {
        CHECK(Loaded(loader, url) == "first");
        CHECK(loader.GetStatusCode() == status);
        CHECK(loader.GetLastModified() == u"yesterday");
    }
    CHECK(std::filesystem::status(copies).permissions() == std::filesystem::perms::owner_all);
    const std::filesystem::path copy = std::filesystem::directory_iterator(copies)->path();
    CHECK(std::filesystem::status(copy).permissions()
        == (std::filesystem::perms::owner_read | std::filesystem::perms::owner_write));
    CHECK(Loaded(loader, server.Url("/b")) == "first");
    CHECK(loader.GetStatusCode() == 200);

    std::ofstream(copy, std::ios::app) << "somebody else's";
    CHECK(Loaded(loader, url) == "first");
    CHECK(loader.GetStatusCode() == 200);

    page = "second";
    headers = "ETag: \"2\"\r\nCache-Control: private, No-Store\r\nCache-Control: max-age=9\r\n";
    CHECK(Loaded(loader, url) == "second");
    CHECK(server.Requests().back().find("If-None-Match: W/\"1\"") != std::string::npos);
    CHECK(BytesOf(copy).find("second") == std::string::npos);
    const auto count
        = [&] { return std::distance(std::filesystem::directory_iterator(copies), {}); };
    const auto before = count();
    headers = "ETag: \"2\"\r\n";
    Loaded(loader, "http://me:secret@" + server.Host() + "/");
    settings.requestHeaders = { u"authorization: x" };
    CFileLoader withPassword(settings);
    CHECK(Loaded(withPassword, server.Url("/c")) == "second");
    headers.clear();
    CHECK(Loaded(loader, server.Url("/d")) == "second");
    CHECK(count() == before);
}

TEST_CASE("Texts come from addresses as from files, and sizes only if the server may be asked")
{
    HttpServer server(
        [](const std::string& target, const std::string& request, const HttpConnection& client) {
            if (target == "/missing")
                client.Send(HttpAnswer("", "", "404 Not Found"));
            else if (request.starts_with("HEAD"))
                client.Send("HTTP/1.1 200 OK\r\nContent-Length: 123456789012\r\n\r\n");
            else if (target == "/never")
                client.EndsWithin(20'000);
            else
                client.Send(HttpAnswer("caf\xE9\nau lait"));
        });
    OQString text = u"stale";
    CHECK(OQFileSystem::ReadTextFile(Text(server.Url("/a")), text));
    CHECK(text == u"caf\u00E9\r\nau lait");
    CHECK_FALSE(OQFileSystem::ReadTextFile(Text(server.Url("/a")), text, 11));
    CHECK(text.IsEmpty());
    CHECK_FALSE(OQFileSystem::ReadTextFile(Text(server.Url("/missing")), text));
    const auto start = std::chrono::steady_clock::now();
    CHECK_FALSE(OQFileSystem::ReadTextFile(Text(server.Url("/never")), text));
    const auto waited = std::chrono::steady_clock::now() - start;
    CHECK(waited > std::chrono::milliseconds(3900));
    CHECK(waited < std::chrono::seconds(8));

    const OQFilename filename(Text(server.Url("/a")));
    const size_t requests = server.Requests().size();
    const TestFolder folder;
    std::filesystem::create_directories(folder / "http:");
    folder.Write("http:/a.txt", "local");
    CHECK(OQFileSystem::ReadTextFile(Text(folder.Path("http://a.txt")), text));
    CHECK(text == u"local");
    CHECK(filename.GetSize() == -1);
    CHECK(server.Requests().size() == requests);
    CHECK(filename.GetSize(true) == 123456789012);
    CHECK(OQFilename(Text(server.Url("/missing"))).GetSize(true) == -1);
}
