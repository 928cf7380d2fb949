#include "foundation/OQSiblingModules.h"

#include "foundation/IOQImage.h"
#include "os/ModulePath.h"

#include <utility>

namespace {

// Empty, which nothing can be loaded from, if our own folder isn't known.
std::string PathOf(const std::string& name)
{
    if (!name.empty() && name.front() == '/')
        return name;
    const std::string folder = pxvis::os::ModuleFolder();
    return folder.empty() ? std::string() : folder + "/" + name;
}

}

OQSiblingModules::OQSiblingModules(OQSiblingSetup image)
{
    m_image.setup = std::move(image);
}

OQSiblingModules::~OQSiblingModules()
{
    Unload();
}

OQSiblingModules& OQSiblingModules::Get()
{
    static OQSiblingModules* const modules = new OQSiblingModules;
    return *modules;
}

IOQImageApp* OQSiblingModules::ImageApp()
{
    const std::lock_guard lock(m_lock);
    if (!m_image.tried)
        LoadImageModule();
    return m_image.app;
}

std::string OQSiblingModules::ImageFailure()
{
    const std::lock_guard lock(m_lock);
    return m_image.failure;
}

void OQSiblingModules::LoadImageModule()
{
    m_image.tried = true;
    m_image.failure.clear();
    if (m_image.library.Open(PathOf(m_image.setup.name))) {
        using Entry = IOQImageApp*();
        if (void* entry = m_image.library.Symbol("GetOQImageAppDLL"))
            m_image.app = reinterpret_cast<Entry*>(entry)();
        if (m_image.app) {
            m_image.app->Initialize(m_image.setup.parameter);
            return;
        }
    }
    m_image.failure = m_image.library.Error();
    if (m_image.failure.empty())
        m_image.failure = m_image.setup.name + ": the module gave no interface";
    m_image.library.Close();
}

void OQSiblingModules::Unload()
{
    const std::lock_guard lock(m_lock);
    if (m_image.app)
        m_image.app->Uninitialize();
    m_image.app = nullptr;
    m_image.library.Close();
    m_image.failure.clear();
    m_image.tried = false;
}

IOQImage* OQCreateImage()
{
    IOQImageApp* app = OQSiblingModules::Get().ImageApp();
    return app ? app->CreateImage() : nullptr;
}
