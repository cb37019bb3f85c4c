#include "tools/IScissors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace {

constexpr int kLargestMagnitude = 254; // 255 stands for "not computed"

/// The angle whose cosine is i / 100, scaled so that a right angle is 127.
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

/// Steps along the axes are shorter than diagonal ones by the square root of 2.
int axialStep(int diagonalStep)
{
    return diagonalStep * 182 / 256;
}

} // namespace

void IScissors::computeGradient(int p)
{
    // A seed may lie on the border. What lies outside the array counts as the pixel itself.
    const auto at = [this, p](int q) { return isInside(q) ? image[q] : image[p]; };
    const int gx = (at(p + 1) - at(p - 1)) / 2, gy = (at(p + width) - at(p - width)) / 2;
    const float magnitude = std::sqrt(static_cast<float>(gx * gx + gy * gy));
    cost[p] = static_cast<unsigned char>(std::min(static_cast<int>(magnitude), kLargestMagnitude));
    if (costType != kFollowAlongEdge) return;
    const auto unit = [magnitude](int g) {
        return static_cast<signed char>(magnitude > 0 ? static_cast<float>(g * 100) / magnitude : 0.0f);
    };
    gradX[p] = unit(gx);
    gradY[p] = unit(gy);
}

int IScissors::getCost(const int& from, const int& to, const int& direction)
{
    if (costType == kImageAsCost) return (cost[to] + cost[from]) >> 1;
    if (cost[from] == kNotComputed) computeGradient(from);
    if (cost[to] == kNotComputed) computeGradient(to);
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
