#include "engine2d/CScriptCheck.h"

#include "engine2d/CVisComponent.h"
#include "engine2d/CVisLayer.h"
#include "engine2d/CVisLayerPiece.h"
#include "engine2d/CVisualization.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPresets.h"
#include "engine2d/VisRowCheck.h"
#include "foundation/OQNumberText.h"
#include "foundation/OQXmlTokenizer.h"

#include <algorithm>
#include <set>

namespace {

constexpr int32_t layerPosition = -1; // beside the positions of the registry
constexpr const OQChar* layerName = u"Layer";

// The picture's size that the memory of a script is counted for.
constexpr int32_t usualWidth = 1920;
constexpr int32_t usualHeight = 1080;
constexpr int64_t mostPixels
    = std::max(VisLimits::keptPixels, VisLimits::keptPictures* usualWidth* usualHeight);

// Category 0 reworks the picture; of those this one fills it with a colour.
constexpr const OQChar* fillingComponent = u"Flush";

OQString LimitText(const OQChar* what, int64_t limit)
{
    return u"the limit of " + OQIntToText(limit) + what;
}

// A fault of the parser's in words for who wrote the file; the place is told with it. `isLast`: it
// is the last character's.
OQString XmlFaultText(const OQString& error, bool isLast)
{
    const int32_t firstQuote = error.Find(u'\'');
    const int32_t lastQuote = error.ReverseFind(u'\'');
    OQString name;
    if (firstQuote < lastQuote)
        name = error.Mid(firstQuote + 1, lastQuote - firstQuote - 1);
    if (error.EndsWith(u" unterminated"))
        return OQString(error.StartsWith(u"Element") ? u"this tag is" : u"what begins here is")
            + u" never closed: a quote or \">\" is missing, or the file is cut off";
    if (error.EndsWith(u" not ended"))
        return QuoteForMessage(name) + u" is never closed: " + QuoteForMessage(u"</" + name + u">")
            + u" is missing, or the file is cut off";
    if (error.StartsWith(u"No start tag"))
        return QuoteForMessage(u"</" + name + u">") + u" closes nothing that is open here";
    if (error.StartsWith(u"Incorrect tag name") && isLast)
        return u"the file ends at \"<\": it is cut off";
    if (error.StartsWith(u"Incorrect tag name"))
        return u"\"<\" begins no tag here: in an equation write &lt; for \"<\" and &amp; for \"&\"";
    if (error == u"Empty document")
        return u"the file is empty";
    if (error == u"No root element")
        return u"there is no element in the file: it is no script";
    if (error == u"Root element has sibling")
        return u"something stands behind the end of the script";
    return u"not well formed XML: " + error;
}

// A piece whose equation never sets "on" isn't drawn.
void AddOnFault(const OQString& text, CVisRowFault& fault)
{
    CMathEvaluator evaluator;
    evaluator.SetEquation(text);
    if (!fault.reason.IsEmpty())
        fault.reason += u"; without this equation the piece isn't drawn";
    else if (!evaluator.IsCompiled() || evaluator.GetVariable(u"on", false) < 0)
        fault.reason = u"never sets \"on\": the piece isn't drawn";
}

}

struct CScriptCheck::Rows
{
    std::unique_ptr<CVisLayerPiece> piece; // whose names and maps the list holds
    OQString name;
    CVisRowInfoList list;

    const CVisRowInfo* Find(const OQString& wanted) const
    {
        for (const CVisRowInfo& row : list) {
            if (wanted == row.name)
                return &row;
        }
        return nullptr;
    }
};

CScriptCheck::CScriptCheck(const OQStringArray* fonts)
    : m_fonts(fonts)
{
    m_manager.Fill();
}

CScriptCheck::~CScriptCheck() = default;

std::vector<CScriptFinding> CScriptCheck::Check(const OQString& text)
{
    m_findings.clear();
    m_leftOut = 0;
    m_nesting = m_pieceCount = m_painterCount = m_componentCount = 0;
    m_lineStarts = { 0 };
    for (int32_t at = text.Find(u'\n'); at >= 0; at = text.Find(u'\n', at + 1))
        m_lineStarts.push_back(at + 1);

    // What stands behind a fault is anyone's guess until that is mended.
    if (!m_document.SetDocument(text)) {
        AddXmlFault();
        CheckQuotes(text);
    } else if (!CheckQuotes(text)) {
        // Told.
    } else if (FindRoot()) {
        const int32_t root = m_document.GetOffset();
        m_size = { usualWidth, usualHeight };
        m_keptPixels = CDibBuffer::PixelsOf(usualWidth, usualHeight);
        m_document.IntoElem();
        CheckPieces(u"PXV");
        m_document.OutOfElem();
        if (m_painterCount == 0)
            Add(root, {},
                m_componentCount == 0
                    ? u"the script holds no component that is read: it draws nothing"
                    : u"no component paints: what the others rework stays black");
    }
    // Rows that belong together are found together, at the last of them.
    std::stable_sort(
        m_findings.begin(), m_findings.end(), [](const CScriptFinding& a, const CScriptFinding& b) {
            return std::pair(a.line, a.column) < std::pair(b.line, b.column);
        });
    if (m_leftOut > 0) {
        CScriptFinding rest = m_findings.back();
        rest.component = rest.row = OQString();
        rest.position = 0;
        rest.message = u"and " + OQIntToText(static_cast<int64_t>(m_leftOut)) + u" more of such";
        m_findings.push_back(rest);
    }
    return std::move(m_findings);
}

void CScriptCheck::Add(int32_t offset, const OQString& component, const OQString& message)
{
    CScriptFinding finding;
    finding.component = component;
    finding.message = message;
    Add(std::move(finding), offset);
}

void CScriptCheck::Add(CScriptFinding finding, int32_t offset)
{
    if (m_findings.size() >= mostFindings) {
        ++m_leftOut;
        return;
    }
    const auto behind = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), offset);
    finding.line = static_cast<int32_t>(behind - m_lineStarts.begin());
    finding.column = offset - *(behind - 1) + 1;
    m_findings.push_back(std::move(finding));
}

// The document tells where as a number at, or near, the end of its message.
void CScriptCheck::AddXmlFault()
{
    const OQString& error = m_document.GetError();
    const OQString mark(u" at offset ");
    int32_t offset = 0;
    for (int32_t at = error.Find(mark); at >= 0; at = error.Find(mark, at + 1))
        offset = OQTextToInt(error.GetText() + at + mark.GetLength());
    const int32_t length = m_document.GetDoc().GetLength();
    Add(std::clamp(offset, 0, length), {}, XmlFaultText(error, offset + 1 == length));
}

// A forgotten quote makes a tag swallow what follows up to the next one: still well formed, but
// what is swallowed is not read. False if the rest can't be trusted.
bool CScriptCheck::CheckQuotes(const OQString& text)
{
    const std::u16string_view view = text.View();
    OQXmlTokenizer tokenizer(view, 0, text.GetLength());
    bool good = true;
    for (OQXmlToken token = tokenizer.Next(); good && token.kind != OQXmlTokenKind::End;
         token = tokenizer.Next()) {
        // A tag that the text ends in is told as that.
        if (token.kind != OQXmlTokenKind::StartTag || token.fault != OQXmlTokenFault::None)
            continue;
        const std::u16string_view tag
            = view.substr(static_cast<size_t>(token.start), static_cast<size_t>(token.length));
        const std::u16string_view inside
            = tag.substr(1, tag.size() - (tag.ends_with(u"/>") ? 3 : 2));
        OQXmlAttributes attributes(inside);
        while (good && attributes.Next()) {
            const std::u16string_view value = attributes.GetValue();
            const auto offset = token.start + 1 + static_cast<int32_t>(attributes.GetStart());
            const std::u16string_view name = attributes.GetName();
            const OQString quoted
                = QuoteForMessage(OQString(name.data(), static_cast<int>(name.size())));
            good = value.find_first_of(u"<\n") == std::u16string_view::npos;
            if (!good)
                Add(offset, {},
                    u"the attribute " + quoted
                        + u" goes over a \"<\" or a line end: is a quote missing?");
            else if (const OQChar last = inside[attributes.GetEnd() - 1];
                     last != u'"' && last != u'\'')
                Add(offset, {}, u"the attribute " + quoted + u" has no value in quotes");
        }
    }
    return good;
}

bool CScriptCheck::FindRoot()
{
    if (CVisualization::FindScript(m_document))
        return true;
    m_document.ResetPos();
    m_document.FindElem();
    const OQString tag = m_document.GetTagName();
    const OQString version = m_document.GetAttrib(u"Version");
    if (tag != u"PXV")
        Add(m_document.GetOffset(), {},
            u"the root element is " + QuoteForMessage(tag) + u", not \"PXV\": nothing is read");
    else
        Add(m_document.GetOffset(), {},
            u"the root element's Version is " + QuoteForMessage(version)
                + u", not \"1.0\": nothing is read");
    return false;
}

// The elements from the current position on, as a layer reads them. `layer`: its tag.
void CScriptCheck::CheckPieces(const OQString& layer)
{
    if (m_nesting >= VisLimits::layerNesting) {
        if (m_document.FindElem())
            Add(m_document.GetOffset(), layerName,
                u"past " + LimitText(u" nested layers", VisLimits::layerNesting)
                    + u": what is in this layer is cut off");
        return;
    }
    ++m_nesting;
    while (m_document.FindElem()) {
        const OQString tag = m_document.GetTagName();
        const bool isLayer = tag == layerName;
        if (!isLayer && tag != u"Component") {
            CheckStray(layer, true);
            continue;
        }
        if (m_pieceCount == VisLimits::piecesPerScript) {
            Add(m_document.GetOffset(), {},
                u"past " + LimitText(u" layers and components", VisLimits::piecesPerScript)
                    + u": this and all further ones are cut off");
            ++m_pieceCount;
        }
        if (m_pieceCount > VisLimits::piecesPerScript)
            break;
        ++m_pieceCount;
        isLayer ? CheckLayer() : CheckComponent();
    }
    --m_nesting;
}

int32_t CScriptCheck::CountPiecesInside()
{
    const std::u16string_view inside = m_document.GetDoc().View().substr(
        static_cast<size_t>(m_document.GetOffset()), static_cast<size_t>(m_document.GetLength()));
    int32_t count = 0;
    for (const std::u16string_view tag : { u"<Component", u"<Layer" }) {
        for (size_t at = inside.find(tag, 1); at != inside.npos; at = inside.find(tag, at + 1))
            ++count;
    }
    return count;
}

// An element that is skipped with all that is in it.
void CScriptCheck::CheckStray(const OQString& around, bool behindProperties)
{
    const OQString tag = m_document.GetTagName();
    OQString message;
    if (tag == u"Properties" && around == u"PXV")
        message = u"the root has no rows: this \"Properties\" isn't read";
    else if (tag == u"Properties")
        message = u"a second \"Properties\": its rows aren't read";
    else if (!behindProperties)
        message = u"stands in front of \"Properties\", which must come first: it is hidden";
    else
        message = u"there is no element " + QuoteForMessage(tag) + u" in " + around
            + u": it is skipped";
    for (const OQChar* known : { u"Layer", u"Component", u"Properties" }) {
        if (tag != known && tag.CompareNoCase(known) == 0)
            message += OQString(u"; case counts: \"") + known + u"\"";
    }
    const int32_t pieces = CountPiecesInside();
    if (pieces > 0)
        message += u"; with it go " + OQIntToText(pieces) + u" layers and components inside it";
    Add(m_document.GetOffset(), tag == layerName || tag == u"Component" ? tag : OQString(),
        message);
}

void CScriptCheck::CheckLayer()
{
    const int32_t offset = m_document.GetOffset();
    const OQSize around = m_size;
    m_area = {};
    m_document.IntoElem();
    // Children are read from behind the properties on; without properties from the start.
    if (m_document.FindElem(u"Properties")) {
        const int32_t properties = m_document.GetOffset();
        m_document.OutOfElem();
        m_document.ResetChildPos();
        m_document.IntoElem();
        while (m_document.FindElem() && m_document.GetOffset() < properties)
            CheckStray(layerName, false);
        CheckProperties(layerName, RowsOf(layerPosition));
    }
    const OQRect rect = PixelRect(m_area, around.cx, around.cy);
    m_size = { rect.Width(), rect.Height() };
    // What is in a layer that isn't drawn takes nothing.
    if (!KeepPixels(offset, layerName, CDibBuffer::PixelsOf(m_size.cx, m_size.cy)))
        m_size = {};
    CheckPieces(layerName);
    m_size = around;
    m_document.OutOfElem();
}

bool CScriptCheck::KeepPixels(int32_t offset, const OQString& component, int64_t pixels)
{
    if (pixels <= mostPixels - m_keptPixels) {
        m_keptPixels += std::max<int64_t>(pixels, 0);
        return true;
    }
    Add(offset, component,
        u"past " + LimitText(u" pixels that a script may keep in pictures and maps", mostPixels)
            + u", counted for 1920x1080: it isn't drawn");
    return false;
}

void CScriptCheck::CheckComponent()
{
    const OQString guid = m_document.GetAttrib(u"GUID");
    const int32_t position = m_manager.FindByGuid(guid);
    VISUALIZATION_COMPONENT_INFO_EX info;
    if (position < 0) {
        OQString message = guid.IsEmpty()
            ? OQString(u"has no GUID")
            : u"there is no component type with the GUID " + QuoteForMessage(guid);
        message += u": nothing of it is read";
        const OQString name = m_document.GetAttrib(u"Name");
        for (int32_t i = 0; CComponentManager::GetInfo(i, info) == 0; ++i) {
            const OQString known = OQString::FromNarrow(info.guid);
            if (guid.CompareNoCase(known) == 0)
                message += u"; case counts: \"" + known + u"\"";
            else if (name == OQString::FromNarrow(info.name))
                message += u"; \"" + name + u"\" has the GUID \"" + known + u"\"";
        }
        Add(m_document.GetOffset(), u"Component", message);
        return;
    }
    const Rows& rows = RowsOf(position);
    ++m_componentCount;
    CComponentManager::GetInfo(position, info);
    if (info.category != 0 || rows.name == fillingComponent)
        ++m_painterCount;

    const int32_t offset = m_document.GetOffset();
    CVisPropertyList values;
    bool hasProperties = false;
    m_document.IntoElem();
    while (m_document.FindElem()) {
        if (m_document.GetTagName() == u"Properties" && !std::exchange(hasProperties, true))
            CheckProperties(rows.name, rows, &values);
        else
            CheckStray(rows.name, true);
    }
    m_document.OutOfElem();

    CVisComponent& component = *rows.piece->GetComponent();
    component.LoadProperties(&values);
    component.SetRect({ 0, 0, m_size.cx, m_size.cy });
    KeepPixels(offset, rows.name, component.KeptPixels());
}

// Reads the rows into `values`, if that is given, as loading does.
void CScriptCheck::CheckProperties(
    const OQString& component, const Rows& rows, CVisPropertyList* values)
{
    std::set<OQString> seen;
    int32_t count = 0;
    m_document.IntoElem();
    while (m_document.FindElem()) {
        if (++count > VisLimits::rowsPerPiece) {
            Add(m_document.GetOffset(), component,
                u"past " + LimitText(u" rows", VisLimits::rowsPerPiece)
                    + u": this and all further ones are cut off");
            break;
        }
        const OQString name = m_document.GetTagName();
        if (!seen.insert(name).second)
            Add(m_document.GetOffset(), component,
                u"the row " + QuoteForMessage(name) + u" stands here again: the last one counts");
        CheckRow(component, rows, name);
        if (values)
            values->AddRow(name.GetText(), m_document.GetData());
    }
    m_document.OutOfElem();
}

void CScriptCheck::CheckRow(const OQString& component, const Rows& rows, const OQString& name)
{
    const int32_t offset = m_document.GetOffset();
    const CVisRowInfo* row = rows.Find(name);
    if (!row) {
        OQString message = u"has no row " + QuoteForMessage(name) + u": it isn't read";
        for (const CVisRowInfo& known : rows.list) {
            if (name.CompareNoCase(known.name) == 0)
                message += OQString(u"; case counts: \"") + known.name + u"\"";
        }
        Add(offset, component, message);
        return;
    }
    const OQString text = m_document.GetData();
    CVisRowFault fault = CheckRowText(*row, text, m_fonts);
    if (name == u"OnEquation")
        AddOnFault(ResolvePreset(text, OnEquationPresets()), fault);
    CScriptFinding finding;
    finding.component = component;
    finding.row = name;
    if (!fault.reason.IsEmpty()) {
        finding.position = fault.position;
        finding.message = fault.reason;
        Add(finding, OffsetInRow(text, fault.position));
    }
    if (m_document.FindChildElem()) {
        finding.position = 0;
        finding.message = u"holds elements: only the text directly in it is read";
        Add(finding, offset);
    }
    if (row->form == CVisRowForm::Rectangle && component == layerName)
        CheckArea(text);
}

// Where the position in the text of the row that was read lies in the file: exactly, unless it is
// written with entities in front of it; then where the text begins.
int32_t CScriptCheck::OffsetInRow(const OQString& text, int32_t position)
{
    const int32_t start = m_document.GetContentOffset();
    const std::u16string_view file = m_document.GetDoc().View();
    const auto before = static_cast<size_t>(std::max(position - 1, 0));
    const bool isPlain
        = file.substr(static_cast<size_t>(start)).starts_with(text.View().substr(0, before));
    return isPlain ? start + static_cast<int32_t>(before) : start;
}

void CScriptCheck::CheckArea(const OQString& text)
{
    TextToRect(ResolvePreset(text, RectanglePresets()), m_area);
    if (m_area.right > m_area.left && m_area.bottom > m_area.top)
        return;
    CScriptFinding finding;
    finding.component = layerName;
    finding.row = u"Rectangle";
    finding.message = u"has no area: nothing in the layer is drawn";
    Add(finding, m_document.GetContentOffset());
}

const CScriptCheck::Rows& CScriptCheck::RowsOf(int32_t position)
{
    std::unique_ptr<Rows>& entry = m_rows[position];
    if (!entry) {
        entry = std::make_unique<Rows>();
        Rows& rows = *entry;
        rows.piece = std::make_unique<CVisLayerPiece>(nullptr);
        if (position == layerPosition)
            rows.piece->MakeLayer();
        else
            rows.piece->MakeComponent(m_manager.MakeComponent(position));
        const CVisComponent* component = rows.piece->GetComponent();
        rows.name = component ? OQString::FromNarrow(component->name) : OQString(layerName);
        rows.piece->DescribeRows(rows.list);
    }
    return *entry;
}
