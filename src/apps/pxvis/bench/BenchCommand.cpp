#include "apps/pxvis/bench/BenchCommand.h"

#include "apps/pxvis/ErrorLine.h"
#include "apps/pxvis/bench/BenchAreas.h"

namespace pxvis {

int RunBench(const BenchOptions& options, std::ostream& output, std::ostream& errors)
{
    bench::BenchTable table(output, errors, options.filter, options.json);
    bench::BenchMaths(table);
    bench::BenchEquations(table);
    bench::BenchMaps(table);
    bench::BenchTransforms(table);
    bench::BenchSurfaces(table);
    bench::BenchFrames(table);
    if (table.Count() > 0 || table.HasFailed())
        return table.HasFailed() ? 1 : 0;
    PrintError(
        errors, "bench: nothing that is measured has \"" + options.filter + "\" in its name");
    return 1;
}

}
