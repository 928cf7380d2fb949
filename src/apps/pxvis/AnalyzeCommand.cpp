#include "apps/pxvis/AnalyzeCommand.h"

#include "apps/pxvis/ErrorLine.h"

#include "host/SongDecoder.h"
#include "host/analysis/SongAnalyzer.h"

#include <cmath>
#include <ostream>

namespace pxvis {

int RunAnalyze(const AnalyzeOptions& options, std::ostream& output, std::ostream& errors)
{
    if (options.to >= 0 && options.to <= options.from)
        return PrintUsageError(errors, "--to must lie behind --from");
    std::string error;
    const auto decoder = host::SongDecoder::Open(options.song, error);
    if (!decoder)
        return PrintError(errors, error);
    host::AnalysisOptions analysis;
    analysis.stepNumerator = options.stepRate.numerator;
    analysis.stepDenominator = options.stepRate.denominator;
    analysis.from = options.from;
    host::SongAnalyzer analyzer(*decoder, analysis);

    const int64_t end = options.to < 0
        ? INT64_MAX
        : static_cast<int64_t>(std::floor(options.to * host::SampleRate));
    host::AudioRecord record;
    bool isAny = false;
    while (analyzer.Next(record)) {
        if (analyzer.SamplePosition() >= end)
            return 0;
        if (!host::WriteAudioRecord(output, record))
            return PrintError(errors, "the records can't be written");
        isAny = true;
    }
    if (!isAny && !decoder->Error().empty())
        return PrintError(errors, decoder->Error());
    if (isAny && !decoder->Loss().empty())
        PrintWarning(errors, decoder->Loss());
    return 0;
}

}
