#pragma once

#include "apps/pxvis/VisualSession.h"
#include "host/EncodeSettings.h"

#include <iosfwd>
#include <optional>
#include <string>

namespace pxvis {

struct RenderOptions
{
    std::string song;
    std::string output; // *.mp4, *.webm, *.png, or a name such as frame-%05d.png
    std::string script; // as FindScripts takes it
    int32_t width = 1920;
    int32_t height = 1080;
    Rate frameRate;
    Rate stepRate;
    uint64_t seed = 0;
    bool seeded = false; // without a seed the clock starts as in `frames`
    double from = 0; // seconds of the song
    double to = -1; // below 0: to the end
    double at = -1; // of a single picture; below 0: the middle
    double cycle = 20; // seconds to the next script of several
    double pictureScale = 1.0; // 0.05 to 1
    host::EncodeLevel level = host::EncodeLevel::Good;
    std::optional<host::SoundCoding> sound; // none: what the kind of file is known for
    int threads = 0; // of the encoder, and of the engine; 0: as many as suit the machine
    bool replace = false;
    bool flashLimit = true; // of videos and numbered pictures; one by itself does not flash

    // Of the pictures that the engine draws, in pixels.
    int32_t DrawnWidth() const { return static_cast<int32_t>(width * pictureScale); }

    int32_t DrawnHeight() const { return static_cast<int32_t>(height * pictureScale); }
};

// The command "render": turns a song into a video, one picture of it, or numbered pictures. Gives
// the exit status: 2 where the options can't be meant, 130 after Ctrl-C, with a whole video, or
// whole pictures, up to that moment.
int RunRender(const RenderOptions& options, std::ostream& errors);

}
