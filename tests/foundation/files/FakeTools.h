#pragma once

#include "foundation/IOQDllString.h"
#include "foundation/IOQTools.h"
#include "foundation/OQFormat.h"
#include "foundation/OQSiblingModules.h"

#include <optional>
#include <string>
#include <vector>

// A tools module that does what a test says and keeps what it was told. The test's program and its
// OQTools.so lie in a folder of their own, where the loader finds it as it finds the real one.
struct FakeTools final : IOQTools, IOQTranslator, IOQTheme, IOQLog, IOQFiles, IOQSettings
{
    std::u16string language;
    std::u16string dataFolder;
    std::optional<std::u16string> tempLocation; // the setting
    bool mayMakeFolders = true;
    int32_t logLevel = OQLogDebug;
    std::vector<std::string> log; // "Class::Operation: text"

    // As if it were just loaded.
    static FakeTools& Fresh()
    {
        auto& tools = *static_cast<FakeTools*>(OQSiblingModules::Get().Tools());
        tools.language.clear();
        tools.dataFolder.clear();
        tools.tempLocation.reset();
        tools.mayMakeFolders = true;
        tools.log.clear();
        return tools;
    }

    struct Key final : IOQSettingsKey
    {
        explicit Key(FakeTools& owner)
            : tools(owner)
        {
        }

        bool HasValue(const OQChar*) const override { return tools.tempLocation.has_value(); }

        bool GetString(
            const OQChar* name, const OQChar* fallback, IOQDllString& value) const override
        {
            const bool known = std::u16string_view(name) == u"File Location - Temp Location"
                && tools.tempLocation;
            value.SetText(known ? tools.tempLocation->c_str() : fallback, -1);
            return known;
        }

        int32_t GetInt(const OQChar*, int32_t fallback) const override { return fallback; }

        bool SetString(const OQChar*, const OQChar*) override { return false; }

        bool SetInt(const OQChar*, int32_t) override { return false; }

        bool DeleteValue(const OQChar*) override
        {
            tools.tempLocation.reset();
            return true;
        }

        bool ClearValues() override { return false; }

        bool DeleteKey(const OQChar*) override { return false; }

        bool GetKeyName(int32_t, IOQDllString&) const override { return false; }

        bool GetValueName(int32_t, IOQDllString&) const override { return false; }

        FakeTools& tools;
    };

    void Translate(IOQDllString&) const override { }

    void GetLanguage(IOQDllString& name) const override { name.SetText(language.c_str(), -1); }

    uint32_t GetColor(int32_t) const override { return 0; }

    void GetDataFolder(IOQDllString& folder) const override
    {
        folder.SetText(dataFolder.c_str(), -1);
    }

    void GetProductName(IOQDllString&) const override { }

    void Write(int32_t, const OQChar* scope, const OQChar* text, const OQFormatArgument* arguments,
        int32_t count) override
    {
        const OQFormatArgument none = u"";
        const OQString line
            = OQFormat(text, { count > 0 ? arguments[0] : none, count > 1 ? arguments[1] : none });
        log.push_back((OQString(scope) + u": " + line).ToUtf8());
    }

    bool IsOn(int32_t level) const override { return level <= logLevel; }

    bool MayMakeFolder(const OQChar*) const override { return mayMakeFolders; }

    IOQSettingsKey* OpenKey(const OQChar* path, int32_t scope, bool) override
    {
        const bool known = std::u16string_view(path) == u"Properties" && scope == OQSettingsUser;
        return known ? new Key(*this) : nullptr;
    }

    int32_t GetFault(int32_t, IOQDllString&) override { return OQSettingsWhole; }

    void Initialize(const void*) override { }

    void Uninitialize() override { }

    int32_t GetVersion() const override { return InterfaceVersion; }

    void PrepareToUnload() override { }

    IOQDisplayScale* GetDisplayScale(int32_t) override { return nullptr; }

    IOQText* GetText(int32_t) override { return nullptr; }

    IOQNamedLocks* GetNamedLocks(int32_t) override { return nullptr; }

    IOQTranslator* GetTranslator(int32_t) override { return this; }

    IOQTheme* GetTheme(int32_t) override { return this; }

    IOQLog* GetLog(int32_t) override { return this; }

    IOQDialogs* GetDialogs(int32_t) override { return nullptr; }

    IOQMainThreadMessages* GetMainThreadMessages(int32_t) override { return nullptr; }

    IOQFiles* GetFiles(int32_t) override { return this; }

    IOQUserInterface* GetUserInterface(int32_t) override { return nullptr; }

    IOQSettings* GetSettings(int32_t) override { return this; }

    IOQDecompressor* GetDecompressor(int32_t) override { return nullptr; }

    IOQUnpacker* GetUnpacker(int32_t) override { return nullptr; }
};
