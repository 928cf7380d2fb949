#pragma once

#include "foundation/OQArray.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

class OQBasicWnd;
class OQDisplayConnection;
class QSocketNotifier;

// The process's use of Qt: its application object and its display. Qt is asked for nothing before
// EnsureApplication, and for nothing once the display is lost, when it would end the process.
// Never destroyed, like the application that it makes: a host may leave with windows of ours open.
class OQToolkit
{
public:
    static OQToolkit& Get();

    // Any thread, but true only on that of the application object: the host's QApplication if it
    // has one, which must draw by X11, or else one that is made here. False, and the reason in the
    // log, where there is none to be had.
    bool EnsureApplication();

    // There is an application that windows can use, and the calling thread is its own.
    bool IsUsable() const;

    bool IsDisplayLost() const { return m_displayLost; }

    // For hosts whose loop doesn't drive Qt: handles what is due there and on the thread's message
    // queue, for `milliseconds` at the most while there is more, and waits for nothing. Where Qt's
    // own loop runs it leaves the work to that, and in a paint or a hold to the next call. False if
    // there are no windows to be had on this thread (any more).
    bool ProcessEvents(int32_t milliseconds);

    // Only Qt's part of it, whatever loops run. True if there was anything.
    bool PumpQt(int32_t milliseconds);

    // Null before EnsureApplication gave true.
    OQDisplayConnection* GetDisplay() const { return m_display.get(); }

    // The windows that there are; told when the display or the application goes.
    void AddWindow(OQBasicWnd* wnd);
    void RemoveWindow(OQBasicWnd* wnd);

    // While one lives, what runs on the windows' thread must not be interrupted by their events.
    class Hold
    {
    public:
        Hold() { ++Get().m_holds; }

        ~Hold() { --Get().m_holds; }

        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
    };

private:
    OQToolkit();
    ~OQToolkit() = delete;

    bool OpenDisplay();
    // Tells what came from the display. False if windows can't be used (any more).
    bool CheckDisplay();
    void WakeForDisplay();
    void OnDisplayLost();
    void OnApplicationEnd(); // the host's is being destroyed
    void EndWindows();

    std::mutex m_lock; // of EnsureApplication
    std::unique_ptr<OQDisplayConnection> m_display;
    QSocketNotifier* m_notifier = nullptr; // owned; null while no application was seen
    OQArray<OQBasicWnd*, OQBasicWnd*> m_windows; // not owned
    std::atomic<bool> m_displayLost = false;
    int m_holds = 0;
    int m_pumps = 0; // how many calls of PumpQt are on the stack
};
