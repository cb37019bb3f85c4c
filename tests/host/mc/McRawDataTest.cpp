#include "mc/McRawData.h"
#include "mc/McData2D.h"
#include "mc/McData3D.h"
#include "mc/McHistogram.h"
#include "mc/McMemoryException.h"
#include "mc/McRawData3D.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <random>
#include <vector>

namespace {

constexpr unsigned long kDims[3] = {5, 4, 3};

struct Voxel
{
    int x, y, z;
};

Voxel voxelOfPixel(int orientation, int i, int j, int s)
{
    switch (orientation) {
    case 1:
        return {i, s, j};
    case 2:
        return {i, j, s};
    default:
        return {s, i, j};
    }
}

int numberOfVoxel(const Voxel& v)
{
    return v.x + 5 * (v.y + 4 * v.z);
}

// A volume whose elements of any size hold their own number.
std::vector<unsigned char> numberedVolume(int elementSize)
{
    std::vector<unsigned char> bytes(60 * elementSize, 0xee);
    for (int i = 0; i < 60; i++) bytes[i * elementSize] = static_cast<unsigned char>(i);
    return bytes;
}

class McRawData3DOf : public testing::TestWithParam<int>
{
};

} // namespace

TEST_P(McRawData3DOf, AddressesEveryPixelOfEveryOrientation)
{
    const int size = GetParam();
    std::vector<unsigned char> bytes = numberedVolume(size);
    McRawData3D volume;
    volume.init(kDims, size, bytes.data());
    const int expectedDims[4][3] = {{4, 3, 5}, {5, 3, 4}, {5, 4, 3}, {4, 3, 5}};
    for (int orientation = 0; orientation < 4; orientation++) {
        int dims[3];
        volume.getDims(dims, orientation);
        EXPECT_TRUE(std::equal(dims, dims + 3, expectedDims[orientation]));
        for (int s = 0; s < dims[2]; s++) {
            unsigned char* first = nullptr;
            int dx = 0, dy = 0;
            long longDx = 0, longDy = 0;
            volume.accessSlice(orientation, s, first, dx, dy);
            volume.accessSlice(orientation, s, first, longDx, longDy);
            EXPECT_EQ(dx, longDx);
            EXPECT_EQ(dy, longDy);
            McRawData2D view;
            volume.getSlice(orientation, s, view, kMcViewSlice);
            for (int j = 0; j < dims[1]; j++)
                for (int i = 0; i < dims[0]; i++) {
                    const int number = numberOfVoxel(voxelOfPixel(orientation, i, j, s));
                    ASSERT_EQ(first[i * dx + j * dy], number);
                    ASSERT_EQ(volume.getOffset(i, j, s, orientation), number);
                    ASSERT_EQ(view.element(i, j), bytes.data() + number * size);
                }
        }
    }
}

TEST_P(McRawData3DOf, SlicesTravelOutAndBack)
{
    const int size = GetParam();
    std::vector<unsigned char> bytes = numberedVolume(size);
    const std::vector<unsigned char> before = bytes;
    std::vector<unsigned char> other(bytes.size(), 0);
    McRawData3D volume, target;
    volume.init(kDims, size, bytes.data());
    target.init(kDims, size, other.data());
    for (int orientation = 0; orientation < 3; orientation++) {
        std::fill(other.begin(), other.end(), 0);
        int dims[3];
        volume.getDims(dims, orientation);
        for (int s = 0; s < dims[2]; s++) {
            McRawData2D local;
            volume.getSlice(orientation, s, local, kMcViewSlice);
            local.makeLocal();
            EXPECT_EQ(local.yStride(), long(dims[0]) * size);
            // A second way out, into memory that stands already.
            std::vector<unsigned char> pixels(dims[0] * dims[1] * size);
            McRawData2D copy;
            copy.init(dims[0], dims[1], size, size, dims[0] * size, pixels.data());
            volume.getSlice(orientation, s, copy, kMcCopySlice);
            EXPECT_EQ(std::memcmp(pixels.data(), local.data(), pixels.size()), 0);
            // The copies must not depend on the volume any more, nor a view of one on its owner's end.
            McRawData2D viewOfLocal(local);
            EXPECT_EQ(viewOfLocal.data(), local.data());
            local = viewOfLocal;
            target.putSlice(orientation, s, local);
        }
        EXPECT_EQ(other, before);
    }
    EXPECT_EQ(bytes, before);
}

INSTANTIATE_TEST_SUITE_P(ElementSizes, McRawData3DOf, testing::Values(1, 2, 3, 4, 8));

TEST(McData, ViewsAndOwnsVolumes)
{
    std::vector<int> values(60);
    std::iota(values.begin(), values.end(), 0);
    McData3D<int> view(values.data(), 5, 4, 3);
    EXPECT_EQ(view(4, 2, 1), 34);
    McData2D<int> slice(values.data() + 2, 4, 3, 5, 20);
    EXPECT_EQ(slice(3, 2), numberOfVoxel({2, 3, 2}));

    McData3D<int> own(7, 6, 5);
    EXPECT_EQ(std::count(own.data(), own.data() + own.numElements(), 0), 210);
    own(6, 5, 4) = 9;
    McData3D<int> taken(std::move(own));
    EXPECT_EQ(taken(6, 5, 4), 9);
    EXPECT_THROW(taken.resize(1 << 30, 1 << 30, 1 << 30), McMemoryException);
    EXPECT_EQ(taken(6, 5, 4), 9) << "a failed request keeps the old memory";
}

TEST(McElementType, DispatchMeetsTheTableOfCodes)
{
    const struct
    {
        int code, size;
        const char* name;
    } table[] = {{0, 1, "unsigned char"}, {1, 2, "short"},    {7, 2, "unsigned short"}, {2, 4, "int"},
                 {8, 4, "unsigned int"},  {3, 4, "float"},    {4, 8, "double"},         {5, 0, "unknown"},
                 {6, 0, "unknown"},       {-1, 0, "unknown"}, {9, 0, "unknown"}};
    for (const auto& row : table) {
        int size = 0, code = row.code;
        EXPECT_EQ(mcDispatch(row.code,
                             [&](auto* tag) {
                                 size = sizeof(*tag);
                                 code = mcElementCode<std::remove_pointer_t<decltype(tag)>>();
                             }),
                  row.size > 0);
        EXPECT_EQ(size, row.size);
        EXPECT_EQ(code, row.code);
        EXPECT_EQ(mcElementSize(row.code), row.size);
        EXPECT_STREQ(mcElementName(row.code), row.name);
    }
}

TEST(McRawData, MapsBytesLinearly)
{
    std::vector<unsigned char> bytes(256);
    std::iota(bytes.begin(), bytes.end(), 0);
    McRawData::mapLinear(bytes.data(), bytes.data(), 256, -255.0, -1.0);
    for (int v = 0; v < 256; v++) EXPECT_EQ(bytes[v], 255 - v);
    McRawData::mapLinear(bytes.data(), bytes.data(), 256, 0.0, 3.0);
    EXPECT_EQ(bytes[0], 255);
    EXPECT_EQ(bytes[245], 30);
}

TEST(McHistogram, CountsEachValueOnceInItsBin)
{
    std::mt19937 random(43);
    std::vector<short> shorts(50001);
    for (short& v : shorts) v = short(int(random() % 3001) - 1500);
    std::vector<float> floats(shorts.begin(), shorts.end());
    const McHistogram ofShorts(McTypedPointer(shorts.data(), kMcShort), shorts.size(), 120);
    const McHistogram ofFloats(McTypedPointer(floats.data(), kMcFloat), floats.size(), 120);
    const double low = *std::min_element(shorts.begin(), shorts.end());
    const double high = *std::max_element(shorts.begin(), shorts.end());
    ASSERT_EQ(ofShorts.numBins(), 120);
    EXPECT_EQ(ofShorts.getMin(), low);
    EXPECT_EQ(ofShorts.getMax(), high);
    for (int bin = 0; bin < 120; bin++) {
        const double begin = low + bin * (high - low) / 120;
        const double end = low + (bin + 1) * (high - low) / 120;
        const auto expected = std::count_if(shorts.begin(), shorts.end(), [&](short v) {
            return v >= begin - 1e-9 && (v < end - 1e-9 || (bin == 119 && v <= high));
        });
        EXPECT_EQ(long(ofShorts.count(bin)), expected) << bin;
        EXPECT_EQ(ofFloats.count(bin), ofShorts.count(bin)) << bin;
    }
}

TEST(McHistogram, GivesFewWholeValuesABinEach)
{
    std::vector<int> values{10, 12, 12, 15};
    const McHistogram h(McTypedPointer(values.data(), kMcInt), 4, 120);
    ASSERT_EQ(h.numBins(), 6);
    const unsigned long expected[] = {1, 0, 2, 0, 0, 1};
    for (int i = 0; i < 6; i++) EXPECT_EQ(h.count(i), expected[i]);

    double constant[] = {4.5, 4.5, NAN};
    const McHistogram single(McTypedPointer(constant, kMcDouble), 3, 120);
    ASSERT_EQ(single.numBins(), 1);
    EXPECT_EQ(single.count(0), 2u);
    EXPECT_EQ(McHistogram(McTypedPointer(constant + 2, kMcDouble), 1, 120).numBins(), 0) << "no value";

    double extremes[] = {-1.7e308, 1.7e308, 0};
    const McHistogram wide(McTypedPointer(extremes, kMcDouble), 3, 10);
    EXPECT_EQ(wide.count(0) + wide.count(5) + wide.count(9), 3u);

    EXPECT_EQ(McHistogram(McTypedPointer(values.data(), kMcInt), 0, 120).numBins(), 0);
    EXPECT_EQ(McHistogram(McTypedPointer(values.data(), 6), 4, 120).getMax(), 0);
}
