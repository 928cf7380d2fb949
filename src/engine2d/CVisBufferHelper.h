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

    // Blends a disc into the picture: at the distance `d` from the middle, in the lengths from
    // there to a corner, in the direction `r`, in turns anticlockwise from the right; `s` is its
    // radius in the same unit. `color` is a pixel, blended by its four bytes; mode 0 replaces, 1
    // adds, 2 subtracts, 3 averages, others change nothing. Rows beyond the upper and lower edges
    // are blended into the edge's own row, and a row that leaves the picture on the right goes on
    // in the next one in memory. A disc that the Draw may not cost is left out.
    void DrawDisc(float d, float r, float s, int32_t color, int32_t mode);

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
