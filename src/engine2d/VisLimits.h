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

// Colours that a gradient's table keeps; a longer one is worked out as it is read.
constexpr int32_t gradientTableEntries = 65536;

}
