#include "platform/EglSurface.h"

#include "platform/PictureQuad.h"
#include "platform/PresenterWindow.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <epoxy/egl.h>
#include <epoxy/gl.h>
#include <string_view>

namespace pxvis {

namespace {

constexpr EGLenum kPlatformXcb = 0x31DC; // EGL_PLATFORM_XCB_EXT, which not all headers have
constexpr EGLenum kPlatformXcbScreen = 0x31DE; // EGL_PLATFORM_XCB_SCREEN_EXT

bool HasExtension(EGLDisplay display, std::string_view name)
{
    const char* text = eglQueryString(display, EGL_EXTENSIONS);
    if (!text) // a library too old for questions without a display
        return false;
    for (std::string_view rest = text; !rest.empty();) {
        const size_t end = std::min(rest.find(' '), rest.size());
        if (rest.substr(0, end) == name)
            return true;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

// Whether the current context draws on the processor, by the names that drivers have for that.
bool IsSoftware()
{
    constexpr std::array<std::string_view, 6> names { "llvmpipe", "softpipe", "Software Rasterizer",
        "SWR (", "SwiftShader", "Basic Render Driver" };
    const auto getString = reinterpret_cast<PFNGLGETSTRINGPROC>(eglGetProcAddress("glGetString"));
    const GLubyte* const text = getString ? getString(GL_RENDERER) : nullptr;
    const std::string_view renderer = text ? reinterpret_cast<const char*>(text) : "";
    return std::any_of(names.begin(), names.end(),
        [&](std::string_view name) { return renderer.find(name) != renderer.npos; });
}

class EglSurface final : public PresenterSurface
{
public:
    explicit EglSurface(std::unique_ptr<PresenterWindow> window)
        : m_window(std::move(window))
    {
    }

    ~EglSurface() override;

    bool Open(bool takesSoftware);

    ShowResult Show(const PresenterPicture& picture, int32_t width, int32_t height) override;

    bool IsExposed() override { return m_window->IsExposed(); }

    const char* Method() const override { return "EGL"; }

private:
    bool OpenDisplay();
    bool OpenWindow();
    bool OpenContext();

    const std::unique_ptr<PresenterWindow> m_window; // outlives what follows
    EGLDisplay m_display = EGL_NO_DISPLAY;
    EGLConfig m_config = nullptr;
    EGLSurface m_surface = EGL_NO_SURFACE;
    EGLContext m_context = EGL_NO_CONTEXT;
    PictureQuad m_quad;
};

EglSurface::~EglSurface()
{
    if (m_display == EGL_NO_DISPLAY)
        return;
    eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (m_context != EGL_NO_CONTEXT)
        eglDestroyContext(m_display, m_context);
    if (m_surface != EGL_NO_SURFACE)
        eglDestroySurface(m_display, m_surface);
    eglTerminate(m_display);
    eglReleaseThread();
}

bool EglSurface::Open(bool takesSoftware)
{
    return OpenDisplay() && OpenWindow() && OpenContext() && (takesSoftware || !IsSoftware())
        && m_quad.Open();
}

bool EglSurface::OpenDisplay()
{
    if (!HasExtension(EGL_NO_DISPLAY, "EGL_EXT_platform_base")
        || !HasExtension(EGL_NO_DISPLAY, "EGL_EXT_platform_xcb"))
        return false;
    const std::array<EGLint, 3> attributes { kPlatformXcbScreen,
        static_cast<EGLint>(m_window->GetScreenNumber()), EGL_NONE };
    m_display
        = eglGetPlatformDisplayEXT(kPlatformXcb, m_window->GetConnection(), attributes.data());
    EGLint major = 0;
    EGLint minor = 0;
    if (m_display == EGL_NO_DISPLAY || !eglInitialize(m_display, &major, &minor))
        return false;
    const bool isRecent = major > 1 || (major == 1 && minor >= 5);
    return isRecent
        || (HasExtension(m_display, "EGL_KHR_create_context")
            && HasExtension(m_display, "EGL_KHR_get_all_proc_addresses"));
}

// The window's visual is that of the configuration: of those that there are for the visuals of the
// screen, the one that comes first among these.
bool EglSurface::OpenWindow()
{
    const std::array<EGLint, 13> wanted { EGL_SURFACE_TYPE, EGL_WINDOW_BIT, EGL_RENDERABLE_TYPE,
        EGL_OPENGL_BIT, EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_SAMPLES, 0,
        EGL_NONE };
    std::array<EGLConfig, 256> configs {};
    EGLint count = 0;
    if (!eglChooseConfig(m_display, wanted.data(), configs.data(), EGLint(configs.size()), &count))
        return false;
    for (const PresenterWindow::Visual& visual : m_window->GetVisuals()) {
        const auto end = configs.begin() + count;
        const auto fits = [&](EGLConfig config) {
            EGLint id = 0;
            return eglGetConfigAttrib(m_display, config, EGL_NATIVE_VISUAL_ID, &id)
                && static_cast<uint32_t>(id) == visual.id;
        };
        const auto config = std::find_if(configs.begin(), end, fits);
        if (config == end)
            continue;
        m_config = *config;
        if (!m_window->Create(visual))
            return false;
        uint32_t id = m_window->GetId();
        m_surface = eglCreatePlatformWindowSurfaceEXT(m_display, m_config, &id, nullptr);
        return m_surface != EGL_NO_SURFACE;
    }
    return false;
}

bool EglSurface::OpenContext()
{
    const std::array<EGLint, 5> version { EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION,
        0, EGL_NONE };
    if (!eglBindAPI(EGL_OPENGL_API))
        return false;
    m_context = eglCreateContext(m_display, m_config, EGL_NO_CONTEXT, version.data());
    if (m_context == EGL_NO_CONTEXT || !eglMakeCurrent(m_display, m_surface, m_surface, m_context))
        return false;
    eglSwapInterval(m_display, 0); // the caller keeps the time
    return true;
}

ShowResult EglSurface::Show(const PresenterPicture& picture, int32_t width, int32_t height)
{
    const ShowResult result = m_window->Cover(width, height);
    if (result != ShowResult::Shown)
        return result;
    EGLint surfaceWidth = 0;
    EGLint surfaceHeight = 0;
    if (!eglQuerySurface(m_display, m_surface, EGL_WIDTH, &surfaceWidth)
        || !eglQuerySurface(m_display, m_surface, EGL_HEIGHT, &surfaceHeight)
        || !m_quad.Draw(picture, surfaceWidth, surfaceHeight)
        || !eglSwapBuffers(m_display, m_surface))
        return ShowResult::MethodFailed;
    return m_window->Check(); // a swap succeeds for a window that is gone, too
}

}

std::unique_ptr<PresenterSurface> MakeEglSurface(
    uintptr_t window, ConnectionBreaker& breaker, bool takesSoftware)
{
    if (!epoxy_has_egl()) // without the library any other call would end the process
        return nullptr;
    auto presented = PresenterWindow::Connect(window, breaker);
    if (!presented)
        return nullptr;
    auto surface = std::make_unique<EglSurface>(std::move(presented));
    return surface->Open(takesSoftware) ? std::move(surface) : nullptr;
}

}
