#include "os/DynamicLibrary.h"

#include <dlfcn.h>

namespace pxvis::os {

namespace {

std::string LastError()
{
    const char* text = dlerror();
    return text ? text : "unknown error";
}

}

DynamicLibrary::~DynamicLibrary()
{
    Close();
}

bool DynamicLibrary::Open(const std::string& path)
{
    Close();
    m_error.clear();
    if (path.empty() || path.front() != '/') {
        m_error = "\"" + path + "\" is not an absolute path";
        return false;
    }
    m_handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!m_handle)
        m_error = LastError();
    return m_handle;
}

void DynamicLibrary::Close()
{
    if (m_handle)
        dlclose(m_handle);
    m_handle = nullptr;
}

void* DynamicLibrary::Symbol(const char* name)
{
    if (!m_handle) {
        m_error = "no library is open";
        return nullptr;
    }
    m_error.clear();
    void* symbol = dlsym(m_handle, name);
    if (!symbol)
        m_error = LastError();
    return symbol;
}

}
