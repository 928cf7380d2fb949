#pragma once

#include "apps/pxvis/ScriptSet.h"
#include "apps/pxvis/VisualSession.h"
#include "engine2d/CScriptCheck.h"
#include "foundation/OQStringArray.h"
#include "host/CoverFile.h"
#include "host/SongDecoder.h"
#include "host/analysis/AnalysisAhead.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace pxvis {

struct RenderOptions;

// A song and the pictures that go with it, step by step: decoding and analysis, which run ahead on
// threads of their own, the engine, and the change from script to script. One thread at a time.
class SongPlayback
{
public:
    // Called with the song's samples between from and to, in order, ahead of the steps that show
    // them: interleaved pairs.
    using SoundSink = std::function<void(const float* interleaved, size_t frames)>;

    // Null, and one line, if the song or every script fails. Without a song's name there is a
    // ClickTrack. `warnings` gets a line for each script of several that does not parse and is left
    // out.
    static std::unique_ptr<SongPlayback> Open(
        const RenderOptions& options, std::string& error, std::ostream& warnings);
    ~SongPlayback();

    // Before the first step.
    void SetSoundSink(SoundSink sink);

    // Draws the next step. False at the end of the song, or on a fault: then Error() tells.
    bool NextStep();

    int64_t StepCount() const { return m_session->StepCount(); }

    IOQImage& Picture() { return m_session->Picture(); }

    const std::string& Error() const { return m_error; }

    // What a person should know though all went on: of the song, if it came to its end, and of the
    // scripts that were drawn, if a check finds faults or all pictures of a song that is to be
    // heard are black. A line each.
    std::vector<std::string> Warnings() const;

    const host::SongInfo& Info() const { return m_info; }

    // A file that is gone with the object; empty if there is none.
    const std::string& CoverFile() const { return m_cover->Path(); }

private:
    SongPlayback() = default;

    bool OpenSong(const std::string& path, std::string& error);
    bool LoadScriptFor(double seconds);
    void CountFaults(size_t script);
    bool ShouldHaveDrawn() const;

    double m_cycle = 0; // seconds
    int64_t m_end = INT64_MAX; // samples of the song
    Rate m_stepRate;
    std::vector<std::string> m_scripts;
    size_t m_current = SIZE_MAX; // index of the loaded script
    std::unique_ptr<host::SampleSource> m_song;
    const host::SongDecoder* m_decoder = nullptr; // m_song, if that is one
    host::SongInfo m_info;
    std::optional<host::CoverFile> m_cover;
    host::AnalysisOptions m_analysisOptions;
    int64_t m_start = 0; // samples of the song
    std::optional<host::AnalysisAhead> m_analysis; // from the first step on; ends before m_song
    SoundSink m_sink;
    std::unique_ptr<VisualSession> m_session;
    std::string m_error;
    std::string m_loss; // of the song's end
    bool m_hasDrawn = false; // anything but black
    int64_t m_heardSteps = 0; // those that are not silent
    OQStringArray m_fonts;
    std::optional<CScriptCheck> m_check; // of m_fonts; none before the first script
    std::set<size_t> m_checked; // scripts
    std::vector<std::string> m_faults; // a line for each script that has some
};

}
