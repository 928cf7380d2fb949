#pragma once

#include "TestFile.h"
#include "engine2d/CDibBuffer.h"
#include "engine2d/IVisualization2DOwner.h"

#include <pxvis/IVisAudioData.h>
#include <pxvis/SysString.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>

// Audio that a test sets as it likes.
struct TestAudio final : IVisAudioData
{
    int32_t Refresh() override
    {
        if (onRefresh)
            onRefresh();
        return refreshResult;
    }

    void Reserved() override { }

    const VisAudioBlock* GetData() override { return &block; }

    int32_t GetValue(int32_t which) override { return which >= 0 && which < 4 ? values[which] : 0; }

    const void* GetPlayInfo() override { return &playInfo; }

    char16_t* GetTrackField(int32_t which) override
    {
        ++fieldsAsked;
        if (which == VisTrackFieldCoverFile)
            return SysAllocString(coverFile.c_str());
        const auto field = fields.find(which);
        return field == fields.end() ? nullptr : SysAllocString(field->second.c_str());
    }

    char16_t* ExpandText(const char16_t* text) override
    {
        return SysAllocString(expandsTo.empty() ? text : expandsTo.c_str());
    }

    VisAudioBlock block {};
    int32_t values[4] = { 0, 0, 60000, 0 }; // level, beat, frame rate, change
    int32_t refreshResult = 0;
    std::function<void()> onRefresh;
    std::u16string coverFile;
    std::map<int32_t, std::u16string> fields; // by VisTrackField; a missing one is unknown
    int fieldsAsked = 0;
    VisPlayInfo playInfo;
    std::u16string expandsTo; // empty: the text itself
};

// Gives an engine audio that the test goes on setting through `audio`.
struct TestOwner final : IVisualization2DOwner
{
    void OnScriptLoaded() override { ++scriptsLoaded; }

    IVisAudioData* GetAudioData() override
    {
        audio = new TestAudio;
        audio->values[0] = level;
        audio->values[1] = beat;
        return audio;
    }

    TestAudio* audio = nullptr; // the engine's
    int32_t level = 0; // of new audio
    int32_t beat = 0;
    int scriptsLoaded = 0;
};

// The pixel at (x, y) from the top left of a ring's image.
inline uint32_t& PixelAt(IVisBuffer& buffer, int32_t x, int32_t y, int32_t offset = 0)
{
    OQSize size;
    buffer.GetSize(&size);
    return buffer.GetBits(offset)[(size.cy - 1 - y) * size.cx + x];
}

inline void FillBuffer(IVisBuffer& buffer, uint32_t pixel, int32_t offset = 0)
{
    OQSize size;
    buffer.GetSize(&size);
    for (int32_t i = 0; i < size.cx * size.cy; ++i)
        buffer.GetBits(offset)[i] = pixel;
}
