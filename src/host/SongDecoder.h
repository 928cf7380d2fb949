#pragma once

#include "host/TrackTags.h"
#include "host/analysis/SampleSource.h"

#include <memory>
#include <string>

namespace pxvis::host {

// A music file's samples, whatever format GStreamer has a plug-in for. Decodes a bounded stretch
// ahead on GStreamer's own threads. Reads local files only; a file that points elsewhere is not
// followed.
class SongDecoder : public SampleSource
{
public:
    // A file that gives nothing for this long counts as broken.
    static constexpr int StallSeconds = 15;

    // Null, and one line that starts with the path, when the file can't be read or holds no sound
    // that can be decoded. Returns once the first samples are there, so that Info() is complete.
    static std::unique_ptr<SongDecoder> Open(const std::string& path, std::string& error);

    ~SongDecoder() override;
    SongDecoder(const SongDecoder&) = delete;
    SongDecoder& operator=(const SongDecoder&) = delete;

    size_t Read(float* interleaved, size_t frames) override;
    std::string Error() const override;
    const SongInfo& Info() const;

    // Once Read has come to the end: one line if a fault cut the song short, or samples are missing
    // of the length that the file tells. Empty for a whole song.
    std::string Loss() const;

private:
    struct Pipeline;

    explicit SongDecoder(std::unique_ptr<Pipeline> pipeline);

    std::unique_ptr<Pipeline> m_pipeline;
};

}
