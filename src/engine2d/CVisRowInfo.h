#pragma once

#include "engine2d/CVisPropertyList.h"

// What the text of a property row stands for.
enum class CVisRowForm
{
    Text, // anything
    Pages, // of text, see CutTextPages
    Integer,
    Choice, // an integer that means something only if it is a value of the map
    Float,
    Rectangle,
    Area, // a rectangle in which nothing is drawn unless left and top are its smaller sides
    Point,
    Color,
    Gradient,
    Font,
    Equation,
    EquationList, // separated by "|"
    ColorList, // whole seconds, then colours, separated by ";"
    PictureList, // separated by "|"
    EquationStages, // separated by "|", each for a moment of its own; further ones are not read
};

constexpr int32_t equationStages = 5;

// A row that a piece reads, for checks and lists. Name and map live as long as the piece.
struct CVisRowInfo
{
    const OQChar* name = nullptr;
    CVisRowForm form = CVisRowForm::Text;
    const CVisPresetMap* map = nullptr; // null: no presets
};

using CVisRowInfoList = OQArray<CVisRowInfo>;
