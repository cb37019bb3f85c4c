#include "display/GiGreyImage.h"

#include "hx/HxColormap.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

/// A value as it lies in the volume, by the plain rule.
struct Expected
{
    int grey;
    unsigned int packed;
};

Expected expected(const GiGreyImage& image, float min, float max, float v)
{
    unsigned int table[256], below, above;
    GiGreyImage::initPackedColors(image.colormap, table, below, above);
    const float d = max - min, scale = d == 0 ? 255 : 255 / d, bias = -scale * min, t = scale * v + bias;
    Expected e;
    if (t > 255)
        e = {255, above};
    else if (t >= 0)
        e = {static_cast<int>(std::rint(t)), table[static_cast<int>(std::rint(t))]};
    else
        e = {0, below};
    if (image.maskingOverlay && v >= image.maskingWindow[0] && v <= image.maskingWindow[1]) {
        const unsigned int c = e.packed;
        e.packed = ((c >> 16 & 255) * 159 >> 8) << 16 | ((c >> 8 & 255) * 159 >> 8) << 8 |
                   ((c & 255) * 159 + 24480) >> 8;
    }
    return e;
}

template <class T>
class GreyImage : public testing::Test
{
};

using ElementTypes = testing::Types<unsigned char, short, unsigned short, int, unsigned int, float, double>;
TYPED_TEST_SUITE(GreyImage, ElementTypes);

TYPED_TEST(GreyImage, convertsEveryStrideAndWindow)
{
    using T = TypeParam;
    std::mt19937 random(99);
    std::uniform_real_distribution<double> anywhere(-300, 70000);
    const McHandle<HxColormap> map(HxColormap::createStandard("perceptual"));
    map->setUnderflow({1, 0, 0, 1});
    map->setOverflow({0, 0, 1, 1});
    GiGreyImage image;
    for (const int xStep : {1, 3}) {
        for (int round = 0; round < 20; ++round) {
            // From one pixel on, below, at and beyond a whole number of vectors.
            const int width = std::array{1, 7, 8, 37, 64}[round / 4], height = 5,
                      rowSteps = width * xStep + round % 3;
            std::vector<T> data(static_cast<std::size_t>(rowSteps * height));
            for (T& v : data) {
                const double x = std::max(anywhere(random), double(std::numeric_limits<T>::lowest()));
                v = static_cast<T>(std::min(x, double(std::numeric_limits<T>::max())));
            }
            if (std::is_floating_point_v<T>) {
                data[0] = std::numeric_limits<T>::quiet_NaN();
                data[static_cast<std::size_t>(xStep)] = std::numeric_limits<T>::infinity();
                data[static_cast<std::size_t>(2 * xStep)] = -std::numeric_limits<T>::infinity();
            }
            const auto min = static_cast<float>(data[data.size() / 2]);
            const float max = round % 5 == 0 ? min : static_cast<float>(data[data.size() / 3]);
            image.setColormap(round % 2 ? map.get() : nullptr);
            image.setMaskingOverlay(round % 4 == 3);
            image.setMaskingWindow(static_cast<float>(data[data.size() / 4]),
                                   static_cast<float>(data[data.size() / 4]) + 5000);
            image.setImage(width, height, min, max, data.data(), xStep * static_cast<int>(sizeof(T)),
                           static_cast<unsigned long>(rowSteps) * sizeof(T));
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const auto v =
                        static_cast<float>(data[static_cast<std::size_t>(y * rowSteps + x * xStep)]);
                    const Expected e = expected(image, min, max, v);
                    ASSERT_EQ(image.grey[y * width + x], e.grey) << v << " in " << min << " to " << max;
                    ASSERT_EQ(image.packed[y * width + x], e.packed) << v << " in " << min << " to " << max;
                }
        }
    }
}

TEST(GreyImageTable, hasOwnColoursOutsideTheWindowOnlyWithAMap)
{
    unsigned int table[256], below, above;
    GiGreyImage::initPackedColors(nullptr, table, below, above);
    EXPECT_EQ(table[7], 0x07070707u);
    EXPECT_EQ(below, 0u);
    EXPECT_EQ(above, ~0u);
    McHandle<HxColormap> map(new HxColormap);
    map->setUnderflow({1, 0, 0, 1});
    GiGreyImage::initPackedColors(map, table, below, above);
    EXPECT_EQ(below, 0xFF0000u);
    EXPECT_EQ(table[255], 0xFFFFFFu);
}

TEST(GreyImageState, keepsTheOldSliceWithoutData)
{
    GiGreyImage image;
    EXPECT_EQ(image.getBoundingBox(), McBox2i(0, 0, 255, 255));
    const unsigned char slice[2] = {10, 20};
    image.setImage(2, 1, 0.f, 255.f, slice, 1, 2);
    image.setImage(9, 9, 0.f, 1.f, static_cast<const short*>(nullptr), 2, 18);
    EXPECT_EQ(image.width, 2u);
    EXPECT_EQ(image.grey[1], 20);
    image.setHeightScales(4);
    EXPECT_EQ(image.heightScales.size(), 1);
    image.setImage(2, 1, 0.f, 255.f, slice, 1, 2);
    EXPECT_EQ(image.heightScales.size(), 0);
    image.clear();
    EXPECT_EQ(image.packed, nullptr);
    EXPECT_EQ(image.width, 0u);
}

} // namespace
