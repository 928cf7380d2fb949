#pragma once

#include "foundation/IOQImage.h"
#include "foundation/OQString.h"

#include <memory>

class IVisAudioData;
struct OQDataRoots;

// Turns a text that says which picture into a path, or into a URL, which begins with "http://" or
// "https://". "COVER_ART" anywhere in it stands for the current track's cover. What isn't there as
// it stands is looked for in the folder of scripts and in the one of their images, the user's own
// first; the default picture stands in for what isn't found anywhere. "\" may stand for "/".
void ResolveImage(OQString& path, const OQString& text, IVisAudioData& audio);
void ResolveImage(
    OQString& path, const OQString& text, IVisAudioData& audio, const OQDataRoots& roots);

// The picture of such a text, stretched to width x height pixels; a side of 0 keeps its own. Null
// if there is none or it can't be read. URLs aren't fetched.
std::unique_ptr<IOQImage> LoadImageSource(
    const OQString& text, IVisAudioData& audio, int32_t width, int32_t height);
