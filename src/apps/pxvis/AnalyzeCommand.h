#pragma once

#include "apps/pxvis/VisualSession.h"

#include <iosfwd>
#include <string>

namespace pxvis {

struct AnalyzeOptions
{
    std::string song;
    Rate stepRate;
    double from = 0; // seconds of the song
    double to = -1; // below 0: to the end
};

// The command "analyze": writes the song's audio records, one a step. Gives the exit status.
int RunAnalyze(const AnalyzeOptions& options, std::ostream& output, std::ostream& errors);

}
