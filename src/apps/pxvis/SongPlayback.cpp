#include "apps/pxvis/SongPlayback.h"

#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/RenderCommand.h"
#include "apps/pxvis/ScriptText.h"
#include "engine2d/VisFonts.h"
#include "host/analysis/ClickTrack.h"

#include <algorithm>
#include <cmath>
#include <ostream>

namespace pxvis {

namespace {

int64_t SamplesIn(double seconds)
{
    return static_cast<int64_t>(std::floor(std::min(seconds, 1e9) * host::SampleRate));
}

bool IsBlack(IOQImage& picture)
{
    const OQSize size = picture.GetSize();
    const uint32_t* bits = picture.GetBits();
    return std::all_of(bits, bits + int64_t { size.cx } * size.cy,
        [](uint32_t pixel) { return (pixel & 0xFFFFFF) == 0; });
}

bool IsSilent(const VisAudioBlock& block)
{
    const auto isZero = [](auto sample) { return sample == 0; };
    const auto isSilent = [&](const auto& channel) {
        return std::all_of(std::begin(channel), std::end(channel), isZero);
    };
    return isSilent(block.waveform[0]) && isSilent(block.waveform[1]);
}

}

SongPlayback::~SongPlayback() = default;

std::unique_ptr<SongPlayback> SongPlayback::Open(
    const RenderOptions& options, std::string& error, std::ostream& warnings)
{
    std::unique_ptr<SongPlayback> playback(new SongPlayback);
    playback->m_cycle = options.cycle;
    playback->m_stepRate = options.stepRate;

    VisualSessionSettings session;
    session.width = options.DrawnWidth();
    session.height = options.DrawnHeight();
    session.stepRate = options.stepRate;
    session.threads = options.threads;
    // Seeds next to each other start the random numbers far apart.
    if (options.seeded)
        session.clockStartMs
            += static_cast<int64_t>(options.seed * 2654435761u % (uint64_t { 1 } << 31));
    playback->m_session = VisualSession::Create(session, error);
    if (!playback->m_session)
        return nullptr;

    playback->m_scripts = FindScripts(options.script, error);
    std::string fault;
    std::erase_if(playback->m_scripts, [&](const std::string& script) {
        // Not in the session's engine: what a script does to its random numbers would stay.
        if (VisualSession::CheckScript(script, fault))
            return false;
        if (playback->m_scripts.size() > 1)
            PrintError(warnings, "left out: " + fault);
        return true;
    });
    if (playback->m_scripts.empty()) {
        if (error.empty())
            error = fault;
        return nullptr;
    }

    if (!playback->OpenSong(options.song, error))
        return nullptr;
    playback->m_cover.emplace(playback->m_info.tags);
    playback->m_session->SetSong(playback->m_info, playback->m_cover->Path());
    if (options.to >= 0)
        playback->m_end = SamplesIn(options.to);
    playback->m_start = SamplesIn(options.from);
    playback->m_analysisOptions.stepNumerator = options.stepRate.numerator;
    playback->m_analysisOptions.stepDenominator = options.stepRate.denominator;
    playback->m_analysisOptions.from = options.from;
    return playback;
}

bool SongPlayback::OpenSong(const std::string& path, std::string& error)
{
    if (path.empty()) {
        m_song = std::make_unique<host::ClickTrack>();
        m_info.durationSeconds = host::ClickTrack::Seconds;
        return true;
    }
    auto decoder = host::SongDecoder::Open(path, error);
    if (!decoder)
        return false;
    m_info = decoder->Info();
    m_decoder = decoder.get();
    m_song = std::move(decoder);
    return true;
}

void SongPlayback::SetSoundSink(SoundSink sink)
{
    m_sink = std::move(sink);
}

bool SongPlayback::LoadScriptFor(double seconds)
{
    const size_t count = m_scripts.size();
    const size_t index = count == 1 ? 0 : static_cast<size_t>(seconds / m_cycle) % count;
    if (index == m_current)
        return true;
    m_current = index;
    CountFaults(index);
    return m_session->LoadScript(m_scripts[index], m_error);
}

void SongPlayback::CountFaults(size_t script)
{
    if (!m_checked.insert(script).second)
        return;
    if (!m_check)
        m_check.emplace(VisListFonts(m_fonts) ? &m_fonts : nullptr);
    OQString text;
    std::string ignored; // loading tells
    if (!ReadScriptText(m_scripts[script], text, ignored))
        return;
    const size_t count = m_check->Check(text).size();
    if (count > 0)
        m_faults.push_back(m_scripts[script] + ": " + std::to_string(count)
            + (count == 1 ? " fault" : " faults") + "; see pxvis check");
}

bool SongPlayback::NextStep()
{
    if (!LoadScriptFor(static_cast<double>(StepCount()) / m_stepRate.PerSecond()))
        return false;
    if (!m_analysis)
        m_analysis.emplace(*m_song, m_analysisOptions, m_start, m_sink ? m_end : m_start);
    const host::AnalysisAhead::Step& step = m_analysis->Next();
    if (m_sink && !step.sound.empty())
        m_sink(step.sound.data(), step.sound.size() / 2);
    if (step.isEnd) {
        if (step.isOutOfMemory)
            m_error = "no memory to analyse the song";
        else if (StepCount() == 0)
            m_error = m_song->Error();
        else if (m_decoder)
            m_loss = m_decoder->Loss();
        return false;
    }
    if (step.samplePosition >= m_end)
        return false;
    m_session->SetElapsed(static_cast<double>(step.samplePosition) / host::SampleRate);
    if (!m_session->Step(step.record)) {
        m_error = "no memory for a picture of this size";
        return false;
    }
    m_hasDrawn = m_hasDrawn || !IsBlack(Picture());
    m_heardSteps += IsSilent(step.record.block) ? 0 : 1;
    return true;
}

// Many scripts wait for a beat or fade in.
bool SongPlayback::ShouldHaveDrawn() const
{
    constexpr double patience = 2; // seconds
    return static_cast<double>(m_heardSteps) >= patience * m_stepRate.PerSecond();
}

std::vector<std::string> SongPlayback::Warnings() const
{
    std::vector<std::string> lines;
    if (!m_loss.empty())
        lines.push_back(m_loss);
    const bool drewNothing = !m_hasDrawn && ShouldHaveDrawn();
    if (drewNothing && m_scripts.size() == 1) {
        lines.push_back(m_scripts[0] + ": drew nothing; see pxvis check");
        return lines;
    }
    lines.insert(lines.end(), m_faults.begin(), m_faults.end());
    if (drewNothing)
        lines.emplace_back("the scripts drew nothing; see pxvis check");
    return lines;
}

}
