#include "RandomVolume.h"

#include "core/giFillSlices.h"
#include "core/giOccupiedSlices.h"

#include <gtest/gtest.h>

namespace {

constexpr int kX = 37, kY = 11, kZ = 9; // rows begin at all bit positions

struct Selection : testing::Test
{
    Selection() : volume(kX, kY, kZ, 5) { selection.resize(kX, kY, kZ); }

    void fillAtRandom() { volume.drawSelection(selection.bits); }
    /// The voxel of a slice's pixel, by the geometry of the orientations.
    unsigned long voxelOf(int o, int slice, int i, int j) const
    {
        return o == 0   ? volume.index(slice, i, j)
               : o == 1 ? volume.index(i, slice, j)
                        : volume.index(i, j, slice);
    }

    RandomVolume volume;
    GiSelection3D selection;
};

TEST_F(Selection, SlicesAreWindowsOntoTheVolume)
{
    fillAtRandom();
    for (int o = 0; o < 3; ++o) {
        int size[3];
        selection.getDims(size, o);
        EXPECT_EQ(size[0] * size[1] * size[2], kX * kY * kZ);
        for (const int slice : {0, size[2] / 2, size[2] - 1}) {
            GiSelection2D view = selection.getSlice(slice, o);
            McBox2i box(1000, 1000, -1, -1);
            for (int j = 0; j < size[1]; ++j) {
                for (int i = 0; i < size[0]; ++i) {
                    ASSERT_EQ(view.isSet(i, j), selection.isSet(voxelOf(o, slice, i, j)))
                        << o << " " << slice << " (" << i << ", " << j << ")";
                    if (view.isSet(i, j))
                        box = McBox2i(std::min(box.xmin, i), std::min(box.ymin, j), std::max(box.xmax, i),
                                      std::max(box.ymax, j));
                }
            }
            EXPECT_EQ(view.selectionBox, box.isEmpty() ? McBox2i(100000, 100000, -1, -1) : box);

            const GiSelection2D before(view);
            view.makeLocal();
            McBitfield all = selection.bits;
            view.invert();
            EXPECT_EQ(selection.bits, all) << "a private copy no longer reaches the volume";
            view.invert();
            EXPECT_EQ(view.selectionBox, before.selectionBox);
        }
    }
    GiSelection2D x3 = selection.getSlice(3, 0);
    x3.set(4, 5);
    EXPECT_TRUE(selection.get(3, 4, 5));
    x3.unset(4, 5);
    EXPECT_FALSE(selection.get(3, 4, 5));
}

TEST_F(Selection, ChangesOfASliceLeaveAllOtherVoxelsAlone)
{
    for (int o = 0; o < 3; ++o) {
        fillAtRandom();
        volume.drawLabels(3, 4);
        const std::vector<bool> before = asVector(selection.bits);
        const int slice = selection.getNumSlices(o) - 2;
        GiSelection2D view = selection.getSlice(slice, o);
        std::vector<bool> expected = before;
        const auto expectPixels = [&](const auto& pixel) {
            for (int j = 0; j < selection.getHeight(o); ++j)
                for (int i = 0; i < selection.getWidth(o); ++i)
                    expected[voxelOf(o, slice, i, j)] = pixel(voxelOf(o, slice, i, j), i, j);
            EXPECT_EQ(asVector(selection.bits), expected) << "orientation " << o;
        };
        view.invert();
        expectPixels([&](unsigned long v, int, int) { return !before[v]; });
        const unsigned char* first = volume.labels.data() + voxelOf(o, slice, 0, 0);
        view.setTissue(first, 1, kSelectAdd);
        expectPixels([&](unsigned long v, int, int) { return !before[v] || volume.labels[v] == 1; });
        view.setTissue(first, 2, kSelectSubtract);
        expectPixels([&](unsigned long v, int, int) {
            return (!before[v] || volume.labels[v] == 1) && volume.labels[v] != 2;
        });
        view.setTissue(first, 0, kSelectReplace);
        expectPixels([&](unsigned long v, int, int) { return volume.labels[v] == 0; });
        view.setTissue(first, 77, kSelectReplace); // does not occur
        expectPixels([](unsigned long, int, int) { return false; });
        EXPECT_EQ(selection.isEmpty(slice, o), 1);
        EXPECT_EQ(selection.isEmpty(slice - 1, o), 0);
        view.set(2, 3);
        EXPECT_EQ(selection.isEmpty(slice, o), 0);
    }
}

TEST_F(Selection, OccupiedSlicesAreThoseThatAreNotEmpty)
{
    for (const int nx : {1, 37, 64, 130}) {
        selection.resize(static_cast<unsigned long>(nx), kY, kZ);
        for (int n = 0; n < 6; ++n) {
            selection.clear();
            for (int i = 0; i < n; ++i) selection.set(volume.below(nx), volume.below(kY), volume.below(kZ));
            for (int o = 0; o < 3; ++o) {
                std::vector<unsigned char> expected;
                for (int i = 0; i < selection.getNumSlices(o); ++i)
                    expected.push_back(!selection.isEmpty(i, o));
                EXPECT_EQ(giOccupiedSlices(selection, o), expected) << nx << ", orientation " << o;
            }
        }
    }
}

TEST_F(Selection, HolesOfASliceAreWhatTheBackgroundOfItsBorderDoesNotReach)
{
    for (int o = 0; o < 3; ++o) {
        fillAtRandom();
        const std::vector<bool> before = asVector(selection.bits);
        const int slice = selection.getNumSlices(o) / 2, w = selection.getWidth(o),
                  h = selection.getHeight(o);
        std::vector<bool> outside(before.size());
        for (bool changed = true; changed;) {
            changed = false;
            for (int j = 0; j < h; ++j) {
                for (int i = 0; i < w; ++i) {
                    const unsigned long v = voxelOf(o, slice, i, j);
                    if (before[v] || outside[v]) continue;
                    const bool isReached =
                        i == 0 || j == 0 || i == w - 1 || j == h - 1 ||
                        outside[voxelOf(o, slice, i - 1, j)] || outside[voxelOf(o, slice, i + 1, j)] ||
                        outside[voxelOf(o, slice, i, j - 1)] || outside[voxelOf(o, slice, i, j + 1)];
                    outside[v] = isReached;
                    changed = changed || isReached;
                }
            }
        }
        std::vector<bool> expected = before;
        for (int j = 0; j < h; ++j)
            for (int i = 0; i < w; ++i) expected[voxelOf(o, slice, i, j)] = !outside[voxelOf(o, slice, i, j)];
        selection.getSlice(slice, o).fillSelection(-1, -1, 0);
        EXPECT_EQ(asVector(selection.bits), expected) << "orientation " << o;
    }
}

TEST(SelectionSlices, AreFilledAsEachOfThemAlone)
{
    // Columns in several words, rows that begin at all bit positions, heights beside those of a square.
    constexpr unsigned long kSizes[][3] = {{150, 70, 9}, {64, 64, 5}, {37, 11, 9}, {193, 63, 4}, {5, 130, 7}};
    for (const unsigned long* size : kSizes) {
        RandomVolume volume(size[0], size[1], size[2], 11);
        for (const int oneOf : {1, 3, 40}) { // slices with voxels
            for (int o = 0; o < 3; ++o) {
                GiSelection3D filled, plain;
                filled.resize(size[0], size[1], size[2]);
                for (unsigned long i = 0; i < volume.count(); ++i) {
                    const unsigned long p[3] = {i % size[0], i / size[0] % size[1], i / size[0] / size[1]};
                    if (p[o] % static_cast<unsigned long>(oneOf) == 0 && volume.below(3) > 0) filled.set(i);
                }
                plain.resize(size[0], size[1], size[2]);
                plain.copyFrom(filled.bits);
                const int n = filled.getNumSlices(o), last = oneOf == 3 ? n / 2 : n - 1;
                for (int slice = 0; slice <= last; ++slice) plain.getSlice(slice, o).fillSelection(-1, -1, 0);
                std::vector<int> asked;
                giFillSlices(filled, o, [&](int slice) {
                    asked.push_back(slice);
                    return slice != last;
                });
                EXPECT_EQ(asked.size(), static_cast<std::size_t>(last) + 1);
                EXPECT_EQ(asked.back(), last);
                EXPECT_TRUE(filled.bits == plain.bits) << size[0] << " x " << size[1] << " x " << size[2]
                                                       << ", orientation " << o << ", one of " << oneOf;
            }
        }
    }
}

TEST_F(Selection, CopyingSlices)
{
    for (int o = 0; o < 3; ++o) {
        fillAtRandom();
        const std::vector<bool> before = asVector(selection.bits);
        const int last = selection.getNumSlices(o) - 1;
        selection.copy(last, -1, o);
        selection.copy(last + 1, 0, o);
        EXPECT_EQ(asVector(selection.bits), before) << "slices outside are ignored";

        selection.copy(last, 1, o);
        GiSelection2D source;
        source.resize(selection.getWidth(o), selection.getHeight(o));
        ASSERT_EQ(source.copyData(selection.getSlice(2, o)), 1);
        selection.setSlice(&source, o, 0);
        std::vector<bool> expected = before;
        for (int j = 0; j < selection.getHeight(o); ++j) {
            for (int i = 0; i < selection.getWidth(o); ++i) {
                expected[voxelOf(o, last, i, j)] = before[voxelOf(o, 1, i, j)];
                // setSlice only adds.
                expected[voxelOf(o, 0, i, j)] = before[voxelOf(o, 0, i, j)] || before[voxelOf(o, 2, i, j)];
            }
        }
        EXPECT_EQ(asVector(selection.bits), expected) << "orientation " << o;
    }
    GiSelection2D small;
    small.resize(3, 3);
    EXPECT_EQ(small.copyData(selection.getSlice(0, 2)), 0);
}

TEST_F(Selection, BoxesGrowByUpdatesAndShrinkOnlyWhenComputed)
{
    GiSelection2D view = selection.getSlice(4, 2);
    EXPECT_EQ(view.selectionBox, McBox2i(100000, 100000, -1, -1));
    EXPECT_EQ(view.modified, 0);
    view.set(35, 2);
    view.set(36, 9);
    view.set(0, 5);
    view.updateSelectionBox(McBox2i(30, 0, 99, 7)); // leaves (36, 9) and (0, 5) out
    EXPECT_EQ(view.selectionBox, McBox2i(35, 2, 35, 2));
    view.updateSelectionBox(McBox2i(-5, -5, 99, 99));
    EXPECT_EQ(view.selectionBox, McBox2i(0, 2, 36, 9));
    view.unset(0, 5);
    view.updateSelectionBox(McBox2i(0, 0, 36, 10));
    EXPECT_EQ(view.selectionBox, McBox2i(0, 2, 36, 9));
    view.extendSelectionBox(McBox2i(1, 1, 0, 0));
    EXPECT_EQ(view.selectionBox, McBox2i(0, 2, 36, 9));
    view.computeSelectionBox();
    EXPECT_EQ(view.selectionBox, McBox2i(35, 2, 36, 9));

    McBox2i cleared;
    EXPECT_EQ(view.clear(cleared), 1);
    EXPECT_EQ(cleared, McBox2i(35, 2, 36, 9));
    EXPECT_EQ(view.clear(cleared), 0);
    EXPECT_EQ(cleared, McBox2i(1, 1, 0, 0));
    EXPECT_EQ(view.selectionBox, McBox2i(1, 1, 0, 0));
    EXPECT_EQ(view.modified, 1);
    view.extendSelectionBox(McBox2i(3, 4, 5, 6));
    EXPECT_EQ(view.selectionBox, McBox2i(3, 4, 5, 6));
}

TEST_F(Selection, CopiesOfPrivateSelectionsAreIndependentAndCopiesOfViewsAreNot)
{
    GiSelection2D own;
    own.resize(40, 3);
    own.set(39, 2);
    GiSelection2D copy(own);
    copy.unset(39, 2);
    EXPECT_TRUE(own.isSet(39, 2));
    own.resize(40, 3); // unchanged size: nothing happens
    EXPECT_TRUE(own.isSet(39, 2));

    GiSelection2D other = copy;
    other = selection.getSlice(1, 2);
    other.set(5, 5);
    EXPECT_TRUE(selection.get(5, 5, 1));
    // kept: the test by index has no offset, set and unset have.
    other.set(0ul);
    EXPECT_TRUE(selection.get(0, 0, 1));
    EXPECT_FALSE(other.isSet(0ul));
}

TEST_F(Selection, VolumeOperations)
{
    selection.invert();
    EXPECT_TRUE(selection.isSet());
    EXPECT_EQ(selection.getWord(selection.numWords() - 1), ~0u >> (32 - kX * kY * kZ % 32));
    selection.clear();
    EXPECT_FALSE(selection.isSet());

    // A closed shell, and a second one with a hole to the outside.
    for (int i = 0; i < 125; ++i) {
        const int x = i % 5, y = i / 5 % 5, z = i / 25;
        const bool inside = x > 0 && x < 4 && y > 0 && y < 4 && z > 0 && z < 4;
        if (inside) continue;
        selection.set(x + 2, y + 2, z + 2);
        if (x != 0 || y != 2 || z != 2) selection.set(x + 30, y + 2, z + 2);
    }
    selection.fillHoles();
    EXPECT_TRUE(selection.get(4, 4, 4));
    EXPECT_FALSE(selection.get(32, 4, 4));
    EXPECT_FALSE(selection.get(0, 0, 0));

    selection.sliceFlags[1][3] = 1;
    selection.resize(kX, kY, kZ);
    EXPECT_EQ(selection.sliceFlags[1][3], 1u) << "unchanged size: nothing happens";
    selection.resize(kX, kY, kZ + 1);
    EXPECT_EQ(selection.sliceFlags[1][3], 0u);
    EXPECT_EQ(selection.sliceFlags[2].size(), kZ + 1);
    EXPECT_FALSE(selection.isSet());
}

} // namespace
