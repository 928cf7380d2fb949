#pragma once

#include "foundation/OQThread.h"
#include "platform/PresenterSurface.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace pxvis {

// The hand-over of pictures from the thread that paints to the one that shows them. Two buffers
// change places: one is filled while the other one is shown. Owned by the Presenter.
class PresenterThread final : public OQThread
{
public:
    static constexpr std::chrono::milliseconds longestWait { 17 }; // of Present

    explicit PresenterThread(std::unique_ptr<PresenterSurfaceSource> source);
    ~PresenterThread() override;

    // As Presenter's; starts the thread.
    bool Present(const PresenterPicture& picture, int32_t width, int32_t height);
    const char* Method() const;

    // Ends the thread, breaking what it waits for if it doesn't end by itself. False if it hasn't
    // ended even so, after less than a second: then the object is one for Discard.
    bool End();

    void Cancel(bool cancel) override;

protected:
    uint8_t Run() override;

private:
    struct Frame
    {
        std::vector<uint32_t> bits; // grows, never shrinks
        int32_t pictureWidth = 0;
        int32_t pictureHeight = 0;
        int32_t width = 0;
        int32_t height = 0;
    };

    bool TakeFrame();
    bool ShowFrame();
    void NoteMethod(const char* method);
    bool WaitForEnd(std::chrono::milliseconds time);

    const std::unique_ptr<PresenterSurfaceSource> m_source;
    bool m_isAsked = false; // to present anything yet; the caller's
    std::unique_ptr<PresenterSurface> m_surface; // the thread's
    Frame m_shown; // the thread's, but for the exchange

    mutable std::mutex m_lock; // of all that follows
    std::condition_variable m_wake; // the thread: a frame waits, or the end
    std::condition_variable m_idle; // the others: nothing waits, or the end
    Frame m_waiting;
    bool m_isWaiting = false;
    bool m_isEnded = false; // the thread's work, for good
    const char* m_method = "";
};

}
