#pragma once

#include <cstdint>

// What a script, which is a stranger's file, may ask for. Past a limit the thing is cut off
// quietly.
namespace VisLimits {

constexpr int32_t layerNesting = 64;
constexpr int32_t piecesPerScript = 4096;
constexpr int64_t scriptFileBytes = 4 << 20;
constexpr int32_t rowsPerPiece = 1024;
constexpr int64_t gradientCells = 65536;

// Colours that a gradient's table keeps, one for each row of the highest picture; a longer one is
// worked out as it is read.
constexpr int32_t gradientTableEntries = 16384;

// Of a text, in 16-bit units once its tokens are expanded.
constexpr int32_t textPages = 4096;
constexpr int32_t textUnits = 8192;
constexpr int64_t textLeastKeptPixels = 65536; // as the image module's fonts have it

// Of a text that says which picture, as of a path of the system; none is found for a longer one.
constexpr int32_t pathUnits = 4096;

// Of a picture that a component shows, in pixels; a larger one is not loaded.
constexpr int32_t pictureSide = 16384;
constexpr int64_t picturePixels = int64_t { 64 } << 20;

// Of a list of pictures: how many entries are read, and how many pictures are kept so that the
// equation may swap them cheaply: so many, as long as they have so many pixels together.
constexpr int32_t picturesInList = 4096;
constexpr int32_t listPicturesKept = 8;
constexpr int64_t listPicturesPixels = int64_t { 8 } << 20;

// In one frame.
constexpr int32_t scopePoints = 65536;
constexpr int64_t blobRayPixels = int64_t { 16 } << 20;

constexpr int32_t stars = 100000; // alive at once

// Pixels, 4 bytes each, that the images, maps and pictures of a script may take, or as many
// pictures of the root layer's size if that is more. A layer or component that needs more is not
// drawn.
constexpr int64_t keptPixels = int64_t { 128 } << 20;
constexpr int64_t keptPictures = 16;

// What a Draw may cost, in units of about a nanosecond: so much for each pixel of the root layer,
// or, for a small picture, this much in all. What it does not suffice for is left out of that Draw.
constexpr int64_t workPerPixel = 8192;
constexpr int64_t workAtLeast = int64_t { 1 } << 27;

// What things cost in that unit, beside the equations, which tell it themselves.
constexpr int64_t compileCharacterWork = 200;
constexpr int64_t pictureLoadWork = int64_t { 1 } << 20; // and more by size, once it is known
constexpr int64_t picturePixelWork = 12;
constexpr int64_t mapEntryWork = 100;
constexpr int64_t polarMapEntryWork = 20;
constexpr int64_t transformPixelWork = 16;
constexpr int64_t mergePixelWork = 4;
constexpr int64_t blendPixelWork = 2;
constexpr int64_t fillPixelWork = 1;
constexpr int64_t fillRowWork = 64;
constexpr int64_t gradientColorWork = 64;
constexpr int64_t spectrumBarWork = 256;
constexpr int64_t scopePointWork = 64;
constexpr int64_t scopePixelWork = 8;
constexpr int64_t linePixelWork = 4;
constexpr int64_t lineWork = 64;
constexpr int64_t rayWork = 64;
constexpr int64_t rayPixelWork = 4;
constexpr int64_t starWork = 16;
constexpr int64_t textWork = 10'000; // and what its font tells, once it is laid out
constexpr int64_t textExpandWork = 64; // a unit
constexpr int64_t textPixelWork = 4;
constexpr int64_t discRowWork = 32;
constexpr int64_t discPixelWork = 1;
constexpr int64_t superTransformPixelWork = 20;
constexpr int64_t dynamicTransformPixelWork = 24;
constexpr int64_t gridPointWork = 64;

}
