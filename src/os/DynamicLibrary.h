#pragma once

#include <string>

namespace pxvis::os {

// A shared library loaded at run time; closed with the object. Its symbols stay its own. One
// thread at a time.
class DynamicLibrary
{
public:
    DynamicLibrary() = default;
    ~DynamicLibrary();
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    // Closes what is open and loads the file. The path must be absolute: nothing is ever searched
    // for in places that the environment names. False with the system's reason in Error().
    bool Open(const std::string& path);
    void Close();

    bool IsOpen() const { return m_handle != nullptr; }

    // Null, with the reason in Error(), if the library has no such symbol or none is open.
    void* Symbol(const char* name);

    const std::string& Error() const { return m_error; }

private:
    void* m_handle = nullptr;
    std::string m_error;
};

}
