#pragma once

#include "os/DynamicLibrary.h"

#include <mutex>
#include <string>

class IOQImage;
class IOQImageApp;

// How a sibling module is found and started.
struct OQSiblingSetup
{
    std::string name; // absolute: loaded as it stands; else a file of our own module's folder
    const void* parameter = nullptr; // handed to the module's first operation
};

// The modules that work for this one from shared libraries of their own. Each is loaded when it is
// first asked for, from the folder of the executable or library that this code is linked into, and
// its first operation is called once. One that can't be loaded is not tried again: whoever asks
// gets null and goes on without. Any thread; one lock.
class OQSiblingModules
{
public:
    explicit OQSiblingModules(OQSiblingSetup image = { .name = "OQImage.so" });
    ~OQSiblingModules();
    OQSiblingModules(const OQSiblingModules&) = delete;
    OQSiblingModules& operator=(const OQSiblingModules&) = delete;

    // The one of the process, which is never destroyed: threads may ask until the very end.
    static OQSiblingModules& Get();

    // Null if the module isn't there or isn't one of ours.
    IOQImageApp* ImageApp();

    // Why ImageApp() gave null; empty otherwise.
    std::string ImageFailure();

    // Ends all modules; a later demand loads them again. Whatever they made must be gone before.
    void Unload();

private:
    struct ImageModule
    {
        OQSiblingSetup setup;
        pxvis::os::DynamicLibrary library;
        IOQImageApp* app = nullptr;
        std::string failure;
        bool tried = false;
    };

    void LoadImageModule();

    std::mutex m_lock;
    ImageModule m_image;
};

// An empty image from the process's image module, which the caller owns; null without that module
// or without memory.
IOQImage* OQCreateImage();
