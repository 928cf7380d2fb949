#include "engine2d/VisRowCheck.h"

#include "engine2d/CGradientEx.h"
#include "engine2d/VisLimits.h"
#include "engine2d/VisPropertyText.h"
#include "engine2d/VisTextPages.h"
#include "expression/CMathEvaluator.h"
#include "foundation/OQCharacters.h"
#include "foundation/OQNumberText.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int32_t longestQuote = 40; // characters

int32_t SkipSpaces(const OQString& text, int32_t at)
{
    while (at < text.GetLength() && OQIsSpace(text[at]))
        ++at;
    return at;
}

bool IsMapValue(const CVisPresetMap& map, const OQString& text)
{
    for (const auto& preset : map) {
        if (preset.value == text)
            return true;
    }
    return false;
}

// For a text that would be the name of a preset but for case or white space.
OQString PresetHint(const CVisPresetMap* map, const OQString& text)
{
    if (!map)
        return {};
    OQString trimmed = text;
    trimmed.Trim();
    for (const auto& preset : *map) {
        if (preset.key.CompareNoCase(trimmed) == 0)
            return u"; the preset's name is \"" + preset.key + u"\", and case and blanks count";
    }
    return {};
}

OQString NotA(const OQChar* what, const CVisRowInfo& row, const OQString& text, const OQString& use)
{
    OQString reason = QuoteForMessage(text) + u" isn't " + what;
    if (row.map)
        reason += u" and no preset's name";
    return reason + u": counts as " + use + PresetHint(row.map, text);
}

OQString IntegerFault(const CVisRowInfo& row, const OQString& text)
{
    int32_t at = SkipSpaces(text, 0);
    if (text[at] == u'+' || text[at] == u'-')
        ++at;
    const int32_t firstDigit = at;
    while (OQIsDigit(text[at]))
        ++at;
    const int32_t value = OQTextToInt(text.GetText());
    if (at == firstDigit || SkipSpaces(text, at) < text.GetLength())
        return NotA(u"a whole number", row, text, OQIntToText(value));
    if (value != OQTextToInt64(text.GetText()))
        return QuoteForMessage(text) + u" is out of range: counts as " + OQIntToText(value);
    return {};
}

OQString ChoiceFault(const CVisRowInfo& row, const OQString& text)
{
    OQString reason = IntegerFault(row, text);
    if (reason.IsEmpty() && row.map
        && !IsMapValue(*row.map, OQIntToText(OQTextToInt(text.GetText())))) {
        reason = QuoteForMessage(text) + u" is none of the values that mean something:";
        for (const auto& preset : *row.map)
            reason += u" " + preset.value + u" (" + preset.key + u")";
    }
    return reason;
}

OQString FloatFault(const CVisRowInfo& row, const OQString& text)
{
    const int32_t start = SkipSpaces(text, 0);
    int consumed = 0;
    OQTextToDouble(text.GetText() + start, text.GetLength() - start, &consumed);
    bool hasDigit = false;
    for (int32_t at = start; at < start + consumed; ++at)
        hasDigit = hasDigit || OQIsDigit(text[at]);
    const int32_t end = start + consumed;
    const float value = TextToFloat(text);
    if (!hasDigit || SkipSpaces(text, end) < text.GetLength()) {
        OQString reason = NotA(u"a number", row, text, OQFloatToText(value));
        if (text[end] == u',')
            reason += u"; the decimal point is \".\"";
        return reason;
    }
    if (!std::isfinite(value))
        return QuoteForMessage(text) + u" is out of range";
    return {};
}

// Numbers in one text, each checked as a row of its own would be.
OQString NumbersFault(const CVisRowInfo& row, const OQString& text, OQChar separator, int32_t count)
{
    OQStringArray parts;
    text.Split(separator, parts);
    if (parts.GetCount() != count) {
        OQString reason = QuoteForMessage(text) + u" isn't " + OQIntToText(count)
            + u" numbers with \"" + separator + u"\" between them";
        if (row.map)
            reason += u" and no preset's name";
        return reason + u": the default stays" + PresetHint(row.map, text);
    }
    for (const OQString& part : parts) {
        OQString fault = FloatFault({ row.name, CVisRowForm::Float, nullptr }, part);
        if (!fault.IsEmpty())
            return fault;
    }
    return {};
}

OQString RectangleFault(const CVisRowInfo& row, const OQString& text)
{
    return NumbersFault(row, text, text.Find(u',') >= 0 && text.Find(u';') < 0 ? u',' : u';', 4);
}

OQString AreaFault(const CVisRowInfo& row, const OQString& text)
{
    OQString fault = RectangleFault(row, text);
    VisFractionRect area;
    TextToRect(text, area);
    if (fault.IsEmpty() && !(area.left < area.right && area.top < area.bottom))
        fault = QuoteForMessage(text)
            + u" has no area (left;top;right;bottom): nothing is drawn in it";
    return fault;
}

OQString ColorFault(const OQString& text)
{
    const int32_t start = text.StartsWith(u"0x") ? 2 : 0;
    int consumed = 0;
    OQHexTextToUInt(text.GetText() + start, &consumed);
    if (consumed > 0 && SkipSpaces(text, start + consumed) == text.GetLength())
        return {};
    return QuoteForMessage(text) + u" isn't a colour like \"0xRRGGBB\": counts as "
        + ColorToText(TextToColor(text));
}

CVisRowFault GradientFault(const CVisRowInfo& row, const OQString& text)
{
    int32_t position = 0;
    const CGradientEx::TextFault fault = CGradientEx::CheckText(text, position);
    const OQString usesDefault = u": the default gradient is used" + PresetHint(row.map, text);
    switch (fault) {
    case CGradientEx::TextFault::None:
        break;
    case CGradientEx::TextFault::Size:
        return { u"a gradient begins with its size, as in \"{2, 1} [[0xFF0000,0x0000FF]]\""
            + usesDefault };
    case CGradientEx::TextFault::TooManyCells:
        return { u"a gradient has at most " + OQIntToText(VisLimits::gradientCells) + u" colours"
            + usesDefault };
    case CGradientEx::TextFault::Cells:
        return { u"the gradient ends, or a row does, before it has the colours that its size says"
                + usesDefault,
            position + 1 };
    case CGradientEx::TextFault::Color:
        return { u"a colour is not written as \"0xRRGGBB\" without a blank in front: it counts as "
                 u"its hexadecimal digits up to there",
            position + 1 };
    case CGradientEx::TextFault::Surplus:
        return { u"the gradient has more colours than its size says: they are left out",
            position + 1 };
    }
    return {};
}

CVisRowFault EquationFault(const CVisRowInfo& row, const OQString& text)
{
    CMathEvaluator evaluator;
    CMathEvaluatorError error;
    evaluator.SetEquation(text, &error);
    if (evaluator.IsCompiled() || error.kind == CMathEvaluatorError::Kind::EmptyText)
        return {};
    return { error.reason + PresetHint(row.map, text), error.position + 1 };
}

bool IsBlank(const OQString& text)
{
    return SkipSpaces(text, 0) == text.GetLength();
}

// Equations with "|" between them, each checked as a row of its own would be; a blank one is one
// left out.
CVisRowFault EquationsFault(const CVisRowInfo& row, const OQString& text, int32_t most)
{
    OQStringArray parts;
    text.Split(u'|', parts);
    int32_t start = 0;
    for (int32_t i = 0; i < parts.GetCount(); ++i) {
        const bool isBlank = IsBlank(parts[i]);
        if (!isBlank && i >= most)
            return { u"only the first " + OQIntToText(most) + u" equations between \"|\" are read",
                start };
        CVisRowFault fault;
        if (!isBlank)
            fault = EquationFault(row, parts[i]);
        if (!fault.reason.IsEmpty()) {
            if (parts.GetCount() > 1)
                fault.reason = u"in equation " + OQIntToText(i + 1) + u" of "
                    + OQIntToText(parts.GetCount()) + u" (\"|\" stands between them): "
                    + fault.reason;
            fault.position += start;
            return fault;
        }
        start += parts[i].GetLength() + 1;
    }
    return {};
}

CVisRowFault ColorListFault(const CVisRowInfo& row, const OQString& text)
{
    if (text.IsEmpty())
        return {};
    OQStringArray parts;
    text.Split(u';', parts);
    CVisRowFault fault { IntegerFault({ row.name, CVisRowForm::Integer, nullptr }, parts[0]) };
    int32_t start = 0;
    for (int32_t i = 1; fault.reason.IsEmpty() && i < parts.GetCount(); ++i) {
        start += parts[i - 1].GetLength() + 1;
        fault.reason = ColorFault(parts[i]);
    }
    fault.position = start + 1;
    if (fault.reason.IsEmpty() && parts.GetCount() == 1)
        return { u"there are no colours behind the seconds: Color stays" };
    return fault;
}

OQString PictureListFault(const OQString& text)
{
    const std::u16string_view view = text.View();
    if (std::count(view.begin(), view.end(), u'|') < VisLimits::picturesInList)
        return {};
    return u"the list has more than " + OQIntToText(VisLimits::picturesInList)
        + u" pictures: the further ones are left out";
}

OQString FontFault(const OQString& text, const OQStringArray* fonts)
{
    if (!fonts || text.CompareNoCase(u"DEFAULT") == 0)
        return {};
    for (const OQString& font : *fonts) {
        if (font.CompareNoCase(text) == 0)
            return {};
    }
    return u"there is no font " + QuoteForMessage(text) + u" here: another one is used";
}

}

OQString QuoteForMessage(const OQString& text)
{
    if (text.GetLength() <= longestQuote)
        return u"\"" + text + u"\"";
    return u"\"" + text.Left(longestQuote) + u"...\"";
}

CVisRowFault CheckRowText(const CVisRowInfo& row, const OQString& text, const OQStringArray* fonts)
{
    OQString resolved;
    if (row.map && (row.map->Lookup(text, resolved) || IsMapValue(*row.map, text)))
        return {};
    switch (row.form) {
    case CVisRowForm::Text:
        break;
    case CVisRowForm::Pages:
        return { TextPagesFault(text) };
    case CVisRowForm::Integer:
        return { IntegerFault(row, text) };
    case CVisRowForm::Choice:
        return { ChoiceFault(row, text) };
    case CVisRowForm::Float:
        return { FloatFault(row, text) };
    case CVisRowForm::Rectangle:
        return { RectangleFault(row, text) };
    case CVisRowForm::Area:
        return { AreaFault(row, text) };
    case CVisRowForm::Point:
        return { NumbersFault(row, text, u',', 2) };
    case CVisRowForm::Color:
        return { ColorFault(text) };
    case CVisRowForm::Gradient:
        return GradientFault(row, text);
    case CVisRowForm::Font:
        return { FontFault(text, fonts) };
    case CVisRowForm::Equation:
        return EquationFault(row, text);
    case CVisRowForm::EquationList:
        return EquationsFault(row, text, text.GetLength() + 1);
    case CVisRowForm::ColorList:
        return ColorListFault(row, text);
    case CVisRowForm::PictureList:
        return { PictureListFault(text) };
    case CVisRowForm::EquationStages:
        return EquationsFault(row, text, equationStages);
    }
    return {};
}
