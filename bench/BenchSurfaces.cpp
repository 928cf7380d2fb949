// The pixel loops beside their scalar forms and a floor: a plain loop that moves the same bytes. A
// line a case, ns an item, the smallest of many rounds in which the forms take turns.
//
//     bench_surfaces [FILTER]

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

#include <hwy/targets.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

using namespace pxvis::kernels;

namespace {

using Pixels = std::vector<uint32_t>;

struct Case
{
    std::string name; // area/case/size
    int64_t items = 0; // a run
    std::function<void()> run;
    std::function<void()> scalar;
    std::function<void()> floor;
    std::function<void()> banded; // in row bands, if it gains by them
};

Pixels Noise(int64_t count)
{
    std::mt19937 random(1);
    Pixels pixels(static_cast<size_t>(count));
    for (uint32_t& pixel : pixels)
        pixel = static_cast<uint32_t>(random());
    return pixels;
}

double Seconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void TakeTurns(const Case& measured)
{
    const std::function<void()>* forms[]
        = { &measured.run, &measured.banded, &measured.scalar, &measured.floor };
    double least[4] = { 1e9, 1e9, 1e9, 1e9 };
    const double end = Seconds() + 1;
    for (int round = 0; round < 5 || (round < 400 && Seconds() < end); ++round) {
        for (int form = 0; form < 4; ++form) {
            if (!*forms[form])
                continue;
            const double start = Seconds();
            (*forms[form])();
            least[form] = std::min(least[form], Seconds() - start);
        }
    }
    const auto nanoseconds = [&](int form) {
        return *forms[form] ? least[form] * 1e9 / static_cast<double>(measured.items) : 0.0;
    };
    std::printf("%-34s %8.3f %8.3f %8.3f %8.3f   %6.1f %6.2f\n", measured.name.c_str(),
        nanoseconds(0), nanoseconds(1), nanoseconds(2), nanoseconds(3), least[2] / least[0],
        least[0] / least[3]);
    std::fflush(stdout);
}

std::string Size(int32_t width, int32_t height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

void AddStretch(
    std::vector<Case>& cases, const char* name, int32_t sw, int32_t sh, int32_t tw, int32_t th)
{
    auto source = std::make_shared<Pixels>(Noise(int64_t { sw } * sh));
    auto target = std::make_shared<Pixels>(Noise(int64_t { tw } * th));
    const auto rows = [=](int32_t first, int32_t last) {
        StretchRows(target->data() + ptrdiff_t { first } * tw, tw, tw, th, source->data(), sw, sw,
            sh, first, last);
    };
    cases.push_back({ std::string("stretch/") + name + "/" + Size(tw, th), int64_t { tw } * th,
        [=] { rows(0, th); },
        [=] { scalar::StretchRows(target->data(), tw, tw, th, source->data(), sw, sw, sh, 0, th); },
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

void AddI420(std::vector<Case>& cases, int32_t width, int32_t height)
{
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
    cases.push_back(
        { "i420/noise/" + Size(width, height), count, [=] { rows(I420FromPixels, 0, height / 2); },
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
void AddRows(std::vector<Case>& cases, const char* name, int32_t width, int32_t height,
    const Run& run, const ScalarRun& scalarRun)
{
    const int64_t count = int64_t { width } * height;
    auto source = std::make_shared<Pixels>(Noise(count));
    auto target = std::make_shared<Pixels>(Noise(count));
    const auto rows = [=](const auto& form) {
        return [=] {
            for (int64_t y = 0; y < height; ++y)
                form(target->data() + y * width, source->data() + y * width, width);
        };
    };
    cases.push_back({ name + ("/" + Size(width, height)), count, rows(run), rows(scalarRun),
        rows([](uint32_t* to, const uint32_t* from, int32_t pixels) {
            for (int32_t x = 0; x < pixels; ++x)
                to[x] ^= from[x];
        }),
        {} });
}

void AddBlends(std::vector<Case>& cases, int32_t width, int32_t height)
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
        AddRows(cases, name, width, height, run, scalarRun);
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

    auto table = std::make_shared<std::vector<uint8_t>>(size_t { 256 } * 256);
    FillMixTable(table->data(), 100);
    const auto mix = [=](uint32_t* to, const uint32_t* from, int32_t count) {
        MixLinearLight(to, to, from, count, table->data());
    };
    add("light/mix", mix, mix);
    const auto sum = [](uint32_t*, const uint32_t* from, int32_t count) {
        LinearLightSum sums[1];
        SumLinearLight(sums, &count, 1, from, 2, 8);
    };
    add("light/sum-every-8th", sum, sum);
}

void AddMerge(std::vector<Case>& cases, const char* name, int32_t width, int32_t height,
    decltype(&MergeAdd) merge, decltype(&MergeAdd) scalarMerge)
{
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
    cases.push_back({ std::string("merge/") + name + "/" + Size(width, height), count,
        [=] { rows(merge, 0, height); }, [=] { rows(scalarMerge, 0, height); },
        [=] {
            rows(
                [](uint32_t* to, const uint32_t* from, int32_t pixels, uint32_t) {
                    for (int32_t x = 0; x < pixels; ++x)
                        to[x] ^= from[x];
                },
                0, height);
        },
        [=] {
            OQParallelRows(
                0, height, width, [&](int32_t first, int32_t last) { rows(merge, first, last); });
        } });
}

// A circle of 4 rays for each pixel of its radius, as the Blob Oscilloscope draws it.
void AddRays(std::vector<Case>& cases, int32_t width, int32_t height, int32_t radius)
{
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
    cases.push_back({ "rays/circle/" + Size(width, height), int64_t { 4 } * radius * radius,
        rays(DrawRay), rays(scalar::DrawRay),
        rays([](uint32_t*, int32_t, int32_t, int32_t, double, double, double, double, int32_t,
                 const uint32_t*, int32_t) {}),
        {} });
}

void AddStars(std::vector<Case>& cases, int32_t width, int32_t height, int32_t count)
{
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
    cases.push_back({ "stars/array/" + Size(width, height), count, draw(50), draw(50),
        [=] { *stars = *born; }, {} });
}

// A run up and down at each column, as a filled oscilloscope across the middle has them.
void AddWaveRuns(std::vector<Case>& cases, int32_t width, int32_t height, int32_t swing)
{
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
    cases.push_back({ "wave/upright/" + Size(width, height), int64_t { width } * (2 * swing + 1),
        draw, draw, floor, {} });
}

}

int main(int argc, char** argv)
{
    const std::string filter = argc > 1 ? argv[1] : "";
    hwy::SetSupportedTargetsForTest(HWY_AVX2);
    std::vector<Case> cases;
    AddStretch(cases, "same", 1920, 1080, 1920, 1080);
    AddStretch(cases, "grow", 1280, 720, 1920, 1080);
    AddStretch(cases, "double", 960, 540, 1920, 1080);
    AddStretch(cases, "shrink", 1920, 1080, 1280, 720);
    AddStretch(cases, "double", 1920, 1080, 3840, 2160);
    AddI420(cases, 1920, 1080);
    AddBlends(cases, 1920, 1080);
    AddRays(cases, 1600, 1200, 336);
    AddRays(cases, 1920, 1080, 500);
    AddStars(cases, 1600, 1200, 20000);
    AddWaveRuns(cases, 1920, 1080, 162);
    for (const auto& [width, height] :
        { std::pair { 640, 480 }, std::pair { 1600, 1200 }, std::pair { 3840, 2160 } }) {
        AddMerge(cases, "replace", width, height, MergeReplace, scalar::MergeReplace);
        AddMerge(cases, "blend", width, height, MergeBlend, scalar::MergeBlend);
        AddMerge(cases, "add", width, height, MergeAdd, scalar::MergeAdd);
    }

    std::printf("%-34s %8s %8s %8s %8s   %6s %6s\n", "ns an item", "run", "bands", "scalar",
        "floor", "faster", "/floor");
    for (const Case& measured : cases)
        if (measured.name.find(filter) != std::string::npos)
            TakeTurns(measured);
    return 0;
}
