#include "platform/Presenter.h"

#include "platform/ConnectionBreaker.h"
#include "platform/EglSurface.h"
#include "platform/PresenterThread.h"
#include "platform/ShmSurface.h"

#include <cstdlib>
#include <string_view>
#include <utility>

namespace pxvis {

namespace {

class WindowSurfaces final : public PresenterSurfaceSource
{
public:
    WindowSurfaces(uintptr_t window, std::string_view only)
        : m_window(window)
        , m_takesSoftware(only == "egl")
        , m_first(only == "shm"    ? Shm
                  : only == "put"  ? Put
                  : only == "none" ? Last
                                   : Egl)
        , m_last(only == "egl"    ? Shm
                  : only == "shm" ? Put
                                  : Last)
    {
    }

    std::unique_ptr<PresenterSurface> Next() override
    {
        while (m_first < m_last && !m_breaker.IsBroken()) {
            if (auto surface = Make(m_first++))
                return surface;
        }
        return nullptr;
    }

    void Break() override { m_breaker.Break(); }

private:
    enum : int
    {
        Egl,
        Shm,
        Put,
        Last
    };

    std::unique_ptr<PresenterSurface> Make(int method)
    {
        return method == Egl ? MakeEglSurface(m_window, m_breaker, m_takesSoftware)
                             : MakeShmSurface(m_window, m_breaker, method == Shm);
    }

    const uintptr_t m_window;
    const bool m_takesSoftware;
    int m_first; // of those that weren't tried
    const int m_last;
    ConnectionBreaker m_breaker;
};

}

Presenter::Presenter(uintptr_t window)
{
    const char* only = std::getenv("PXVIS_PRESENT");
    m_thread = std::make_unique<PresenterThread>(
        std::make_unique<WindowSurfaces>(window, only ? only : ""));
}

Presenter::~Presenter()
{
    m_thread->End();
    OQThread::Discard(std::move(m_thread));
}

bool Presenter::Present(const PresenterPicture& picture, int32_t width, int32_t height)
{
    return m_thread->Present(picture, width, height);
}

const char* Presenter::Method() const
{
    return m_thread->Method();
}

}
