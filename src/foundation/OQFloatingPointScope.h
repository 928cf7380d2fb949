#pragma once

#include <cfenv>

// Sets the default floating-point environment (rounding to nearest, small numbers kept) for the
// calling thread as long as it lives: a host may have left another one, and pictures depend on it.
class OQFloatingPointScope
{
public:
    OQFloatingPointScope()
    {
        std::fegetenv(&m_host);
        std::fesetenv(FE_DFL_ENV);
    }

    ~OQFloatingPointScope() { std::fesetenv(&m_host); }

    OQFloatingPointScope(const OQFloatingPointScope&) = delete;
    OQFloatingPointScope& operator=(const OQFloatingPointScope&) = delete;

private:
    std::fenv_t m_host;
};
