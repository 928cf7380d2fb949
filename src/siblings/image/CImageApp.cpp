#include "siblings/image/CImageApp.h"

#include "foundation/IOQDllString.h"
#include "foundation/OQString.h"
#include "siblings/image/CFont.h"
#include "siblings/image/CImage.h"
#include "siblings/image/ImageText.h"

#include <new>

void CImageApp::Initialize(const void*) { }

void CImageApp::Uninitialize()
{
    pxvis::image::ImageText::Get().Release();
}

IOQImage* CImageApp::CreateImage()
{
    return new (std::nothrow) CImage;
}

bool CImageApp::ListFonts(IOQDllString& names)
{
    names.Clear();
    try {
        OQString list;
        for (const std::string& family : pxvis::image::ImageText::Get().Families()) {
            if (!list.IsEmpty())
                list += u'\n';
            list += OQString::FromUtf8(family);
        }
        names.SetText(list.GetText(), list.GetLength());
        return true;
    } catch (...) {
        return false;
    }
}

IOQFont* CImageApp::CreateFont(const OQFontDescriptor& descriptor)
{
    try {
        return new CFont(descriptor);
    } catch (...) {
        return nullptr;
    }
}

IOQImageApp* GetOQImageAppDLL()
{
    static CImageApp app;
    return &app;
}
