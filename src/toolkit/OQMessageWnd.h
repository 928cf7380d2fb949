#pragma once

#include "toolkit/OQBasicWnd.h"

// A step of the ladder without operations.
class OQMessageWnd : public OQBasicWnd
{
public:
    using OQBasicWnd::OQBasicWnd;
};
