#include "Plugins/Visualization/Registration.h"

#include "Plugins/Visualization/MakeVisualization.h"
#include "foundation/IOQTools.h"
#include "foundation/OQDllString.h"
#include "foundation/OQSiblingModules.h"
#include "foundation/StringPrinting.h"

#include <doctest/doctest.h>
#include <memory>
#include <pxvis/IOQVisualization.h>

namespace {

constexpr const OQChar* path = u"Plugins\\Display\\Visualizations";

std::unique_ptr<IOQSettingsKey> Key(int32_t scope, bool create)
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    REQUIRE(tools);
    return std::unique_ptr<IOQSettingsKey>(tools->GetSettings(1)->OpenKey(path, scope, create));
}

OQString TextOf(IOQSettingsKey& key, const OQChar* name)
{
    OQString text;
    OQDllString value(text);
    key.GetString(name, u"?", value);
    return text;
}

}

TEST_CASE("Only the visualizations there are can be made, with no host as well")
{
    for (const int index : { -1, 0, 1, 3, 10, 1000 })
        CHECK(MakeVisualization(index, nullptr) == nullptr);
    const auto visualization = MakeVisualization(2, nullptr);
    REQUIRE(visualization);
    CHECK(std::u16string(visualization->GetName()) == u"Visualizations");
}

TEST_CASE("Registering writes to the machine's settings, and the reverse clears the user's as well")
{
    Key(OQSettingsMachine, true)->SetString(u"Left over", u"x");
    Key(OQSettingsUser, true)->SetString(u"Chosen", u"x");
    RegisterVisualizations(true);
    {
        const auto key = Key(OQSettingsMachine, false);
        REQUIRE(key);
        CHECK_FALSE(key->HasValue(u"Left over"));
        CHECK(key->GetInt(u"IVersion", 0) == 3);
        CHECK(key->GetInt(u"Index", 0) == 2);
        CHECK(TextOf(*key, u"Version") == u"1.0.1");
        CHECK(TextOf(*key, u"Path").StartsWith(u"/"));
        for (const OQChar* name : { u"Company", u"URL", u"Copyright", u"Description" })
            CHECK(key->HasValue(name));
        CHECK(Key(OQSettingsUser, false));
    }
    RegisterVisualizations(false);
    CHECK_FALSE(Key(OQSettingsMachine, false));
    CHECK_FALSE(Key(OQSettingsUser, false));
    RegisterVisualizations(false); // nothing is there
}
