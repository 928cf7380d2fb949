#include "apps/pxvis/RenderCommand.h"

#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/Interrupt.h"
#include "apps/pxvis/NumberedName.h"
#include "apps/pxvis/OutputPicture.h"
#include "apps/pxvis/SongPlayback.h"
#include "foundation/OQEngineContext.h"
#include "host/ProgressLine.h"
#include "host/VideoWriter.h"
#include "os/File.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <filesystem>
#include <iomanip>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>

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

struct OutputKind
{
    std::optional<host::VideoContainer> container; // of a video
    bool picture = false; // *.png
    std::optional<NumberedName> numbered; // of several pictures
};

host::SoundCoding SoundOf(const RenderOptions& options, host::VideoContainer container)
{
    return options.sound.value_or(
        container == host::VideoContainer::Mp4 ? host::SoundCoding::Aac : host::SoundCoding::Opus);
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

FlashLimit LimitOf(const RenderOptions& options)
{
    return options.flashLimit ? FlashLimit::On : FlashLimit::Off;
}

constexpr const char* noMemory = "no memory for a picture of this size";

bool Exists(const std::string& path)
{
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0;
}

// Why writing under such a name would cost the user what is to be read, or empty.
std::string InputFault(const RenderOptions& options, const std::string& path)
{
    for (const std::string& file : { path, path + ".part" }) {
        if (os::IsSameFile(file, options.song))
            return file + ": is the song itself";
        if (os::IsSameFile(file, options.script))
            return file + ": is the script itself";
    }
    return {};
}

// Why pictures can't be written under such a name, or empty.
std::string PictureFault(const RenderOptions& options, const std::string& path)
{
    if (!options.replace && Exists(path))
        return path + ": exists already; --force replaces it";
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return access(folder.empty() ? "." : folder.c_str(), W_OK) == 0
        ? std::string()
        : path + ": can't be written there: " + std::generic_category().message(errno);
}

// For what SavePicture, which gives no reason, has failed at.
std::string SaveFault(const std::string& path)
{
    const std::string folder = std::filesystem::path(path).parent_path().string();
    struct statvfs disk = {};
    const bool isFull = statvfs(folder.empty() ? "." : folder.c_str(), &disk) == 0
        && disk.f_blocks > 0 && disk.f_bavail * disk.f_frsize < 1 << 20;
    return path + (isFull ? ": no space left on the disk" : ": can't be written");
}

bool SavePicture(const IOQImage& picture, const std::string& path)
{
    return picture.SavePng(OQString::FromUtf8(path).GetText(), true);
}

int RenderPicture(const RenderOptions& options, SongPlayback& playback, std::ostream& errors)
{
    const std::string fault = PictureFault(options, options.output);
    if (!fault.empty())
        return PrintError(errors, fault);
    const double length = PartLength(options, playback.Info());
    const double at = options.at >= 0 ? options.at : options.from + length / 2;
    // A moment far past the end isn't waited for; some files' lengths are but estimates.
    const double songLength = playback.Info().durationSeconds;
    const std::string tooLate = options.song + ": ends before the moment asked for";
    if (songLength > 0 && at > 2 * songLength + 60)
        return PrintError(errors, tooLate);
    OutputPicture output;
    if (!output.Create(options, FlashLimit::Off))
        return PrintError(errors, noMemory);

    const int64_t last = static_cast<int64_t>((at - options.from) * options.stepRate.PerSecond());
    host::ProgressLine progress(options.stepRate.PerSecond());
    while (playback.StepCount() <= last) {
        if (Interrupt::Requested()) {
            progress.Clear();
            PrintError(errors, "stopped before the picture's moment");
            return 130;
        }
        if (!playback.NextStep()) {
            progress.Clear();
            return PrintError(errors, playback.Error().empty() ? tooLate : playback.Error());
        }
        progress.Update(
            static_cast<uint64_t>(playback.StepCount()), static_cast<uint64_t>(last + 1));
    }
    progress.Clear();
    if (!SavePicture(output.Of(playback.Picture(), 0), options.output))
        return PrintError(errors, SaveFault(options.output));
    for (const std::string& warning : playback.Warnings())
        PrintWarning(errors, warning);
    return 0;
}

// Draws the part's pictures one after the other, until `add`, which takes each as it goes out,
// gives false, or Ctrl-C. Gives their number.
template <typename Add>
uint64_t DrawPictures(
    const RenderOptions& options, SongPlayback& playback, OutputPicture& output, const Add& add)
{
    const double rate = options.frameRate.PerSecond();
    const auto total
        = static_cast<uint64_t>(std::ceil(PartLength(options, playback.Info()) * rate));
    host::ProgressLine progress(rate);
    uint64_t pictures = 0;
    while (!Interrupt::Requested()) {
        if (options.to >= 0 && options.from + static_cast<double>(pictures) / rate >= options.to)
            break;
        const int64_t step = StepAt(pictures, options.frameRate, options.stepRate);
        bool songGoesOn = true;
        while (songGoesOn && playback.StepCount() <= step)
            songGoesOn = playback.NextStep();
        if (!songGoesOn)
            break;
        const int64_t time = options.frameRate.Nanoseconds(pictures);
        if (!add(output.Of(playback.Picture(), time)))
            break;
        progress.Update(++pictures, total);
    }
    return pictures;
}

int Finished(const RenderOptions& options, const SongPlayback& playback,
    const OutputPicture& output, uint64_t pictures, std::ostream& errors)
{
    if (!Interrupt::Requested()) {
        for (const std::string& warning : playback.Warnings())
            PrintWarning(errors, warning);
        if (output.DampedCount() > 0)
            PrintWarning(errors,
                std::to_string(output.DampedCount()) + " of " + std::to_string(pictures)
                    + " pictures were damped, as they flashed more than three times a second;"
                      " --flash-limit off leaves them");
        return 0;
    }
    std::ostringstream place;
    place << std::fixed << std::setprecision(1)
          << options.from + static_cast<double>(pictures) / options.frameRate.PerSecond();
    PrintError(
        errors, "stopped at " + place.str() + " s; " + options.output + " holds what was done");
    return 130;
}

int RenderNumbered(const RenderOptions& options, const NumberedName& name, SongPlayback& playback,
    std::ostream& errors)
{
    constexpr uint64_t firstNumber = 1;
    std::string fault = InputFault(options, name.At(firstNumber));
    if (!fault.empty())
        return PrintUsageError(errors, fault);
    fault = PictureFault(options, name.At(firstNumber));
    if (!fault.empty())
        return PrintError(errors, fault);
    OutputPicture output;
    if (!output.Create(options, LimitOf(options)))
        return PrintError(errors, noMemory);

    uint64_t number = firstNumber;
    const uint64_t pictures = DrawPictures(options, playback, output, [&](IOQImage& picture) {
        const std::string path = name.At(number++);
        if (!options.replace && Exists(path))
            fault = path + ": exists already; --force replaces it";
        else if (fault = InputFault(options, path); !fault.empty())
            return false;
        else if (!SavePicture(picture, path))
            fault = SaveFault(path);
        return fault.empty();
    });
    if (fault.empty())
        fault = playback.Error();
    if (fault.empty() && pictures == 0)
        fault = options.song + ": holds no sound in that part";
    return fault.empty() ? Finished(options, playback, output, pictures, errors)
                         : PrintError(errors, fault);
}

int RenderVideo(const RenderOptions& options, host::VideoContainer container,
    SongPlayback& playback, Interrupt& interrupt, std::ostream& errors)
{
    host::EncodeSettings settings;
    settings.width = options.width;
    settings.height = options.height;
    settings.rateNumerator = static_cast<int>(options.frameRate.numerator);
    settings.rateDenominator = static_cast<int>(options.frameRate.denominator);
    settings.container = container;
    settings.level = options.level;
    settings.threads = options.threads;
    settings.sound = SoundOf(options, container);
    settings.songPath = options.song;
    settings.songStart = options.from;
    settings.replace = options.replace;
    settings.tags = playback.Info().tags;
    OutputPicture output;
    if (!output.Create(options, LimitOf(options)))
        return PrintError(errors, noMemory);
    std::string error;
    const auto writer = host::VideoWriter::Open(options.output, settings, error);
    if (!writer)
        return PrintError(errors, error);

    interrupt.RemoveAtEnd(writer->UnfinishedPath());
    playback.SetSoundSink(
        [&](const float* interleaved, size_t frames) { writer->AddSound(interleaved, frames); });
    const uint64_t pictures = DrawPictures(options, playback, output, [&](IOQImage& picture) {
        const CVisPixels pixels = PixelsOf(picture);
        return writer->AddPicture(pixels.topRow, pixels.stride);
    });

    if (!playback.Error().empty())
        return PrintError(errors, playback.Error());
    if (pictures == 0 && writer->Error().empty() && Interrupt::Requested()) {
        PrintError(errors, "stopped before the first picture");
        return 130;
    }
    if (pictures == 0)
        return PrintError(errors,
            writer->Error().empty() ? options.song + ": holds no sound in that part"
                                    : writer->Error());
    if (!writer->Finish())
        return PrintError(errors, writer->Error());
    return Finished(options, playback, output, pictures, errors);
}

// What is wrong with the options as such, whatever the song is; empty: nothing.
std::string UsageFault(const RenderOptions& options, const OutputKind& kind)
{
    if (!kind.picture && !kind.container)
        return options.output + ": the name must end in .mp4, .webm or .png";
    std::string fault = VisualSession::SizeFault(options.width, options.height);
    if (fault.empty())
        fault = VisualSession::SizeFault(options.DrawnWidth(), options.DrawnHeight());
    if (!fault.empty())
        return fault;
    if (kind.container) {
        constexpr int least = host::EncodeSettings::SideLeast;
        if (options.width % 2 != 0 || options.height % 2 != 0 || options.width < least
            || options.height < least)
            return "the sides of a video are even numbers from 16 on";
        if (*kind.container == host::VideoContainer::WebM
            && SoundOf(options, *kind.container) != host::SoundCoding::Opus)
            return "a WebM file takes its sound as opus only";
    }
    if (options.to >= 0 && options.to <= options.from)
        return "--to must lie behind --from";
    if (options.at >= 0 && (kind.container || kind.numbered))
        return "--at is for a single picture";
    if (options.at >= 0
        && (options.at < options.from || (options.to >= 0 && options.at > options.to)))
        return "--at lies outside --from and --to";
    return InputFault(options, options.output);
}

}

int RunRender(const RenderOptions& options, std::ostream& errors)
{
    OutputKind kind;
    std::string error;
    kind.picture = HasExtension(options.output, ".png");
    if (HasExtension(options.output, ".mp4"))
        kind.container = host::VideoContainer::Mp4;
    else if (HasExtension(options.output, ".webm"))
        kind.container = host::VideoContainer::WebM;
    if (kind.picture)
        kind.numbered = NumberedName::Parse(options.output, error);
    if (error.empty())
        error = UsageFault(options, kind);
    if (!error.empty())
        return PrintUsageError(errors, error);

    // For what the render itself does to pictures; the engine brings its own.
    OQEngineContext context { .mostThreads = options.threads };
    const OQEngineContextScope scope(&context);
    const auto playback = SongPlayback::Open(options, error, errors);
    if (!playback)
        return PrintError(errors, error);
    Interrupt interrupt;
    interrupt.RemoveAtEnd(playback->CoverFile());
    if (kind.container)
        return RenderVideo(options, *kind.container, *playback, interrupt, errors);
    return kind.numbered ? RenderNumbered(options, *kind.numbered, *playback, errors)
                         : RenderPicture(options, *playback, errors);
}

}
