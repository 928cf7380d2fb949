#include "platform/PresenterThread.h"

#include "foundation/OQLog.h"

#include <utility>

namespace pxvis {

namespace {

constexpr int32_t kMostPictureSide = 16384;
constexpr int64_t kMostPicturePixels = int64_t { 64 } << 20;
constexpr int32_t kMostAreaSide = 32767; // X has no larger windows
constexpr std::chrono::milliseconds kPatience { 400 }; // twice in End
constexpr std::chrono::milliseconds kLookTime { 100 }; // without a picture, for exposures
constexpr int32_t kEndTime = 100; // milliseconds; of a thread that has shown its last picture

}

PresenterThread::PresenterThread(std::unique_ptr<PresenterSurfaceSource> source)
    : m_source(std::move(source))
{
    SetStopTimeout(kEndTime);
}

PresenterThread::~PresenterThread()
{
    Finish();
}

bool PresenterThread::Present(const PresenterPicture& picture, int32_t width, int32_t height)
{
    if (picture.width > kMostPictureSide || picture.height > kMostPictureSide
        || int64_t { picture.width } * picture.height > kMostPicturePixels || width > kMostAreaSide
        || height > kMostAreaSide)
        return false;
    const bool isFirst = !std::exchange(m_isAsked, true);
    const bool cannotStart = isFirst && !Start();
    std::unique_lock guard(m_lock);
    m_isEnded = m_isEnded || cannotStart;
    if (!picture.bits || picture.width < 1 || picture.height < 1 || width < 1 || height < 1)
        return !m_isEnded;
    m_idle.wait_for(guard, longestWait, [this] { return m_isEnded || !m_isWaiting; });
    if (m_isEnded)
        return false;
    try {
        m_waiting.bits.assign(
            picture.bits, picture.bits + int64_t { picture.width } * picture.height);
    } catch (...) {
        m_isWaiting = false; // half of it may be overwritten
        return false;
    }
    m_waiting.pictureWidth = picture.width;
    m_waiting.pictureHeight = picture.height;
    m_waiting.width = width;
    m_waiting.height = height;
    m_isWaiting = true;
    m_wake.notify_one();
    return true;
}

const char* PresenterThread::Method() const
{
    const std::lock_guard guard(m_lock);
    return m_method;
}

bool PresenterThread::End()
{
    if (GetStartCount() < 1)
        return true;
    Cancel(true);
    if (WaitForEnd(kPatience))
        return true;
    m_source->Break();
    return WaitForEnd(kPatience);
}

bool PresenterThread::WaitForEnd(std::chrono::milliseconds time)
{
    std::unique_lock guard(m_lock);
    return m_idle.wait_for(guard, time, [this] { return m_isEnded; });
}

void PresenterThread::Cancel(bool cancel)
{
    const std::lock_guard guard(m_lock); // the thread must not miss it between looking and waiting
    OQThread::Cancel(cancel);
    m_wake.notify_one();
}

uint8_t PresenterThread::Run()
{
    try {
        m_surface = m_source->Next();
        while (TakeFrame() && ShowFrame()) { }
    } catch (...) {
        OQLog(OQLogError, u"PresenterThread::Run", u"No memory to show pictures with");
    }
    m_surface.reset();
    const std::lock_guard guard(m_lock);
    m_isEnded = true;
    m_method = "";
    m_idle.notify_all();
    return 1;
}

bool PresenterThread::TakeFrame()
{
    std::unique_lock guard(m_lock);
    while (!m_wake.wait_for(guard, kLookTime, [this] { return m_isWaiting || IsCancelled(); })) {
        guard.unlock();
        if (m_surface && m_shown.width > 0 && m_surface->IsExposed())
            return true; // to show once more what was shown
        guard.lock();
    }
    if (IsCancelled())
        return false;
    std::swap(m_waiting, m_shown);
    m_isWaiting = false;
    m_idle.notify_all();
    return true;
}

void PresenterThread::NoteMethod(const char* method)
{
    {
        const std::lock_guard guard(m_lock);
        if (std::exchange(m_method, method) == method)
            return;
    }
    OQLog(OQLogInfo, u"PresenterThread::ShowFrame", u"Pictures are shown by %s", { method });
}

bool PresenterThread::ShowFrame()
{
    const PresenterPicture picture { m_shown.bits.data(), m_shown.pictureWidth,
        m_shown.pictureHeight };
    while (m_surface && !IsCancelled()) {
        const ShowResult result = m_surface->Show(picture, m_shown.width, m_shown.height);
        if (result == ShowResult::WindowGone)
            return false;
        if (result == ShowResult::Shown) {
            NoteMethod(m_surface->Method());
            return true;
        }
        OQLog(OQLogWarning, u"PresenterThread::ShowFrame", u"%s shows no pictures here",
            { m_surface->Method() });
        m_surface.reset();
        m_surface = m_source->Next();
    }
    return false;
}

}
