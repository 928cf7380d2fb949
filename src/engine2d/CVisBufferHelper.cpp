#include "engine2d/CVisBufferHelper.h"

CVisBufferHelper::CVisBufferHelper(IVisBuffer& buffer)
    : m_buffer(buffer)
    , m_bits(buffer.GetBits(0))
{
    OQSize size;
    buffer.GetSize(&size);
    m_width = size.cx;
    m_height = size.cy;
}

intptr_t CVisBufferHelper::GetImageHandle(int32_t offset)
{
    return m_buffer.GetImageHandle(offset);
}

OQSize* CVisBufferHelper::GetSize(OQSize* out)
{
    *out = { m_width, m_height };
    return out;
}

void CVisBufferHelper::Flip()
{
    m_buffer.Flip();
    m_bits = m_buffer.GetBits(0);
}
