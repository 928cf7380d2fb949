#include "engine2d/CVisualization.h"

#include "engine2d/CVisComponent.h"
#include "engine2d/CVisLayer.h"
#include "engine2d/CVisSaveLoadHelper.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQDataRoots.h"
#include "foundation/OQFileSystem.h"
#include "foundation/OQFloatingPointScope.h"
#include "foundation/OQNumberText.h"

#include <algorithm>
#include <limits>
#include <pxvis/IVisAudioData.h>

namespace {

constexpr const OQChar* rootTag = u"PXV";
constexpr const OQChar* formatVersion = u"1.0";
constexpr int64_t dateCheckMs = 500;

int32_t CountPieces(const CVisLayerPiece& piece)
{
    int32_t count = 0;
    if (const CVisLayer* layer = piece.GetLayer()) {
        for (int32_t i = 0; i < layer->GetPieceCount(); ++i)
            count += 1 + CountPieces(*layer->GetPiece(i));
    }
    return count;
}

// Levels below the piece; 0 for a component or an empty layer.
int32_t LevelsBelow(const CVisLayerPiece& piece)
{
    int32_t levels = 0;
    if (const CVisLayer* layer = piece.GetLayer()) {
        for (int32_t i = 0; i < layer->GetPieceCount(); ++i)
            levels = std::max(levels, 1 + LevelsBelow(*layer->GetPiece(i)));
    }
    return levels;
}

// False for a place so deep that the script, once saved, would not be read back whole.
bool FitsBelow(const CVisLayerPiece& parent, const CVisLayerPiece& piece)
{
    int32_t levels = 1 + LevelsBelow(piece);
    for (const CVisLayerPiece* above = parent.GetParent(); above; above = above->GetParent())
        ++levels;
    return levels <= VisLimits::layerNesting;
}

}

class CVisualization::Operation
{
public:
    explicit Operation(CVisualization& engine)
        : m_guard(engine.m_lock)
        , m_scope(engine.m_context)
    {
    }

private:
    std::lock_guard<std::recursive_mutex> m_guard;
    OQEngineContextScope m_scope;
};

CVisualization::CVisualization(IVisualization2DOwner* owner)
    : m_owner(owner)
    , m_rootPiece(nullptr)
{
    m_rootPiece.MakeLayer();
    m_componentManager.Fill();
}

CVisualization::~CVisualization()
{
    Reset();
}

void CVisualization::SetEngineContext(OQEngineContext* context)
{
    const std::lock_guard guard(m_lock);
    m_context = context;
}

void CVisualization::Reset()
{
    const Operation operation(*this);
    m_rootPiece.MakeLayer();
    m_step = Step::Waiting;
    m_sized = false;
    m_audioData.reset();
}

int32_t CVisualization::LoadScript(const OQString& path)
{
    const Operation operation(*this);
    Reset();
    m_scriptPath = path;
    // That of no file: one that comes back is read, also with the date that it had.
    m_scriptDate = 0;
    if (!OQFileSystem::FileExists(m_scriptPath))
        return -1;
    m_scriptDate = OQFileSystem::GetLastWriteTime(m_scriptPath);
    m_lastCheck = OQClockMilliseconds();
    if (!ReadScript(m_scriptPath, m_scriptDocument))
        return -1;
    m_scriptDocument.IntoElem();
    CVisSaveLoadHelper(m_scriptDocument).ReadChildren(m_rootPiece, m_componentManager);
    if (m_owner)
        m_owner->OnScriptLoaded();
    m_sized = false;
    return 0;
}

bool CVisualization::ReadScript(const OQString& path, OQXmlDocument& document)
{
    OQString text;
    if (!OQFileSystem::ReadTextFile(path, text, VisLimits::scriptFileBytes))
        return false;
    document.SetDocument(text);
    return FindScript(document);
}

bool CVisualization::IsScript(const OQString& path)
{
    OQXmlDocument document;
    return OQFileSystem::FileExists(path) && ReadScript(path, document);
}

bool CVisualization::FindScript(OQXmlDocument& document)
{
    return document.FindElem(rootTag) && document.GetAttrib(u"Version") == formatVersion;
}

int32_t CVisualization::SaveScript(const OQString& path)
{
    const Operation operation(*this);
    if (!path.IsEmpty())
        m_scriptPath = path;
    m_scriptDocument.SetDocument({});
    m_scriptDocument.AddElem(rootTag);
    m_scriptDocument.SetAttrib(u"Version", formatVersion);
    m_scriptDocument.IntoElem();
    CVisSaveLoadHelper helper(m_scriptDocument);
    const CVisLayer& root = *m_rootPiece.GetLayer();
    for (int32_t i = 0; i < root.GetPieceCount(); ++i)
        helper.WritePiece(*root.GetPiece(i));
    const OQString target = OQDataRoots::Get().PathForSaving(m_scriptPath);
    if (OQFileSystem::WriteTextFile(target, m_scriptDocument.GetDoc()))
        m_scriptPath = target;
    return 0;
}

int32_t CVisualization::Resize(const OQRect& rect)
{
    const Operation operation(*this);
    if (rect.Width() < 5 || rect.Height() < 5)
        return -1;
    m_rootPiece.Resize(rect);
    m_step = Step::Waiting;
    m_size = rect;
    m_sized = true;
    return 0;
}

int32_t CVisualization::Draw(const OQRect& rect, bool showFps)
{
    const Operation operation(*this);
    if (!m_sized)
        Resize(rect);
    if (m_size.Width() < 4 || m_size.Height() < 4)
        return -1;
    CheckScriptDate();
    if (!m_audioData && m_owner)
        m_audioData.reset(m_owner->GetAudioData());
    const bool hasDrawn = m_step == Step::Drawn || m_step == Step::Kept;
    if (!m_audioData) {
        m_step = Step::NoData;
    } else if (m_audioData->Refresh() == 0) {
        DrawRootLayer(rect);
        m_step = Step::Drawn;
    } else {
        m_step = hasDrawn ? Step::Kept : Step::Waiting;
    }
    if (showFps)
        DrawFrameRate();
    return 0;
}

void CVisualization::DrawRootLayer(const OQRect& rect)
{
    const OQFloatingPointScope floatingPoint;
    int64_t& workLeft = OQCurrentEngineContext().workLeft;
    const int64_t workBefore = workLeft;
    workLeft = std::min(workBefore,
        std::max(
            VisLimits::workAtLeast, VisLimits::workPerPixel * m_size.Width() * m_size.Height()));
    m_rootPiece.GetLayer()->Draw(*m_audioData, rect);
    workLeft = workBefore;
}

void CVisualization::CheckScriptDate()
{
    // Under a virtual clock the picture depends on the input alone.
    if (OQCurrentEngineContext().virtualClock)
        return;
    if (OQClockMilliseconds() - m_lastCheck <= dateCheckMs)
        return;
    if (!m_scriptPath.IsEmpty() && OQFileSystem::GetLastWriteTime(m_scriptPath) != m_scriptDate)
        LoadScript(m_scriptPath);
    m_lastCheck = OQClockMilliseconds();
}

void CVisualization::DrawFrameRate()
{
    IOQImage* image = GetBuffer().GetImage(0);
    if (!image)
        return;
    const int32_t thousandths = m_audioData ? m_audioData->GetValue(VisAudioValueFrameRate) : 0;
    const float rate = static_cast<float>(thousandths) / 1000.0f;
    const OQString text = u"fps: " + OQFixedToText(double { rate }, 1);
    const OQRect area { 1, 1, m_size.Width() - 2, m_size.Height() - 2 };
    image->DrawText(text.GetText(), area, 0xFFFFFF, nullptr, 0, 1, -1);
}

int32_t CVisualization::AddPiece(int32_t type, CVisLayerPiece* where)
{
    const Operation operation(*this);
    if (type < 0 && type != newLayer)
        return 0;
    CVisLayerPiece* parent = &m_rootPiece;
    if (where && where->GetType() == CVisLayerPiece::Type::Layer)
        parent = where;
    else if (where && where->GetType() == CVisLayerPiece::Type::Component && where->GetParent())
        parent = where->GetParent();
    if (CountPieces(m_rootPiece) >= VisLimits::piecesPerScript)
        return 0;

    auto piece = std::make_unique<CVisLayerPiece>(parent);
    if (type == newLayer) {
        piece->MakeLayer();
    } else {
        auto component = m_componentManager.MakeComponent(type);
        if (!component)
            return 0;
        piece->MakeComponent(std::move(component));
    }
    if (!FitsBelow(*parent, *piece))
        return 0;
    CVisLayer& layer = *parent->GetLayer();
    piece->Resize(layer.GetPixelRect());
    layer.InsertPiece(layer.FindPiece(where) + 1, std::move(piece));
    return 1;
}

int32_t CVisualization::MovePiece(CVisLayerPiece* piece, int32_t direction)
{
    const Operation operation(*this);
    if (direction == 0 || !piece || !piece->GetParent())
        return 0;
    CVisLayerPiece* parent = piece->GetParent();
    CVisLayer& layer = *parent->GetLayer();
    const bool up = direction < 1;
    const int32_t index = layer.FindPiece(piece);
    const int32_t neighbour = up ? index - 1 : index + 1;
    if (neighbour >= 0 && neighbour < layer.GetPieceCount()) {
        CVisLayer* inner = layer.GetPiece(neighbour)->GetLayer();
        if (inner && !FitsBelow(*layer.GetPiece(neighbour), *piece))
            return -1;
        if (inner)
            inner->InsertPiece(up ? inner->GetPieceCount() : 0, layer.TakePiece(index));
        else
            layer.InsertPiece(neighbour, layer.TakePiece(index));
        return 1;
    }
    if (!parent->GetParent())
        return 0;
    CVisLayer& outer = *parent->GetParent()->GetLayer();
    const int32_t parentIndex = outer.FindPiece(parent);
    outer.InsertPiece(up ? parentIndex : parentIndex + 1, layer.TakePiece(index));
    return 1;
}

IVisBuffer& CVisualization::GetBuffer()
{
    return m_rootPiece.GetLayer()->GetBuffer();
}
