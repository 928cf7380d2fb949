#pragma once

#include "foundation/OQStringArray.h"

#include <atomic>
#include <cstdint>

enum OQProcessEvent : uint32_t
{
    OQProcessDetach = 0,
    OQProcessAttach = 1,
};

// The application object of a program or a library: starts and stops the foundation for it. There
// is one at most in a module; it is made before anything else and knows nothing of windows. Events
// may come from any thread. Slots: add at the end only.
class OQApp
{
public:
    OQApp();
    virtual ~OQApp();
    OQApp(const OQApp&) = delete;
    OQApp& operator=(const OQApp&) = delete;

    // Attached as often as detached; the first attach starts and the last detach stops. False only
    // for a first attach whose start failed. `reason` is an OQProcessEvent, others do nothing.
    virtual bool OnProcessEvent(void* module, uint32_t reason, void* reserved);

    // An executable's start: starts, runs and stops. Gives the result of the run, -1 without one.
    virtual int32_t Run(void* instance, void* previous, const OQChar* command);
    virtual int32_t RunFromModule();

    virtual bool Startup();
    virtual bool Shutdown();

    virtual void OnHook1() { }

    virtual void OnHook2() { }

    virtual void OnHook3() { }

    virtual void OnHook4() { }

    virtual bool LoadSiblings() { return true; }

    virtual void OnHook6() { }

    virtual void OnHook7() { }

    virtual bool WantsSiblings() { return true; }

    // The module's own one, or null.
    static OQApp* Get();

    // Hands an event to the module's application object; false without one.
    static bool ForwardProcessEvent(void* module, uint32_t reason, void* reserved);

    // Splits at the blanks outside double quotes. A closing quote ends an argument too, so that ""
    // is an empty one. A quote behind an odd number of backslashes is a character like any other.
    static OQStringArray SplitCommandLine(const OQString& line);

    const OQStringArray& GetArguments() const { return m_arguments; }

    void* GetModule() const { return m_module; }

private:
    void* m_module = nullptr;
    void* m_previous = nullptr;
    int32_t m_result = -1;
    OQStringArray m_arguments;
    std::atomic<int32_t> m_attached { 0 };
};

// The application object of a library.
class OQDllApp : public OQApp
{
};
