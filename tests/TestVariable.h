#pragma once

#include <cstdlib>
#include <string>

// A variable of the environment for the length of a test; null: none.
class TestVariable
{
public:
    TestVariable(const char* name, const char* value)
        : m_name(name)
    {
        const char* before = std::getenv(name);
        m_wasSet = before;
        m_before = before ? before : "";
        value ? setenv(name, value, 1) : unsetenv(name);
    }

    ~TestVariable() { m_wasSet ? setenv(m_name, m_before.c_str(), 1) : unsetenv(m_name); }

    TestVariable(const TestVariable&) = delete;
    TestVariable& operator=(const TestVariable&) = delete;

private:
    const char* m_name;
    bool m_wasSet = false;
    std::string m_before;
};
