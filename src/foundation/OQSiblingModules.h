#pragma once

#include "foundation/IOQWindowServices.h"
#include "foundation/OQString.h"
#include "os/DynamicLibrary.h"

#include <mutex>
#include <string>

class IOQFont;
class IOQImage;
class IOQImageApp;
class IOQReader;
class IOQText;
class IOQTools;
struct OQFontDescriptor;

// How a sibling module is found and started.
struct OQSiblingSetup
{
    std::string name; // absolute: loaded as it stands; else a file of the folder of the siblings
    const void* parameter = nullptr; // handed to the module's first operation
};

// The modules that work for this one from shared libraries of their own. Each is loaded when it is
// first asked for and its first operation is called once. One that can't be loaded is not tried
// again: whoever asks gets null and goes on without. Any thread; one lock.
class OQSiblingModules
{
public:
    explicit OQSiblingModules(OQSiblingSetup image = { .name = "OQImage.so" },
        OQSiblingSetup tools = { .name = "OQTools.so" },
        OQSiblingSetup reader = { .name = "OQReader.so" });
    ~OQSiblingModules();
    OQSiblingModules(const OQSiblingModules&) = delete;
    OQSiblingModules& operator=(const OQSiblingModules&) = delete;

    // The one of the process, which is never destroyed: threads may ask until the very end.
    static OQSiblingModules& Get();

    // Null if the module isn't there or isn't one of ours.
    IOQImageApp* ImageApp();
    IOQTools* Tools();

    // What the calling thread has for the tools: from now on, or from when they are loaded by it.
    void SetUpTools(const OQToolsSetup& setup);

    // A reader that the caller owns; null as above, and without memory.
    IOQReader* CreateReader();

    // Loads nothing: null as well if nobody has asked for the tools so far.
    IOQTools* LoadedTools();

    // Why the operation above gave null; empty otherwise.
    std::string ImageFailure();
    std::string ToolsFailure();
    std::string ReaderFailure();

    // What the user is told, under the title "Critical Error", if the tools could not be loaded;
    // empty otherwise. To show it is the caller's.
    OQString ToolsFailureText();

    // Ends all modules: the tools prepare, image and reader go, the tools go last. A later demand
    // loads them again. Whatever they made must be gone before.
    void Unload();

private:
    template <class Interface>
    struct Module
    {
        OQSiblingSetup setup;
        pxvis::os::DynamicLibrary library;
        Interface* app = nullptr;
        std::string failure;
        bool tried = false;
    };

    // What a module without an interface of its own shows.
    struct ReaderExports
    {
        void Initialize(const void* parameter) const { initialize(parameter); }

        void Uninitialize() const { uninitialize(); }

        void (*initialize)(const void*) = nullptr;
        void (*uninitialize)() = nullptr;
        IOQReader* (*create)() = nullptr;
    };

    template <class Interface, class Entry>
    static void Load(Module<Interface>& module, const char* symbol, Entry entry);
    template <class Interface>
    static void Forget(Module<Interface>& module);

    std::mutex m_lock;
    Module<IOQImageApp> m_image;
    Module<IOQTools> m_tools;
    Module<ReaderExports> m_reader;
    ReaderExports m_readerExports;
    OQToolsSetup m_toolsSetup; // in use once it is set
};

// An empty image from the process's image module, which the caller owns; null without that module
// or without memory.
IOQImage* OQCreateImage();

// A font from the same module, which the caller owns; null alike.
IOQFont* OQCreateFont(const OQFontDescriptor& descriptor);

// A reader from the process's reader module, which the caller owns; null alike.
IOQReader* OQCreateReader();

// Comparing and searching by the process's tools module; null without that module.
IOQText* OQToolsText();
