#include "core/GiScanConvert.h"
#include "core/GiSelection2D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

/// Even-odd test of a point that lies on no edge.
bool isInsidePolygon(const std::vector<McVec2f>& polygon, double x, double y)
{
    bool inside = false;
    for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
        const McVec2f &a = polygon[i], &b = polygon[j];
        if ((a.y > y) == (b.y > y)) continue;
        if (x < (double(b.x) - a.x) * (y - a.y) / (double(b.y) - a.y) + a.x) inside = !inside;
    }
    return inside;
}

int size(const std::vector<McVec2f>& polygon)
{
    return static_cast<int>(polygon.size());
}

TEST(PolygonFill, SamplesPixelCentresOfAnyPolygon)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<float> coordinate(-25.f, 65.f);
    for (int run = 0; run < 300; ++run) {
        std::vector<McVec2f> polygon(3 + random() % 12); // most of them cross themselves
        for (McVec2f& p : polygon) p = McVec2f(coordinate(random), coordinate(random));
        GiSelection2D slice;
        slice.resize(43, 39);
        slice.setSelection(size(polygon), polygon.data(), kSelectAdd);
        for (int y = 0; y < 39; ++y)
            for (int x = 0; x < 43; ++x)
                ASSERT_EQ(slice.isSet(x, y), isInsidePolygon(polygon, x + 0.5, y + 0.5))
                    << "polygon " << run << " at (" << x << ", " << y << ")";
    }
}

TEST(PolygonFill, EdgesThroughPixelCentres)
{
    const std::vector<McVec2f> square{{1.5f, 1.5f}, {4.5f, 1.5f}, {4.5f, 4.5f}, {1.5f, 4.5f}};
    GiSelection2D slice;
    slice.resize(7, 7);
    slice.setSelection(4, square.data(), kSelectAdd);
    EXPECT_EQ(slice.selectionBox, McBox2i(1, 1, 4, 3)) << "both sides and the upper edge count";
}

TEST(PolygonFill, SpansAreCutToTheWindowAndCarryFullCoverage)
{
    const std::vector<McVec2f> polygon{{-1e30f, -1e9f}, {1e30f, -1e9f}, {1e30f, 1e9f}, {-1e30f, 1e9f}};
    struct Seen
    {
        int pixels = 0;
        int coverage = 0;
    } seen;
    GiScanConvert converter(3, 2, 12, 5, 0);
    converter.setPixelCB(
        [](void* user, int x, int y, unsigned char coverage) {
            ASSERT_TRUE(x >= 3 && x <= 12 && y >= 2 && y <= 5);
            ++static_cast<Seen*>(user)->pixels;
            static_cast<Seen*>(user)->coverage += coverage;
        },
        &seen);
    converter.render(4, polygon.data());
    EXPECT_EQ(seen.pixels, 40);
    EXPECT_EQ(seen.coverage, 40 * 255);
    converter.setAntiAlias(1);
    converter.render(4, polygon.data());
    EXPECT_EQ(seen.pixels, 40) << "anti-aliased polygons draw nothing";
    const McVec2f broken[3] = {{0, 0}, {9, std::nanf("")}, {9, 9}};
    converter.setAntiAlias(0);
    converter.render(3, broken);
    EXPECT_EQ(seen.pixels, 40);
}

struct PolygonModes : testing::Test
{
    PolygonModes()
    {
        slice.resize(10, 10);
        slice.set(0, 0);
        slice.set(4, 4);
    }
    int numSet() const
    {
        int n = 0;
        for (int i = 0; i < 100; ++i) n += slice.isSet(i % 10, i / 10);
        return n;
    }
    const std::vector<McVec2f> square{{3, 3}, {6, 3}, {6, 6}, {3, 6}}; // 9 pixels, one of them set
    GiSelection2D slice;
};

TEST_F(PolygonModes, AddSubtractReplaceAndNothing)
{
    slice.setSelection(4, square.data(), static_cast<GiSelectMode>(3));
    EXPECT_EQ(numSet(), 2);
    slice.setSelection(4, square.data(), kSelectAdd);
    EXPECT_EQ(numSet(), 10);
    slice.setSelection(4, square.data(), kSelectSubtract);
    EXPECT_EQ(numSet(), 1);
    slice.setSelection(4, square.data(), kSelectReplace);
    EXPECT_EQ(numSet(), 9);
    EXPECT_EQ(slice.selectionBox, McBox2i(3, 3, 5, 5));
}

TEST_F(PolygonModes, TooFewPointsStillCountAsAChange)
{
    slice.setSelection(0, square.data(), kSelectAdd);
    EXPECT_EQ(numSet(), 2);
    EXPECT_EQ(slice.modified, 1);
    EXPECT_EQ(slice.selectionBox, McBox2i(0, 0, 4, 4));
}

TEST_F(PolygonModes, MaskLimitsWhatIsAddedButNotWhatIsTakenAway)
{
    McBitfield mask(100);
    mask.set(3 * 10 + 3);
    mask.set(9 * 10 + 9);
    slice.setSelection(4, square.data(), kSelectAdd, mask);
    EXPECT_EQ(numSet(), 3);
    EXPECT_TRUE(slice.isSet(3, 3));
    slice.setSelection(4, square.data(), kSelectSubtract, mask);
    EXPECT_EQ(numSet(), 1);

    slice.modified = 0;
    McBitfield wrongSize(99);
    slice.setSelection(4, square.data(), kSelectReplace, wrongSize);
    EXPECT_EQ(numSet(), 1);
    EXPECT_EQ(slice.modified, 0);
}

} // namespace
