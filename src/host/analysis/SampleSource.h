#pragma once

#include <cstddef>
#include <string>

namespace pxvis::host {

// The one sample rate that the analysis knows; sources convert to it.
constexpr int SampleRate = 44100;

// A song as interleaved stereo samples, full scale -1 to 1, SampleRate a second, read once from its
// beginning to its end. One thread at a time.
class SampleSource
{
public:
    virtual ~SampleSource() = default;

    // Writes up to `frames` pairs (left, right) and gives their number: fewer than asked only at
    // the end, and 0 from there on. A fault ends the song early; Error() tells.
    virtual size_t Read(float* interleaved, size_t frames) = 0;

    // One line, empty as long as there was no fault.
    virtual std::string Error() const { return {}; }
};

}
