// The gradient magnitude beside a plain loop, to the bit.

#include "core/GiGradient.h"
#include "mc/McThreads.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

namespace {

struct Box
{
    unsigned long dims[3];
    float weight[3];

    unsigned long size() const { return dims[0] * dims[1] * dims[2]; }
};

template <class T>
float difference(T a, T b)
{
    if constexpr (std::is_floating_point_v<T>)
        return a - b;
    else
        return static_cast<float>(static_cast<long>(a) - static_cast<long>(b));
}

template <class T>
float plainMagnitude(const std::vector<T>& image, const Box& box, const unsigned long* at)
{
    const unsigned long stride[3] = {1, box.dims[0], box.dims[0] * box.dims[1]};
    const unsigned long here = at[0] + stride[1] * at[1] + stride[2] * at[2];
    float sum = 0;
    for (int axis = 0; axis < 3; ++axis) {
        float g = 0;
        if (box.dims[axis] == 1)
            g = 0;
        else if (at[axis] == 0)
            g = difference(image[here + stride[axis]], image[here]);
        else if (at[axis] == box.dims[axis] - 1)
            g = difference(image[here], image[here - stride[axis]]);
        else
            g = difference(image[here + stride[axis]], image[here - stride[axis]]) * 0.5f;
        g *= box.weight[axis];
        sum += g * g;
    }
    return std::sqrt(sum);
}

template <class T>
std::vector<T> plainGradient(const std::vector<T>& image, const Box& box, float largest)
{
    std::vector<float> magnitude;
    float max = 0;
    for (unsigned long z = 0; z < box.dims[2]; ++z)
        for (unsigned long y = 0; y < box.dims[1]; ++y)
            for (unsigned long x = 0; x < box.dims[0]; ++x) {
                const unsigned long at[3] = {x, y, z};
                magnitude.push_back(plainMagnitude(image, box, at));
                if (magnitude.back() > max) max = magnitude.back();
            }
    const float factor = largest / max;
    std::vector<T> result;
    for (const float m : magnitude) result.push_back(static_cast<T>(factor * m));
    return result;
}

template <class T>
std::vector<T> noise(unsigned long n)
{
    std::mt19937_64 random(7);
    std::vector<T> values(n);
    for (T& value : values) {
        if constexpr (std::is_floating_point_v<T>)
            value = static_cast<T>(static_cast<double>(random()) * 1e-15 - 7000);
        else
            value = static_cast<T>(random()); // all bits: differences pass the ends of T
    }
    return values;
}

template <class T>
std::vector<T> gradient(const std::vector<T>& image, const Box& box, float largest)
{
    std::vector<T> result(image.size());
    giGradientMagnitude(image.data(), box.dims, box.weight, largest, result.data());
    return result;
}

/// Bytes, so that what is no number equals itself.
template <class T>
bool sameBits(const std::vector<T>& a, const std::vector<T>& b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

class Threads
{
public:
    explicit Threads(int n) { mcSetNumThreads(n); }
    ~Threads() { mcSetNumThreads(former); }

private:
    int former = mcNumThreads();
};

} // namespace

template <class T>
class Gradient : public testing::Test
{
protected:
    static constexpr float kLargest = sizeof(T) == 2 ? 32765 : 255;
};
using ImageTypes = testing::Types<unsigned char, short, unsigned short, int, unsigned int, float>;
TYPED_TEST_SUITE(Gradient, ImageTypes);

TYPED_TEST(Gradient, EqualsThePlainLoop)
{
    const Box boxes[] = {{{70, 50, 9}, {1, 1, 1}},       {{33, 7, 5}, {0.7f, 1.3f, 0.25f}},
                         {{40, 30, 1}, {2, 0.5f, 0}},    {{1, 30, 40}, {0, 0.3f, 3}},
                         {{17, 1, 12}, {1.1f, 0, 0.9f}}, {{2, 2, 2}, {1, 2, 3}},
                         {{3, 1, 1}, {0.1f, 0, 0}},      {{1, 1, 5}, {0, 0, 0.1f}},
                         {{200, 1, 1}, {-1.5f, 0, 0}},   {{16, 3, 3}, {1e-20f, 1e-20f, 1e-20f}}};
    for (const int threads : {1, 3}) {
        const Threads set(threads);
        for (const Box& box : boxes) {
            const auto image = noise<TypeParam>(box.size());
            EXPECT_TRUE(
                sameBits(gradient(image, box, this->kLargest), plainGradient(image, box, this->kLargest)))
                << box.dims[0] << " x " << box.dims[1] << " x " << box.dims[2];
        }
    }
}

TYPED_TEST(Gradient, TheSteepestVoxelBecomesTheLargestValue)
{
    const Box box{{30, 20, 10}, {0.3f, 0.3f, 0.3f}};
    std::vector<TypeParam> image(box.size(), 5);
    image[15 + 30 * (10 + 20 * 5)] = 100;
    const auto result = gradient(image, box, this->kLargest);
    const auto steepest = static_cast<float>(*std::max_element(result.begin(), result.end()));
    EXPECT_NEAR(steepest, this->kLargest, 1);
    EXPECT_EQ(result[0], 0) << "flat far from it";
    EXPECT_EQ(result[15 + 30 * (10 + 20 * 5)], 0) << "central differences pass over the point itself";
}

// Nothing to scale by: real values are what the arithmetic gives, whole ones have to be something.
TYPED_TEST(Gradient, OfOneValueIsNoNumberOrNought)
{
    const Box box{{20, 3, 2}, {1, 1, 1}};
    for (const TypeParam value : gradient(std::vector<TypeParam>(box.size(), 3), box, this->kLargest)) {
        if (std::is_floating_point_v<TypeParam>)
            EXPECT_NE(value, value);
        else
            EXPECT_EQ(value, TypeParam{0});
    }
}

TYPED_TEST(Gradient, AVolumeWithoutExtentStaysDefined)
{
    const float infinite = std::numeric_limits<float>::infinity();
    const Box box{{20, 3, 2}, {infinite, 1, 1}};
    const auto result = gradient(noise<TypeParam>(box.size()), box, this->kLargest);
    if (std::is_floating_point_v<TypeParam>) return;
    EXPECT_EQ(result, std::vector<TypeParam>(box.size(), TypeParam{0}));
}

TEST(GradientOfRealValues, WhatIsNoNumberStaysAmongItsNeighbours)
{
    const Box box{{24, 5, 1}, {1, 1, 0}};
    auto image = noise<float>(box.size());
    image[10 + 24 * 2] = std::numeric_limits<float>::quiet_NaN();
    const auto result = gradient(image, box, 255);
    EXPECT_TRUE(sameBits(result, plainGradient(image, box, 255)));
    EXPECT_EQ(std::count_if(result.begin(), result.end(), [](float v) { return std::isnan(v); }), 4)
        << "the axis of one voxel must not bring it in a fifth time";
}
