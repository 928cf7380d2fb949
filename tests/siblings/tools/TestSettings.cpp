#include "SlotOf.h"
#include "siblings/tools/ToolsTesting.h"

#include <sys/stat.h>

#include <filesystem>
#include <random>
#include <set>

namespace fs = std::filesystem;

namespace {

const std::string kUserFile = "config/pxvis/settings.xml";

std::set<std::string> ValueNames(const IOQSettingsKey& key)
{
    std::set<std::string> names;
    OQString name;
    OQDllString crossing(name);
    for (int32_t i = 0; key.GetValueName(i, crossing); ++i)
        names.insert(name.ToUtf8());
    return names;
}

std::string KeyNames(const IOQSettingsKey& key)
{
    std::string names;
    OQString name;
    OQDllString crossing(name);
    for (int32_t i = 0; key.GetKeyName(i, crossing); ++i)
        names += name.ToUtf8() + " ";
    return names;
}

// Files beside the settings, without the lock.
std::string Beside(const TestTools& tools)
{
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(tools.folder.Path("config/pxvis")))
        names.insert(entry.path().filename());
    names.erase("settings.xml.lock");
    std::string all;
    for (const std::string& name : names)
        all += name + " ";
    return all;
}

std::string FaultOf(TestTools& tools)
{
    int32_t fault = -1;
    const std::string path = TextOf(
        [&](IOQDllString& file) { fault = tools->GetSettings(1)->GetFault(OQSettingsUser, file); });
    return std::to_string(fault) + " " + path;
}

mode_t ModeOf(const std::string& path)
{
    struct stat status
    {
    };

    return stat(path.c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
}

}

TEST_CASE("The operations of settings keep their slots")
{
    CHECK(SlotOf(&IOQSettings::OpenKey) == 0);
    CHECK(SlotOf(&IOQSettings::GetFault) == 1);
}

TEST_CASE("What is set is there for others and after a restart, whatever its characters")
{
    TestTools tools;
    CHECK(tools.Key(u"Plugins\\Display", false) == nullptr);
    const auto key = tools.Key(u"Plugins\\Display");
    REQUIRE(key);
    const OQString odd = u"<a b=\"c'&amp;\u00E4\U0001F3B5]]>\t\n \r\n\x01\x1F ";
    CHECK(key->SetString(u"Odd \"name\" <&>\n", odd.GetText()));
    CHECK(key->SetString(u"Blank", u"  "));
    CHECK(key->SetString(u"Empty", u""));
    CHECK(key->SetInt(u"Least", INT32_MIN));

    const auto check = [&](const IOQSettingsKey& read) {
        CHECK(ValueOf(read, u"odd \"NAME\" <&>\n") == odd.ToUtf8());
        CHECK(ValueOf(read, u"Blank") == "  ");
        CHECK(ValueOf(read, u"Empty").empty());
        CHECK(read.HasValue(u"EMPTY"));
        CHECK(read.GetInt(u"Least", 0) == INT32_MIN + 1); // the least number can't be read
        CHECK(read.GetInt(u"Odd \"name\" <&>\n", 7) == 7); // a text that is no number
        CHECK(read.GetInt(u"Missing", 7) == 7);
        CHECK(ValueOf(read, u"Missing") == "(none)");
        CHECK(ValueNames(read).size() == 4);
    };
    check(*key);
    tools.Restart();
    check(*key); // an open key outlives the end of its module
    const auto again = tools.Key(u"/plugins//DISPLAY\\", false);
    REQUIRE(again);
    check(*again);
    CHECK(ModeOf(tools.folder.Path("config/pxvis")) == 0700);
    CHECK(ModeOf(tools.folder.Path(kUserFile)) == 0600);
    CHECK(Beside(tools) == "settings.xml ");
}

TEST_CASE("Names are found in any case and keep their first spelling")
{
    TestTools tools;
    const auto key = tools.Key(u"Plugins\\\u00C4pfel");
    CHECK(key->SetInt(u"Show FPS", 1));
    CHECK(tools.Key(u"PLUGINS/\u00E4PFEL", false)->SetInt(u"SHOW fps", 2));
    CHECK(key->GetInt(u"show fps", 0) == 2);
    CHECK(ValueNames(*key) == std::set<std::string> { "Show FPS" });
    CHECK(KeyNames(*tools.Key(u"plugins", false)) == "\u00C4pfel ");
}

TEST_CASE("Deleting a key takes all below it and nothing beside it")
{
    TestTools tools;
    for (const OQChar* path : { u"A\\B", u"A\\B\\C", u"a/b/C/D", u"A\\BB", u"A\\E\\F", u"AB" })
        CHECK(tools.Key(path)->SetInt(u"x", 1));
    const auto above = tools.Key(u"A", false);
    REQUIRE(above); // there, since there are keys below
    CHECK(KeyNames(*above) == "B BB E ");
    CHECK(above->DeleteKey(u"b"));
    CHECK(above->DeleteKey(u"b"));
    CHECK(above->DeleteKey(u"E/f"));
    CHECK(KeyNames(*above) == "BB ");
    CHECK(tools.Key(u"A\\B\\C\\D", false) == nullptr);
    CHECK(tools.Key(u"AB", false)->GetInt(u"X", 0) == 1);
    CHECK_FALSE(above->DeleteKey(u""));
    CHECK_FALSE(above->DeleteKey(nullptr));

    const auto values = tools.Key(u"A\\BB", false);
    CHECK(values->SetInt(u"y", 2));
    CHECK(values->DeleteValue(u"X"));
    CHECK(values->DeleteValue(u"X"));
    CHECK(ValueNames(*values) == std::set<std::string> { "y" });
    CHECK(values->ClearValues());
    CHECK(ValueNames(*values).empty());
    CHECK(tools.Key(u"A\\BB", false) != nullptr);
}

TEST_CASE("Paths and names that can't be are refused")
{
    TestTools tools;
    CHECK(tools.Key(nullptr) == nullptr);
    CHECK(tools.Key(u"") == nullptr);
    CHECK(tools.Key(u"\\/") == nullptr);
    CHECK(tools.Key(OQString::FromUtf8(std::string(1025, 'x')).GetText()) == nullptr);
    CHECK(tools.Key(u"Key", true, 2) == nullptr);
    const auto key = tools.Key(OQString::FromUtf8(std::string(1024, 'x')).GetText());
    REQUIRE(key);
    CHECK_FALSE(key->SetInt(u"", 1));
    CHECK_FALSE(key->SetInt(nullptr, 1));
    CHECK(key->SetString(u"Null", nullptr));
    CHECK(ValueOf(*key, u"Null").empty());
}

TEST_CASE("A damaged file loses one element and is kept as it was")
{
    struct Fault
    {
        const char* text;
        int32_t left; // how many of a, b, c are still there
    };

    const Fault faults[] = {
        { "<Settings><Key Path=\"K\"><Item Name=\"a\">1</Item><Item Name=\"b\">1"
          "<Item Name=\"c\">1</Item></Key></Settings>",
            2 },
        { "<Settings><Key Path=\"K\"><Item Name=\"a\">1</Item></Key><Key Path=\"L\"><Item "
          "Name=\"x\">1</Item><Key Path=\"K\"><Item Name=\"b\">1</Item><Item "
          "Name=\"c\">1</Item></Key></Settings>",
            3 },
        { "<Settings><Key Path=\"K\"><Item Name=\"a\">1</Item></Key><Key Path=\"K\"><Item "
          "Name=\"b\">1</Item><Item Name=\"c",
            1 },
        { "<Settings><Key Path=\"K\"><Item Name=\"a\">1</Item><Item Name=\"b\">1</Item><Item "
          "Name=\"c\">1</Item></Key><Odd/></Settings>",
            3 },
        { "nothing of the kind", 0 },
    };
    for (const Fault& fault : faults) {
        CAPTURE(fault.text);
        TestTools tools;
        fs::create_directories(tools.folder.Path("config/pxvis"));
        tools.folder.Write(kUserFile, fault.text);
        {
            const auto key = tools.Key(u"K");
            int32_t left = 0;
            for (const OQChar* name : { u"a", u"b", u"c" })
                left += key->GetInt(name, 0);
            CHECK(left == fault.left);
            CHECK(key->SetInt(u"d", 4));
            CHECK(key->SetInt(u"d", 5));
        }
        CHECK(tools.folder.Read(kUserFile + ".damaged-1") == fault.text);
        CHECK(Beside(tools) == "settings.xml settings.xml.damaged-1 ");
        CHECK(FaultOf(tools) == "1 " + tools.folder.Path(kUserFile));
        CHECK(tools.Key(u"K", false)->GetInt(u"d", 0) == 5);
    }
}

TEST_CASE("A byte that no text has spoils its own value alone")
{
    const std::string other = "\u00E4 \u65E5";
    for (const char byte : { '\0', '\xFF', '\xC3' }) {
        TestTools tools;
        tools.Key(u"K")->SetString(u"a", u"?");
        tools.Key(u"K")->SetString(u"b", OQString::FromUtf8(other).GetText());
        std::string bytes = tools.folder.Read(kUserFile);
        bytes[bytes.find('?')] = byte;
        tools.folder.Write(kUserFile, bytes);
        CHECK(ValueOf(*tools.Key(u"K"), u"b") == other);
        CHECK(tools.Key(u"L")->SetInt(u"c", 1));
        CHECK(ValueOf(*tools.Key(u"K"), u"b") == other);
        CHECK(tools.folder.Read(kUserFile + ".damaged-1") == bytes);
    }
}

TEST_CASE("Copies of damaged files are few, and reading alone makes none")
{
    TestTools tools;
    tools.Key(u"K")->SetInt(u"a", 1);
    const std::string whole = tools.folder.Read(kUserFile);
    CHECK(FaultOf(tools) == "0 ");
    for (int i = 0; i < 8; ++i) {
        tools.folder.Write(kUserFile, whole + "<" + std::to_string(i));
        CHECK(tools.Key(u"K", false)->GetInt(u"a", 0) == 1);
        CHECK(tools.Key(u"K", false)->SetInt(u"b", i));
    }
    CHECK(Beside(tools)
        == "settings.xml settings.xml.damaged-1 settings.xml.damaged-2 settings.xml.damaged-3 "
           "settings.xml.damaged-4 settings.xml.damaged-5 ");
    tools.folder.Write(kUserFile, whole + "<9");
    CHECK(tools.Key(u"K", false)->GetInt(u"a", 0) == 1);
    CHECK(tools.folder.Read(kUserFile) == whole + "<9");
}

TEST_CASE("Whatever stands in the file, a value that is set afterwards is there")
{
    TestTools tools;
    for (const OQChar* path : { u"Plugins\\Display", u"Plugins", u"Log" })
        tools.Key(path)->SetString(u"text", u"<a> & \"b\"");
    const std::string whole = tools.folder.Read(kUserFile);
    const std::string marks = "<>/=\"'&;! \\[]?-x";
    std::mt19937 random(7);
    for (int round = 0; round < 40; ++round) {
        std::string broken = whole;
        for (unsigned changes = 1 + random() % 5; changes > 0; --changes)
            broken[random() % broken.size()]
                = round % 2 ? marks[random() % marks.size()] : static_cast<char>(random());
        broken.resize(random() % 3 ? broken.size() : random() % broken.size());
        tools.folder.Write(kUserFile, broken);
        CHECK(tools.Key(u"Log")->SetInt(u"Level", round));
        tools.Restart();
        CHECK(tools.Key(u"Log", false)->GetInt(u"Level", -1) == round);
    }
}

TEST_CASE("A file that can't be a settings file gives the defaults and is left alone")
{
    TestTools tools;
    const std::string path = tools.folder.Path(kUserFile);
    fs::create_directories(path);
    CHECK(tools.Key(u"K", false) == nullptr);
    const auto key = tools.Key(u"K");
    REQUIRE(key);
    CHECK(key->GetInt(u"a", 3) == 3);
    CHECK_FALSE(key->SetInt(u"a", 1));
    CHECK(key->DeleteValue(u"a"));
    CHECK(fs::is_directory(path));
    CHECK(FaultOf(tools) == "2 " + path);
    CHECK(
        tools.folder.Read("state/pxvis/pxvis.log").find(path + " is no file") != std::string::npos);

    fs::remove(path);
    REQUIRE(mkfifo(path.c_str(), 0600) == 0);
    CHECK_FALSE(key->SetInt(u"a", 1));
    fs::remove(path);

    std::string large = "<Settings><Key Path=\"K\"><Item Name=\"a\">1</Item></Key></Settings>";
    large.resize(4 * 1024 * 1024 + 1, ' ');
    tools.folder.Write(kUserFile, large);
    CHECK(key->GetInt(u"a", 3) == 3);
    CHECK_FALSE(key->SetInt(u"a", 2));
    CHECK(tools.folder.Read(kUserFile) == large);

    large.pop_back();
    tools.folder.Write(kUserFile, large);
    CHECK(key->GetInt(u"a", 3) == 1);
    CHECK(key->SetInt(u"a", 2));
    CHECK_FALSE(key->SetString(u"b", OQString::FromUtf8(large).GetText()));
    CHECK(key->GetInt(u"a", 3) == 2);
}

TEST_CASE("Without a folder to write in there are defaults and no writes")
{
    TestTools tools;
    tools.folder.Write("config", "a file");
    const auto key = tools.Key(u"K");
    REQUIRE(key);
    CHECK_FALSE(key->SetInt(u"a", 1));
    CHECK(key->GetInt(u"a", 3) == 3);
}

TEST_CASE("A left-over of a killed writer is used up and a link stays a link")
{
    TestTools tools;
    fs::create_directories(tools.folder.Path("config/pxvis"));
    tools.folder.Write("config/pxvis/.settings.xml.new", "half a file");
    CHECK(tools.Key(u"K")->SetInt(u"a", 1));
    CHECK(Beside(tools) == "settings.xml ");

    fs::rename(tools.folder.Path(kUserFile), tools.folder.Path("mine.xml"));
    fs::create_symlink("../../mine.xml", tools.folder.Path(kUserFile));
    CHECK(tools.Key(u"K", false)->SetInt(u"a", 2));
    CHECK(fs::is_symlink(tools.folder.Path(kUserFile)));
    CHECK(tools.folder.Read("mine.xml").find(">2<") != std::string::npos);
}

TEST_CASE("The machine's settings are the system's where it allows that")
{
    TestTools tools;
    const auto key = tools.Key(u"K", true, OQSettingsMachine);
    CHECK(key->SetInt(u"a", 1));
    CHECK(fs::exists(tools.folder.Path("machine/settings.xml")));
    CHECK(tools.Key(u"K", false) == nullptr);
    CHECK_FALSE(fs::exists(tools.folder.Path("config")));
}

TEST_CASE("Where the system's folder can't be written the user's own stands in front of it")
{
    const char* system = "<Settings><Key Path=\"K\"><Item Name=\"a\">1</Item><Item "
                         "Name=\"b\">1</Item></Key><Key Path=\"S\"></Key></Settings>";
    TestTools tools;
    fs::create_directory(tools.folder.Path("machine"));
    tools.folder.Write("machine/settings.xml", system);
    // A folder that not even root may write into.
    const TestVariable blocked("PXVIS_MACHINE_FOLDER", "/proc/pxvis");
    {
        const auto key = tools.Key(u"K", true, OQSettingsMachine);
        CHECK(key->SetInt(u"a", 2));
        CHECK(key->SetInt(u"c", 3));
    }
    CHECK(fs::exists(tools.folder.Path("config/pxvis/machine.xml")));

    const TestVariable open("PXVIS_MACHINE_FOLDER", tools.folder.Path("machine").c_str());
    tools.Restart();
    const auto key = tools.Key(u"K", false, OQSettingsMachine);
    CHECK(key->GetInt(u"a", 0) == 2);
    CHECK(key->GetInt(u"b", 0) == 1);
    CHECK(ValueNames(*key) == std::set<std::string> { "a", "b", "c" });
    // A value for the system must not stay hidden behind the user's older one.
    CHECK(key->SetInt(u"a", 5));
    CHECK(key->GetInt(u"a", 0) == 5);
    CHECK(key->DeleteValue(u"a"));
    CHECK_FALSE(key->HasValue(u"a"));
    CHECK(tools.Key(u"S", false, OQSettingsMachine)->DeleteKey(u"none"));
}
