#include "kernels/MapPoints.h"

#include "KernelTesting.h"

#include <cmath>
#include <limits>

using namespace pxvis::kernels;

namespace {

double AnyPolar(std::mt19937& random)
{
    static constexpr double special[] = { 0.0, -0.0, 1.0, 1e10, -1e300, 5e-324,
        std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity() };
    if (random() % 8 == 0)
        return special[random() % std::size(special)];
    return static_cast<double>(static_cast<int32_t>(random())) / (random() % 2 ? 0x1p30 : 0x1p26);
}

template <typename Item>
struct Twins // what the two forms write, with guards round it
{
    Twins(int32_t count, std::mt19937& random)
        : row(static_cast<size_t>(count), random() % 5, random)
        , scalarRow(row)
    {
    }

    bool AreEqual() const { return row == scalarRow; }

    GuardedRow<Item> row;
    GuardedRow<Item> scalarRow;
};

}

TEST_CASE("Points of maps are the same at every instruction set, and touch nothing outside")
{
    ForEachInstructionSet([] {
        std::mt19937 random(1);
        for (int32_t count = 0; count <= 67; ++count) {
            Twins<float> distances(count, random);
            Twins<float> angles(count, random);
            const float x = static_cast<float>(random() % 200) - 100;
            const float y = static_cast<float>(random() % 5) - 2;
            const float step = random() % 2 ? 1.0f : 8.0f;
            PolarPoints(distances.row.Data(), angles.row.Data(), x, step, y, count);
            scalar::PolarPoints(
                distances.scalarRow.Data(), angles.scalarRow.Data(), x, step, y, count);
            CHECK(distances.AreEqual());
            CHECK(angles.AreEqual());

            const int32_t far = random() % 3 ? 40 : 2'000'000'000;
            const TransformCenter center { far - static_cast<int32_t>(random() % 80),
                static_cast<int32_t>(random() % 50), 37.5f };
            Twins<double> columns[]
                = { { count, random }, { count, random }, { count, random }, { count, random } };
            TransformPoints(columns[0].row.Data(), columns[1].row.Data(), columns[2].row.Data(),
                columns[3].row.Data(), center, 3, 20, count);
            scalar::TransformPoints(columns[0].scalarRow.Data(), columns[1].scalarRow.Data(),
                columns[2].scalarRow.Data(), columns[3].scalarRow.Data(), center, 3, 20, count);
            for (const Twins<double>& column : columns)
                CHECK(column.AreEqual());
        }
    });
}

// So far from the centre that the entries hold all bits of a sine or cosine (of small ones in the
// later turns), and from close enough to its axes that arc cosines of all sizes come up.
TEST_CASE("Rounded sines, cosines and arc cosines have the very bits of the exact ones")
{
    constexpr int32_t count = 4096;
    std::mt19937 random(1);
    std::vector<double> d(count, 1.0);
    std::vector<double> r(count);
    std::vector<uint32_t> entries(2 * count);
    std::vector<uint32_t> scalarEntries(2 * count);
    std::vector<float> distances(count);
    std::vector<float> angles(count);
    std::vector<float> scalarAngles(count);
    ForEachInstructionSet([&] {
        for (int turn = 0; turn < 40; ++turn) {
            for (double& rotation : r) {
                const double any = static_cast<double>(static_cast<int32_t>(random())) / 0x1p31;
                const double quarters = static_cast<double>(random() % 9) / 4;
                const int size = static_cast<int>(random() % 30);
                rotation = turn % 2 ? quarters + std::ldexp(any, -size) : 300 * any;
            }
            const TransformCenter center { 0, 0, std::ldexp(1.0f, 25 + turn / 2) };
            TransformEntries32(entries.data(), d.data(), r.data(), count, center, false, 0);
            scalar::TransformEntries32(
                scalarEntries.data(), d.data(), r.data(), count, center, false, 0);
            CHECK(entries == scalarEntries);
            const float y = std::ldexp(1.0f + static_cast<float>(random()) / 0x1p32f, turn / 3);
            PolarPoints(distances.data(), angles.data(), -2048.0f, 1.0f, y, count);
            scalar::PolarPoints(distances.data(), scalarAngles.data(), -2048.0f, 1.0f, y, count);
            CHECK(angles == scalarAngles);
        }
    });
}

TEST_CASE("Entries of maps are the same at every instruction set, for any distance and rotation")
{
    std::vector<float> directions(2 * CircleDirections::steps);
    std::mt19937 random(1);
    for (float& direction : directions)
        direction = static_cast<float>(static_cast<int32_t>(random())) / 0x1p31f;
    const CircleDirections circle { directions.data(), directions.data() + CircleDirections::steps,
        400.5f, 320, 240 };
    const TransformCenter center { 320, 240, 401 };
    ForEachInstructionSet([&] {
        for (int32_t count = 0; count <= 67; ++count) {
            std::vector<double> d(static_cast<size_t>(count));
            std::vector<double> r(static_cast<size_t>(count));
            for (size_t i = 0; i < d.size(); ++i) {
                d[i] = AnyPolar(random);
                r[i] = AnyPolar(random);
            }
            const bool clips = random() % 2;
            Twins<uint16_t> small(2 * count, random);
            TransformEntries16(small.row.Data(), d.data(), r.data(), count, center, clips, 32767);
            scalar::TransformEntries16(
                small.scalarRow.Data(), d.data(), r.data(), count, center, clips, 32767);
            CHECK(small.AreEqual());
            Twins<uint32_t> large(2 * count, random);
            TransformEntries32(large.row.Data(), d.data(), r.data(), count, center, clips, ~0u);
            scalar::TransformEntries32(
                large.scalarRow.Data(), d.data(), r.data(), count, center, clips, ~0u);
            CHECK(large.AreEqual());
            Twins<int32_t> moves(2 * count, random);
            CircleEntries(moves.row.Data(), d.data(), r.data(), count, circle, 16, 8, 24);
            scalar::CircleEntries(
                moves.scalarRow.Data(), d.data(), r.data(), count, circle, 16, 8, 24);
            CHECK(moves.AreEqual());
        }
    });
}
