// Growing and shrinking of selections beside the plain rule, pixel by pixel and voxel by voxel.

#include "editor/core/RandomVolume.h"

#include "core/GiOrientation.h"
#include "filters/GiShapeFilter.h"
#include "mc/McThreads.h"

#include <gtest/gtest.h>

#include <array>

namespace {

constexpr bool kGrow = true, kShrink = false;

/// A voxel takes the value `grow` if a neighbour inside the volume has it. `slice` -1: all slices of the
/// orientation, each by itself; orientation -1: neighbours along all axes.
std::vector<bool> changedPlainly(const RandomVolume& volume, const std::vector<bool>& bits, bool grow,
                                 int orientation, int slice)
{
    std::vector<bool> result = bits;
    const int axis = orientation < 0 ? -1 : giSliceAxis(orientation);
    for (unsigned long i = 0; i < bits.size(); ++i) {
        const unsigned long p[3] = {i % volume.dims[0], i / volume.dims[0] % volume.dims[1],
                                    i / volume.dims[0] / volume.dims[1]};
        if (slice >= 0 && p[axis] != static_cast<unsigned long>(slice)) continue;
        volume.forEachNeighbour(i, [&](unsigned long j) {
            const unsigned long q[3] = {j % volume.dims[0], j / volume.dims[0] % volume.dims[1],
                                        j / volume.dims[0] / volume.dims[1]};
            if (axis >= 0 && p[axis] != q[axis]) return;
            if (bits[j] == grow) result[i] = grow;
        });
    }
    return result;
}

class GrowShrink : public testing::TestWithParam<std::array<int, 3>>
{
protected:
    GrowShrink()
        : volume(static_cast<unsigned long>(GetParam()[0]), static_cast<unsigned long>(GetParam()[1]),
                 static_cast<unsigned long>(GetParam()[2]), 41)
    {
        selection.resize(volume.dims[0], volume.dims[1], volume.dims[2]);
        volume.drawSelection(selection.bits);
        start = asVector(selection.bits);
    }
    void restart()
    {
        for (unsigned long i = 0; i < start.size(); ++i) {
            if (start[i])
                selection.set(i);
            else
                selection.unset(i);
        }
    }

    RandomVolume volume;
    GiSelection3D selection;
    std::vector<bool> start;
};

} // namespace

TEST_P(GrowShrink, ChangesASliceAndNoOtherVoxel)
{
    for (int o = 0; o < 3; ++o) {
        for (const int slice : {0, selection.getNumSlices(o) / 2, selection.getNumSlices(o) - 1}) {
            for (const bool grow : {kGrow, kShrink}) {
                restart();
                GiSelection2D view = selection.getSlice(slice, o);
                (grow ? GiShapeFilter::dilate2D : GiShapeFilter::erode2D)(view);
                EXPECT_EQ(asVector(selection.bits), changedPlainly(volume, start, grow, o, slice))
                    << "orientation " << o << ", slice " << slice << ", grow " << grow;

                restart();
                GiSelection2D apart = selection.getSlice(slice, o);
                apart.makeLocal();
                (grow ? GiShapeFilter::dilate2D : GiShapeFilter::erode2D)(apart);
                EXPECT_EQ(asVector(selection.bits), start) << "a private selection stands alone";
                selection.getSlice(slice, o).copyData(apart);
                EXPECT_EQ(asVector(selection.bits), changedPlainly(volume, start, grow, o, slice));
            }
        }
    }
}

TEST_P(GrowShrink, ChangesAllSlicesOrTheVolumeOnAnyNumberOfThreads)
{
    const int usual = mcNumThreads();
    for (const int threads : {1, 2, 3}) {
        mcSetNumThreads(threads);
        for (int o = 0; o < 3; ++o) {
            restart();
            GiShapeFilter::dilateSlices(selection, o);
            EXPECT_EQ(asVector(selection.bits), changedPlainly(volume, start, kGrow, o, -1)) << o;
            restart();
            GiShapeFilter::erodeSlices(selection, o);
            EXPECT_EQ(asVector(selection.bits), changedPlainly(volume, start, kShrink, o, -1)) << o;
        }
        restart();
        GiShapeFilter::dilate3D(selection, nullptr);
        EXPECT_EQ(asVector(selection.bits), changedPlainly(volume, start, kGrow, -1, -1)) << threads;
        restart();
        GiShapeFilter::erode3D(selection, nullptr);
        EXPECT_EQ(asVector(selection.bits), changedPlainly(volume, start, kShrink, -1, -1)) << threads;
    }
    mcSetNumThreads(usual);
}

// Rows that fill words, that end just before or behind them, and that are shorter than one.
INSTANTIATE_TEST_SUITE_P(Sizes, GrowShrink,
                         testing::Values(std::array{1, 1, 1}, std::array{64, 7, 5}, std::array{63, 9, 4},
                                         std::array{65, 5, 6}, std::array{5, 33, 67}, std::array{130, 3, 9},
                                         std::array{37, 41, 131}));
