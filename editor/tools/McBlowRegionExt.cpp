#include "tools/McBlowRegionExt.h"

#include <cstdio>

namespace {

constexpr int kDirections = 8;
constexpr float kOctant = static_cast<float>(M_PI / 4);
constexpr float kUnit = 1.0f / 8; // of the kernels, which so give a slope per pixel

/// The slope of a picture in the direction of each plane; rows of three from the lower row number on. These
/// are compass masks: Robinson, "Edge Detection by Compass Gradient Masks", CGIP 6, 1977.
constexpr int kKernels[kDirections][9] = {
    {-1, 0, 1, -2, 0, 2, -1, 0, 1}, {0, 1, 2, -1, 0, 1, -2, -1, 0}, {1, 2, 1, 0, 0, 0, -1, -2, -1},
    {2, 1, 0, 1, 0, -1, 0, -1, -2}, {1, 0, -1, 2, 0, -2, 1, 0, -1}, {0, -1, -2, 1, 0, -1, 2, 1, 0},
    {-1, -2, -1, 0, 0, 0, 1, 2, 1}, {-2, -1, 0, -1, 0, 1, 0, 1, 2},
};

/// Only what rises, and nothing at the border, where the kernel has no room.
void slopesOf(const LicImage& picture, const int* kernel, float* slopes)
{
    std::fill_n(slopes, static_cast<long>(picture.width) * picture.height, 0.0f);
    for (int y = 1; y < picture.height - 1; ++y)
        for (int x = 1; x < picture.width - 1; ++x) {
            int sum = 0;
            for (int k = 0; k < 9; ++k) sum += kernel[k] * picture.row(y + k / 3 - 1)[x + k % 3 - 1];
            slopes[x + static_cast<long>(y) * picture.width] = static_cast<float>(std::max(sum, 0)) * kUnit;
        }
}

} // namespace

McBlowRegionExt::McBlowRegionExt(int sliceWidth, int sliceHeight, unsigned char* slice, int growAndShrinks,
                                 int smoothing)
    : McBlowRegionExt(sliceWidth, sliceHeight, slice, growAndShrinks, smoothing, LicImage())
{
}

McBlowRegionExt::McBlowRegionExt(int sliceWidth, int sliceHeight, unsigned char* slice, int growAndShrinks,
                                 int smoothing, LicImage&& blurred)
    : McBlowGrowth(sliceWidth, sliceHeight, slice, growAndShrinks, smoothing, blurred)
{
    computeGradient(blurred);
}

void McBlowRegionExt::computeGradient(const LicImage& picture)
{
    for (int k = 0; k < kDirections; ++k) {
        McDArray<float>& plane = directedSpeed[k];
        plane.resize(speed.size());
        slopesOf(picture, kKernels[k], plane.data());
        mcSpeedOfGradient(plane.data(), plane.size(), plane.data());
    }
    directedSpeed[kDirections] = directedSpeed[0];
}

void McBlowRegionExt::normal2direction(const McVec2f& normal, int& plane, float& weight)
{
    float angle = std::atan2(-normal.y, normal.x);
    if (angle < 0) angle += static_cast<float>(2 * M_PI);
    // A full circle can come out of the sum; it belongs to the last octant.
    plane = std::clamp(static_cast<int>(angle / kOctant), 0, kDirections - 1);
    weight = 1 - (angle - static_cast<float>(plane) * kOctant) / kOctant;
}

float McBlowRegionExt::getSpeed(const McVec2f& p, int plane, float weight) const
{
    return mcInterpolated(directedSpeed[plane].data(), width, height, p) * weight +
           mcInterpolated(directedSpeed[plane + 1].data(), width, height, p) * (1 - weight);
}

float McBlowRegionExt::getMove(int i, const McVec2f& normal, float curvature, const McBlowCurve& curve) const
{
    if (growAndShrink) {
        std::fputs("in growAndShrink\n", stderr);
        return 0;
    }
    if (curvature > kSharpest) return 0;
    int plane;
    float weight;
    normal2direction(normal, plane, weight);
    const McVec2f& p = curve[i];
    const long pixel = pixelOf(p);
    const float here =
        directedSpeed[plane].data()[pixel] * weight + directedSpeed[plane + 1].data()[pixel] * (1 - weight);
    const bool isAtEdge = !(here > tolerance * kLimitUnit);
    if (isAtEdge && !(gradientOfSpeed.data()[pixel].dot(normal) < 0)) return 0;
    return damped(getSpeed(p, plane, weight), curvature);
}
