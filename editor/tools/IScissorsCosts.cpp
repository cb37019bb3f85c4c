#include "tools/IScissors.h"

#include "mc/McSimd.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace {

constexpr int kBlock = 64; // pixels of one row whose gradient is computed together
// No gradient of bytes is longer than 179, so the largest magnitude that can be told is never reached.
constexpr int kLargestMagnitude = 254;

/// Entry i: the angle whose cosine is i / 100, where a right angle is 127. The entries above 100 are not
/// used.
std::array<int, 128> angleTable()
{
    std::array<int, 128> angles{};
    for (int i = 0; i <= 100; ++i)
        angles[static_cast<std::size_t>(i)] = static_cast<int>(std::acos(i / 100.0) * 254 / std::numbers::pi);
    return angles;
}

const std::array<int, 128> acostab = angleTable();

int angleOf(int cosine)
{
    return acostab[static_cast<std::size_t>(std::min(std::abs(cosine), 100))];
}

/// Divides by the square root of 2.
int alongDiagonal(int component)
{
    return component * 256 / 362;
}

/// Steps along the axes are shorter than diagonal ones, by the square root of 2.
int axialStep(int diagonalStep)
{
    return diagonalStep * 182 / 256;
}

/// Pixels that have neighbours on all sides.
MC_TARGET_CLONES
void computeMagnitudes(const unsigned char* image, int width, int first, int end, unsigned char* magnitudes)
{
    for (long p = first; p < end; ++p) {
        const int gx = (image[p + 1] - image[p - 1]) / 2, gy = (image[p + width] - image[p - width]) / 2;
        magnitudes[p] =
            static_cast<unsigned char>(static_cast<int>(std::sqrt(static_cast<float>(gx * gx + gy * gy))));
    }
}

} // namespace

/// One pixel anywhere. A row goes on in the next one, and what lies outside the image counts as the pixel
/// itself.
void IScissors::computeGradient(int p)
{
    const auto at = [this, p](int q) { return isInside(q) ? image[q] : image[p]; };
    const int gx = (at(p + 1) - at(p - 1)) / 2, gy = (at(p + width) - at(p - width)) / 2;
    const float magnitude = std::sqrt(static_cast<float>(gx * gx + gy * gy));
    cost[p] = static_cast<unsigned char>(static_cast<int>(magnitude));
    if (costType != kFollowAlongEdge) return;
    const auto unit = [magnitude](int g) {
        return static_cast<signed char>(magnitude > 0 ? static_cast<float>(g * 100) / magnitude : 0.0f);
    };
    gradX[p] = unit(gx);
    gradY[p] = unit(gy);
}

/// The gradients of a pixel and its neighbours, and of what lies in the same blocks of a row: so the search
/// looks at all neighbours of a pixel at once, and seldom finds one missing.
void IScissors::computeGradientsAround(int index)
{
    const int count = width * height;
    for (const int row : {index - width, index, index + width})
        for (int p = row - 1; p <= row + 1; ++p) {
            if (!isInside(p) || cost[p] != kNotComputed) continue;
            const int first = p / kBlock * kBlock, end = std::min(first + kBlock, count);
            const int firstInner = std::clamp(width, first, end),
                      endInner = std::clamp(count - width, firstInner, end);
            const bool isPlain = costType != kFollowAlongEdge;
            if (isPlain) computeMagnitudes(image, width, firstInner, endInner, cost);
            for (int q = first; q < end; ++q)
                if (!isPlain || q < firstInner || q >= endInner) computeGradient(q);
        }
}

/// A step to a neighbour; the gradients of both must be there. Directions: 0 along x, 1 along y, 2 down to
/// the right or up to the left, 3 down to the left or up to the right.
int IScissors::getCost(const int& from, const int& to, const int& direction) const
{
    if (costType == kImageAsCost) return (cost[to] + cost[from]) >> 1;
    if (costType != kFollowAlongEdge) {
        const int diagonal = kLargestMagnitude - cost[to];
        return direction < 2 ? axialStep(diagonal) : diagonal;
    }
    switch (direction) {
    case 0:
        return axialStep(angleOf(gradY[from]) + angleOf(gradY[to]));
    case 1:
        return axialStep(angleOf(gradX[from]) + angleOf(gradX[to]));
    case 2:
        return angleOf(alongDiagonal(gradX[from] - gradY[from])) +
               angleOf(alongDiagonal(gradX[to] - gradY[to]));
    default:
        return angleOf(alongDiagonal(gradX[from] + gradY[from])) +
               angleOf(alongDiagonal(gradX[to] + gradY[to]));
    }
}
