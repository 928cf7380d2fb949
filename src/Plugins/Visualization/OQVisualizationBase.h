#pragma once

#include "foundation/OQString.h"

#include <pxvis/IOQVisualization.h>
#include <pxvis/IOQVisualizationHost.h>

#include <cstdint>
#include <memory>

// What all visualizations have in common: the properties, the line to the host, the settings. The
// host's user-interface thread only. Nothing is thrown: a fault is logged, and the operation gives
// what it gives on failure.
class OQVisualizationBase : public IOQVisualization
{
public:
    // `host` may be null and is not owned; nothing is called on it yet.
    explicit OQVisualizationBase(IOQVisualizationHost* host);
    ~OQVisualizationBase() override;
    OQVisualizationBase(const OQVisualizationBase&) = delete;
    OQVisualizationBase& operator=(const OQVisualizationBase&) = delete;

    uintptr_t CreateWnd(uintptr_t parent, int32_t flags) override;

    bool Reserved() override { return false; }

    bool BuildMenu(IOQMenu*, int32_t) override { return false; }

    bool OnMenuCommand(const VisMenuCommand*) override { return false; }

    char16_t* GetProperty(const char16_t* name) override;
    bool SetProperty(const char16_t* name, const char16_t* value) override;

    void GetModes(OQStringArray*, int32_t*) override { }

    bool SetMode(const char16_t*) override { return false; }

protected:
    // The property "Script File".
    virtual bool SetScriptFile(const OQString&) { return false; }

    virtual OQString GetScriptFile() const { return {}; }

    virtual OQString GetScriptFault() { return {}; } // of the same name

    // Made at the first call; null without a host.
    IOQHostConnection* GetHostConnection();

    // Empty if the host has no such property.
    OQString GetHostProperty(const OQChar* name);

    // The host plays another file than at the last call. The counter starts at 0.
    bool HasFileChanged();

    // Where what the visualization shows lies, with "/" at its end: "Visualizations" and its name
    // below the user's data folder.
    OQString GetPluginDataFolder();

    // Text values of the user's settings, in "Plugins\Display\" and the visualization's name.
    OQString ReadSetting(const OQChar* name, const OQString& fallback);
    void WriteSetting(const OQChar* name, const OQString& value);

    uintptr_t GetParentWindow() const { return m_parentWindow; }

private:
    OQString PropertyText(const OQString& name);
    OQString SettingsPath();

    IOQVisualizationHost* m_host;
    uintptr_t m_parentWindow = 0;
    int32_t m_flags = 0;
    int32_t m_fileChangeCounter = 0;
    std::unique_ptr<IOQHostConnection> m_connection;
};
