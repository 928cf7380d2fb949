#include "foundation/files/FakeTools.h"

extern "C" __attribute__((visibility("default"))) IOQTools* GetOQToolsDLL(int32_t version)
{
    static FakeTools tools;
    return version == IOQTools::InterfaceVersion ? &tools : nullptr;
}
