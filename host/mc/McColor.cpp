#include "mc/McColor.h"

#include "mc/McVec.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int kCoarseSteps = 5;
constexpr int kFinestSteps = 40; // 68921 colors
constexpr double kSameColor = 1e-6;

double linearised(double srgb)
{
    return srgb <= 0.04045 ? srgb / 12.92 : std::pow((srgb + 0.055) / 1.055, 2.4);
}

McVec3d okLab(const McColor& color)
{
    const double r = linearised(color.r);
    const double g = linearised(color.g);
    const double b = linearised(color.b);
    const double l = std::cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
    const double m = std::cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
    const double s = std::cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

double distanceToNearest(const McVec3d& point, const McDArray<McVec3d>& others)
{
    double nearest = std::numeric_limits<double>::infinity();
    for (const McVec3d& other : others) nearest = std::min(nearest, (point - other).length());
    return nearest;
}

/// The color of the grid that lies farthest from the nearest of the others, on ties the first in order of
/// red, green, blue. Returns how far it lies.
double findFarthest(const McDArray<McVec3d>& others, int steps, McColor& best)
{
    const auto level = [steps](int i) { return static_cast<float>(i) / static_cast<float>(steps); };
    double bestDistance = -1;
    for (int red = 0; red <= steps; red++) {
        for (int green = 0; green <= steps; green++) {
            for (int blue = 0; blue <= steps; blue++) {
                const McColor candidate(level(red), level(green), level(blue));
                const double distance = distanceToNearest(okLab(candidate), others);
                if (distance <= bestDistance) continue;
                bestDistance = distance;
                best = candidate;
            }
        }
    }
    return bestDistance;
}

} // namespace

McColor McColor::mostDifferentColorRGB(const McDArray<McColor>& list)
{
    if (list.isEmpty()) return {1, 0, 0};
    McDArray<McVec3d> present;
    for (const McColor& color : list) present.append(okLab(color));

    // A grid of which every color is taken has nothing to offer; a finer one has.
    McColor best;
    double bestDistance = 0;
    for (int steps = kCoarseSteps; steps <= kFinestSteps && bestDistance < kSameColor; steps *= 2)
        bestDistance = findFarthest(present, steps, best);
    return best;
}
