#include "mc/McMorphology.h"

#include "mc/McThreads.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <queue>
#include <random>
#include <string>

namespace {

using Dims = std::array<int, 3>;

constexpr int kNeighbours[6][3] = {{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 1}};

unsigned long indexOf(const Dims& d, int x, int y, int z)
{
    return x + 1ul * d[0] * (y + 1ul * d[1] * z);
}

bool isInside(const Dims& d, int x, int y, int z)
{
    return x >= 0 && x < d[0] && y >= 0 && y < d[1] && z >= 0 && z < d[2];
}

McBitfield randomVolume(const Dims& d, double density, std::mt19937& random)
{
    McBitfield field(1ul * d[0] * d[1] * d[2]);
    std::bernoulli_distribution isSet(density);
    for (unsigned long i = 0; i < field.numBits(); i++)
        if (isSet(random)) field.set(i);
    return field;
}

// One pass voxel by voxel: a voxel changes to `spreading` if a neighbour has that value. Bit a of `axes`
// stands for the neighbours along axis a.
McBitfield spreadPlainly(const McBitfield& bits, const Dims& d, bool spreading, int axes = 7)
{
    McBitfield out = bits;
    for (int z = 0; z < d[2]; z++)
        for (int y = 0; y < d[1]; y++)
            for (int x = 0; x < d[0]; x++)
                for (int i = 0; i < 6; i++) {
                    const int* n = kNeighbours[i];
                    if (!(axes >> i / 2 & 1) || !isInside(d, x + n[0], y + n[1], z + n[2])) continue;
                    if (bits.isSet(indexOf(d, x + n[0], y + n[1], z + n[2])) != spreading) continue;
                    if (spreading)
                        out.set(indexOf(d, x, y, z));
                    else
                        out.unset(indexOf(d, x, y, z));
                }
    return out;
}

McBitfield fillPlainly(const McBitfield& source, const McDArray<McVec3i>& seeds, bool value, const Dims& d)
{
    McBitfield out(source.numBits());
    std::queue<McVec3i> pending;
    const auto visit = [&](int x, int y, int z) {
        if (!isInside(d, x, y, z)) return;
        const unsigned long i = indexOf(d, x, y, z);
        if (source.isSet(i) != value || out.isSet(i)) return;
        out.set(i);
        pending.push({x, y, z});
    };
    for (const McVec3i& s : seeds) visit(s.x, s.y, s.z);
    while (!pending.empty()) {
        const McVec3i p = pending.front();
        pending.pop();
        for (const int* n : kNeighbours) visit(p.x + n[0], p.y + n[1], p.z + n[2]);
    }
    return out;
}

class McMorphologyOn : public testing::TestWithParam<Dims>
{
};

} // namespace

TEST_P(McMorphologyOn, ErodesAndDilatesLikeAPlainLoop)
{
    std::mt19937 random(17);
    const Dims d = GetParam();
    for (double density : {0.0, 0.03, 0.5, 0.97, 1.0}) {
        const McBitfield bits = randomVolume(d, density, random);
        McBitfield expectEroded = bits;
        McBitfield expectDilated = bits;
        for (int width = 0; width <= 3; width++) {
            McBitfield eroded = randomVolume({d[0], d[1], 1}, 0.5, random);
            McBitfield dilated;
            McMorphology::erosion3D(bits, eroded, d.data(), width);
            McMorphology::dilation3D(bits, dilated, d.data(), width);
            EXPECT_EQ(eroded, expectEroded) << "density " << density << ", width " << width;
            EXPECT_EQ(dilated, expectDilated) << "density " << density << ", width " << width;
            expectEroded = spreadPlainly(expectEroded, d, false);
            expectDilated = spreadPlainly(expectDilated, d, true);
        }
    }
}

TEST_P(McMorphologyOn, ChangesInPlaceAlongTheNamedAxesAlone)
{
    std::mt19937 random(19);
    const Dims d = GetParam();
    for (double density : {0.0, 0.002, 0.5, 0.998, 1.0}) {
        const McBitfield bits = randomVolume(d, density, random);
        for (int axes = 0; axes < 8; axes++) {
            McBitfield eroded = bits, dilated = bits;
            McMorphology::erode(eroded, d.data(), axes);
            McMorphology::dilate(dilated, d.data(), axes);
            EXPECT_EQ(eroded, spreadPlainly(bits, d, false, axes)) << density << ", axes " << axes;
            EXPECT_EQ(dilated, spreadPlainly(bits, d, true, axes)) << density << ", axes " << axes;
        }
    }
}

TEST_P(McMorphologyOn, FillsLikeAQueueOfVoxels)
{
    std::mt19937 random(23);
    const Dims d = GetParam();
    // Around the density at which regions begin to span the volume they are most winding.
    for (double density : {0.0, 0.25, 0.3, 0.35, 0.5, 0.7, 0.99, 1.0}) {
        for (bool value : {true, false}) {
            const McBitfield source = randomVolume(d, value ? density : 1 - density, random);
            McDArray<McVec3i> seeds;
            for (int i = 0; i < 4; i++)
                seeds.append({int(random() % d[0]), int(random() % d[1]), int(random() % d[2])});
            seeds.append({d[0], 0, 0});
            seeds.append({0, -1, 0});
            McBitfield expected = fillPlainly(source, seeds, value, d);
            McBitfield result = randomVolume({7, 3, 5}, 0.5, random);
            McMorphology::floodfill(source, result, seeds, value, d.data());
            EXPECT_EQ(result, expected) << "density " << density;
            if (value) continue;
            McBitfield filled = source;
            McMorphology::fillUnreached(filled, seeds, d.data());
            expected.toggleAll();
            EXPECT_EQ(filled, expected) << "density " << density;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, McMorphologyOn,
                         testing::Values(Dims{1, 1, 1}, Dims{1, 70, 3}, Dims{3, 1, 1}, Dims{3000, 1, 1},
                                         Dims{64, 5, 4}, Dims{63, 9, 2}, Dims{65, 3, 9}, Dims{128, 4, 4},
                                         Dims{37, 41, 29}, Dims{200, 11, 6}, Dims{127, 65, 20},
                                         Dims{192, 190, 4}, Dims{131, 170, 3}));

TEST(McMorphology, GivesTheSameBitsWithAnyNumberOfThreads)
{
    std::mt19937 random(29);
    const int usual = mcNumThreads();
    // Slices that end within words at all places, every 32 slices, and never.
    for (const Dims& d : {Dims{101, 91, 140}, Dims{101, 90, 70}, Dims{64, 67, 80}}) {
        const McBitfield bits = randomVolume(d, 0.9, random);
        const McDArray<McVec3i> seeds{{0, 0, 0}, {50, 50, 50}};
        const McBitfield eroded = spreadPlainly(bits, d, false), filled = fillPlainly(bits, seeds, true, d);
        McBitfield holes = fillPlainly(bits, seeds, false, d);
        holes.toggleAll();
        for (int threads : {1, 2, 3, 8}) {
            mcSetNumThreads(threads);
            McBitfield result;
            McMorphology::erosion3D(bits, result, d.data(), 1);
            EXPECT_EQ(result, eroded) << threads;
            McMorphology::floodfill(bits, result, seeds, true, d.data());
            EXPECT_EQ(result, filled) << threads;
            result = bits;
            McMorphology::fillUnreached(result, seeds, d.data());
            EXPECT_EQ(result, holes) << threads;
        }
    }
    mcSetNumThreads(usual);
}
