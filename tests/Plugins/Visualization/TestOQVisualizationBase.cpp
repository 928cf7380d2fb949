#include "Plugins/Visualization/OQVisualizationBase.h"

#include "HostTesting.h"
#include "SlotOf.h"
#include "foundation/OQStringArray.h"

#include <doctest/doctest.h>

namespace {

struct Modes final : OQVisualizationBase
{
    explicit Modes(IOQVisualizationHost* host)
        : OQVisualizationBase(host)
    {
    }

    const char16_t* GetName() override { return u"Modes"; }

    void GetModes(OQStringArray* names, int32_t* current) override
    {
        for (const OQString& mode : modes)
            names->Add(mode);
        *current = position;
    }

    bool SetMode(const char16_t* mode) override
    {
        chosen = mode;
        return takes;
    }

    using OQVisualizationBase::GetHostProperty;
    using OQVisualizationBase::HasFileChanged;
    using OQVisualizationBase::ReadSetting;
    using OQVisualizationBase::WriteSetting;

    OQStringArray modes { u"One", u"Two\\Cycle All" };
    int32_t position = 1;
    OQString chosen;
    bool takes = true;
};

}

TEST_CASE("The properties are those of every visualization, whatever the case of their names")
{
    Modes modes(nullptr);
    CHECK(PropertyOf(modes, u"VERSION") == u"3");
    CHECK(PropertyOf(modes, u"display name") == u"Modes");
    CHECK(PropertyOf(modes, u"Modes") == u"One|Two\\Cycle All");
    CHECK(PropertyOf(modes, u"Current Mode") == u"Two\\Cycle All");
    CHECK(PropertyOf(modes, u"Colour") == u"");
    CHECK(PropertyOf(modes, nullptr) == u"");
    for (const int32_t outside : { -1, 2 }) {
        modes.position = outside;
        CHECK(PropertyOf(modes, u"Current Mode") == u"");
    }
    modes.modes.Clear();
    CHECK(PropertyOf(modes, u"Modes") == u"");

    CHECK(modes.SetProperty(u"CURRENT MODE", u"Nowhere"));
    CHECK(modes.chosen == u"Nowhere");
    modes.takes = false;
    CHECK_FALSE(modes.SetProperty(u"Current Mode", nullptr));
    CHECK_FALSE(modes.SetProperty(u"Modes", u"x"));
    CHECK_FALSE(modes.SetProperty(nullptr, nullptr));
}

TEST_CASE("The host is asked for its connection once, when something is needed of it")
{
    TestHost host;
    host.properties[u"File Change Counter"] = u"3";
    {
        Modes modes(&host);
        CHECK(PropertyOf(modes, u"Display Name") == u"Modes");
        CHECK(host.connections == 0);
        CHECK(modes.GetHostProperty(u"Missing") == u"");
        CHECK(modes.HasFileChanged());
        CHECK_FALSE(modes.HasFileChanged());
        host.properties[u"File Change Counter"] = u"gone";
        CHECK(modes.HasFileChanged());
        CHECK(host.connections == 1);
        CHECK(host.connectionsEnded == 0);
    }
    CHECK(host.connectionsEnded == 1);

    host.refusesConnection = true;
    Modes refused(&host);
    CHECK(refused.GetHostProperty(u"File Change Counter") == u"");
    Modes alone(nullptr);
    CHECK_FALSE(alone.HasFileChanged());
}

TEST_CASE("Settings of a visualization are kept under its name")
{
    Modes modes(nullptr);
    modes.WriteSetting(u"Page", u"Simple");
    CHECK(modes.ReadSetting(u"Page", u"?") == u"Simple");
    CHECK(modes.ReadSetting(u"No Page", u"?") == u"?");
}

TEST_CASE("The operations have the places that hosts call them by")
{
    CHECK(SlotOf(&IOQVisualization::CreateWnd) == 2);
    CHECK(SlotOf(&IOQVisualization::Reserved) == 3);
    CHECK(SlotOf(&IOQVisualization::BuildMenu) == 4);
    CHECK(SlotOf(&IOQVisualization::OnMenuCommand) == 5);
    CHECK(SlotOf(&IOQVisualization::GetProperty) == 6);
    CHECK(SlotOf(&IOQVisualization::SetProperty) == 7);
    CHECK(SlotOf(&IOQVisualization::GetName) == 8);
    CHECK(SlotOf(&IOQVisualization::GetModes) == 9);
    CHECK(SlotOf(&IOQVisualization::SetMode) == 10);
    CHECK(SlotOf(&IOQHostConnection::Refresh) == 2);
    CHECK(SlotOf(&IOQHostConnection::GetCoverImage) == 6);
    CHECK(SlotOf(&IOQMenu::AddItem) == 0);
    CHECK(SlotOf(&IOQMenu::AddSubmenu) == 2);
}
