#pragma once

#include "foundation/OQChar.h"

#include <cstdint>

// A text that another module reads and fills through virtual calls, so that neither needs the
// other's allocator. The caller owns it. Slots: add at the end only.
class IOQDllString
{
public:
    virtual const OQChar* GetText() const = 0;
    virtual void SetText(const OQChar* text, int32_t length) = 0; // below 0: up to the zero
    virtual void Clear() = 0;
    // Room for `length` characters, until ReleaseBuffer.
    virtual OQChar* GetBuffer(int32_t length, bool keep) = 0;
    virtual void ReleaseBuffer(int32_t length) = 0; // below 0: up to the zero

protected:
    ~IOQDllString() = default;
};

// The same for bytes.
class IOQDllBuffer
{
public:
    // New bytes are zeros. False, and no change, if the memory can't be had.
    virtual bool SetSize(uint64_t size) = 0;
    virtual uint8_t* GetData() = 0;
    virtual uint64_t GetSize() const = 0;

protected:
    ~IOQDllBuffer() = default;
};
