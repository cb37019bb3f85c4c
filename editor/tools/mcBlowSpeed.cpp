#include "tools/mcBlowSpeed.h"

#include "mc/McSimd.h"

#include <algorithm>
#include <cmath>

namespace {

/// Neighbors of a row along y, and what their difference counts.
template <class T>
struct Neighbors
{
    Neighbors(const T* plane, int width, int height, int y)
        : above(plane + static_cast<long>(std::max(y - 1, 0)) * width),
          below(plane + static_cast<long>(std::min(y + 1, height - 1)) * width),
          weight(y > 0 && y < height - 1 ? 0.5f : 1.0f)
    {
    }

    const T *above, *below;
    float weight;
};

/// The difference along x at the ends of a row.
template <class T>
float firstDifference(const T* row, int width)
{
    return width > 1 ? static_cast<float>(row[1] - row[0]) : 0;
}

template <class T>
float lastDifference(const T* row, int width)
{
    return width > 1 ? static_cast<float>(row[width - 1] - row[width - 2]) : 0;
}

float cutLength(float x, float y)
{
    return std::min(std::sqrt(x * x + y * y), 255.0f);
}

MC_TARGET_CLONES
void lengthsInside(const unsigned char* row, const unsigned char* above, const unsigned char* below,
                   float weight, int width, float* result)
{
    for (int x = 1; x < width - 1; ++x) {
        const float dx = static_cast<float>(row[x + 1] - row[x - 1]) * 0.5f;
        const float dy = static_cast<float>(below[x] - above[x]) * weight;
        const float square = dx * dx + dy * dy; // exact: quarters of whole numbers
        result[x] = std::min(__builtin_sqrtf(square), 255.0f);
    }
}

MC_TARGET_CLONES
void gradientsInside(const float* row, const float* above, const float* below, float weight, int width,
                     McVec2f* result)
{
    for (int x = 1; x < width - 1; ++x) {
        result[x].x = (row[x + 1] - row[x - 1]) * 0.5f;
        result[x].y = (below[x] - above[x]) * weight;
    }
}

} // namespace

void mcAbsOfGradient(const unsigned char* picture, int width, int height, float* result)
{
    for (int y = 0; y < height; ++y) {
        const Neighbors beside(picture, width, height, y);
        const unsigned char* row = picture + static_cast<long>(y) * width;
        float* out = result + static_cast<long>(y) * width;
        const auto along = [&](int x) { return static_cast<float>(beside.below[x] - beside.above[x]); };
        out[0] = cutLength(firstDifference(row, width), along(0) * beside.weight);
        lengthsInside(row, beside.above, beside.below, beside.weight, width, out);
        if (width > 1)
            out[width - 1] = cutLength(lastDifference(row, width), along(width - 1) * beside.weight);
    }
}

MC_TARGET_CLONES
void mcSpeedOfGradient(const float* gradient, long n, float* speed)
{
    for (long i = 0; i < n; ++i) speed[i] = 1 / (gradient[i] + 1);
}

void mcGradientOf(const float* plane, int width, int height, McVec2f* result)
{
    for (int y = 0; y < height; ++y) {
        const Neighbors beside(plane, width, height, y);
        const float* row = plane + static_cast<long>(y) * width;
        McVec2f* out = result + static_cast<long>(y) * width;
        const auto along = [&](int x) { return (beside.below[x] - beside.above[x]) * beside.weight; };
        out[0] = McVec2f(firstDifference(row, width), along(0));
        gradientsInside(row, beside.above, beside.below, beside.weight, width, out);
        if (width > 1) out[width - 1] = McVec2f(lastDifference(row, width), along(width - 1));
    }
}

float mcInterpolated(const float* plane, int width, int height, const McVec2f& p)
{
    const float px = std::clamp(p.x, 0.0f, static_cast<float>(width - 1));
    const float py = std::clamp(p.y, 0.0f, static_cast<float>(height - 1));
    const int x = static_cast<int>(px), y = static_cast<int>(py);
    const float fx = px - static_cast<float>(x), fy = py - static_cast<float>(y);
    const float* at = plane + static_cast<long>(y) * width + x;
    // A fraction means that there is a neighbor: in the last column and row there is none.
    const auto alongX = [&](const float* v) { return fx > 0 ? v[0] * (1 - fx) + v[1] * fx : v[0]; };
    return fy > 0 ? alongX(at) * (1 - fy) + alongX(at + width) * fy : alongX(at);
}
