#include "os/ModulePath.h"

extern "C" __attribute__((visibility("default"))) const char* OwnModulePath()
{
    return pxvis::os::ModulePath().c_str();
}
