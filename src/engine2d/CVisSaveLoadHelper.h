#pragma once

#include "foundation/OQString.h"

class CComponentManager;
class CVisLayerPiece;
class CVisPropertyList;
class OQStringArray;
class OQXmlDocument;

// Writes a script's tree into an XML document, and reads it back. The document's position is where
// the pieces are: on the inside of the root element or of a layer's element.
class CVisSaveLoadHelper
{
public:
    explicit CVisSaveLoadHelper(OQXmlDocument& document)
        : m_document(document)
    {
    }

    // `path` names elements from the current one down, joined by "\"; missing ones are added. With
    // `asElement` the last one's text becomes `value`; without, the last name is an attribute of
    // the one before it. A name that no element can have is left out, with what is below it.
    void Set(const OQString& path, const OQString& value, bool asElement);

    // Empty pieces are left out.
    void WritePiece(const CVisLayerPiece& piece);

    // Appends a piece for each "Layer" and "Component" element. An unknown component leaves an
    // empty piece. What is past the limits on nesting and number of pieces is left out.
    void ReadChildren(CVisLayerPiece& layerPiece, const CComponentManager& manager);

private:
    void Rewind();
    void SetAt(const OQStringArray& names, const OQString& value, bool asElement);
    void ReadLayer(CVisLayerPiece& piece, const CComponentManager& manager);
    void ReadComponent(
        CVisLayerPiece& piece, const CComponentManager& manager, const OQString& guid);
    bool ReadProperties(CVisPropertyList& list);

    OQXmlDocument& m_document;
    int32_t m_nesting = 0;
    int32_t m_pieceCount = 0;
};
