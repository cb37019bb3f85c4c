#include "filters/GiShapeFilter.h"

#include "core/Gi.h"
#include "core/GiSelectionPixels.h"
#include "display/GiViewer.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>

namespace {

constexpr float kQuarterPi = 0.7853982f;
constexpr float kHalfPi = 1.5707964f;

float power(int base, int exponent)
{
    return exponent == 0 ? 1.0f : static_cast<float>(std::pow(base, exponent));
}

McVec2f asVector(const int* p)
{
    return {static_cast<float>(p[0]), static_cast<float>(p[1])};
}

} // namespace

GiShapeFilter::GiShapeFilter(Gi* owner)
    : GiFilter(owner), selection(new GiSelection2D), scratch(new GiSelection2D)
{
    name = "Modify Selection";
}

void GiShapeFilter::applyEllipse()
{
    GiViewer* viewer = gi->getCurrentViewer();
    if (!gi->imageSlices.data() || !viewer || !viewer->getSelection()) return;
    gi->saveUndoInformationForSlice(1, 0, nullptr); // selection, not labels
    GiSelection2D& target = *viewer->getSelection();
    *selection = target;
    selection->makeLocal();
    selection->computeSelectionBox();
    width = static_cast<int>(target.width);
    height = static_cast<int>(target.height);
    scratch->resize(width, height);
    if (!findCenter()) return;
    findAngle();
    int rx, ry;
    if (!findRadii(rx, ry)) return;

    std::fprintf(stderr, "rx :%d ry:%d\n", rx, ry);
    const int start = quality(rx, ry);
    int bestRx = rx, bestRy = ry;
    const int best = optimize(start, rx, ry, bestRx, bestRy);
    std::fprintf(stderr, "qual: %d, opt: %d, optrx: %d, optry: %d\n", start, best, bestRx, bestRy);

    target.clear();
    drawFilledEllipse(target, phi, asVector(center),
                      {static_cast<float>(bestRx), static_cast<float>(bestRy)});
    target.computeSelectionBox();
    gi->redraw();
}

/// The centre of gravity, cut to whole pixels; false if no pixel is set.
bool GiShapeFilter::findCenter()
{
    long n = 0, x = 0, y = 0;
    giForEachPixel(*selection, [&](int i, int j) {
        ++n;
        x += i;
        y += j;
    });
    if (n == 0) return false;
    center[0] = static_cast<int>(x / n);
    center[1] = static_cast<int>(y / n);
    return true;
}

float GiShapeFilter::getCentralMoment(int p, int q, McBox2i box, GiSelection2D& pixels) const
{
    float sum = 0;
    giForEachPixel(pixels, [&](int x, int y) {
        if (x < box.xmin || x > box.xmax || y < box.ymin || y > box.ymax) return;
        // A sum that outgrows the bits of a float stays a whole number; cut at each step.
        sum = std::trunc(sum + power(x - center[0], p) * power(y - center[1], q));
    });
    return sum;
}

void GiShapeFilter::findAngle()
{
    const McBox2i box = selection->selectionBox;
    const float m11 = getCentralMoment(1, 1, box, *selection);
    const float m20 = getCentralMoment(2, 0, box, *selection);
    const float m02 = getCentralMoment(0, 2, box, *selection);
    if (m20 == m02) {
        phi = m11 > 0 ? kQuarterPi : m11 < 0 ? -kQuarterPi : 0;
        return;
    }
    phi = std::atan(2 * m11 / (m20 - m02)) / 2;
    const bool isUpright = m20 < m02;
    if (phi > 0) {
        if (isUpright) phi -= kHalfPi;
    } else if (phi < 0) {
        if (isUpright) phi += kHalfPi;
    } else if (phi == 0) {
        phi = isUpright ? kHalfPi : 0;
    } else {
        std::fprintf(stderr, "Phi not correct!\n");
    }
}

/// Half the sides of the box around the pixels, turned so that the ellipse would lie along the axes. False if
/// they all left the slice on the way: there are no radii then.
bool GiShapeFilter::findRadii(int& rx, int& ry) const
{
    GiSelection2D turned;
    turned.resize(width, height);
    const double c = std::cos(-phi), s = std::sin(-phi);
    giForEachPixel(*selection, [&](int i, int j) {
        const int dx = i - center[0], dy = j - center[1];
        const int x = static_cast<int>(std::floor(c * dx - s * dy + 0.5)) + center[0];
        const int y = static_cast<int>(std::floor(dx * s + dy * c + 0.5)) + center[1];
        if (x >= 0 && y >= 0 && x < width && y < height) turned.set(x, y);
    });
    McBox2i box;
    turned.computeBoundingBox(box);
    if (box.isEmpty()) return false;
    rx = (box.xmax - box.xmin) / 2;
    ry = (box.ymax - box.ymin) / 2;
    // kept: no swap. The angle is that of the long axis, so a first radius below the second comes from pixels
    // that stand out; the longer one along both axes then holds them all, and the search trims from there.
    rx = std::max(rx, ry);
    return true;
}

int GiShapeFilter::quality(int rx, int ry)
{
    scratch->clear();
    drawFilledEllipse(*scratch, phi, asVector(center), {static_cast<float>(rx), static_cast<float>(ry)});
    const McBitfield &a = *selection->bits, &b = *scratch->bits;
    int differing = 0;
    for (unsigned long i = 0; i < a.numWords64(); ++i)
        differing += std::popcount(std::uint64_t{a.words64()[i]} ^ std::uint64_t{b.words64()[i]});
    return differing;
}

int GiShapeFilter::optimize(int quality, int rx, int ry, int& bestRx, int& bestRy)
{
    struct Candidate
    {
        int rx, ry;           // tried
        int takenRx, takenRy; // if it is better than all before
    };
    const Candidate candidates[] = {
        {rx + 1, ry + 1, rx + 1, ry + 1},
        {rx - 1, ry - 1, rx - 1, ry - 1},
        {rx + 1, ry, rx + 1, ry},
        // kept: a longer second radius counts in the quality but is not taken. The pixels decide in doubt for
        // the slimmer ellipse, and results of old scripts stay what they are. For a line one pixel wide that
        // is an ellipse without a width, which has no pixel: the line has none that fits it, and undo brings
        // it back.
        {rx, ry + 1, rx, ry},
        {rx - 1, ry, rx - 1, ry},
        {rx, ry - 1, rx, ry - 1},
    };
    int best = quality;
    for (const Candidate& c : candidates) {
        const int q = this->quality(c.rx, c.ry);
        if (q >= best) continue;
        best = q;
        bestRx = c.takenRx;
        bestRy = c.takenRy;
    }
    return best;
}

void GiShapeFilter::drawFilledEllipse(GiSelection2D& target, float angle, McVec2f middle, McVec2f radii)
{
    if (target.width == 0 || target.height == 0) return;
    const float r = std::max(radii.x, radii.y);
    const auto limited = [](float at, unsigned long n) {
        return std::clamp(static_cast<int>(at), 0, static_cast<int>(n) - 1);
    };
    const float c1 = std::cos(angle), s1 = std::sin(angle);
    const double across = angle + std::numbers::pi / 2;
    const auto c2 = static_cast<float>(std::cos(across)), s2 = static_cast<float>(std::sin(across));
    const int xmin = limited(middle.x - r - 1, target.width), xmax = limited(middle.x + r + 1, target.width);
    const int ymin = limited(middle.y - r - 1, target.height),
              ymax = limited(middle.y + r + 1, target.height);
    for (int y = ymin; y <= ymax; ++y) {
        for (int x = xmin; x <= xmax; ++x) {
            const float dx = static_cast<float>(x) - middle.x, dy = static_cast<float>(y) - middle.y;
            const float a = (c1 * dx + s1 * dy) / radii.x;
            const float b = (c2 * dx + s2 * dy) / radii.y;
            if (a * a + b * b <= 1) target.set(x, y);
        }
    }
}
