#pragma once

#include "foundation/OQChar.h"

#include <cstdint>

// What a font is made from. Plain data, since it crosses a module's border.
struct OQFontDescriptor
{
    float scale = 1.0f; // of the height
    int32_t weight = 400; // 100 to 900; 400 is regular, 700 bold
    bool italic = false;
    bool strikeout = false;
    int32_t height = 12; // of the em square, in pixels
    const OQChar* typeName = nullptr; // a family; null or empty: the default one
};

// A font of one size, and with it what the last text that was measured and drawn with it looks
// like, so that the same text again costs no layout. Made by IOQImageApp::CreateFont, for images of
// the same module; owned by whoever asked for it and destroyed through the virtual destructor. One
// thread at a time. Slots: add at the end only.
class IOQFont
{
public:
    // A height outside 1 to this is brought into it.
    static constexpr int32_t maximumHeight = 4096;

    virtual ~IOQFont() = default;

    // Pixels: what became of the descriptor's height and scale.
    virtual int32_t GetHeight() const = 0;

    // How many times a text was laid out for this font so far.
    virtual int64_t GetLayoutCount() const = 0;

    // What laying out and rendering cost so far, in units of about a nanosecond. Counted, not
    // measured: the same texts always cost the same. The blending of what is there already isn't
    // in it.
    virtual int64_t GetWork() const = 0;
};
