#pragma once

#include "foundation/OQString.h"

// A variable of the equations. It never moves while it lives: compiled programs hold the address of
// its value.
struct CVariable
{
    double value = 0.0;
    OQString name; // lower case
};

// An entry of a variable table.
struct CVariableInfo
{
    CVariable* variable = nullptr;
    bool owned = false; // false: belongs to the table that it was taken over from
};
