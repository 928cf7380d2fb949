#include "apps/pxvis/bench/BenchAreas.h"
#include "components/CSuperTransformMap.h"
#include "components/CTransformMap.h"
#include "expression/CMathEvaluator.h"
#include "foundation/OQEngineContext.h"

#include <vector>

namespace pxvis::bench {

namespace {

struct MapSize
{
    const char* name;
    int32_t width;
    int32_t height;
};

constexpr MapSize sizes[] = { { "640x480", 640, 480 }, { "1600x1200", 1600, 1200 },
    { "1920x1080", 1920, 1080 }, { "3840x2160", 3840, 2160 } };

// What writing the entries alone costs.
void WriteEntries(std::vector<uint32_t>& entries)
{
    for (size_t i = 0; i < entries.size(); ++i)
        entries[i] = static_cast<uint32_t>(i);
}

template <typename Build>
void BenchMap(
    BenchTable& table, const std::string& name, int32_t width, int32_t height, const Build& build)
{
    const double pixels = static_cast<double>(width) * height;
    OQEngineContext context { .virtualClock = true };
    const OQEngineContextScope scope(&context);
    std::vector<uint32_t> entries(static_cast<size_t>(pixels));
    Timed vectors { build, pixels };
    Timed scalar { [&] { WithScalarKernels(build); }, pixels };
    Timed floor { [&] { WriteEntries(entries); }, pixels };
    for (const int32_t threads : { 1, 2 }) {
        context.mostThreads = threads;
        TimeTogether({ &vectors, &scalar, &floor }, 1.0);
        table.Add({ name, "pixel", threads, vectors.ns, scalar.ns, floor.ns });
    }
}

}

void BenchMaps(BenchTable& table)
{
    const std::pair<const char*, OQString> equations[]
        = { { "product", u"d=d*0.95" }, { "sine", u"d=d*(1-abs((sin(r*100)/10)))" } };
    for (const MapSize& size : sizes) {
        for (const auto& [name, text] : equations) {
            const std::string map = std::string("map/") + name + "/" + size.name;
            if (table.Wants(map)) {
                CTransformMap transform;
                BenchMap(table, map, size.width, size.height, [&] {
                    transform.Build(size.width, size.height, { .equation = &text, .center = {} });
                });
            }
            const std::string superMap = std::string("map/super-") + name + "/" + size.name;
            if (table.Wants(superMap)) {
                CSuperTransformMap super;
                CMathEvaluator equation;
                equation.SetEquation(text);
                BenchMap(table, superMap, size.width, size.height,
                    [&] { super.Build(size.width, size.height, equation); });
            }
        }
    }
}

}
