#pragma once

#include "foundation/OQString.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

// Ends the run with a crash that libFuzzer keeps the input of, if a property doesn't hold.
#define FUZZ_CHECK(condition)                                                                      \
    do {                                                                                           \
        if (!(condition))                                                                          \
            FuzzFailure(#condition, __FILE__, __LINE__);                                           \
    } while (false)

[[noreturn]] inline void FuzzFailure(const char* condition, const char* file, int line)
{
    std::fprintf(stderr, "%s:%d: %s does not hold\n", file, line, condition);
    std::abort();
}

// Tells where two texts part, and fails.
inline void FuzzCheckEqual(const OQString& a, const OQString& b, const char* file, int line)
{
    if (a == b)
        return;
    std::fprintf(
        stderr, "--- one\n%s\n--- the other\n%s\n", a.ToUtf8().c_str(), b.ToUtf8().c_str());
    FuzzFailure("equal texts", file, line);
}

#define FUZZ_CHECK_EQUAL(a, b) FuzzCheckEqual(a, b, __FILE__, __LINE__)

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
