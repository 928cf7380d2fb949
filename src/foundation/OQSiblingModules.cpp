#include "foundation/OQSiblingModules.h"

#include "foundation/IOQImage.h"
#include "foundation/IOQReader.h"
#include "foundation/IOQTools.h"
#include "foundation/OQFormat.h"
#include "foundation/OQLoadLibrary.h"
#include "os/InstallPlaces.h"

#include <utility>
#include <vector>

namespace {

// Where a module is looked for, in this order: first where one is expected.
std::vector<OQString> PathsOf(const OQString& name)
{
    if (name.StartsWith(u"/"))
        return { name };
    // Never a folder that another module tells: what lies beside this one came with it.
    const std::string& folder = pxvis::os::GetInstallPlaces().siblings;
    if (folder.empty())
        return { OQString() };
    const OQString start = OQString::FromUtf8(folder) + u"/";
    return { start + name, start + u"x64/" + name };
}

}

OQSiblingModules::OQSiblingModules(
    OQSiblingSetup image, OQSiblingSetup tools, OQSiblingSetup reader)
{
    m_image.setup = std::move(image);
    m_tools.setup = std::move(tools);
    m_reader.setup = std::move(reader);
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

// `entry` turns the address of the module's export into its interface.
template <class Interface, class Entry>
void OQSiblingModules::Load(Module<Interface>& module, const char* symbol, Entry entry)
{
    if (module.tried)
        return;
    module.tried = true;
    for (const OQString& path : PathsOf(OQString::FromUtf8(module.setup.name))) {
        if (OQLoadLibrary(module.library, path, OQLoadFromItsFolder))
            break;
        if (module.failure.empty())
            module.failure = module.library.Error();
    }
    if (module.library.IsOpen()) {
        if (void* address = module.library.Symbol(symbol))
            module.app = entry(address);
        if (module.app) {
            module.app->Initialize(module.setup.parameter);
            module.failure.clear();
            return;
        }
        module.failure = module.library.Error();
    }
    if (module.failure.empty())
        module.failure = module.setup.name + ": the module gave no interface";
    module.library.Close();
}

template <class Interface>
void OQSiblingModules::Forget(Module<Interface>& module)
{
    if (module.app)
        module.app->Uninitialize();
    module.app = nullptr;
    module.library.Close();
    module.failure.clear();
    module.tried = false;
}

IOQImageApp* OQSiblingModules::ImageApp()
{
    const std::lock_guard lock(m_lock);
    Load(m_image, "GetOQImageAppDLL",
        [](void* entry) { return reinterpret_cast<IOQImageApp* (*)()>(entry)(); });
    return m_image.app;
}

IOQTools* OQSiblingModules::Tools()
{
    const std::lock_guard lock(m_lock);
    Load(m_tools, "GetOQToolsDLL", [](void* entry) {
        return reinterpret_cast<IOQTools* (*)(int32_t)>(entry)(IOQTools::InterfaceVersion);
    });
    return m_tools.app;
}

void OQSiblingModules::SetUpTools(const OQToolsSetup& setup)
{
    const std::lock_guard lock(m_lock);
    m_toolsSetup = setup;
    m_tools.setup.parameter = &m_toolsSetup;
    if (!m_tools.app)
        return;
    // As another user, who goes at once; what it brought stays.
    m_tools.app->Initialize(&m_toolsSetup);
    m_tools.app->Uninitialize();
}

IOQReader* OQSiblingModules::CreateReader()
{
    const std::lock_guard lock(m_lock);
    Load(m_reader, "OQReaderInitialize", [this](void* entry) -> ReaderExports* {
        void* uninitialize = m_reader.library.Symbol("OQReaderUninitialize");
        void* create = m_reader.library.Symbol("CreateGenericReaderDLL");
        if (!uninitialize || !create)
            return nullptr;
        m_readerExports = { reinterpret_cast<void (*)(const void*)>(entry),
            reinterpret_cast<void (*)()>(uninitialize),
            reinterpret_cast<IOQReader* (*)()>(create) };
        return &m_readerExports;
    });
    return m_reader.app ? m_reader.app->create() : nullptr;
}

IOQTools* OQSiblingModules::LoadedTools()
{
    const std::lock_guard lock(m_lock);
    return m_tools.app;
}

std::string OQSiblingModules::ImageFailure()
{
    const std::lock_guard lock(m_lock);
    return m_image.failure;
}

std::string OQSiblingModules::ToolsFailure()
{
    const std::lock_guard lock(m_lock);
    return m_tools.failure;
}

std::string OQSiblingModules::ReaderFailure()
{
    const std::lock_guard lock(m_lock);
    return m_reader.failure;
}

OQString OQSiblingModules::ToolsFailureText()
{
    const std::lock_guard lock(m_lock);
    if (m_tools.failure.empty())
        return {};
    return OQFormat(u"The following module has failed to load:\r\n%s\r\n\r\n"
                    u"It has reported the following error:\r\n\r\n%s\r\n\r\n"
                    u"Please reinstall the latest version of the program.",
        { PathsOf(OQString::FromUtf8(m_tools.setup.name)).front(), u"Failed to load OQTools" });
}

void OQSiblingModules::Unload()
{
    const std::lock_guard lock(m_lock);
    if (m_tools.app)
        m_tools.app->PrepareToUnload();
    Forget(m_image);
    Forget(m_reader);
    Forget(m_tools);
}

IOQImage* OQCreateImage()
{
    IOQImageApp* app = OQSiblingModules::Get().ImageApp();
    return app ? app->CreateImage() : nullptr;
}

IOQFont* OQCreateFont(const OQFontDescriptor& descriptor)
{
    IOQImageApp* app = OQSiblingModules::Get().ImageApp();
    return app ? app->CreateFont(descriptor) : nullptr;
}

IOQReader* OQCreateReader()
{
    return OQSiblingModules::Get().CreateReader();
}

IOQText* OQToolsText()
{
    IOQTools* tools = OQSiblingModules::Get().Tools();
    return tools ? tools->GetText(1) : nullptr;
}
