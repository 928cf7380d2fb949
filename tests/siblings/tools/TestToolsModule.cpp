#include "os/DynamicLibrary.h"
#include "siblings/tools/ToolsTesting.h"

#include <chrono>
#include <filesystem>
#include <random>
#include <string>

namespace fs = std::filesystem;

namespace {

int32_t Compare(
    IOQText& text, const OQChar* a, const OQChar* b, int32_t mode, int32_t numbers, int32_t length)
{
    const int32_t order = text.Compare(a, b, mode, numbers, length);
    CHECK(text.Compare(b, a, mode, numbers, length) == -order);
    return order;
}

}

TEST_CASE("The module gives its interface for the version it knows alone, with each service")
{
    pxvis::os::DynamicLibrary library;
    REQUIRE(library.Open(PXVIS_BINARY_DIR "/bin/OQTools.so"));
    auto* entry = reinterpret_cast<IOQTools* (*)(int32_t)>(library.Symbol("GetOQToolsDLL"));
    REQUIRE(static_cast<bool>(entry));
    CHECK(entry(200047) == nullptr);
    CHECK(entry(0) == nullptr);
    REQUIRE(entry(200048));

    TestTools tools;
    CHECK(tools->GetVersion() == 200048);
    for (const int32_t make : { 0, 1 }) {
        CHECK(tools->GetDisplayScale(make));
        CHECK(tools->GetText(make));
        CHECK(tools->GetTranslator(make));
        CHECK(tools->GetTheme(make));
        CHECK(tools->GetLog(make));
        CHECK(tools->GetFiles(make));
        CHECK(tools->GetSettings(make));
        CHECK(tools->GetNamedLocks(make));
        CHECK(tools->GetDialogs(make));
        CHECK(tools->GetMainThreadMessages(make));
        CHECK(tools->GetUserInterface(make));
        CHECK(tools->GetDecompressor(make));
        CHECK(tools->GetUnpacker(make));
    }
}

TEST_CASE("The end of one user of the module is not the end of another's")
{
    TestTools tools;
    const auto key = tools.Key(u"K");
    CHECK(key->SetInt(u"a", 1));
    const std::string first = tools.folder.Path("config");
    {
        OQSiblingModules other({}, { .name = PXVIS_BINARY_DIR "/bin/OQTools.so" });
        setenv("XDG_CONFIG_HOME", tools.folder.Path("elsewhere").c_str(), 1);
        REQUIRE(other.Tools());
    }
    CHECK(tools.Key(u"K", false) != nullptr);
    tools.Restart();
    CHECK(tools.Key(u"K", false) == nullptr);
    CHECK(key->GetInt(u"a", 0) == 1);
}

TEST_CASE("The display's scale comes from the environment within its bounds")
{
    struct Case
    {
        const char* text;
        double scale;
    };

    for (const Case& c : { Case { nullptr, 1 }, { "", 1 }, { "1.5", 1.5 }, { "100", 8 },
             { "0.1", 0.5 }, { "-2", 1 }, { "2x", 1 }, { "0", 1 } }) {
        const TestVariable variable("PXVIS_SCALE", c.text);
        TestTools tools;
        CHECK(tools->GetDisplayScale(1)->GetScale() == c.scale);
    }
    const TestVariable variable("PXVIS_SCALE", "1.5");
    TestTools tools;
    const IOQDisplayScale* scale = tools->GetDisplayScale(1);
    CHECK(scale->Scale(10) == 15);
    CHECK(scale->Scale(3) == 5);
    CHECK(scale->Scale(-3) == -5);
    CHECK(scale->Scale(INT32_MAX) == INT32_MAX);
    CHECK(scale->Scale(INT32_MIN) == INT32_MIN);
}

TEST_CASE("Texts compare by words, by numbers and by units")
{
    TestTools tools;
    IOQText& text = *tools->GetText(1);
    CHECK(Compare(text, u"Beat", u"beat", OQTextIgnoreCase, 1, -1) == 0);
    CHECK(Compare(text, u"\u00C4rger", u"\u00E4RGER", OQTextIgnoreCase, 0, -1) == 0);
    CHECK(Compare(text, u"beat", u"Beat", 0, 0, -1) < 0);
    CHECK(Compare(text, u"Beat", u"beatX", 0, 0, -1) < 0);
    CHECK(Compare(text, u"a", u"B", 0, 0, -1) < 0);
    CHECK(Compare(text, u"a", u"B", OQTextOrdinal, 0, -1) > 0);
    CHECK(Compare(text, u"a", u"B", OQTextOrdinal | OQTextIgnoreCase, 0, -1) < 0);

    CHECK(Compare(text, u"Track 2", u"track 10", OQTextIgnoreCase, 1, -1) < 0);
    CHECK(Compare(text, u"Track 2", u"track 10", OQTextIgnoreCase, 0, -1) > 0);
    CHECK(Compare(text, u"Track 2", u"track 10", OQTextIgnoreCase | OQTextOrdinal, 1, -1) > 0);
    CHECK(
        Compare(text, u"99999999999999999999999998", u"99999999999999999999999999", 0, 1, -1) < 0);
    CHECK(Compare(text, u"9", u"10000000000000000000000000", 0, 1, -1) < 0);
    CHECK(Compare(text, u"1.10", u"1.9", 0, 1, -1) > 0);
    CHECK(Compare(text, u"a01b", u"a1c", 0, 1, -1) < 0);
    CHECK(Compare(text, u"a01", u"a1", 0, 1, -1) < 0);
    CHECK(Compare(text, u"0", u"00", 0, 1, -1) > 0);

    CHECK(Compare(text, u"abcX", u"abcY", 0, 0, 3) == 0);
    CHECK(Compare(text, u"a12", u"a13", 0, 1, 2) == 0);
    CHECK(Compare(text, u"a", u"b", 0, 0, 0) == 0);
    CHECK(Compare(text, nullptr, u"", 0, 0, -1) == 0);
    CHECK(Compare(text, nullptr, u"a", OQTextOrdinal, 0, -1) < 0);
}

TEST_CASE("Comparing gives one order of any texts")
{
    TestTools tools;
    IOQText& text = *tools->GetText(1);
    std::mt19937 random(3);
    const OQChar alphabet[] = u"0012aAb-\u00C4\u00E4";
    std::vector<std::u16string> texts(60);
    for (std::u16string& one : texts) {
        for (unsigned length = random() % 6; length > 0; --length)
            one += alphabet[random() % (std::size(alphabet) - 1)];
    }
    for (const int32_t mode : { 0, 1, 2, 3 }) {
        const auto order = [&](const std::u16string& a, const std::u16string& b) {
            return text.Compare(a.c_str(), b.c_str(), mode, 1, -1);
        };
        for (const auto& a : texts) {
            for (const auto& b : texts) {
                if (!(mode & OQTextIgnoreCase))
                    CHECK((order(a, b) == 0) == (a == b));
                for (const auto& c : texts) {
                    if (order(a, b) <= 0 && order(b, c) <= 0)
                        REQUIRE(order(a, c) <= 0);
                }
            }
        }
    }
}

TEST_CASE("A search gives the first place, with or without regard to case")
{
    TestTools tools;
    IOQText& text = *tools->GetText(1);
    CHECK(text.Find(u"One \u00C4 two \u00E4", u"\u00E4", 3) == 4);
    CHECK(text.Find(u"One \u00C4 two \u00E4", u"\u00E4", 2) == 10);
    CHECK(text.Find(u"aaab", u"aab", 0) == 1);
    CHECK(text.Find(u"abc", u"abcd", 3) == -1);
    CHECK(text.Find(u"abc", u"", 3) == -1);
    CHECK(text.Find(nullptr, u"a", 3) == -1);
    CHECK(text.Find(u"abc", nullptr, 3) == -1);
    CHECK(text.Find(u"", u"a", 3) == -1);

    // Each search ends at its hit: a long text is searched from every one.
    const std::u16string many(100000, u'A');
    const auto start = std::chrono::steady_clock::now();
    size_t hits = 0;
    for (const OQChar* at = many.c_str(); text.Find(at, u"a", 3) == 0; ++at)
        ++hits;
    CHECK(hits == many.size());
    CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(5));
}

TEST_CASE("The theme has its colours, the product's name and the user's folder")
{
    TestTools tools;
    const IOQTheme* theme = tools->GetTheme(1);
    const auto brightness = [&](int32_t index) {
        const uint32_t color = theme->GetColor(index);
        CHECK(color <= 0xFFFFFF);
        return (color >> 16) + (color >> 8 & 255) + (color & 255);
    };
    CHECK(brightness(OQThemeWindow) + 300 < brightness(OQThemeWindowText));
    CHECK(brightness(OQThemePage) + 300 < brightness(OQThemePageText));
    CHECK(theme->GetColor(-1) == 0);
    CHECK(theme->GetColor(OQThemeColorCount) == 0);
    CHECK(TextOf([&](IOQDllString& text) { theme->GetProductName(text); }) == "pxvis");
    CHECK(TextOf([&](IOQDllString& text) { theme->GetDataFolder(text); })
        == tools.folder.Path("data/pxvis/"));

    const TestVariable light("PXVIS_THEME", "light");
    tools.Restart();
    CHECK(brightness(OQThemeWindow) > brightness(OQThemeWindowText) + 300);
    CHECK(brightness(OQThemeControl) > brightness(OQThemeControlText) + 300);
    const TestVariable noData("XDG_DATA_HOME", "relative");
    const TestVariable home("HOME", "/home/somebody/");
    CHECK(TextOf([&](IOQDllString& text) { theme->GetDataFolder(text); })
        == "/home/somebody/.local/share/pxvis/");
}

TEST_CASE("Folders are made at plain absolute paths outside the system's folders")
{
    TestTools tools;
    const IOQFiles* files = tools->GetFiles(1);
    for (const OQChar* path : { u"/home/somebody/.local/share/pxvis/A b/", u"/tmp/x", u"/mnt/..x/y",
             u"/usr/local/share/pxvis", u"/process", u"/run/media/me/stick" })
        CHECK_MESSAGE(files->MayMakeFolder(path), OQString(path).ToUtf8());
    for (const OQChar* path : { u"", u"x", u"./x", u"~/x", u"\\tmp\\x", u"/tmp/../etc/x",
             u"/tmp/x/..", u"/tmp\\..\\etc", u"/proc", u"/proc/self/x", u"//proc/x", u"/./sys/x",
             u"/dev/shm/x", u"/etc/x", u"/usr/x", u"/usr/localx", u"/lib64/x", u"/boot/" })
        CHECK_FALSE_MESSAGE(files->MayMakeFolder(path), OQString(path).ToUtf8());
    CHECK_FALSE(files->MayMakeFolder(nullptr));
    CHECK_FALSE(files->MayMakeFolder(OQString::FromUtf8("/" + std::string(5000, 'x')).GetText()));

    fs::create_directory_symlink("/proc/self", tools.folder.Path("link"));
    const OQString link = OQString::FromUtf8(tools.folder.Path("link/x/y"));
    CHECK_FALSE(files->MayMakeFolder(link.GetText()));
}
