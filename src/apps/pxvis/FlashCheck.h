#pragma once

#include "engine2d/CVisFlashMeter.h"

#include <cstdint>
#include <iosfwd>
#include <vector>

namespace pxvis {

struct CheckOptions;

struct FlashSpan
{
    CVisFlashKind kind = CVisFlashKind::General;
    int64_t from = 0; // ns: the first transition of the first second that has too many
    int64_t to = 0; // the last of the last one
    int32_t flashes = 0; // the most within a second, a half one counted as whole
    int32_t percent = 0; // of the picture, the most

    bool operator==(const FlashSpan& other) const = default;
};

// Collects when a meter's limit was exceeded.
class FlashSpans
{
public:
    // After each of the meter's pictures.
    void Add(const CVisFlashMeter& meter);

    // In order of their beginnings; general ones before red ones.
    std::vector<FlashSpan> Sorted() const;

private:
    std::vector<FlashSpan> m_spans;
};

// What "check --flash" does: draws each script over a song and tells, a span a line, where it
// flashes too much,
//   FILE: 0:12.4 to 0:15.0: 5 flashes a second over 60 % of the picture (general)
// or, with json,
//   {"file":text,"from":seconds,"to":seconds,"flashes":number,"area":percent,
//    "kind":"general"|"red"}
// Exit status 1 if there is any or a script can't be drawn, 130 after Ctrl-C.
int RunFlashCheck(const CheckOptions& options, std::ostream& output, std::ostream& errors);

}
