#include "host/PictureCoding.h"

#include <algorithm>

namespace pxvis::host {

namespace {

// What the encoder may look ahead, in bytes of its picture format; it takes three times as much.
constexpr int64_t LookaheadBytes = int64_t { 40 } << 20;

struct H264Level
{
    const char* preset;
    guint quality; // constant rate factor: 0 lossless to 50, about 18 looks like the original
    int lookahead; // pictures
};

H264Level H264LevelOf(EncodeLevel level)
{
    switch (level) {
    case EncodeLevel::Draft:
        return { "ultrafast", 23, 0 };
    case EncodeLevel::Good:
        break;
    case EncodeLevel::Best:
        return { "slow", 16, 50 };
    }
    return { "veryfast", 19, 20 };
}

struct Vp9Level
{
    gint64 deadline; // microseconds a picture; 1: the real-time coder
    int speed; // higher is quicker, 0 to 9
    int quality; // quantizer, 0 to 63
    int lookahead; // pictures
};

Vp9Level Vp9LevelOf(EncodeLevel level)
{
    switch (level) {
    case EncodeLevel::Draft:
        return { 1, 8, 34, 0 };
    case EncodeLevel::Good:
        break;
    case EncodeLevel::Best:
        return { 1'000'000, 3, 18, 25 };
    }
    return { 1, 6, 24, 0 };
}

int RateOf(const EncodeSettings& settings)
{
    return (settings.rateNumerator + settings.rateDenominator - 1) / settings.rateDenominator;
}

// Jumping about needs a key picture every 2 s.
int KeyDistance(const EncodeSettings& settings)
{
    return std::clamp(2 * RateOf(settings), 12, 600);
}

int Lookahead(const EncodeSettings& settings, int wanted)
{
    const int64_t bytes = int64_t { settings.width } * settings.height * 3 / 2;
    return static_cast<int>(std::min<int64_t>(wanted, LookaheadBytes / bytes));
}

void SetUpH264(GstElement* encoder, const EncodeSettings& settings)
{
    const H264Level level = H264LevelOf(settings.level);
    gst_util_set_object_arg(G_OBJECT(encoder), "speed-preset", level.preset);
    gst_util_set_object_arg(G_OBJECT(encoder), "pass", "qual");
    g_object_set(encoder, "quantizer", level.quality, "vbv-buf-capacity",
        0, // else the bit rate of another mode bounds this one
        "key-int-max", KeyDistance(settings), "rc-lookahead", Lookahead(settings, level.lookahead),
        "threads", static_cast<guint>(settings.threads), nullptr);
}

void SetUpVp9(GstElement* encoder, const EncodeSettings& settings)
{
    const Vp9Level level = Vp9LevelOf(settings.level);
    const int lookahead = Lookahead(settings, level.lookahead);
    // The quality level holds below a bit rate, which only the wildest pictures reach.
    const double bits = 0.5 * settings.width * settings.height * RateOf(settings);
    const int threads
        = settings.threads > 0 ? settings.threads : static_cast<int>(g_get_num_processors());
    gst_util_set_object_arg(G_OBJECT(encoder), "end-usage", "cq");
    g_object_set(encoder, "cq-level", level.quality, "target-bitrate",
        static_cast<int>(std::clamp(bits, 2e6, 5e8)), "deadline", level.deadline, "cpu-used",
        level.speed, "lag-in-frames", lookahead, "auto-alt-ref", lookahead > 0, "keyframe-max-dist",
        KeyDistance(settings), "threads", std::min(threads, 16), "row-mt", TRUE, nullptr);
}

}

PictureCoding PictureCodingOf(VideoContainer container)
{
    if (container == VideoContainer::WebM)
        return { "vp9enc", "gstreamer1.0-plugins-good", "video/x-vp9" };
    return { "x264enc", "gstreamer1.0-plugins-ugly", "video/x-h264,profile=high" };
}

void SetUpPictureEncoder(GstElement* encoder, const EncodeSettings& settings)
{
    if (settings.container == VideoContainer::WebM)
        SetUpVp9(encoder, settings);
    else
        SetUpH264(encoder, settings);
}

}
