// The pixel passes of the three transforms: the form over vectors beside the scalar one and beside
// a plain loop over the same bytes ("floor"). Times are in ns a pixel: the sum over bands of rows
// of each band's shortest of many passes. What two threads bring is told by whole passes and needs
// a machine with nothing else to do.
//
//     bench_transforms [FILTER] [--avx2]     FILTER is part of a name; --avx2: no better than that

#include "foundation/OQParallelRows.h"
#include "kernels/DynamicTransformRow.h"
#include "kernels/KernelForm.h"
#include "kernels/SuperTransformRow.h"
#include "kernels/TransformRow.h"

#include <hwy/targets.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using namespace pxvis::kernels;

namespace {

struct Size
{
    int32_t width;
    int32_t height;
};

enum class MapKind
{
    Smooth, // a zoom to 0.95
    Noise, // anywhere within 16 pixels
    QuarterTurn,
};

// Source of the pixel (x, y), both from the centre, in pixels.
struct Place
{
    double x;
    double y;
};

struct Placer
{
    MapKind kind;
    std::mt19937 random { 1 };

    Place Of(double x, double y)
    {
        if (kind == MapKind::QuarterTurn)
            return { -y, x };
        if (kind == MapKind::Smooth)
            return { x * 0.95, y * 0.95 };
        std::uniform_real_distribution<double> off(-16.0, 16.0);
        return { x + off(random), y + off(random) };
    }
};

struct Pictures
{
    explicit Pictures(Size size)
        : source(Count(size))
        , target(Count(size))
    {
        std::mt19937 random(2);
        for (uint32_t& pixel : source)
            pixel = static_cast<uint32_t>(random());
    }

    static size_t Count(Size size)
    {
        return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
    }

    std::vector<uint32_t> source;
    std::vector<uint32_t> target;
};

// As the components choose.
bool TakesSmallEntries(Size size)
{
    return int64_t { size.width } * size.height <= 1'920'000;
}

// dst := a ^ b, over the pass's source, target and map.
void Floor(uint32_t* target, const uint32_t* source, const uint32_t* map, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        target[i] = source[i] ^ map[i];
}

void WideFloor(uint32_t* target, const uint32_t* source, const uint32_t* map, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        target[i] = source[i] ^ map[2 * i] ^ map[2 * i + 1];
}

void CopyFloor(uint32_t* target, const uint32_t* source, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        target[i] = source[i];
}

// One picture size of one pass: draw(first, end) draws rows of it, floor() touches its bytes.
struct Case
{
    std::string name;
    Size size;
    std::function<void(int32_t first, int32_t end)> draw;
    std::function<void(int32_t first, int32_t end)> floor;
};

// Map entries of the kind for the picture, told from (originX, originY), on top of it.
template <typename Entry>
std::vector<Entry> MapOf(Size size, MapKind kind, double originX, double originY)
{
    std::vector<Entry> map;
    map.reserve(Pictures::Count(size) * 2);
    Placer placer { kind };
    for (int32_t y = 0; y < size.height; ++y) {
        for (int32_t x = 0; x < size.width; ++x) {
            const Place place = placer.Of(x - size.width / 2.0, y - size.height / 2.0);
            map.push_back(static_cast<Entry>(static_cast<int32_t>((place.x + originX) * 32.0)));
            map.push_back(static_cast<Entry>(static_cast<int32_t>((place.y + originY) * 32.0)));
        }
    }
    return map;
}

template <typename Pass, typename Small, typename Wide>
struct MapPicture : Pictures
{
    MapPicture(Size size, MapKind kind, double originX, double originY)
        : Pictures(size)
    {
        if (TakesSmallEntries(size))
            small = MapOf<Small>(size, kind, originX, originY);
        else
            wide = MapOf<Wide>(size, kind, originX, originY);
        pass.source = source.data();
        pass.target = target.data();
        pass.width = size.width;
        pass.height = size.height;
        pass.map16 = small.empty() ? nullptr : small.data();
        pass.map32 = wide.empty() ? nullptr : wide.data();
        pass.ditherThreshold = 15;
        for (uint16_t& multiplier : pass.multiplier)
            multiplier = 204;
    }

    void TouchBytes(int32_t first, int32_t end)
    {
        const size_t start = static_cast<size_t>(first) * static_cast<size_t>(pass.width);
        const size_t count = static_cast<size_t>(end - first) * static_cast<size_t>(pass.width);
        if (pass.map16)
            Floor(target.data() + start, source.data() + start,
                reinterpret_cast<const uint32_t*>(pass.map16) + start, count);
        else
            WideFloor(target.data() + start, source.data() + start,
                reinterpret_cast<const uint32_t*>(pass.map32) + 2 * start, count);
    }

    Pass pass;
    std::vector<Small> small;
    std::vector<Wide> wide;
};

using TransformPicture = MapPicture<TransformPass, uint16_t, uint32_t>;
using SuperPicture = MapPicture<SuperTransformPass, int16_t, int32_t>;

Case TransformCase(const std::string& name, Size size, MapKind kind, bool moves)
{
    const auto picture
        = std::make_shared<TransformPicture>(size, kind, size.width / 2.0, size.height / 2.0);
    TransformPass& pass = picture->pass;
    pass.right = size.width - 1;
    pass.multiplier[3] = 127;
    if (moves) {
        pass.scrollX = 7;
        pass.scrollY = -5;
        pass.zoomX = size.width / 50;
        pass.zoomStepX = pass.zoomX * 2048 / size.width;
    }
    return { name, size,
        [picture](int32_t first, int32_t end) {
            for (int32_t y = first; y < end; ++y)
                TransformRow(picture->pass, y, { 0, y * 337 % 1024 });
        },
        [picture](int32_t first, int32_t end) { picture->TouchBytes(first, end); } };
}

Case SuperCase(const std::string& name, Size size, MapKind kind, bool moves, bool clips)
{
    const auto picture = std::make_shared<SuperPicture>(size, kind, 0, 0);
    SuperTransformPass& pass = picture->pass;
    pass.clips = clips;
    if (moves) {
        pass.sine = 51;
        pass.cosine = 1022;
        pass.factorX = 1000;
        pass.factorY = 1010;
        pass.scrollX = 7 * 32;
    }
    return { name, size,
        [picture](int32_t first, int32_t end) {
            for (int32_t y = first; y < end; ++y)
                SuperTransformRow(picture->pass, y);
        },
        [picture](int32_t first, int32_t end) { picture->TouchBytes(first, end); } };
}

struct DynamicPicture : Pictures
{
    DynamicPicture(Size size, double factor)
        : Pictures(size)
    {
        pass.source = source.data();
        pass.target = target.data();
        pass.width = size.width;
        pass.height = size.height;
        pass.gridWidth = size.width / 8 + 1;
        pass.gridHeight = size.height / 8 + 1;
        for (int32_t row = 0; row < pass.gridHeight; ++row) {
            for (int32_t column = 0; column < pass.gridWidth; ++column) {
                points.push_back(
                    static_cast<int32_t>((column * 8 - size.width / 2) * (factor - 1) * 32));
                points.push_back(
                    static_cast<int32_t>((row * 8 - size.height / 2) * (factor - 1) * 32));
            }
        }
        pass.points = points.data();
        pass.ditherThreshold = 15;
        for (uint16_t& multiplier : pass.multiplier)
            multiplier = 204;
    }

    DynamicTransformPass pass;
    std::vector<int32_t> points;
};

Case DynamicCase(const std::string& name, Size size, double factor, bool clips)
{
    const auto picture = std::make_shared<DynamicPicture>(size, factor);
    picture->pass.clips = clips;
    return { name, size,
        [picture](int32_t first, int32_t end) {
            for (int32_t y = first; y < end; ++y)
                DynamicTransformRow(picture->pass, y);
        },
        [picture](int32_t first, int32_t end) {
            const size_t width = static_cast<size_t>(picture->pass.width);
            const size_t start = static_cast<size_t>(first) * width;
            CopyFloor(picture->target.data() + start, picture->source.data() + start,
                static_cast<size_t>(end - first) * width);
        } };
}

double SecondsOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Times // ns a pixel
{
    double vector = 0;
    double twoThreads = 0;
    double scalar = 0;
    double floor = 0;
};

// The shortest time of each band of rows, over all passes: what else the machine does seldom meets
// a band in every one of them.
class BandTimes
{
public:
    explicit BandTimes(Size size)
        : m_size(size)
        , m_rowsPerBand(std::max(1, bandPixels / size.width))
        , m_best(static_cast<size_t>((size.height - 3) / m_rowsPerBand + 1),
              std::numeric_limits<double>::max())
    {
    }

    void TakePass(const std::function<void(int32_t first, int32_t end)>& draw)
    {
        int32_t first = 1;
        for (double& best : m_best) {
            const int32_t end = std::min(first + m_rowsPerBand, m_size.height - 1);
            best = std::min(best, SecondsOf([&] { draw(first, end); }));
            first = end;
        }
    }

    double PerPixel() const
    {
        return std::accumulate(m_best.begin(), m_best.end(), 0.0) * 1e9
            / static_cast<double>(Pictures::Count(m_size));
    }

private:
    static constexpr int32_t bandPixels = 50'000;

    Size m_size;
    int32_t m_rowsPerBand;
    std::vector<double> m_best;
};

Times Measure(const Case& subject)
{
    const double pixels = static_cast<double>(Pictures::Count(subject.size));
    BandTimes vector(subject.size);
    BandTimes scalar(subject.size);
    BandTimes floor(subject.size);
    double whole = std::numeric_limits<double>::max();
    double parallel = whole;
    // In turns, so that what else the machine does meets all alike.
    const int32_t turns = std::clamp(static_cast<int32_t>(1e8 / pixels), 12, 200);
    for (int32_t i = 0; i < turns; ++i) {
        vector.TakePass(subject.draw);
        whole = std::min(whole, SecondsOf([&] { subject.draw(1, subject.size.height - 1); }));
        parallel = std::min(parallel, SecondsOf([&] {
            OQParallelRows(1, subject.size.height - 1, subject.size.width, subject.draw);
        }));
        floor.TakePass(subject.floor);
        if (i % 4 == 0) {
            ChooseKernels(KernelForm::Scalar);
            scalar.TakePass(subject.draw);
            ChooseKernels(KernelForm::Auto);
        }
    }
    const double vectorTime = vector.PerPixel();
    return { vectorTime, vectorTime * parallel / whole, scalar.PerPixel(), floor.PerPixel() };
}

void Report(const Case& subject)
{
    const Times times = Measure(subject);
    std::printf("%-34s %7.3f %7.3f %7.3f %7.3f %8.2f %8.2f %8.2f\n", subject.name.c_str(),
        times.vector, times.twoThreads, times.scalar, times.floor, times.scalar / times.vector,
        times.vector / times.floor, times.vector / times.twoThreads);
    std::fflush(stdout);
}

}

int main(int argc, char** argv)
{
    std::string_view filter;
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--avx2")
            hwy::SetSupportedTargetsForTest(HWY_AVX2 | HWY_SSE4 | HWY_SSSE3);
        else
            filter = argv[i];
    }

    std::printf("%-34s %7s %7s %7s %7s %8s %8s %8s\n", "pass/case/size, ns a pixel", "vector",
        "2 thr.", "scalar", "floor", "x scalar", "/ floor", "x 1 thr.");
    const auto run = [filter](const std::string& name, const auto& make) {
        if (name.find(filter) != std::string::npos)
            Report(make(name));
    };
    for (const Size size :
        { Size { 640, 480 }, Size { 1600, 1200 }, Size { 1920, 1080 }, Size { 3840, 2160 } }) {
        const std::string suffix
            = "/" + std::to_string(size.width) + "x" + std::to_string(size.height);
        for (const auto& [name, kind, moves] : { std::tuple("zoom", MapKind::Smooth, false),
                 std::tuple("moving", MapKind::Smooth, true),
                 std::tuple("noise", MapKind::Noise, false),
                 std::tuple("quarter-turn", MapKind::QuarterTurn, false) })
            run("transform/" + (name + suffix),
                [&, kind = kind, moves = moves](
                    const std::string& full) { return TransformCase(full, size, kind, moves); });
        for (const auto& [name, kind, moves, clips] :
            { std::tuple("zoom", MapKind::Smooth, false, false),
                std::tuple("clipped", MapKind::Smooth, false, true),
                std::tuple("moving", MapKind::Smooth, true, false),
                std::tuple("noise", MapKind::Noise, false, false),
                std::tuple("quarter-turn", MapKind::QuarterTurn, false, false) })
            run("super/" + (name + suffix),
                [&, kind = kind, moves = moves, clips = clips](
                    const std::string& full) { return SuperCase(full, size, kind, moves, clips); });
        for (const auto& [name, factor, clips] : { std::tuple("zoom", 0.95, false),
                 std::tuple("clipped", 0.95, true), std::tuple("outward", 1.5, false) })
            run("dynamic/" + (name + suffix),
                [&, factor = factor, clips = clips](
                    const std::string& full) { return DynamicCase(full, size, factor, clips); });
    }
}
