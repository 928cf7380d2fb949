#include "siblings/image/CImageApp.h"

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

IOQImageApp* GetOQImageAppDLL()
{
    static CImageApp app;
    return &app;
}
