#include "apps/pxvis/FlashCheck.h"

#include "apps/pxvis/CheckCommand.h"
#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/Interrupt.h"
#include "apps/pxvis/JsonText.h"
#include "apps/pxvis/OutputPicture.h"
#include "apps/pxvis/RenderCommand.h"
#include "apps/pxvis/ScriptSet.h"
#include "apps/pxvis/SongPlayback.h"
#include "foundation/OQDataRoots.h"
#include "host/ProgressLine.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <tuple>

namespace pxvis {

namespace {

constexpr int64_t second = CVisFlashMeter::second;
constexpr int64_t millisecond = second / 1000;

const char* NameOf(CVisFlashKind kind)
{
    return kind == CVisFlashKind::General ? "general" : "red";
}

// Digits behind the point: 1 to 3.
std::string Seconds(int64_t time, int digits)
{
    const std::string thousandths = std::to_string(1000 + time % second / millisecond);
    return std::to_string(time / second) + '.' + thousandths.substr(1, static_cast<size_t>(digits));
}

// "0:12.4"
std::string ClockText(int64_t time)
{
    constexpr int64_t minute = 60 * second;
    const std::string rest = Seconds(time % minute, 1);
    return std::to_string(time / minute) + ':' + (rest.size() < 4 ? "0" : "") + rest;
}

std::string JsonLine(const std::string& file, const FlashSpan& span)
{
    return "{\"file\":" + JsonText(file) + ",\"from\":" + Seconds(span.from, 3) + ",\"to\":"
        + Seconds(span.to, 3) + ",\"flashes\":" + std::to_string(span.flashes) + ",\"area\":"
        + std::to_string(span.percent) + ",\"kind\":\"" + NameOf(span.kind) + "\"}\n";
}

std::string HumanLine(const std::string& file, const FlashSpan& span)
{
    return PrintableLine(file + ": " + ClockText(span.from) + " to " + ClockText(span.to) + ": "
               + std::to_string(span.flashes) + " flashes a second over "
               + std::to_string(span.percent) + " % of the picture (" + NameOf(span.kind) + ')')
        + '\n';
}

// The one that is shipped; empty if it isn't there.
std::string DemoSong()
{
    return OQDataRoots::Get().FindFile(u"demo/pxvis-demo.opus").ToUtf8();
}

// Small pictures suffice: a flash over a quarter of a picture is seen at any size, and all pixels
// of such a small one are measured. A picture a step: a video of fewer shows some of these.
RenderOptions PlaybackOptions(const std::string& script, const std::string& song)
{
    RenderOptions options;
    options.song = song;
    options.script = script;
    options.width = 320;
    options.height = 180;
    return options;
}

enum class Outcome
{
    Done,
    Failed,
    Stopped, // by Ctrl-C
};

Outcome MeasureScript(const RenderOptions& options, FlashSpans& spans, std::ostream& errors)
{
    Interrupt interrupt;
    std::string error;
    const auto playback = SongPlayback::Open(options, error, errors);
    if (!playback) {
        PrintError(errors, error);
        return Outcome::Failed;
    }
    interrupt.RemoveAtEnd(playback->CoverFile());
    const double rate = options.stepRate.PerSecond();
    const auto total = static_cast<uint64_t>(std::ceil(playback->Info().durationSeconds * rate));
    host::ProgressLine progress(rate);
    CVisFlashMeter meter;
    uint64_t picture = 0;
    for (; !Interrupt::Requested() && playback->NextStep(); ++picture) {
        meter.Add(PixelsOf(playback->Picture()), options.stepRate.Nanoseconds(picture));
        spans.Add(meter);
        progress.Update(picture + 1, total);
    }
    progress.Clear();
    if (Interrupt::Requested()) {
        PrintError(errors,
            options.script + ": stopped at " + ClockText(options.stepRate.Nanoseconds(picture)));
        return Outcome::Stopped;
    }
    if (!playback->Error().empty()) {
        PrintError(errors, playback->Error());
        return Outcome::Failed;
    }
    for (const std::string& warning : playback->Warnings())
        PrintWarning(errors, warning);
    return Outcome::Done;
}

}

void FlashSpans::Add(const CVisFlashMeter& meter)
{
    for (const CVisFlashKind kind : { CVisFlashKind::General, CVisFlashKind::Red }) {
        if (!meter.IsExceeded(kind))
            continue;
        const CVisFlashCounter& counter = meter.Counter(kind);
        const auto last = std::find_if(m_spans.rbegin(), m_spans.rend(),
            [&](const FlashSpan& span) { return span.kind == kind; });
        const bool goesOn = last != m_spans.rend() && counter.FirstTime() <= last->to;
        FlashSpan& span = goesOn ? *last : m_spans.emplace_back();
        if (!goesOn) {
            span.kind = kind;
            span.from = counter.FirstTime();
        }
        span.to = counter.LastTime();
        span.flashes = std::max(span.flashes, (counter.TransitionCount() + 1) / 2);
        span.percent = std::max(span.percent, counter.LargestArea());
    }
}

std::vector<FlashSpan> FlashSpans::Sorted() const
{
    std::vector<FlashSpan> spans = m_spans;
    std::sort(spans.begin(), spans.end(), [](const FlashSpan& a, const FlashSpan& b) {
        return std::tie(a.from, a.kind) < std::tie(b.from, b.kind);
    });
    return spans;
}

int RunFlashCheck(const CheckOptions& options, std::ostream& output, std::ostream& errors)
{
    std::string error;
    const std::string song = options.song.empty() ? DemoSong() : options.song;
    // A song that can't be read is told once, not for each script.
    if (!song.empty() && !host::SongDecoder::Open(song, error))
        return PrintError(errors, error);
    int status = 0;
    for (const std::string& name : options.scripts) {
        const auto files = FindScripts(name, error);
        if (files.empty())
            status = PrintError(errors, error);
        for (const std::string& file : files) {
            FlashSpans spans;
            const Outcome outcome = MeasureScript(PlaybackOptions(file, song), spans, errors);
            for (const FlashSpan& span : spans.Sorted()) {
                output << (options.json ? JsonLine(file, span) : HumanLine(file, span));
                status = 1;
            }
            if (!output.flush())
                return PrintError(errors, "the findings can't be written");
            if (outcome == Outcome::Stopped)
                return 130;
            if (outcome == Outcome::Failed)
                status = 1;
        }
    }
    return status;
}

}
