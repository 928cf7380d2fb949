#include "siblings/reader/ReaderModule.h"

#include "siblings/reader/CReader.h"

#include <atomic>
#include <new>

static std::atomic<int> s_users { 0 };

void OQReaderInitialize(const void*)
{
    ++s_users;
}

void OQReaderUninitialize()
{
    --s_users;
}

IOQReader* CreateGenericReaderDLL()
{
    return s_users > 0 ? new (std::nothrow) CReader : nullptr;
}
