#pragma once

#include "engine2d/CVisualization.h"
#include "engine2d/IVisBuffer.h"
#include "engine2d/IVisualization2DOwner.h"
#include "foundation/OQEngineContext.h"
#include "host/RecordAudioData.h"

#include <cstdint>
#include <memory>
#include <string>

namespace pxvis {

// A frequency or a rate, numerator / denominator; both at least 1.
struct Rate
{
    uint32_t numerator = 60;
    uint32_t denominator = 1;

    double PerSecond() const { return static_cast<double>(numerator) / denominator; }

    // The time of event k, counted from 0, rounded down.
    int64_t Nanoseconds(uint64_t k) const
    {
        constexpr uint64_t second = 1'000'000'000;
        const uint64_t units = k * denominator;
        return static_cast<int64_t>(
            units / numerator * second + units % numerator * second / numerator);
    }
};

struct VisualSessionSettings
{
    int32_t width = 0; // pixels
    int32_t height = 0;
    int64_t clockStartMs
        = 1'000'000; // the engine's time at step 0, from which its random numbers come, too
    Rate stepRate;
    int32_t threads = 0; // 0: as many as there are processors
};

// A 2D engine with a time of its own, fed with one audio record a step: the same records always
// give the same pictures. One thread at a time.
class VisualSession final : public IVisualization2DOwner
{
public:
    static constexpr int32_t smallestSide = 8;
    static constexpr int32_t largestSide = 16384;
    static constexpr int64_t mostPixels = int64_t { 64 } << 20;

    // One line for a size outside the limits above, or empty.
    static std::string SizeFault(int32_t width, int32_t height);

    // Null, and one line, for a size with a fault or without the image module.
    static std::unique_ptr<VisualSession> Create(
        const VisualSessionSettings& settings, std::string& error);

    // False, and one line that starts with the path, if there is no such script or it does not
    // parse. The check alone leaves every engine as it is.
    static bool CheckScript(const std::string& path, std::string& error);
    bool LoadScript(const std::string& path, std::string& error);

    void SetSong(const host::SongInfo& info, const std::string& coverFile);

    // How much of the song has been played, in seconds, as texts tell it from the next step on.
    void SetElapsed(double seconds);

    // Draws the next step. False if there is no memory for the picture.
    bool Step(const host::AudioRecord& record);

    // The picture of the last step: width x height pixels, 0xAARRGGBB, rows bottom-up.
    IOQImage& Picture();

    int64_t StepCount() const { return m_steps; }

    void OnScriptLoaded() override { }

    IVisAudioData* GetAudioData() override;

private:
    explicit VisualSession(const VisualSessionSettings& settings);

    VisualSessionSettings m_settings;
    int64_t m_steps = 0;
    OQEngineContext m_context;
    std::shared_ptr<host::RecordAudioState> m_audio;
    CVisualization m_engine;
};

}
