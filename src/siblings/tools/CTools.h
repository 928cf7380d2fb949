#pragma once

#include "siblings/tools/CDecompressor.h"
#include "siblings/tools/CDialogs.h"
#include "siblings/tools/CDisplayScale.h"
#include "siblings/tools/CFiles.h"
#include "siblings/tools/CLog.h"
#include "siblings/tools/CMainThreadMessages.h"
#include "siblings/tools/CNamedLocks.h"
#include "siblings/tools/CSettings.h"
#include "siblings/tools/CText.h"
#include "siblings/tools/CTheme.h"
#include "siblings/tools/CTranslator.h"
#include "siblings/tools/CUnpacker.h"
#include "siblings/tools/CUserInterface.h"

#include <atomic>
#include <mutex>

// All services, which are there from the first to the last moment: what a late thread still asks
// for is served. Several users of one process may each start and end the module; the environment is
// looked at by the first start, windows are taken from the first who has any, and the last end
// gives back what is held.
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

    IOQNamedLocks* GetNamedLocks(int32_t) override { return &m_namedLocks; }

    IOQDialogs* GetDialogs(int32_t) override { return &m_dialogs; }

    IOQMainThreadMessages* GetMainThreadMessages(int32_t) override { return &m_mainThread; }

    IOQUserInterface* GetUserInterface(int32_t) override { return &m_userInterface; }

    IOQUnpacker* GetUnpacker(int32_t) override { return &m_unpacker; }

    IOQDecompressor* GetDecompressor(int32_t) override { return &m_decompressor; }

private:
    int32_t LogLevelSetting();

    std::mutex m_lock; // of the count
    int32_t m_users = 0;
    std::atomic<IOQWindowServices*> m_windows = nullptr; // of the first user that brought any

    CLog m_log;
    CSettings m_settings { m_log };
    CDisplayScale m_displayScale;
    CText m_text;
    CTranslator m_translator;
    CTheme m_theme;
    CFiles m_files;
    CMainThreadMessages m_mainThread;
    CNamedLocks m_namedLocks;
    CDialogs m_dialogs { m_windows };
    CUserInterface m_userInterface { m_windows };
    CUnpacker m_unpacker;
    CDecompressor m_decompressor;
};

// The module's one export; null for a version of the interface that isn't this one.
extern "C" __attribute__((visibility("default"))) IOQTools* GetOQToolsDLL(int32_t version);
