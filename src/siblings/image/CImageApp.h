#pragma once

#include "foundation/IOQImage.h"

class CImageApp final : public IOQImageApp
{
public:
    void Initialize(const void* parameter) override;
    void Uninitialize() override;
    IOQImage* CreateImage() override;
    bool ListFonts(IOQDllString& names) override;
    IOQFont* CreateFont(const OQFontDescriptor& descriptor) override;
};

// The module's one export. The object is the module's and lives as long as the process.
extern "C" __attribute__((visibility("default"))) IOQImageApp* GetOQImageAppDLL();
