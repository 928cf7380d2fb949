#pragma once

#include "os/Descriptor.h"

#include <cstdint>

namespace pxvis::os {

// A descriptor that becomes readable at a moment of the monotonic clock and stays so until the
// moment is set anew. One thread at a time.
class Alarm
{
public:
    Alarm();

    bool IsOpen() const { return m_descriptor.IsOpen(); } // false: the system has no more of them

    void SetAt(int64_t nanoseconds); // a moment in the past is now
    void Clear();

    int GetDescriptor() const { return m_descriptor.Get(); } // not to be read from

private:
    Descriptor m_descriptor;
};

}
