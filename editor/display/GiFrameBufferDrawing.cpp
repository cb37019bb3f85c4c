// Frame buffer: pixels, lines, outlines and rectangles.

#include "display/GiFrameBuffer.h"

#include "display/GiSelectionBlend.h"
#include "hx/HxMessage.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <tuple>
#include <utility>

namespace {

constexpr double kFullCircle = 2 * std::numbers::pi;
// Smaller steps would be lost when added to an angle near a full circle.
constexpr float kSmallestStep = 1e-6f;

// Messages carry the numbers by which they have always been told apart.
constexpr int kMessageFill4 = 441, kMessageFill2 = 461, kMessagePixel = 662;

void reportUnsupported(int number)
{
    HxMessage::getTheMsg()->printf("Line %d: unsupported function", number);
}

/// The steps 1 to n of a walk from `start` that end between low and high; none if first > last.
std::pair<long, long> stepsWithin(long start, int direction, long low, long high, long n)
{
    const long a = (low - start) * direction, b = (high - start) * direction;
    return {std::max(1l, std::min(a, b)), std::min(n, std::max(a, b))};
}

/// How far a line has come along its minor axis after some steps along the major one.
class LineWalk
{
    __extension__ using Wide = __int128; // a product of two lengths on screen

public:
    /// Begins after `steps` of a line that goes `small` along one axis and `large` along the other.
    LineWalk(long steps, long small, long large) : rise(2 * small), run(2 * large)
    {
        const Wide sum = static_cast<Wide>(rise) * steps + large;
        at = static_cast<long>(sum / run);
        rest = static_cast<long>(sum % run);
    }

    long minor() const { return at; }
    void next()
    {
        rest += rise;
        if (rest < run) return;
        rest -= run;
        ++at;
    }

private:
    long rise, run;
    long at;
    long rest; // 0 to run - 1: what has been gained towards the next minor step
};

float ellipseStep(float rx, float ry)
{
    return std::max(1 / ((rx + ry) * 6), kSmallestStep);
}

/// The angle after n steps, each rounded as if they were added one by one: between two powers of two all
/// of them add the same, unless one lies halfway between two numbers.
float afterSteps(float angle, float step, int n)
{
    const float once = angle + step, twice = once + step, increment = once - angle;
    const auto end = static_cast<float>(static_cast<double>(angle) + n * static_cast<double>(increment));
    if (twice - once == increment && std::ilogb(angle) == std::ilogb(end)) return end;
    for (; n > 0; --n) angle += step;
    return angle;
}

/// An ellipse along its circumference, in the float arithmetic that decides its pixels.
struct Ellipse
{
    float cx, cy, rx, ry;

    int x(float angle) const { return static_cast<int>(rx * std::cos(angle) + cx); }
    int y(float angle) const { return static_cast<int>(ry * std::sin(angle) + cy); }

    /// Whether the arc from an angle on can have pixels in a box; false only if it has none.
    bool isNear(float angle, float arc, const McBox2i& box) const
    {
        const double middle = static_cast<double>(angle) + arc / 2;
        const double r = std::max(std::abs(rx), std::abs(ry));
        // Its length, and what rounding may add.
        const double reach = r * arc / 2 + 4 + 1e-6 * (r + std::abs(cx) + std::abs(cy));
        const double px = rx * std::cos(middle) + cx, py = ry * std::sin(middle) + cy;
        return px >= box.xmin - reach && px <= box.xmax + reach && py >= box.ymin - reach &&
               py <= box.ymax + reach;
    }
};

} // namespace

unsigned int GiFrameBuffer::blended(unsigned int pixel) const
{
    return GiSelectionBlend(selectionPixel, selectionAlpha)(pixel);
}

bool GiFrameBuffer::isSelected(int column, int row) const
{
    return selection && static_cast<unsigned long>(column) < selection->width &&
           static_cast<unsigned long>(row) < selection->height && selection->isSet(column, row);
}

void GiFrameBuffer::writeInside(int x, int y)
{
    const int mx = x - offset.x, my = y - offset.y;
    unsigned int& pixel = *pixelAt(flipX ? memSize.x - 1 - mx : mx, flipY ? memSize.y - 1 - my : my);
    switch (function) {
    case kDraw:
        pixel = currentPixel;
        break;
    case kInvert:
        pixel = ~pixel;
        break;
    case kXor:
        pixel = (pixel ^ currentPixel) & 0xFFFFFF;
        break;
    case kBlend:
        pixel = isSelected(dataColumn(x), dataRow(y)) ? blended(currentPixel) : currentPixel;
        break;
    default:
        reportUnsupported(kMessagePixel);
    }
}

void GiFrameBuffer::writePixel(int x, int y)
{
    if (swapAxes) std::swap(x, y);
    if (clipBox.contains(x, y) && bytesPerPixel == 4) writeInside(x, y);
}

void GiFrameBuffer::writeRow(int x0, int x1, int y, int step)
{
    if (swapAxes) {
        for (int x = x0; x <= x1; x += step) writePixel(x, y);
        return;
    }
    if (bytesPerPixel != 4 || y < clipBox.ymin || y > clipBox.ymax) return;
    if (x0 < clipBox.xmin) x0 += (clipBox.xmin - x0 + step - 1) / step * step;
    x1 = std::min(x1, clipBox.xmax);
    if (function != kDraw) {
        for (int x = x0; x <= x1; x += step) writeInside(x, y);
        return;
    }
    if (x1 < x0) return;
    const int my = y - offset.y;
    const int m0 = flipX ? memSize.x - 1 - (x0 - offset.x) : x0 - offset.x;
    unsigned int* pixel = pixelAt(m0, flipY ? memSize.y - 1 - my : my);
    const int n = (x1 - x0) / step + 1;
    if (step == 1) {
        std::fill_n(flipX ? pixel - (n - 1) : pixel, n, currentPixel);
        return;
    }
    for (int i = 0; i < n; ++i, pixel += flipX ? -step : step) *pixel = currentPixel;
}

void GiFrameBuffer::writeColumn(int x, int y0, int y1)
{
    if (swapAxes) {
        for (int y = y0; y <= y1; ++y) writePixel(x, y);
        return;
    }
    if (bytesPerPixel != 4 || x < clipBox.xmin || x > clipBox.xmax) return;
    y1 = std::min(y1, clipBox.ymax);
    for (int y = std::max(y0, clipBox.ymin); y <= y1; ++y) writeInside(x, y);
}

/// The pixels from which a line point can reach into the clip box, in the caller's axes.
McBox2i GiFrameBuffer::reachOfLines() const
{
    constexpr int kWidest = 1; // pixels on either side of a point
    const McBox2i& c = clipBox;
    if (c.isEmpty()) return c;
    const McBox2i reach(c.xmin - kWidest, c.ymin - kWidest, c.xmax + kWidest, c.ymax + kWidest);
    return swapAxes ? McBox2i(reach.ymin, reach.xmin, reach.ymax, reach.xmax) : reach;
}

void GiFrameBuffer::plotLinePoint(int x, int y)
{
    const int first = lineWidth == 3 ? -1 : 0;
    const int last = lineWidth == 2 || lineWidth == 3 ? 1 : 0;
    for (int dy = first; dy <= last; ++dy)
        for (int dx = first; dx <= last; ++dx) writePixel(x + dx, y + dy);
}

/// Bresenham, "Algorithm for Computer Control of a Digital Plotter", 1965. Only the steps within reach of
/// the clip box are walked: at a large zoom nearly all of a line lies outside.
void GiFrameBuffer::drawLine(int x0, int y0, int x1, int y1)
{
    if (x1 < x0) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    const long dx = static_cast<long>(x1) - x0, dy = std::abs(static_cast<long>(y1) - y0);
    const int up = y1 < y0 ? -1 : 1;
    const bool steep = dy > dx;
    const long large = std::max(dx, dy), small = std::min(dx, dy);
    // kept: the first point is thin whatever the line width. Lines that meet, as in an outline, would
    // otherwise thicken where they start.
    writePixel(x0, y0);

    const McBox2i near = reachOfLines();
    const auto [first, last] = steep ? stepsWithin(y0, up, near.ymin, near.ymax, large)
                                     : stepsWithin(x0, 1, near.xmin, near.xmax, large);
    if (first > last) return;
    LineWalk walk(first, small, large);
    for (long major = first; major <= last; ++major, walk.next()) {
        const long minor = walk.minor();
        const int x = static_cast<int>(x0 + (steep ? minor : major));
        const int y = static_cast<int>(y0 + up * (steep ? major : minor));
        if (near.contains(x, y)) plotLinePoint(x, y);
    }
}

void GiFrameBuffer::drawRect(const McVec2i& c, const McVec2i& h)
{
    // kept: the left corners take their height from h.x. Square cursors are all that is drawn with it.
    const McVec2i corners[] = {McVec2i(c.x - h.x, c.y + h.x), McVec2i(c.x + h.x, c.y + h.y),
                               McVec2i(c.x + h.x, c.y - h.y), McVec2i(c.x - h.x, c.y - h.x)};
    for (int i = 0; i < 4; ++i) {
        const McVec2i &a = corners[i], &b = corners[(i + 1) % 4];
        drawLine(a.x, a.y, b.x, b.y);
    }
}

/// Dashes along one side, cut at its end; the colours change places at each.
void GiFrameBuffer::drawDashedSide(McVec2i from, McVec2i to, float dash, unsigned int colors[2])
{
    const long length =
        std::max(std::abs(static_cast<long>(to.x) - from.x), std::abs(static_cast<long>(to.y) - from.y));
    const McVec2i direction((to.x > from.x) - (to.x < from.x), (to.y > from.y) - (to.y < from.y));
    const float step = std::max(dash, 1.f);
    const auto after = [&](long n) {
        return McVec2i(static_cast<int>(from.x + direction.x * n),
                       static_cast<int>(from.y + direction.y * n));
    };
    long done = 0;
    for (long i = 1; done < length; ++i) {
        const long end = std::min(static_cast<long>(static_cast<float>(i) * step), length);
        const McVec2i a = after(done), b = after(end);
        currentPixel = colors[0];
        drawLine(a.x, a.y, b.x, b.y);
        std::swap(colors[0], colors[1]);
        done = end;
    }
}

void GiFrameBuffer::drawStippleRect(const McVec2i& c, const McVec2i& h, float percent, unsigned int pixel)
{
    const unsigned int former = currentPixel;
    unsigned int colors[2] = {pixel, currentPixel};
    const float dashX = 2 * static_cast<float>(h.x) * percent / 100;
    const float dashY = 2 * static_cast<float>(h.y) * percent / 100;
    const McVec2i lowLow(c.x - h.x, c.y - h.y), highLow(c.x + h.x, c.y - h.y), highHigh(c.x + h.x, c.y + h.y),
        lowHigh(c.x - h.x, c.y + h.y);
    drawDashedSide(lowLow, highLow, dashX, colors);
    drawDashedSide(highLow, highHigh, dashY, colors);
    drawDashedSide(highHigh, lowHigh, dashX, colors);
    drawDashedSide(lowHigh, lowLow, dashY, colors);
    // An outline without extent has no dashes; this line makes it a point.
    drawLine(lowLow.x, lowLow.y, lowLow.x, lowLow.y);
    currentPixel = former;
}

void GiFrameBuffer::drawEllipse(int cx, int cy, float rx, float ry)
{
    drawStippleEllipse(cx, cy, rx, ry, 360, currentPixel);
}

void GiFrameBuffer::drawStippleEllipse(int cx, int cy, float rx, float ry, float degrees, unsigned int pixel)
{
    if (!(rx + ry >= 0)) return;
    const unsigned int former = currentPixel;
    const float step = ellipseStep(rx, ry);
    const int dash = std::max(1, static_cast<int>(kFullCircle / step * degrees / 360));
    const Ellipse ellipse{static_cast<float>(cx), static_cast<float>(cy), rx, ry};
    // At a large zoom nearly all of it lies outside; that is passed over in arcs.
    constexpr int kArcSteps = 256;
    constexpr float kMostLost = 5e-7f; // by rounding an angle below a full circle
    const float arc = kArcSteps * (step + kMostLost);
    const McBox2i box = reachOfLines();
    int i = 0;
    for (float a = 0; a < kFullCircle;) {
        if (!ellipse.isNear(a, arc, box)) {
            a = afterSteps(a, step, kArcSteps);
            i += kArcSteps;
            continue;
        }
        for (int k = 0; k < kArcSteps && a < kFullCircle; ++k, ++i, a += step) {
            currentPixel = i / dash % 2 == 0 ? former : pixel;
            writePixel(ellipse.x(a), ellipse.y(a));
        }
    }
    currentPixel = former;
}

void GiFrameBuffer::fillRect(int x0, int y0, int x1, int y1)
{
    if (swapAxes) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    // kept: a flip mirrors before the offset is taken off, so in a flipped buffer the corners count from
    // the window's far end.
    if (flipX) std::tie(x0, x1) = std::make_tuple(memSize.x - 1 - x1, memSize.x - 1 - x0);
    if (flipY) std::tie(y0, y1) = std::make_tuple(memSize.y - 1 - y1, memSize.y - 1 - y0);
    const McBox2i cut = McBox2i(x0, y0, x1, y1).intersected(clipBox);
    if (cut.isEmpty()) return;
    const McBox2i mem(cut.xmin - offset.x, cut.ymin - offset.y, cut.xmax - offset.x, cut.ymax - offset.y);
    if (bytesPerPixel == 2)
        fill2(mem);
    else
        fill4(mem);
}

void GiFrameBuffer::fill2(const McBox2i& mem)
{
    if (function != kDraw && function != kInvert) {
        reportUnsupported(kMessageFill2);
        return;
    }
    for (int y = mem.ymin; y <= mem.ymax; ++y) {
        auto* row = reinterpret_cast<unsigned short*>(memory + static_cast<unsigned long>(y) * bytesPerRow);
        for (int x = mem.xmin; x <= mem.xmax; ++x)
            row[x] = static_cast<unsigned short>(function == kDraw ? currentPixel : ~row[x]);
    }
}

void GiFrameBuffer::fill4(const McBox2i& mem)
{
    if (function != kDraw && function != kInvert && function != kBlend) {
        reportUnsupported(kMessageFill4);
        return;
    }
    const unsigned int marked = blended(currentPixel);
    for (int y = mem.ymin; y <= mem.ymax; ++y) {
        unsigned int* row = pixelAt(0, y);
        if (function == kDraw) {
            std::fill(row + mem.xmin, row + mem.xmax + 1, currentPixel);
            continue;
        }
        const int dataY = entry(originalCoordsY, flipY ? memSize.y - 1 - y : y);
        for (int x = mem.xmin; x <= mem.xmax; ++x) {
            const int dataX = entry(originalCoordsX, flipX ? memSize.x - 1 - x : x);
            if (function == kInvert)
                row[x] = ~row[x];
            else
                row[x] = isSelected(dataX, dataY) ? marked : currentPixel;
        }
    }
}
