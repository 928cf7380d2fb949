#pragma once

#include "siblings/tools/CDecompressor.h"
#include "siblings/tools/CDisplayScale.h"
#include "siblings/tools/CFiles.h"
#include "siblings/tools/CLog.h"
#include "siblings/tools/CSettings.h"
#include "siblings/tools/CText.h"
#include "siblings/tools/CTheme.h"
#include "siblings/tools/CTranslator.h"

#include <mutex>

// All services, which are there from the first to the last moment: what a late thread still asks
// for is served. Several users of one process may each start and end the module; the environment is
// looked at by the first start, and the last end gives back what is held.
class CTools final : public IOQTools
{
public:
    void Initialize(const void* parameter) override;
    void Uninitialize() override;

    int32_t GetVersion() const override { return InterfaceVersion; }

    void PrepareToUnload() override { m_log.Flush(); }

    IOQDisplayScale* GetDisplayScale(int32_t) override { return &m_displayScale; }

    IOQText* GetText(int32_t) override { return &m_text; }

    IOQTranslator* GetTranslator(int32_t) override { return &m_translator; }

    IOQTheme* GetTheme(int32_t) override { return &m_theme; }

    IOQLog* GetLog(int32_t) override { return &m_log; }

    IOQFiles* GetFiles(int32_t) override { return &m_files; }

    IOQSettings* GetSettings(int32_t) override { return &m_settings; }

    // FIXME: dialogs, main-thread messages and the user interface need windows; locks by name and
    // the unpacker have no user yet.
    IOQNamedLocks* GetNamedLocks(int32_t) override { return nullptr; }

    IOQDialogs* GetDialogs(int32_t) override { return nullptr; }

    IOQMainThreadMessages* GetMainThreadMessages(int32_t) override { return nullptr; }

    IOQUserInterface* GetUserInterface(int32_t) override { return nullptr; }

    IOQDecompressor* GetDecompressor(int32_t) override { return &m_decompressor; }

    IOQUnpacker* GetUnpacker(int32_t) override { return nullptr; }

private:
    int32_t LogLevelSetting();

    std::mutex m_lock; // of the count
    int32_t m_users = 0;

    CLog m_log;
    CSettings m_settings { m_log };
    CDisplayScale m_displayScale;
    CText m_text;
    CTranslator m_translator;
    CTheme m_theme;
    CFiles m_files;
    CDecompressor m_decompressor;
};

// The module's one export; null for a version of the interface that isn't this one.
extern "C" __attribute__((visibility("default"))) IOQTools* GetOQToolsDLL(int32_t version);
