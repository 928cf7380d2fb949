#include "components/CDynamicTransformVisComponent.h"

#include "components/SuperTransformPresets.h"
#include "engine2d/IVisBuffer.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQParallelRows.h"
#include "kernels/DynamicTransformRow.h"

CDynamicTransformVisComponent::CDynamicTransformVisComponent()
{
    Bind(u"PixelEquation", m_pixelEquation, u"r=r;d=d", &SuperTransformPresets());
    Bind(u"FrameEquation", m_frameEquation, u"", &SuperTransformPresets());
    BindColors();
    BindBorders();
    m_frame.UseVariables(m_variables);
    m_pixel.UseVariables(m_variables);
    LoadProperties(nullptr);
}

int64_t CDynamicTransformVisComponent::KeptPixels() const
{
    return CDisplacementGrid::KeptPixels(m_rect.Width(), m_rect.Height());
}

int32_t CDynamicTransformVisComponent::Prepare(IVisBuffer&, IVisAudioData&)
{
    m_grid.Resize(m_rect.Width(), m_rect.Height());
    // The programs hold addresses of the variables, so both go before those do.
    m_frame.UseVariables(m_variables);
    m_pixel.UseVariables(m_variables);
    m_variables.ClearVariables();
    m_variables.AddVariables(m_beat.Table());
    m_frame.SetEquation(m_frameEquation);
    m_pixel.SetEquation(m_pixelEquation);
    m_distance = &m_variables.Variable(m_variables.GetVariable(u"d", true));
    m_rotation = &m_variables.Variable(m_variables.GetVariable(u"r", true));
    m_columns.emplace(m_pixel, std::initializer_list<double*> { m_distance, m_rotation });
    PrepareColors();
    OQSeedRand(static_cast<uint32_t>(OQClockMilliseconds()));
    m_prepared = true;
    return 0;
}

int32_t CDynamicTransformVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (!TakePassWork(VisLimits::dynamicTransformPixelWork))
        return -1;
    const int64_t points = CDisplacementGrid::PointCount(m_rect.Width(), m_rect.Height());
    if (!m_prepared) {
        const int64_t characters
            = int64_t { m_pixelEquation.GetLength() } + m_frameEquation.GetLength();
        if (!TakePrepareWork(characters) || !OQTakeWork(VisLimits::mapEntryWork * points))
            return -1;
        Prepare(buffer, audio);
    }
    if (!OQTakeWork((VisLimits::gridPointWork + m_pixel.GetWork()) * points))
        return -1;
    m_beat.Hear(audio);
    if (OQTakeWork(m_frame.GetWork()))
        m_frame.Evaluate();
    m_grid.Fill(*m_columns, *m_distance, *m_rotation);

    pxvis::kernels::DynamicTransformPass pass;
    if (!TakePictures(buffer, pass))
        return -1;
    pass.points = m_grid.Points();
    pass.gridWidth = m_grid.Width();
    pass.gridHeight = m_grid.Height();
    RunColors(pass);
    OQParallelRows(1, pass.height - 1, pass.width, [&pass](int32_t first, int32_t end) {
        for (int32_t y = first; y < end; ++y)
            pxvis::kernels::DynamicTransformRow(pass, y);
    });
    pxvis::kernels::RepairFrame(pass.target, pass.width, pass.height);
    return 0;
}
