#pragma once

#include "engine2d/IVisBuffer.h"

// A buffer's size and pixels, read once at the start of a component's draw. Lives on the stack;
// owns nothing.
class CVisBufferHelper
{
public:
    explicit CVisBufferHelper(IVisBuffer& buffer);
    virtual ~CVisBufferHelper() = default;

    virtual intptr_t GetImageHandle(int32_t offset);
    virtual OQSize* GetSize(OQSize* out);

    // Flips the buffer and takes the pixels of what is current now.
    virtual void Flip();

    uint32_t* Bits() const { return m_bits; }

    int32_t Width() const { return m_width; }

    int32_t Height() const { return m_height; }

    int32_t HalfWidth() const { return (m_width + 1) / 2; }

    int32_t HalfHeight() const { return (m_height + 1) / 2; }

private:
    IVisBuffer& m_buffer;
    uint32_t* m_bits;
    int32_t m_width;
    int32_t m_height;
};
