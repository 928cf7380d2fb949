#include "engine2d/ImageSource.h"

#include "engine2d/VisAudio.h"
#include "engine2d/VisLimits.h"
#include "foundation/OQDataRoots.h"
#include "foundation/OQEngineContext.h"
#include "foundation/OQFileSystem.h"
#include "foundation/OQSiblingModules.h"

namespace {

bool IsUrl(const OQString& path)
{
    return path.StartsWith(u"http://") || path.StartsWith(u"https://");
}

// The file under its name as it stands, or with the system's separators; empty if there is neither.
OQString FileAsNamed(const OQString& path)
{
    if (OQFileSystem::FileExists(path))
        return path;
    OQString native = path;
    native.Replace(u'\\', u'/');
    return OQFileSystem::FileExists(native) ? native : OQString();
}

// Below the folders of the scripts; empty if there is none.
OQString FileOfScripts(const OQString& path, const OQDataRoots& roots)
{
    OQString name = path;
    name.Replace(u'\\', u'/');
    int32_t slashes = 0;
    while (name[slashes] == u'/')
        ++slashes;
    name.Delete(0, slashes);
    for (const OQString& relative : { name, u"Images/" + name, OQString(u"Images/Default.gif") }) {
        OQString file = roots.FindFile(OQDataRoots::scripts + relative);
        if (!file.IsEmpty())
            return file;
    }
    return {};
}

}

void ResolveImage(OQString& path, const OQString& text, IVisAudioData& audio)
{
    ResolveImage(path, text, audio, OQDataRoots::Get());
}

void ResolveImage(
    OQString& path, const OQString& text, IVisAudioData& audio, const OQDataRoots& roots)
{
    path = text;
    if (path.GetLength() <= VisLimits::pathUnits)
        path.Replace(OQString(u"COVER_ART"), VisTrackText(audio, VisTrackFieldCoverFile));
    if (IsUrl(path))
        return;
    const bool isPath = path.GetLength() <= VisLimits::pathUnits;
    OQString file = isPath ? FileAsNamed(path) : OQString();
    if (file.IsEmpty())
        file = FileOfScripts(isPath ? path : OQString(), roots);
    if (!file.IsEmpty())
        path = file;
}

std::unique_ptr<IOQImage> LoadImageSource(
    const OQString& text, IVisAudioData& audio, int32_t width, int32_t height)
{
    OQString path;
    ResolveImage(path, text, audio);
    std::unique_ptr<IOQImage> picture(IsUrl(path) ? nullptr : OQCreateImage());
    if (!picture)
        return nullptr;
    picture->SetOption(0);
    const bool loaded = picture->Load(path.GetText(), width, height, 0, -1, 1, 0, 0, 0, 0);
    OQSpendWork(VisLimits::picturePixelWork * picture->GetLoadedPixels());
    return loaded ? std::move(picture) : nullptr;
}
