#pragma once

#include "TestFolder.h"
#include "TestVariable.h"
#include "foundation/IOQTools.h"
#include "foundation/OQDllString.h"
#include "foundation/OQSiblingModules.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

// The module, started with all of the user's and the machine's folders in one folder of the test.
class TestTools
{
public:
    explicit TestTools(std::string module = PXVIS_BINARY_DIR "/bin/OQTools.so")
        : m_modules({}, { .name = std::move(module) })
    {
        setenv("XDG_RUNTIME_DIR", folder.Path("").c_str(), 1);
        setenv("XDG_CONFIG_HOME", folder.Path("config").c_str(), 1);
        setenv("XDG_STATE_HOME", folder.Path("state").c_str(), 1);
        setenv("XDG_DATA_HOME", folder.Path("data").c_str(), 1);
        setenv("PXVIS_MACHINE_FOLDER", folder.Path("machine").c_str(), 1);
    }

    // From here on the environment is what it was at the first call.
    IOQTools* operator->()
    {
        IOQTools* tools = m_modules.Tools();
        REQUIRE_MESSAGE(tools, m_modules.ToolsFailure());
        return tools;
    }

    void SetUp(const OQToolsSetup& setup) { m_modules.SetUpTools(setup); }

    void Restart()
    {
        m_modules.Unload();
        m_modules.Tools();
    }

    std::unique_ptr<IOQSettingsKey> Key(
        const OQChar* path, bool create = true, int32_t scope = OQSettingsUser)
    {
        return std::unique_ptr<IOQSettingsKey>(
            (*this)->GetSettings(1)->OpenKey(path, scope, create));
    }

    TestFolder folder;

private:
    OQSiblingModules m_modules;
};

// What an operation puts into a text.
template <class Operation>
std::string TextOf(Operation operation)
{
    OQString text;
    OQDllString crossing(text);
    operation(crossing);
    return text.ToUtf8();
}

inline std::string ValueOf(const IOQSettingsKey& key, const OQChar* name)
{
    return TextOf([&](IOQDllString& text) { key.GetString(name, u"(none)", text); });
}
