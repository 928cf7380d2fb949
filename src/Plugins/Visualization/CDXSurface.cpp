#include "Plugins/Visualization/CDXSurface.h"

#include "foundation/IOQImage.h"
#include "foundation/OQLog.h"
#include "os/Clock.h"
#include "platform/Presenter.h"

CDXSurface::CDXSurface() = default;

CDXSurface::~CDXSurface() = default;

bool CDXSurface::Present(IOQImage& image, uintptr_t window, OQSize client)
{
    constexpr int64_t pause = 1'000'000'000; // ns between two tries; each may take many frames
    const int64_t now = pxvis::os::MonotonicNanoseconds();
    // A host of the same toolkit that moves the window to another parent gets it a new number.
    if (window != m_window) {
        m_presenter.reset();
        m_nextTry = now;
        m_window = window;
    }
    if (!m_presenter && now < m_nextTry)
        return false;
    if (!m_presenter)
        m_presenter = std::make_unique<pxvis::Presenter>(m_window);
    const OQSize size = image.GetSize();
    if (m_presenter->Present({ image.GetBits(), size.cx, size.cy }, client.cx, client.cy))
        return true;
    OQLog(OQLogWarning, u"CDXSurface::Present", u"No picture can be shown in the window");
    m_presenter.reset();
    m_nextTry = now + pause;
    return false;
}
