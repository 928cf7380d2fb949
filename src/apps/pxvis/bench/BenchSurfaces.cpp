#include "apps/pxvis/bench/BenchAreas.h"
#include "foundation/OQParallelRows.h"
#include "kernels/Blend.h"
#include "kernels/BlendColor.h"
#include "kernels/BlendCoverage.h"
#include "kernels/CopyRect.h"
#include "kernels/DrawRay.h"
#include "kernels/DrawStars.h"
#include "kernels/DrawWaveRun.h"
#include "kernels/FillRect.h"
#include "kernels/I420FromPixels.h"
#include "kernels/LinearLight.h"
#include "kernels/Merge.h"
#include "kernels/PixelsFromBytes.h"
#include "kernels/Stretch.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace pxvis::bench {

using namespace kernels;

namespace {

using Pixels = std::vector<uint32_t>;

Pixels Noise(int64_t count)
{
    std::mt19937 random(1);
    Pixels pixels(static_cast<size_t>(count));
    for (uint32_t& pixel : pixels)
        pixel = static_cast<uint32_t>(random());
    return pixels;
}

std::string Size(int32_t width, int32_t height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

void AddStretch(BenchTable& table, const char* name, int32_t sw, int32_t sh, int32_t tw, int32_t th)
{
    const std::string full = std::string("stretch/") + name + "/" + Size(tw, th);
    if (!table.Wants(full))
        return;
    auto source = std::make_shared<Pixels>(Noise(int64_t { sw } * sh));
    auto target = std::make_shared<Pixels>(Noise(int64_t { tw } * th));
    const auto rows = [=](int32_t first, int32_t last) {
        StretchRows(target->data() + ptrdiff_t { first } * tw, tw, tw, th, source->data(), sw, sw,
            sh, first, last);
    };
    TimePass(table,
        { full, int64_t { tw } * th, [=] { rows(0, th); },
            [=] {
                scalar::StretchRows(target->data(), tw, tw, th, source->data(), sw, sw, sh, 0, th);
            },
            [=] {
                for (int32_t y = 0; y < th; ++y) {
                    const uint32_t* from = source->data() + int64_t { y } * sh / th * sw;
                    uint32_t* to = target->data() + int64_t { y } * tw;
                    for (int32_t x = 0; x < std::min(sw, tw); ++x)
                        to[x] ^= from[x];
                    for (int32_t x = sw; x < tw; ++x)
                        to[x] ^= from[x - sw];
                }
            },
            [=] { OQParallelRows(0, th, tw, rows); } });
}

void AddI420(BenchTable& table, int32_t width, int32_t height)
{
    const std::string full = "i420/noise/" + Size(width, height);
    if (!table.Wants(full))
        return;
    const int64_t count = int64_t { width } * height;
    auto source = std::make_shared<Pixels>(Noise(count));
    auto target = std::make_shared<std::vector<uint8_t>>(static_cast<size_t>(count * 3 / 2));
    const auto rows = [=](auto convert, int32_t first, int32_t last) {
        uint8_t* luma = target->data();
        uint8_t* chroma = luma + count;
        for (int32_t y = 2 * first; y < 2 * last; y += 2)
            convert({ luma + int64_t { y } * width, luma + int64_t { y + 1 } * width,
                        chroma + int64_t { y } * width / 4,
                        chroma + count / 4 + int64_t { y } * width / 4 },
                source->data() + int64_t { y } * width, source->data() + int64_t { y + 1 } * width,
                width);
    };
    TimePass(table,
        { full, count, [=] { rows(I420FromPixels, 0, height / 2); },
            [=] { rows(scalar::I420FromPixels, 0, height / 2); },
            [=] {
                // Of each four bytes one and a half.
                uint8_t* to = target->data();
                for (int64_t i = 0; i < count; ++i)
                    to[i] = static_cast<uint8_t>((*source)[static_cast<size_t>(i)]);
                for (int64_t i = count; i < count * 3 / 2; ++i)
                    to[i] = static_cast<uint8_t>(i);
            },
            [=] {
                OQParallelRows(0, height / 2, 2 * width,
                    [&](int32_t first, int32_t last) { rows(I420FromPixels, first, last); });
            } });
}

// Row by row over a picture: run(target, source, count) of each form.
template <typename Run, typename ScalarRun>
void AddRows(BenchTable& table, const char* name, int32_t width, int32_t height, const Run& run,
    const ScalarRun& scalarRun)
{
    const std::string full = name + ("/" + Size(width, height));
    if (!table.Wants(full))
        return;
    const int64_t count = int64_t { width } * height;
    auto source = std::make_shared<Pixels>(Noise(count));
    auto target = std::make_shared<Pixels>(Noise(count));
    const auto rows = [=](const auto& form) {
        return [=] {
            for (int64_t y = 0; y < height; ++y)
                form(target->data() + y * width, source->data() + y * width, width);
        };
    };
    TimePass(table,
        { full, count, rows(run), rows(scalarRun),
            rows([](uint32_t* to, const uint32_t* from, int32_t pixels) {
                for (int32_t x = 0; x < pixels; ++x)
                    to[x] ^= from[x];
            }),
            {} });
}

void AddBlends(BenchTable& table, int32_t width, int32_t height)
{
    const auto ofColor = [](auto form) {
        return [=](uint32_t* to, const uint32_t*, int32_t count) { form(to, count, 0x0C0C0C); };
    };
    const auto ofCoverage = [](auto form) {
        return [=](uint32_t* to, const uint32_t* from, int32_t count) {
            form(to, reinterpret_cast<const uint8_t*>(from), count, 0x00C0FF80);
        };
    };
    const auto add = [&](const char* name, auto run, auto scalarRun) {
        AddRows(table, name, width, height, run, scalarRun);
    };
    add("color/replace", ofColor(ReplaceColor), ofColor(ReplaceColor));
    add("color/add", ofColor(AddColor), ofColor(scalar::AddColor));
    add("color/subtract", ofColor(SubtractColor), ofColor(scalar::SubtractColor));
    add("color/average", ofColor(AverageColor), ofColor(AverageColor));
    add("cover/coverage", ofCoverage(BlendCoverage), ofCoverage(scalar::BlendCoverage));
    add("cover/over", BlendOver, scalar::BlendOver);
    add("cover/alpha", BlendRow, scalar::BlendRow);
    const auto fill
        = [](uint32_t* to, const uint32_t*, int32_t count) { FillRect(to, count, count, 1, 7); };
    add("rect/fill", fill, fill);
    const auto copy = [](uint32_t* to, const uint32_t* from, int32_t count) {
        CopyRect(to, count, from, count, count, 1);
    };
    add("rect/copy", copy, copy);
    const auto fromBytes = [](uint32_t* to, const uint32_t* from, int32_t count) {
        PixelsFromBytes(to, 1, reinterpret_cast<const uint8_t*>(from), 4, count);
    };
    add("rect/bytes", fromBytes, fromBytes);

    auto mixes = std::make_shared<std::vector<uint8_t>>(size_t { 256 } * 256);
    FillMixTable(mixes->data(), 100);
    const auto mix = [=](uint32_t* to, const uint32_t* from, int32_t count) {
        MixLinearLight(to, to, from, count, mixes->data());
    };
    add("light/mix", mix, mix);
    const auto sum = [](uint32_t*, const uint32_t* from, int32_t count) {
        LinearLightSum sums[1];
        SumLinearLight(sums, &count, 1, from, 2, 8);
    };
    add("light/sum-every-8th", sum, sum);
}

void AddMerge(BenchTable& table, const char* name, int32_t width, int32_t height,
    decltype(&MergeAdd) merge, decltype(&MergeAdd) scalarMerge)
{
    const std::string full = std::string("merge/") + name + "/" + Size(width, height);
    if (!table.Wants(full))
        return;
    constexpr uint32_t key = 0;
    const int64_t count = int64_t { width } * height;
    auto source = std::make_shared<Pixels>(Noise(count));
    auto target = std::make_shared<Pixels>(Noise(count));
    for (uint32_t& pixel : *source)
        if (pixel & 4) // a random half is transparent
            pixel = key;
    const auto rows = [=](auto form, int32_t first, int32_t last) {
        for (int64_t y = first; y < last; ++y)
            form(target->data() + y * width, source->data() + y * width, width, key);
    };
    TimePass(table,
        { full, count, [=] { rows(merge, 0, height); }, [=] { rows(scalarMerge, 0, height); },
            [=] {
                rows(
                    [](uint32_t* to, const uint32_t* from, int32_t pixels, uint32_t) {
                        for (int32_t x = 0; x < pixels; ++x)
                            to[x] ^= from[x];
                    },
                    0, height);
            },
            [=] {
                OQParallelRows(0, height, width,
                    [&](int32_t first, int32_t last) { rows(merge, first, last); });
            } });
}

// A circle of 4 rays for each pixel of its radius, as the Blob Oscilloscope draws it.
void AddRays(BenchTable& table, int32_t width, int32_t height, int32_t radius)
{
    const std::string full = "rays/circle/" + Size(width, height);
    if (!table.Wants(full))
        return;
    auto picture = std::make_shared<Pixels>(Noise(int64_t { width } * height));
    auto colors = std::make_shared<Pixels>(Noise(radius + 1));
    const auto rays = [=](auto draw) {
        return [=] {
            const double step = 6.2831852 / (4.0 * radius);
            for (double angle = 0; angle < 6.2831852; angle += step)
                draw(picture->data() + int64_t { width } * (height - 1), -width, width, height,
                    width / 2, height / 2, std::cos(angle), std::sin(angle), radius, colors->data(),
                    radius + 1);
        };
    };
    TimePass(table,
        { full, int64_t { 4 } * radius * radius, rays(DrawRay), rays(scalar::DrawRay), {}, {} });
}

void AddStars(BenchTable& table, int32_t width, int32_t height, int32_t count)
{
    const std::string full = "stars/array/" + Size(width, height);
    if (!table.Wants(full))
        return;
    auto picture = std::make_shared<Pixels>(Noise(int64_t { width } * height));
    auto colors = std::make_shared<Pixels>(Noise(256));
    std::mt19937 random(1);
    auto born = std::make_shared<std::vector<Star>>();
    while (born->size() < static_cast<size_t>(count)) {
        const int32_t z = 50 + static_cast<int32_t>(random() % 8000);
        const auto place = [&](int32_t side) {
            const int64_t range = int64_t { side } * z / 512;
            return static_cast<int32_t>(random() % (range + 1) - range / 2);
        };
        const int32_t x = place(width);
        born->push_back({ x, place(height), z });
    }
    auto stars = std::make_shared<std::vector<Star>>(*born);
    const auto draw = [=](int32_t speed) {
        return [=] {
            *stars = *born;
            DrawStars(stars->data(), count,
                { picture->data(), width, height, colors->data(), 8000, speed });
        };
    };
    TimePass(table, { full, count, draw(50), draw(50), [=] { *stars = *born; }, {} });
}

// A run up and down at each column, as a filled oscilloscope across the middle has them.
void AddWaveRuns(BenchTable& table, int32_t width, int32_t height, int32_t swing)
{
    const std::string full = "wave/upright/" + Size(width, height);
    if (!table.Wants(full))
        return;
    auto picture = std::make_shared<Pixels>(Noise(int64_t { width } * height));
    auto colors = std::make_shared<Pixels>(Noise(2 * swing + 1));
    const auto draw = [=] {
        for (int32_t x = 0; x < width; ++x)
            DrawWaveRun(picture->data() + int64_t { width } * (height - 1), -width, width, height,
                { x, height / 2, 0, 1 }, -swing, 2 * swing + 1, colors->data());
    };
    const auto floor = [=] {
        for (int64_t y = height / 2 - swing; y <= height / 2 + swing; ++y)
            for (int32_t x = 0; x < width; ++x)
                (*picture)[static_cast<size_t>(y * width + x)] ^= 1;
    };
    TimePass(table, { full, int64_t { width } * (2 * swing + 1), draw, draw, floor, {} });
}

}

void BenchSurfaces(BenchTable& table)
{
    AddStretch(table, "same", 1920, 1080, 1920, 1080);
    AddStretch(table, "grow", 1280, 720, 1920, 1080);
    AddStretch(table, "double", 960, 540, 1920, 1080);
    AddStretch(table, "shrink", 1920, 1080, 1280, 720);
    AddStretch(table, "double", 1920, 1080, 3840, 2160);
    AddI420(table, 1920, 1080);
    AddBlends(table, 1920, 1080);
    AddRays(table, 1600, 1200, 336);
    AddRays(table, 1920, 1080, 500);
    AddStars(table, 1600, 1200, 20000);
    AddWaveRuns(table, 1920, 1080, 162);
    for (const auto& [width, height] :
        { std::pair { 640, 480 }, std::pair { 1600, 1200 }, std::pair { 3840, 2160 } }) {
        AddMerge(table, "replace", width, height, MergeReplace, scalar::MergeReplace);
        AddMerge(table, "blend", width, height, MergeBlend, scalar::MergeBlend);
        AddMerge(table, "add", width, height, MergeAdd, scalar::MergeAdd);
    }
}

}
