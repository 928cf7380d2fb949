#include "apps/pxvis/bench/BenchAreas.h"
#include "foundation/OQParallelRows.h"
#include "kernels/DynamicTransformRow.h"
#include "kernels/SuperTransformRow.h"
#include "kernels/TransformRow.h"

#include <memory>
#include <random>
#include <tuple>
#include <vector>

namespace pxvis::bench {

using namespace kernels;

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

void Time(BenchTable& table, const Case& subject)
{
    const int32_t end = subject.size.height - 1;
    const auto draw = [&] { subject.draw(1, end); };
    TimePass(table,
        { subject.name, static_cast<int64_t>(Pictures::Count(subject.size)), draw,
            [&] { WithScalarKernels(draw); }, [&] { subject.floor(1, end); },
            [&] { OQParallelRows(1, end, subject.size.width, subject.draw); } });
}

}

void BenchTransforms(BenchTable& table)
{
    const auto run = [&table](const std::string& name, const auto& make) {
        if (table.Wants(name))
            Time(table, make(name));
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

}
