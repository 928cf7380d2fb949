#pragma once

#include "TestVariable.h"
#include "foundation/OQSharedMemory.h"

// A variable of the environment that the process's folders depend on.
class TestFolderVariable
{
public:
    TestFolderVariable(const char* name, const char* value)
        : m_variable(name, value)
    {
        OQSharedMemory::Get().Forget();
    }

private:
    struct ForgetAtEnd
    {
        ~ForgetAtEnd() { OQSharedMemory::Get().Forget(); }
    };

    ForgetAtEnd m_end; // behind the variable's own
    TestVariable m_variable;
};
