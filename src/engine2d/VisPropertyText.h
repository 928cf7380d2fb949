#pragma once

#include "foundation/OQGeometry.h"
#include "foundation/OQString.h"

// Fractions of a layer's size; 0, 0, 1, 1 is the whole layer.
struct VisFractionRect
{
    float left = 0;
    float top = 0;
    float right = 1;
    float bottom = 1;
};

struct VisFractionPoint
{
    float x = 0;
    float y = 0;
};

// The text forms in which a property row holds a value. A text that does not fit leaves `out` as it
// is.

OQString RectToText(const VisFractionRect& rect); // "0;0.5;1;1", at most 5 decimals
void TextToRect(
    const OQString& text, VisFractionRect& out); // four numbers, separated by ";" or else ","

OQString PointToText(const VisFractionPoint& point); // "0.5,0"
void TextToPoint(const OQString& text, VisFractionPoint& out);

// Decimal with an optional sign; 0 if there is no number.
float TextToFloat(const OQString& text);

// "0x" and at least six hexadecimal digits in upper case.
OQString ColorToText(uint32_t value);

// Hexadecimal behind an optional "0x"; the low 24 bits.
uint32_t TextToColor(const OQString& text);

// The fractions of a width x height area in pixels: single precision, truncated toward zero.
OQRect PixelRect(const VisFractionRect& fractions, int32_t width, int32_t height);
