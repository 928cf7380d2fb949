#pragma once

#include <cstdint>

class OQVisualizationBase;

// A picture as a file holds it (JPEG, PNG and so on), which the host keeps until the track changes.
struct HostPicture
{
    const uint8_t* bytes;
    uint64_t size;
};

// A visualization's line to the host. The visualization owns it and destroys it through the
// destructor. Calls come from the thread that draws the visualization or from the host's
// user-interface thread. Slots: add at the end only.
class IOQHostConnection
{
public:
    virtual ~IOQHostConnection() = default;

    // Makes waveform and spectrum those of this frame.
    virtual void Refresh() = 0;
    virtual const int8_t* GetWaveform() = 0; // 1024 left samples, then 1024 right ones
    virtual const uint8_t* GetSpectrum() = 0; // 512 left bands, then 512 right ones

    // A text from SysAllocString that the caller frees; null counts as empty. Names: "Legacy Data
    // Object" (address of a new IVisAudioData in hexadecimal, which the caller then owns), "File
    // Change Counter", "Impact", "Playing Now Position", "Playing Now File Count" (decimal),
    // "Playlist Images" (paths, one a line), and the track's fields: "Artist", "Album", "Name" ...
    virtual char16_t* GetProperty(const char16_t* name) = 0;

    // The current track's cover, a HostPicture, or null.
    virtual const void* GetCoverImage() = 0;
};

// The host, as a visualization sees it. Slots: add at the end only.
class IOQVisualizationHost
{
public:
    // Called once by each visualization, when it first needs something; again as long as it gives
    // null.
    virtual IOQHostConnection* Connect(OQVisualizationBase* self) = 0;

protected:
    ~IOQVisualizationHost() = default;
};
