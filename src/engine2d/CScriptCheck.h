#pragma once

#include "engine2d/CComponentManager.h"
#include "engine2d/CVisRowInfo.h"
#include "engine2d/VisPropertyText.h"
#include "foundation/OQXmlDocument.h"

#include <map>
#include <vector>

// One thing that loading a script passes over in silence.
struct CScriptFinding
{
    int32_t line = 1; // of the file, from 1
    int32_t column = 1; // in characters, from 1
    OQString component; // a component's or layer's name; empty: the script as a whole
    OQString row; // empty: none
    int32_t position = 0; // in the row's text, in characters from 1; 0: all of it
    OQString message; // in English, without a full stop; holds texts of the script
};

// Walks a script as loading does, and tells what loading would leave out, cut off or read as
// something else. Knows components by their registry and their rows alone. One thread at a time.
class CScriptCheck
{
public:
    // Further ones are only counted, in a last finding.
    static constexpr size_t mostFindings = 1000;

    // `fonts`: the names that font rows may have; null: any.
    explicit CScriptCheck(const OQStringArray* fonts = nullptr);
    ~CScriptCheck();
    CScriptCheck(const CScriptCheck&) = delete;
    CScriptCheck& operator=(const CScriptCheck&) = delete;

    // In the order of the text.
    std::vector<CScriptFinding> Check(const OQString& text);

private:
    struct Rows; // of a kind of piece

    void Add(int32_t offset, const OQString& component, const OQString& message);
    void Add(CScriptFinding finding, int32_t offset);
    void AddXmlFault();
    bool CheckQuotes(const OQString& text);
    bool FindRoot();
    void CheckPieces(const OQString& layer);
    void CheckStray(const OQString& around, bool behindProperties);
    void CheckLayer();
    void CheckComponent();
    void CheckProperties(
        const OQString& component, const Rows& rows, CVisPropertyList* values = nullptr);
    void CheckRow(const OQString& component, const Rows& rows, const OQString& name);
    int32_t OffsetInRow(const OQString& text, int32_t position);
    void CheckArea(const OQString& text);
    // False for a piece that the script's pictures leave no memory for.
    bool KeepPixels(int32_t offset, const OQString& component, int64_t pixels);
    int32_t CountPiecesInside();
    const Rows& RowsOf(int32_t position);

    const OQStringArray* m_fonts;
    CComponentManager m_manager;
    std::map<int32_t, std::unique_ptr<Rows>>
        m_rows; // by position in the registry, or that of a layer
    OQXmlDocument m_document;
    std::vector<int32_t> m_lineStarts; // offsets
    std::vector<CScriptFinding> m_findings;
    size_t m_leftOut = 0; // findings
    int32_t m_nesting = 0;
    OQSize m_size; // of the layer around, in a picture of the usual size
    VisFractionRect m_area; // of the layer being read
    int64_t m_keptPixels = 0;
    int32_t m_pieceCount = 0;
    int32_t m_painterCount = 0;
    int32_t m_componentCount = 0; // known ones
};
