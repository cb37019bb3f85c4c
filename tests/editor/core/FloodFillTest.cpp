#include "RandomVolume.h"
#include "core/mcFloodFill.h"
#include "hx/HxMessage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

struct Box6
{
    int b[6];
    bool operator==(const Box6& other) const { return std::equal(b, b + 6, other.b); }
};

Box6 boxOf(const RandomVolume& v, const std::vector<bool>& region, const int* seed)
{
    Box6 box{{seed[0], seed[0], seed[1], seed[1], seed[2], seed[2]}};
    for (unsigned long i = 0; i < region.size(); ++i) {
        if (!region[i]) continue;
        const int p[3] = {static_cast<int>(i % v.dims[0]), static_cast<int>(i / v.dims[0] % v.dims[1]),
                          static_cast<int>(i / v.dims[0] / v.dims[1])};
        for (int axis = 0; axis < 3; ++axis) {
            box.b[2 * axis] = std::min(box.b[2 * axis], p[axis]);
            box.b[2 * axis + 1] = std::max(box.b[2 * axis + 1], p[axis]);
        }
    }
    return box;
}

template <class T>
struct WindowChecker
{
    bool accepts(T value, int x, int y, int z) const
    {
        if (window.labels && window.label >= 0 &&
            window.labels[static_cast<unsigned long>(z * size[1] + y) * size[0] + x] != window.label)
            return false;
        return value >= window.min && value <= window.max;
    }
    McFillWindow<T> window;
    unsigned long size[2];
};

template <class T>
struct WindowFill : testing::Test
{
};
using ElementTypes = testing::Types<unsigned char, short, unsigned short, int, unsigned int, float, double>;
TYPED_TEST_SUITE(WindowFill, ElementTypes);

TYPED_TEST(WindowFill, EqualsTheTemplateAndAPlainSearch)
{
    using T = TypeParam;
    const unsigned long sizes[][3] = {{70, 13, 11}, {64, 5, 7},  {3, 40, 30},
                                      {200, 1, 9},  {129, 9, 1}, {1, 1, 1}};
    unsigned int seedNumber = 1;
    for (const auto& size : sizes) {
        for (int run = 0; run < 12; ++run) {
            RandomVolume v(size[0], size[1], size[2], seedNumber++);
            v.drawLabels(3, 1 + run % 4 * 8);
            std::vector<T> values(v.count());
            for (T& value : values) value = static_cast<T>(v.below(100));
            if constexpr (std::is_floating_point_v<T>)
                values[v.count() / 2] = std::numeric_limits<T>::quiet_NaN();
            const bool byLabel = run % 2;
            const int x = v.below(static_cast<int>(size[0])), y = v.below(static_cast<int>(size[1])),
                      z = v.below(static_cast<int>(size[2]));
            const int at[3] = {x, y, z};
            const unsigned long seed = v.index(x, y, z);
            const McFillWindow<T> window{values.data(), static_cast<T>(10), static_cast<T>(50 + 5 * run),
                                         byLabel ? v.labels.data() : nullptr, v.labels[seed]};
            WindowChecker<T> checker{window, {size[0], size[1]}};
            const McData3D<T> data(values.data(), static_cast<int>(size[0]), static_cast<int>(size[1]),
                                   static_cast<int>(size[2]));

            const auto accepted = [&](unsigned long i) {
                return values[i] >= window.min && values[i] <= window.max &&
                       (!byLabel || v.labels[i] == v.labels[seed]);
            };
            // What earlier fills have marked must be respected in the same way by both.
            McBitfield plainMarks(v.count());
            bool isMarked = false;
            for (unsigned long i = 0; run % 3 == 0 && i < v.count(); ++i) {
                const bool runGoesOn = i % size[0] > 0 && accepted(i - 1) && accepted(i);
                if (!runGoesOn) isMarked = v.below(4) == 0;
                if (isMarked) plainMarks.set(i);
            }
            McBitfield fastMarks = plainMarks;
            Box6 plainBox, fastBox;
            const unsigned long plain = mcFloodFill3D(data, checker, x, y, z, plainMarks, plainBox.b);
            const unsigned long fast = mcFloodFillWindow(window, v.dims, x, y, z, fastMarks, fastBox.b);
            ASSERT_EQ(fast, plain) << "seed number " << seedNumber;
            ASSERT_EQ(fastMarks, plainMarks) << "seed number " << seedNumber;
            ASSERT_EQ(fastBox, plainBox) << "seed number " << seedNumber;
            if (run % 3 == 0) continue;

            const std::vector<bool> expected = v.region(seed, accepted);
            ASSERT_EQ(asVector(fastMarks), expected);
            ASSERT_EQ(fast, static_cast<unsigned long>(std::count(expected.begin(), expected.end(), true)));
            if (size[1] == 1 && size[2] == 1) continue; // see BoxOfASingleRowStaysAtTheSeed
            ASSERT_EQ(fastBox, boxOf(v, expected, at));
        }
    }
}

TEST(FloodFill3D, BoxOfASingleRowStaysAtTheSeed)
{
    std::vector<unsigned char> row(100, 1);
    const McData3D<unsigned char> data(row.data(), 100, 1, 1);
    McEqualityChecker<unsigned char> checker(1);
    McFloodFill3DDefaultProgress progress;
    McBitfield plain, fast;
    Box6 plainBox, fastBox;
    EXPECT_EQ(mcFloodFill3D_Progress(data, checker, progress, 40, 0, 0, plain, plainBox.b), 100u);
    EXPECT_EQ(mcFloodFill3D(data, checker, 40, 0, 0, fast, fastBox.b), 100u);
    EXPECT_EQ(plainBox, (Box6{{40, 40, 0, 0, 0, 0}}));
    EXPECT_EQ(fastBox, plainBox);
}

TEST(FloodFill3D, SeedsOutsideOrRefused)
{
    RandomVolume v(8, 8, 8, 1);
    const McData3D<unsigned char> data(v.labels.data(), 8, 8, 8);
    McEqualityChecker<unsigned char> refuses(1), accepts(0);
    McFloodFill3DDefaultProgress progress;
    McBitfield marks;
    Box6 box;
    EXPECT_EQ(mcFloodFill3D(data, refuses, 3, 4, 5, marks, box.b), 0u);
    EXPECT_EQ(box, (Box6{{3, 3, 4, 4, 5, 5}}));
    EXPECT_EQ(mcFloodFill3D_Progress(data, refuses, progress, 3, 4, 5, marks, box.b), 0u);
    EXPECT_EQ(box, (Box6{{3, 3, 4, 4, 5, 5}}));
    EXPECT_EQ(mcFloodFill3D(data, accepts, 8, 0, -1, marks, box.b), 0u);
    EXPECT_EQ(mcFloodFill3D_Progress(data, accepts, progress, 8, 0, -1, marks, box.b), 0u);
    EXPECT_EQ(box, (Box6{{8, 8, 0, 0, -1, -1}}));
    EXPECT_EQ(marks.numBits(), 512u);
    EXPECT_FALSE(marks.isAnyBitSet());
}

TEST(FloodFill3D, SidesBeyondSixteenBits)
{
    std::vector<unsigned char> volume(40000 * 3, 7);
    for (int x = 0; x < 40000; x += 2) volume[40000 + x] = 0; // a comb between two rows
    const McData3D<unsigned char> data(volume.data(), 40000, 3, 1);
    McEqualityChecker<unsigned char> checker(7);
    McFloodFill3DDefaultProgress progress;
    McBitfield marks;
    EXPECT_EQ(mcFloodFill3D(data, checker, 39999, 0, 0, marks, nullptr), 100000u);
    EXPECT_EQ(mcFloodFill3D_Progress(data, checker, progress, 5, 0, 0, marks, nullptr), 0u);
}

TEST(FloodFill3D, RunsOnASelectionToo)
{
    RandomVolume v(33, 9, 8, 6);
    GiSelection3D selection;
    selection.resize(33, 9, 8);
    v.drawSelection(selection.bits);
    const unsigned long seed = v.index(16, 4, 4);
    selection.set(seed);
    McEqualityChecker<unsigned char> isSelected(1);
    McBitfield marks;
    mcFloodFill3D(selection, isSelected, 16, 4, 4, marks, nullptr);
    EXPECT_EQ(asVector(marks), v.region(seed, [&](unsigned long i) { return selection.isSet(i); }));
}

TEST(FloodFill2D, EqualsAPlainSearchInEveryOrientation)
{
    RandomVolume v(41, 23, 19, 3);
    v.drawLabels(2, 3);
    for (int o = 0; o < 3; ++o) {
        const int width = static_cast<int>(o == 0 ? v.dims[1] : v.dims[0]);
        const int height = static_cast<int>(o == 2 ? v.dims[1] : v.dims[2]);
        const long xStep = o == 0 ? 41 : 1, yStep = o == 2 ? 41 : 41 * 23;
        for (int run = 0; run < 20; ++run) {
            McData2D<unsigned char> slice(v.labels.data(), width, height, xStep, yStep);
            const int x = v.below(width), y = v.below(height);
            McEqualityChecker<unsigned char> checker(slice(x, y));
            McBitfield marks;
            int box[4];
            const int count = mcFloodFill2D(slice, checker, x, y, marks, box);

            // The slice as a volume of one plane.
            RandomVolume flat(static_cast<unsigned long>(width), static_cast<unsigned long>(height), 1, 1);
            for (int j = 0; j < height; ++j)
                for (int i = 0; i < width; ++i) flat.labels[flat.index(i, j, 0)] = slice(i, j);
            const std::vector<bool> expected = flat.region(
                flat.index(x, y, 0), [&](unsigned long i) { return flat.labels[i] == checker.value; });
            ASSERT_EQ(asVector(marks), expected);
            ASSERT_EQ(count, std::count(expected.begin(), expected.end(), true));
            const int seed[3] = {x, y, 0};
            const Box6 tight = boxOf(flat, expected, seed);
            ASSERT_EQ((std::vector<int>{box, box + 4}),
                      (std::vector<int>{tight.b[0], tight.b[2], tight.b[1], tight.b[3]}));
        }
    }
}

TEST(FloodFill2D, SecondFillStopsAtTheFirstButCountsItsSeed)
{
    std::vector<unsigned char> row{1, 1, 1, 1, 0, 1};
    McData2D<unsigned char> slice(row.data(), 6, 1);
    McEqualityChecker<unsigned char> checker(1);
    McBitfield marks(6);
    marks.set(2);
    EXPECT_EQ(mcFloodFill2D(slice, checker, 0, 0, marks, nullptr), 2);
    EXPECT_FALSE(marks.isSet(3));
    EXPECT_EQ(mcFloodFill2D(slice, checker, 2, 0, marks, nullptr), 2) << "the seed and pixel 3";
    int box[4];
    EXPECT_EQ(mcFloodFill2D(slice, checker, 4, 0, marks, box), 0);
    EXPECT_EQ(mcFloodFill2D(slice, checker, -1, 7, marks, box), 0);
    EXPECT_EQ((std::vector<int>{box, box + 4}), (std::vector<int>{-1, 7, -1, 7}));
}

TEST(FillSelection, HolesAndRegions)
{
    using Rows = std::vector<std::string>;
    const Rows drawing{"......##", ".####..#", ".#.##.##", ".###.#..", ".####.#.", "##....##"};
    GiSelection3D volume;
    volume.resize(8, 6, 2);
    GiSelection2D slice = volume.getSlice(1, 2);
    const auto draw = [&] {
        slice.clear();
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 8; ++x)
                if (drawing[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#') slice.set(x, y);
    };
    const auto drawn = [&] {
        Rows rows(6);
        for (int i = 0; i < 48; ++i)
            rows[static_cast<std::size_t>(i / 8)] += slice.isSet(i % 8, i / 8) ? '#' : '.';
        return rows;
    };
    draw();
    slice.fillSelection(-1, 2, 1); // outside: closes all holes, whatever the mode
    EXPECT_EQ(drawn(), (Rows{"......##", ".####..#", ".####.##", ".#####..", ".####.#.", "##....##"}));
    EXPECT_EQ(slice.modified, 1);
    draw();
    slice.fillSelection(2, 2, 0);
    EXPECT_EQ(drawn(), (Rows{"......##", ".####..#", ".####.##", ".###.#..", ".####.#.", "##....##"}));
    slice.fillSelection(2, 2, 1);
    EXPECT_EQ(drawn(), (Rows{"......##", ".......#", "......##", ".....#..", "......#.", "......##"}));
    slice.fillSelection(0, 0, 1); // no selected pixel there
    EXPECT_EQ(slice.selectionBox, McBox2i(5, 0, 7, 5));
    slice.clear();
    slice.fillSelection(-1, -1, 0);
    EXPECT_TRUE(slice.selectionBox.isEmpty());
    EXPECT_FALSE(volume.isSet());

    GiSelection2D column; // both ends of each row are one pixel
    column.resize(1, 4);
    column.set(0, 2);
    column.fillSelection(-1, -1, 0);
    EXPECT_EQ(column.selectionBox, McBox2i(0, 2, 0, 2));
}

TEST(FillSelection, MissingMemoryIsReportedAndChangesNothing)
{
    McBitfield bits(64);
    bits.set(5);
    GiSelection2D slice;
    slice.bits = &bits;
    slice.width = slice.height = 1ul << 27; // no strides: all pixels are one bit
    std::string said;
    HxMessage::setSink([&](const char* text) { said += text; });
    slice.fillSelection(3, 3, 0);
    HxMessage::setSink({});
    EXPECT_EQ(said.rfind("Not enough memory (22517998136", 0), 0u) << said; // 2 to the 51st bytes
    EXPECT_EQ(slice.modified, 0);
    EXPECT_FALSE(bits.isSet(0));
}

} // namespace
