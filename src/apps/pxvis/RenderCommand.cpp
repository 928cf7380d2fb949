#include "apps/pxvis/RenderCommand.h"

#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/Interrupt.h"
#include "apps/pxvis/SongPlayback.h"
#include "foundation/OQSiblingModules.h"
#include "host/ProgressLine.h"
#include "host/VideoWriter.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iomanip>
#include <memory>
#include <ostream>
#include <unistd.h>
#include <vector>

namespace pxvis {

namespace {

bool HasExtension(const std::string& path, const std::string& extension)
{
    if (path.size() < extension.size())
        return false;
    return std::equal(extension.begin(), extension.end(),
        path.end() - static_cast<ptrdiff_t>(extension.size()),
        [](char a, char b) { return a == (b >= 'A' && b <= 'Z' ? b + ('a' - 'A') : b); });
}

// "frame-%05d.png"
bool IsNumbered(const std::string& path)
{
    for (size_t i = path.find('%'); i != std::string::npos; i = path.find('%', i + 1)) {
        const size_t end = path.find_first_not_of("0123456789", i + 1);
        if (end != std::string::npos && path[end] == 'd')
            return true;
    }
    return false;
}

// How long the picture runs, in seconds; 0 where the song does not tell.
double PartLength(const RenderOptions& options, const host::SongInfo& info)
{
    double end = info.durationSeconds;
    if (options.to >= 0)
        end = end > 0 ? std::min(end, options.to) : options.to;
    return std::max(0.0, end - options.from);
}

// The step that a moment shows: the newest one.
int64_t StepAt(uint64_t picture, const Rate& frameRate, const Rate& stepRate)
{
    return static_cast<int64_t>(picture * frameRate.denominator * stepRate.numerator
        / (uint64_t { frameRate.numerator } * stepRate.denominator));
}

// The picture at the output's size.
class ScaledPicture
{
public:
    ScaledPicture(int32_t width, int32_t height)
        : m_width(width)
        , m_height(height)
    {
    }

    // The top row; the rows below lie Pitch() pixels further on. Good until the next step.
    const uint32_t* TopRow(IOQImage& picture)
    {
        const OQSize size = picture.GetSize();
        if (size == OQSize { m_width, m_height })
            return picture.GetBits() + int64_t { m_height - 1 } * m_width;
        m_pixels.resize(static_cast<size_t>(m_width) * static_cast<size_t>(m_height));
        uint32_t* top = m_pixels.data() + int64_t { m_height - 1 } * m_width;
        picture.Blit(top, m_width, m_height, -m_width * 4);
        return top;
    }

    ptrdiff_t Pitch() const { return -ptrdiff_t { m_width }; }

private:
    int32_t m_width;
    int32_t m_height;
    std::vector<uint32_t> m_pixels;
};

int RenderPicture(const RenderOptions& options, SongPlayback& playback, std::ostream& errors)
{
    std::error_code ignored;
    if (!options.replace && std::filesystem::exists(options.output, ignored))
        return PrintError(errors, options.output + ": exists; --force replaces it");
    const std::string folder = std::filesystem::path(options.output).parent_path().string();
    if (access(folder.empty() ? "." : folder.c_str(), W_OK) != 0)
        return PrintError(errors, options.output + ": can't be written there");
    const double length = PartLength(options, playback.Info());
    const double at = options.at >= 0 ? options.at : options.from + length / 2;
    if (at < options.from || (options.to >= 0 && at > options.to))
        return PrintError(errors, "--at lies outside --from and --to");
    // A moment far past the end isn't waited for; some files' lengths are but estimates.
    const double songLength = playback.Info().durationSeconds;
    const std::string tooLate = options.song + ": ends before the moment asked for";
    if (songLength > 0 && at > 2 * songLength + 60)
        return PrintError(errors, tooLate);
    const std::unique_ptr<IOQImage> scaled(OQCreateImage());
    if (options.pictureScale != 1.0
        && (!scaled || !scaled->Create(options.width, options.height, 0, 0)))
        return PrintError(errors, "no memory for a picture of this size");

    const int64_t last = static_cast<int64_t>((at - options.from) * options.stepRate.PerSecond());
    host::ProgressLine progress(options.stepRate.PerSecond());
    while (playback.StepCount() <= last) {
        if (!playback.NextStep()) {
            progress.Clear();
            return PrintError(errors, playback.Error().empty() ? tooLate : playback.Error());
        }
        progress.Update(
            static_cast<uint64_t>(playback.StepCount()), static_cast<uint64_t>(last + 1));
    }
    progress.Clear();

    IOQImage* picture = &playback.Picture();
    if (options.pictureScale != 1.0) {
        picture->Blit(scaled->GetBits() + int64_t { options.height - 1 } * options.width,
            options.width, options.height, -options.width * 4);
        picture = scaled.get();
    }
    if (!picture->SavePng(OQString::FromUtf8(options.output).GetText(), true))
        return PrintError(errors, options.output + ": can't be written");
    return 0;
}

int RenderVideo(const RenderOptions& options, SongPlayback& playback, std::ostream& errors)
{
    host::EncodeSettings settings;
    settings.width = options.width;
    settings.height = options.height;
    settings.rateNumerator = static_cast<int>(options.frameRate.numerator);
    settings.rateDenominator = static_cast<int>(options.frameRate.denominator);
    settings.level = options.level;
    settings.threads = options.threads;
    settings.sound = options.sound;
    settings.songPath = options.song;
    settings.songStart = options.from;
    settings.replace = options.replace;
    settings.tags = playback.Info().tags;
    std::string error;
    const auto writer = host::VideoWriter::Open(options.output, settings, error);
    if (!writer)
        return PrintError(errors, error);

    const Interrupt interrupt(writer->UnfinishedPath());
    playback.SetSoundSink(
        [&](const float* interleaved, size_t frames) { writer->AddSound(interleaved, frames); });
    const double frameSeconds = 1.0 / options.frameRate.PerSecond();
    const auto total = static_cast<uint64_t>(
        std::ceil(PartLength(options, playback.Info()) * options.frameRate.PerSecond()));
    host::ProgressLine progress(options.frameRate.PerSecond());
    ScaledPicture scaled(options.width, options.height);
    uint64_t pictures = 0;
    bool songGoesOn = true;
    while (!Interrupt::Requested()) {
        const double seconds = static_cast<double>(pictures) * frameSeconds;
        if (options.to >= 0 && options.from + seconds >= options.to)
            break;
        const int64_t step = StepAt(pictures, options.frameRate, options.stepRate);
        while (songGoesOn && playback.StepCount() <= step)
            songGoesOn = playback.NextStep();
        if (!songGoesOn)
            break;
        if (!writer->AddPicture(scaled.TopRow(playback.Picture()), scaled.Pitch()))
            break;
        progress.Update(++pictures, total);
    }
    progress.Clear();

    if (!playback.Error().empty())
        return PrintError(errors, playback.Error());
    if (pictures == 0)
        return PrintError(errors,
            writer->Error().empty() ? options.song + ": holds no sound in that part"
                                    : writer->Error());
    if (!writer->Finish())
        return PrintError(errors, writer->Error());
    if (Interrupt::Requested()) {
        errors << "pxvis: stopped at " << std::fixed << std::setprecision(1)
               << options.from + static_cast<double>(pictures) * frameSeconds << " s; "
               << options.output << " holds what was done\n";
        return 130;
    }
    return 0;
}

}

int RunRender(const RenderOptions& options, std::ostream& errors)
{
    const bool picture = HasExtension(options.output, ".png");
    if (!picture && !HasExtension(options.output, ".mp4"))
        return PrintError(errors, options.output + ": the name must end in .mp4 or .png");
    // FIXME: *.webm and numbered pictures (frame-%05d.png).
    if (picture && IsNumbered(options.output))
        return PrintError(errors, options.output + ": numbered pictures can't be made yet");
    if (!picture && (options.width % 2 != 0 || options.height % 2 != 0))
        return PrintError(errors, "the sides of a video are even numbers");

    if (options.to >= 0 && options.to <= options.from)
        return PrintError(errors, "--to must lie behind --from");

    std::string error;
    const auto playback = SongPlayback::Open(options, error, errors);
    if (!playback)
        return PrintError(errors, error);
    return picture ? RenderPicture(options, *playback, errors)
                   : RenderVideo(options, *playback, errors);
}

}
