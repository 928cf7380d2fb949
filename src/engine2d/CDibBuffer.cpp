#include "engine2d/CDibBuffer.h"

#include "foundation/OQSiblingModules.h"

void CDibBuffer::MakeImages(int32_t width, int32_t height)
{
    FreeImages();
    for (auto& image : m_images) {
        image.reset(OQCreateImage());
        if (!image)
            return;
        image->SetOption(1);
        if (!image->Create(width, height, 0, 0))
            return;
        image->SetOption2(1);
        image->Clear(0, 255);
    }
    m_count = static_cast<int32_t>(m_images.size());
}

void CDibBuffer::FreeImages()
{
    m_count = 0;
    m_current = 0;
    for (auto& image : m_images)
        image.reset();
}

IOQImage* CDibBuffer::GetImage(int32_t offset)
{
    if (offset <= -m_count || offset >= m_count)
        return nullptr;
    return m_images[static_cast<size_t>((m_current + offset + m_count) % m_count)].get();
}

uint32_t* CDibBuffer::GetBits(int32_t offset)
{
    IOQImage* image = GetImage(offset);
    return image ? image->GetBits() : nullptr;
}

intptr_t CDibBuffer::GetImageHandle(int32_t offset)
{
    const IOQImage* image = GetImage(offset);
    return image ? image->GetImageHandle() : 0;
}

OQSize* CDibBuffer::GetSize(OQSize* out)
{
    const IOQImage* image = GetImage(0);
    *out = image ? image->GetSize() : OQSize {};
    return out;
}

void CDibBuffer::Flip()
{
    if (m_count > 0)
        m_current = (m_current + 1) % m_count;
}

const OQBitmapInfo* CDibBuffer::GetBitmapInfo()
{
    const IOQImage* image = GetImage(0);
    return image ? image->GetBitmapInfo() : nullptr;
}
