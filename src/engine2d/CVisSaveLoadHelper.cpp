#include "engine2d/CVisSaveLoadHelper.h"

#include "engine2d/CComponentManager.h"
#include "engine2d/CVisComponent.h"
#include "engine2d/CVisLayer.h"
#include "engine2d/CVisLayerPiece.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQStringArray.h"
#include "foundation/OQXmlDocument.h"

// In front of the first child of the element that we are in.
void CVisSaveLoadHelper::Rewind()
{
    m_document.OutOfElem();
    m_document.ResetChildPos();
    m_document.IntoElem();
}

void CVisSaveLoadHelper::Set(const OQString& path, const OQString& value, bool asElement)
{
    OQStringArray names;
    path.Split(u'\\', names);
    SetAt(names, value, asElement);
}

void CVisSaveLoadHelper::SetAt(const OQStringArray& names, const OQString& value, bool asElement)
{
    const int32_t elements = names.GetCount() - (asElement ? 0 : 1);
    int32_t entered = 0;
    for (; entered < elements; ++entered) {
        const OQChar* name = names[entered].GetText();
        Rewind();
        if (!m_document.FindElem(name) && !m_document.AddElem(name))
            break;
        m_document.IntoElem();
    }
    if (entered == elements) {
        // Text and attributes belong to the element from outside.
        m_document.OutOfElem();
        if (asElement)
            m_document.SetData(value.GetText());
        else
            m_document.SetAttrib(names[elements].GetText(), value.GetText());
        m_document.IntoElem();
    }
    for (; entered > 0; --entered)
        m_document.OutOfElem();
    Rewind();
}

void CVisSaveLoadHelper::WritePiece(const CVisLayerPiece& piece)
{
    if (piece.GetType() == CVisLayerPiece::Type::Empty)
        return;
    const CVisComponent* component = piece.GetComponent();
    m_document.AddElem(component ? u"Component" : u"Layer");
    m_document.IntoElem();
    if (component) {
        Set(u"GUID", OQString::FromNarrow(component->guid), false);
        Set(u"Name", OQString::FromNarrow(component->name), false);
    }
    CVisPropertyList list;
    piece.SaveProperties(list);
    // Not as a path: names that a script brought may hold a "\".
    OQStringArray names;
    names.Add(u"Properties");
    names.Add({});
    for (const CVisPropertyRow& row : list) {
        names[1] = row.Name;
        SetAt(names, row.Value, true);
    }
    if (const CVisLayer* layer = piece.GetLayer()) {
        for (int32_t i = 0; i < layer->GetPieceCount(); ++i)
            WritePiece(*layer->GetPiece(i));
    }
    m_document.OutOfElem();
}

void CVisSaveLoadHelper::ReadChildren(CVisLayerPiece& layerPiece, const CComponentManager& manager)
{
    if (m_nesting >= VisLimits::layerNesting)
        return;
    ++m_nesting;
    CVisLayer& layer = *layerPiece.GetLayer();
    while (m_document.FindElem() && m_pieceCount < VisLimits::piecesPerScript) {
        const OQString tag = m_document.GetTagName();
        const bool isLayer = tag == u"Layer";
        if (!isLayer && tag != u"Component")
            continue;
        ++m_pieceCount;
        auto piece = std::make_unique<CVisLayerPiece>(&layerPiece);
        const OQString guid = m_document.GetAttrib(u"GUID");
        m_document.IntoElem();
        if (isLayer)
            ReadLayer(*piece, manager);
        else
            ReadComponent(*piece, manager, guid);
        m_document.OutOfElem();
        layer.InsertPiece(layer.GetPieceCount(), std::move(piece));
    }
    --m_nesting;
}

void CVisSaveLoadHelper::ReadLayer(CVisLayerPiece& piece, const CComponentManager& manager)
{
    piece.MakeLayer();
    CVisPropertyList list;
    // Children are read from behind the properties on; without properties from the start.
    if (ReadProperties(list))
        piece.LoadProperties(&list);
    ReadChildren(piece, manager);
}

void CVisSaveLoadHelper::ReadComponent(
    CVisLayerPiece& piece, const CComponentManager& manager, const OQString& guid)
{
    auto component = manager.MakeComponent(manager.FindByGuid(guid));
    if (!component)
        return;
    piece.MakeComponent(std::move(component));
    CVisPropertyList list;
    ReadProperties(list);
    piece.LoadProperties(&list);
    piece.GetComponent()->SetRect(piece.GetParent()->GetLayer()->GetPixelRect());
}

bool CVisSaveLoadHelper::ReadProperties(CVisPropertyList& list)
{
    if (!m_document.FindElem(u"Properties"))
        return false;
    m_document.IntoElem();
    while (m_document.FindElem())
        list.AddRow(m_document.GetTagName().GetText(), m_document.GetData());
    m_document.OutOfElem();
    return true;
}
