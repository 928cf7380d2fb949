#include "engine2d/CVisFlashMeter.h"

#include <algorithm>

void CVisFlashMeter::Add(const CVisPixels& picture, int64_t time)
{
    Measure(m_measured, picture);
    AddMeasured(m_measured, time);
}

void CVisFlashMeter::Measure(std::vector<CVisFlashCell>& cells, const CVisPixels& picture)
{
    if (m_grid.SetSize(picture.width, picture.height)) {
        m_general.Restart();
        m_red.Restart();
    }
    m_grid.Measure(cells, picture);
}

void CVisFlashMeter::AddMeasured(const std::vector<CVisFlashCell>& cells, int64_t time)
{
    m_time = std::max(m_time, time);
    m_general.Add(m_grid, cells, m_time);
    m_red.Add(m_grid, cells, m_time);
}
