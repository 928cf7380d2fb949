#pragma once

#include <cstdint>

// The block that IVisAudioData::GetData points at.
struct VisAudioBlock
{
    int8_t waveform[2][1024]; // left, right; the newest sample last
    uint8_t unused[4];
    uint8_t spectrum[2][512]; // left, right; low frequencies first
};

static_assert(sizeof(VisAudioBlock) == 3076);

enum VisAudioValue : int32_t
{
    VisAudioValueLevel = 0, // an impact is a value of 101 or more
    VisAudioValueBeat = 1, // not 0 on a beat
    VisAudioValueFrameRate = 2, // frames a second x 1000
    VisAudioValueChange = 3, // not 0 when the current track's picture has changed
};

enum VisTrackField : int32_t
{
    VisTrackFieldArtist = 0,
    VisTrackFieldAlbum = 1,
    VisTrackFieldName = 2,
    VisTrackFieldYear = 3,
    VisTrackFieldCoverFile = 5,
    VisTrackFieldNotes = 6,
    VisTrackFieldLyrics = 7,
    VisTrackFieldCustom1 = 8,
    VisTrackFieldCustom2 = 9,
    VisTrackFieldCustom3 = 10,
};

// What GetPlayInfo points at. The front is the host's own.
struct VisPlayInfo
{
    uint8_t unused[524] {};
    int32_t playlistPosition = 0; // from 1
    int32_t playlistLength = 0;
    int32_t totalSeconds = 0; // of the track
    int32_t elapsedSeconds = 0;
    int32_t bitRate = 0; // kbit/s; 0 unknown, 10000 an analog and 10001 a digital CD
    int32_t channels = 0;
    int32_t sampleRate = 0;
};

static_assert(sizeof(VisPlayInfo) == 552);

// What a host gives the 2D engine once a frame. The engine owns the object and destroys it through
// the destructor; all calls come from the drawing thread. Slots: add at the end only.
class IVisAudioData
{
public:
    virtual ~IVisAudioData() = default;

    // Takes the data of the current moment; 0 if it is ready for this frame.
    virtual int32_t Refresh() = 0;

    virtual void Reserved() = 0;
    virtual const VisAudioBlock* GetData() = 0;
    virtual int32_t GetValue(int32_t which) = 0; // a VisAudioValue
    virtual const void* GetPlayInfo() = 0; // a VisPlayInfo, or null

    // Null or a text from SysAllocString that the caller frees.
    virtual char16_t* GetTrackField(int32_t which) = 0; // a VisTrackField
    virtual char16_t* ExpandText(const char16_t* text) = 0;
};
