#include "engine2d/CComponentManager.h"
#include "foundation/OQTranslate.h"
#include "siblings/tools/ToolsTesting.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <regex>
#include <sstream>

namespace fs = std::filesystem;

namespace {

std::string Translated(TestTools& tools, const char* english)
{
    OQString text = OQString::FromUtf8(english);
    OQDllString crossing(text);
    tools->GetTranslator(1)->Translate(crossing);
    return text.ToUtf8();
}

std::string Language(TestTools& tools)
{
    return TextOf([&](IOQDllString& text) { tools->GetTranslator(1)->GetLanguage(text); });
}

struct Locale
{
    const char* language;
    const char* all;
    const char* messages;
    const char* lang;
};

// The environment's languages for the length of a test.
struct TestLocale
{
    explicit TestLocale(const Locale& locale)
        : language("LANGUAGE", locale.language)
        , all("LC_ALL", locale.all)
        , messages("LC_MESSAGES", locale.messages)
        , lang("LANG", locale.lang)
    {
    }

    TestVariable language;
    TestVariable all;
    TestVariable messages;
    TestVariable lang;
};

// The messages of a .po file; texts as they stand there, in one line.
std::map<std::string, std::string> ReadCatalogue(const std::string& name)
{
    std::ifstream file(PXVIS_SOURCE_DIR "/po/" + name);
    const std::regex entry("(msgid|msgstr) \"(.*)\"");
    std::map<std::string, std::string> messages;
    std::string message;
    std::smatch match;
    for (std::string line; std::getline(file, line);) {
        if (!std::regex_match(line, match, entry))
            continue;
        if (match[1] == "msgid")
            message = match[2];
        else
            messages[message] = match[2];
    }
    messages.erase("");
    return messages;
}

std::string Specifiers(const std::string& text)
{
    const std::regex specifier("%[0-9.]*[a-z%]");
    std::string all;
    for (std::sregex_iterator i(text.begin(), text.end(), specifier), end; i != end; ++i)
        all += i->str() + " ";
    return all;
}

std::string Bytes(std::initializer_list<uint32_t> numbers, bool bigEndian)
{
    std::string bytes;
    for (const uint32_t number : numbers) {
        for (int i = 0; i < 4; ++i)
            bytes += static_cast<char>(number >> 8 * (bigEndian ? 3 - i : i));
    }
    return bytes;
}

// A module in a folder of its own, which looks for its catalogues there.
struct MovedModule
{
    MovedModule()
    {
        fs::copy_file(PXVIS_BINARY_DIR "/bin/OQTools.so", folder.Path("OQTools.so"));
        fs::create_directories(folder.Path("locale/de/LC_MESSAGES"));
    }

    std::string TranslatedBy(const std::string& catalogue)
    {
        folder.Write("locale/de/LC_MESSAGES/pxvis.mo", catalogue);
        tools.Restart();
        return Translated(tools, "Hi");
    }

    TestFolder folder;
    TestLocale locale { { "de", nullptr, nullptr, nullptr } };
    TestTools tools { folder.Path("OQTools.so") };
};

}

TEST_CASE("The language is the one that the environment asks for first")
{
    struct Case
    {
        Locale locale;
        const char* language;
        const char* text;
    };

    const char* german = "Alle abwechseln";
    const char* english = "Cycle All";
    const Case cases[] = {
        { { nullptr, nullptr, nullptr, nullptr }, "English", english },
        { { nullptr, nullptr, nullptr, "de_DE.UTF-8" }, "German", german },
        { { nullptr, nullptr, nullptr, "ja_JP.eucJP" }, "Japanese", "すべて順番に再生" },
        { { "", "", "de_AT@euro", "ja" }, "German", german },
        { { nullptr, "C", "de", "de" }, "English", english },
        { { "de", "POSIX", nullptr, nullptr }, "English", english },
        { { "de:en", nullptr, nullptr, "C.UTF-8" }, "German", german },
        { { nullptr, "C.UTF-8", nullptr, "de" }, "English", english },
        { { "fr:de:ja", nullptr, nullptr, "en_US" }, "French", german },
        { { "en:de", nullptr, nullptr, "de" }, "English", english },
        { { "::qqq:../de:de/../de", nullptr, nullptr, "pt_BR.UTF-8" }, "Portuguese", english },
    };
    for (const Case& c : cases) {
        const TestLocale locale(c.locale);
        TestTools tools;
        CAPTURE(c.language);
        CHECK(Language(tools) == c.language);
        CHECK(Translated(tools, "Cycle All") == c.text);
        CHECK(Translated(tools, "No such text") == "No such text");
        CHECK(Translated(tools, "").empty());
    }
}

TEST_CASE("The process's tools translate what the user sees")
{
    const TestLocale locale({ "de", nullptr, nullptr, nullptr });
    OQSiblingModules::Get().Unload();
    CHECK(OQTranslated(u"Cycle All") == u"Alle abwechseln");
    CHECK(OQTranslated(nullptr).IsEmpty());
    OQSiblingModules::Get().Unload();
}

TEST_CASE("Each language has all texts, with the places for values in their order")
{
    const auto texts = ReadCatalogue("pxvis.pot");
    VISUALIZATION_COMPONENT_INFO_EX info;
    for (int32_t i = 0; CComponentManager::GetInfo(i, info) == 0; ++i)
        CHECK_MESSAGE(texts.count(info.name) == 1, info.name);
    for (const char* name : { "de.po", "ja.po" }) {
        const auto messages = ReadCatalogue(name);
        CHECK(messages.size() == texts.size());
        for (const auto& entry : texts) {
            const std::string& text = entry.first;
            CAPTURE(name);
            CAPTURE(text);
            const auto message = messages.find(text);
            REQUIRE(message != messages.end());
            CHECK_FALSE(message->second.empty());
            CHECK(Specifiers(message->second) == Specifiers(text));
        }
    }
}

TEST_CASE("Catalogues of both byte orders are read")
{
    MovedModule module;
    for (const bool bigEndian : { false, true }) {
        std::string catalogue
            = Bytes({ 0x950412DE, 0, 2, 28, 44, 0, 0, 0, 60, 2, 61, 3, 64, 5, 68 }, bigEndian);
        catalogue += '\0';
        catalogue += "Hi";
        catalogue += '\0';
        catalogue += "x=y";
        catalogue += '\0';
        catalogue += "Hallo";
        catalogue += '\0';
        CHECK(module.TranslatedBy(catalogue) == "Hallo");
    }
}

TEST_CASE("No catalogue does harm")
{
    MovedModule module;
    const std::string whole = BytesOf(PXVIS_BINARY_DIR "/locale/de/LC_MESSAGES/pxvis.mo");
    REQUIRE(whole.size() > 500);
    std::mt19937 random(5);
    for (int i = 0; i < 100; ++i) {
        std::string broken = whole.substr(0, i % 2 ? whole.size() : random() % whole.size());
        for (int change = 0; change < 4 && !broken.empty(); ++change)
            broken[random() % std::min<size_t>(broken.size(), 300)] = static_cast<char>(random());
        CHECK(module.TranslatedBy(broken) == "Hi");
    }
    for (const uint32_t count : { 16384U, 0xFFFFFFFFU })
        CHECK(module.TranslatedBy(Bytes({ 0x950412DE, 0, count, 0, 0xFFFFFFF0 }, false)) == "Hi");
}
