#include "components/CSuperScopeVisComponent.h"

#include "components/GradientPhase.h"
#include "components/SuperScopePresets.h"
#include "engine2d/IVisBuffer.h"
#include "engine2d/VisAudio.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPresets.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQStringArray.h"
#include "foundation/OQTruncate.h"
#include "kernels/Wrapped.h"

#include <algorithm>

namespace {

constexpr int32_t colors = 256;
constexpr int32_t waveSamples = 1024;

struct Point
{
    int32_t x = 0;
    int32_t y = 0;
};

// Columns or rows of the picture between two ends, both included.
int64_t VisibleSpan(int32_t from, int32_t to, int32_t size)
{
    const auto [low, high] = std::minmax(from, to);
    return std::max<int64_t>(int64_t { std::min(high, size - 1) } - std::max(low, 0) + 1, 0);
}

// Of a line in pixels, at most: a step along its longer axis is one pixel.
int64_t VisiblePixels(Point from, Point to, OQSize size)
{
    const int64_t columns = VisibleSpan(from.x, to.x, size.cx);
    const int64_t rows = VisibleSpan(from.y, to.y, size.cy);
    return columns == 0 || rows == 0 ? 0 : std::max(columns, rows);
}

}

CSuperScopeVisComponent::CSuperScopeVisComponent()
{
    static_assert(StageImpact + 1 == equationStages);
    Bind(u"ScopeEquation", m_scopeEquation,
        u"n=100;t=0;|r=i*3.14159*128+t;x=cos(r/64)*0.7+sin(r)*0.3;y=sin(r/64)*0.7+cos(r)*0.3"
        u"|t=t+0.01;||n=80+rand(120.0);",
        &SuperScopePresets(), CVisRowForm::EquationStages);
    Bind(u"Gradient", m_gradient, GradientPresetsWithTakeRed());
    LoadProperties(nullptr);
}

double* CSuperScopeVisComponent::StartVariable(const OQChar* name)
{
    return &m_variables.Variable(m_variables.GetVariable(name, true));
}

int32_t CSuperScopeVisComponent::Prepare(IVisBuffer&, IVisAudioData&)
{
    OQStringArray texts;
    m_scopeEquation.Split(u'|', texts);
    int64_t characters = 0;
    const auto stages = std::min<size_t>(static_cast<size_t>(texts.GetCount()), m_stages.size());
    for (size_t i = 0; i < stages; ++i)
        characters += texts[static_cast<int32_t>(i)].GetLength();
    if (!OQTakeWork(VisLimits::compileCharacterWork * characters))
        return -1;

    m_points.reset();
    m_variables.ClearVariables();
    m_count = StartVariable(u"n");
    m_x = StartVariable(u"x");
    m_y = StartVariable(u"y");
    m_position = StartVariable(u"i");
    m_level = StartVariable(u"v");
    // The programs hold addresses of the variables that were.
    for (CMathEvaluator& stage : m_stages)
        stage.UseVariables(m_variables);
    for (size_t i = 0; i < stages; ++i)
        m_stages[i].SetEquation(texts[static_cast<int32_t>(i)]);
    m_frameCounter = 0;
    m_phase = 0;
    // It runs once: where this Draw may not cost it, a later one begins again.
    if (!OQTakeWork(At(StageInit).GetWork()))
        return -1;
    At(StageInit).Evaluate();
    m_points.emplace(At(StagePoint), std::initializer_list<double*> { m_position, m_level },
        std::initializer_list<double*> { m_x, m_y });
    m_prepared = true;
    return 0;
}

int64_t CSuperScopeVisComponent::PointWork()
{
    return VisLimits::scopePointWork + At(StagePoint).GetWork();
}

void CSuperScopeVisComponent::Run(Stage stage)
{
    if (OQTakeWork(At(stage).GetWork()))
        At(stage).Evaluate();
}

int32_t CSuperScopeVisComponent::Draw(IVisBuffer& buffer, IVisAudioData& audio)
{
    if (!m_prepared && Prepare(buffer, audio) != 0)
        return -1;
    IOQImage* image = buffer.GetImage(0);
    const VisAudioBlock* block = audio.GetData();
    if (!image || !block)
        return -1;

    // One entry of a table of colours is read each frame.
    const float along = static_cast<float>(m_frameCounter & (colors - 1)) / float { colors };
    const uint32_t color = m_gradient.Lookup(along, m_phase);
    m_frameCounter = pxvis::kernels::AddWrapped(m_frameCounter, 1);
    // Unlike others' it moves on behind the colours, and may stand at 1.
    m_phase += gradientPhaseStep;
    if (m_phase > 1.0f)
        m_phase = 0;

    const int32_t count = OQTruncateToInt32(*m_count);
    if (count > 1)
        DrawPoints(*image, block->waveform[0], count, color);
    if (audio.GetValue(VisAudioValueBeat) != 0)
        Run(StageBeat);
    if (VisImpact(audio) > 0)
        Run(StageImpact);
    Run(StageFrame);
    return 0;
}

// The first of the points from `first` to `end`, as many as columns hold and the Draw may cost.
int32_t CSuperScopeVisComponent::RunPoints(
    const int8_t* wave, int32_t first, int32_t end, int32_t count)
{
    const int64_t affordable = OQCurrentEngineContext().workLeft / PointWork();
    const auto points = static_cast<int32_t>(
        std::clamp<int64_t>(affordable, 0, std::min(end - first, CMathColumns::kLanes)));
    double* positions = m_points->Column(m_position);
    double* levels = m_points->Column(m_level);
    for (int32_t i = 0; i < points; ++i) {
        positions[i] = static_cast<float>(first + i) / static_cast<float>(count);
        levels[i] = wave[(first + i) * waveSamples / count] * 0.0078125;
    }
    m_points->Run(points);
    return points;
}

void CSuperScopeVisComponent::DrawPoints(
    IOQImage& image, const int8_t* wave, int32_t count, uint32_t color)
{
    const OQSize size = image.GetSize();
    const auto halfWidth = static_cast<float>((size.cx + 1) / 2);
    const auto halfHeight = static_cast<float>((size.cy + 1) / 2);
    Point last;
    const int32_t drawn = std::min(count, VisLimits::scopePoints);
    const double* xs = m_points->Column(m_x);
    const double* ys = m_points->Column(m_y);
    int32_t ready = 0; // points that were worked out
    int32_t start = 0; // of the columns
    for (int32_t k = 0; k < drawn; ++k) {
        if (k == ready) {
            start = k;
            ready += RunPoints(wave, k, drawn, count);
        }
        if (!OQTakeWork(PointWork()))
            return;
        const int32_t lane = k - start;
        const Point point {
            OQTruncateToInt32(static_cast<float>(xs[lane]) * halfWidth + halfWidth),
            OQTruncateToInt32(static_cast<float>(ys[lane]) * halfHeight + halfHeight),
        };
        if (k > 0) {
            if (!OQTakeWork(VisLimits::lineWork
                    + VisLimits::linePixelWork * VisiblePixels(last, point, size)))
                return;
            image.DrawLine(last.x, last.y, point.x, point.y, color, 255);
        }
        last = point;
    }
}
