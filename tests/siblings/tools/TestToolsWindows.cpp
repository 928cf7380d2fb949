#include "SlotOf.h"
#include "foundation/IOQDialogs.h"
#include "foundation/IOQUserInterface.h"
#include "siblings/tools/ToolsTesting.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

struct FakeWindows final : IOQWindowServices
{
    std::string told;
    int pumped = 0;

    int32_t ShowMessageBox(uintptr_t, const OQChar* title, const OQChar* text, int32_t) override
    {
        told += (OQString(title) + u"|" + text).ToUtf8();
        return OQMessageBoxYes;
    }

    bool ChooseFile(uintptr_t, const OQFileDialogSetup& setup, IOQDllString& path) override
    {
        path.SetText((OQString(setup.path) + u"/chosen").GetText(), -1);
        return true;
    }

    void PumpMessages() override { ++pumped; }
};

// What comes to standard error while it lives.
class StandardError
{
public:
    StandardError()
        : m_before(dup(2))
    {
        const int file = open(m_folder.Path("error").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        dup2(file, 2);
        close(file);
    }

    ~StandardError()
    {
        dup2(m_before, 2);
        close(m_before);
    }

    std::string Text() const { return m_folder.Read("error"); }

private:
    TestFolder m_folder;
    int m_before;
};

}

TEST_CASE("Without windows a box is a line on standard error that nobody answered")
{
    TestTools tools;
    IOQDialogs* dialogs = tools->GetDialogs(1);
    std::string line;
    {
        const StandardError error;
        CHECK(dialogs->ShowMessageBox(0, u"Critical Error", u"One\r\ntwo\n\x1B[2J", 2)
            == OQMessageBoxClosed);
        CHECK(dialogs->ShowMessageBox(0, nullptr, nullptr, -1) == OQMessageBoxClosed);
        line = error.Text();
    }
    CHECK(line == "Critical Error: One two \\x1B[2J\n: \n");
    OQString path = u"old";
    OQDllString crossing(path);
    CHECK_FALSE(dialogs->ChooseFile(0, {}, crossing));
    CHECK(path.IsEmpty());
    tools->GetUserInterface(1)->PumpMessages();
}

TEST_CASE("Windows come with the first user who has any, also a later one, and go with the last")
{
    FakeWindows windows;
    FakeWindows others;
    TestTools tools;
    CHECK(tools->GetVersion() > 0);
    {
        OQSiblingModules later({}, { .name = PXVIS_BINARY_DIR "/bin/OQTools.so" });
        later.SetUpTools({ .windows = &windows });
        REQUIRE(later.Tools());
        tools.SetUp({ .windows = &others });
    }
    CHECK(tools->GetDialogs(1)->ShowMessageBox(0, u"a", u"b", OQMessageBoxQuestion)
        == OQMessageBoxYes);
    CHECK(windows.told == "a|b");
    CHECK(TextOf([&](IOQDllString& path) {
        CHECK(tools->GetDialogs(1)->ChooseFile(0, { .path = u"/scripts" }, path));
    }) == "/scripts/chosen");
    tools->GetUserInterface(1)->PumpMessages();
    CHECK(windows.pumped == 1);
    tools.Restart();
    tools->GetUserInterface(1)->PumpMessages();
    CHECK(windows.pumped == 1);
    CHECK(others.pumped == 1);
}

TEST_CASE("The user has a name, and the interfaces have their slots")
{
    TestTools tools;
    CHECK_FALSE(
        TextOf([&](IOQDllString& text) { tools->GetUserInterface(1)->GetUserName(text); }).empty());
    CHECK(SlotOf(&IOQUserInterface::PumpMessages) == 0);
    CHECK(SlotOf(&IOQUserInterface::GetUserName) == 1);
    CHECK(SlotOf(&IOQDialogs::ShowMessageBox) == 0);
    CHECK(SlotOf(&IOQDialogs::ChooseFile) == 1);
}
