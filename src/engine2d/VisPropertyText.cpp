#include "engine2d/VisPropertyText.h"

#include "foundation/OQNumberText.h"
#include "foundation/OQStringArray.h"
#include "foundation/OQTruncate.h"

namespace {

OQString FractionToText(float value)
{
    OQString text = OQFixedToText(double { value }, 5);
    int32_t length = text.GetLength();
    while (length > 0 && text[length - 1] == u'0')
        --length;
    if (length > 0 && text[length - 1] == u'.')
        --length;
    text = text.Left(length);
    return text == u"-0" ? OQString(u"0") : text;
}

}

OQString RectToText(const VisFractionRect& rect)
{
    OQString text = FractionToText(rect.left);
    for (const float value : { rect.top, rect.right, rect.bottom }) {
        text += u';';
        text += FractionToText(value);
    }
    return text;
}

void TextToRect(const OQString& text, VisFractionRect& out)
{
    OQStringArray parts;
    text.Split(text.Find(u';') >= 0 ? u';' : u',', parts);
    if (parts.GetCount() != 4)
        return;
    out = { TextToFloat(parts[0]), TextToFloat(parts[1]), TextToFloat(parts[2]),
        TextToFloat(parts[3]) };
}

OQString PointToText(const VisFractionPoint& point)
{
    return FractionToText(point.x) + u"," + FractionToText(point.y);
}

void TextToPoint(const OQString& text, VisFractionPoint& out)
{
    OQStringArray parts;
    text.Split(u',', parts);
    if (parts.GetCount() != 2)
        return;
    out = { TextToFloat(parts[0]), TextToFloat(parts[1]) };
}

float TextToFloat(const OQString& text)
{
    OQString number = text;
    number.TrimLeft();
    return static_cast<float>(OQTextToDouble(number.GetText(), number.GetLength()));
}

OQString ColorToText(uint32_t value)
{
    return u"0x" + OQHexToText(value, 6);
}

uint32_t TextToColor(const OQString& text)
{
    const OQChar* digits = text.GetText();
    if (digits[0] == u'0' && digits[1] == u'x')
        digits += 2;
    return OQHexTextToUInt(digits) & 0xFFFFFFu;
}

OQRect PixelRect(const VisFractionRect& fractions, int32_t width, int32_t height)
{
    const float w = static_cast<float>(width);
    const float h = static_cast<float>(height);
    return { OQTruncateToInt32(w * fractions.left), OQTruncateToInt32(h * fractions.top),
        OQTruncateToInt32(w * fractions.right), OQTruncateToInt32(h * fractions.bottom) };
}
