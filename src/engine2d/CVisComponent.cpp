#include "engine2d/CVisComponent.h"

int32_t CVisComponent::SaveProperties(CVisPropertyList&)
{
    return 0;
}

int32_t CVisComponent::LoadProperties(const CVisPropertyList*)
{
    m_prepared = false;
    return 0;
}

int32_t CVisComponent::Randomize()
{
    return 0;
}

int32_t CVisComponent::SetRect(const OQRect& rect)
{
    m_rect = rect;
    m_prepared = false;
    return 0;
}

int32_t CVisComponent::Invalidate()
{
    return 0;
}

int32_t CVisComponent::Prepare(IVisBuffer&, IVisAudioData&)
{
    return 0;
}

int32_t CVisComponent::DescribeRows(CVisRowInfoList&) const
{
    return 0;
}

int64_t CVisComponent::KeptPixels() const
{
    return 0;
}
