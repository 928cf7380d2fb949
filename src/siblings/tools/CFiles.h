#pragma once

#include "foundation/IOQTools.h"

// Folders are made at absolute paths outside the system's own folders, and never by way of "..".
class CFiles final : public IOQFiles
{
public:
    bool MayMakeFolder(const OQChar* path) const override;
};
