#include "foundation/OQSharedMemory.h"
#include "foundation/files/FakeTools.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED IOQTools* GetOQToolsDLL(int32_t version)
{
    static FakeTools tools;
    return version == IOQTools::InterfaceVersion ? &tools : nullptr;
}

// The data folder as this module has it, found anew.
EXPORTED void GetModulesDataFolder(IOQDllString& folder)
{
    OQSharedMemory::Get().Forget();
    folder.SetText(OQProcessFolders::Get().data.GetText(), -1);
}
