#include "tools/GiPenStroke.h"

#include "core/GiBitRows.h"
#include "display/GiFrameBuffer.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

/// The last coordinate under a pen; a pen of even size is one pixel short on this side.
int farEdge(int centre, int size)
{
    const int half = size / 2;
    return centre + half - (2 * half + 1 > size ? 1 : 0);
}

/// Longest distance along one axis that is still in the disc, by the distance along the other.
std::vector<int> halfWidths(float squaredRadius)
{
    const auto isInside = [&](long a, long b) { return static_cast<float>(a * a + b * b) <= squaredRadius; };
    std::vector<int> widths;
    if (!(squaredRadius >= 0)) return widths;
    long width = static_cast<long>(std::sqrt(squaredRadius)) + 1;
    for (long distance = 0; isInside(0, distance); ++distance) {
        while (!isInside(width, distance)) --width;
        widths.push_back(static_cast<int>(width));
    }
    return widths;
}

} // namespace

GiPenStroke::GiPenStroke(const GiFrameBuffer& frameBuffer, const GiPen& p, const McBox2i& centres,
                         McVec2i size)
    : buffer(frameBuffer), pen(p), slice(size)
{
    box = stampBox(McVec2i(centres.xmin, centres.ymin));
    box.extendBy(stampBox(McVec2i(centres.xmax, centres.ymax)));
    if (box.isEmpty()) return;
    wordsPerRow = (box.width() + 31) / 32;
    bits.resize(wordsPerRow * box.height());
    ends.assign(static_cast<std::size_t>(box.height()), {1, 0});
    if (!pen.isSquare) {
        prepareDisc(centres);
        return;
    }
    for (int c = box.xmin; c <= box.xmax; ++c)
        exactX.push_back(static_cast<float>(buffer.columnStart(c)) +
                         static_cast<float>(buffer.columnWidth(c)) * 0.5f);
    for (int r = box.ymin; r <= box.ymax; ++r)
        exactY.push_back(static_cast<float>(buffer.rowStart(r)) +
                         static_cast<float>(buffer.rowHeight(r)) * 0.5f);
}

McBox2i GiPenStroke::stampBox(const McVec2i& centre) const
{
    const auto columnOf = [&](int x) { return std::clamp(buffer.dataColumn(x), 0, slice.x - 1); };
    const auto rowOf = [&](int y) { return std::clamp(buffer.dataRow(y), 0, slice.y - 1); };
    if (slice.x < 1 || slice.y < 1) return {};
    McBox2i b(std::max(columnOf(centre.x - pen.width / 2) - 1, 0),
              std::max(rowOf(centre.y - pen.height / 2) - 1, 0),
              std::min(columnOf(farEdge(centre.x, pen.width)) + 1, slice.x - 1),
              std::min(rowOf(farEdge(centre.y, pen.height)) + 1, slice.y - 1));
    // The pixel under the pointer belongs to the stamp whatever the size of the pen.
    b.extendBy(columnOf(centre.x), rowOf(centre.y));
    return b;
}

void GiPenStroke::prepareDisc(const McBox2i& centres)
{
    for (int r = box.ymin; r <= box.ymax; ++r) rowCentre.push_back(buffer.pixelCentre(0, r).y);
    halfWidth = halfWidths(static_cast<float>(pen.width) * static_cast<float>(pen.height) * 0.25f);
    if (halfWidth.empty()) return;
    const int reachX = halfWidth[0];
    columnOrigin = centres.xmin - reachX;
    int column = box.xmin;
    for (int x = columnOrigin; x <= centres.xmax + reachX + 1; ++x) {
        while (column <= box.xmax && buffer.pixelCentre(column, 0).x < x) ++column;
        columnAt.push_back(column);
    }
}

void GiPenStroke::stamp(const McVec2i& centre)
{
    const McBox2i within = stampBox(centre);
    if (within.isEmpty()) return;
    if (pen.isSquare)
        stampSquare(centre, within);
    else
        stampDisc(centre, within);
    const int c = std::clamp(buffer.dataColumn(centre.x), 0, slice.x - 1);
    mark(std::clamp(buffer.dataRow(centre.y), 0, slice.y - 1), c, c);
}

void GiPenStroke::stampDisc(const McVec2i& centre, const McBox2i& within)
{
    const auto numDistances = static_cast<long>(halfWidth.size());
    for (int r = within.ymin; r <= within.ymax; ++r) {
        const long distance = std::labs(long(rowCentre[static_cast<std::size_t>(r - box.ymin)]) - centre.y);
        if (distance >= numDistances) continue;
        const int half = halfWidth[static_cast<std::size_t>(distance)];
        mark(r, std::max(firstColumn(centre.x - half), within.xmin),
             std::min(firstColumn(centre.x + half + 1) - 1, within.xmax));
    }
}

void GiPenStroke::stampSquare(const McVec2i& centre, const McBox2i& within)
{
    const auto isNear = [](float place, int at, int size) {
        return std::fabs(place - static_cast<float>(at)) <= static_cast<float>(size) * 0.5f;
    };
    const auto isUnder = [&](int c) {
        return isNear(exactX[static_cast<std::size_t>(c - box.xmin)], centre.x, pen.width);
    };
    int first = within.xmin, last = within.xmax;
    while (first <= last && !isUnder(first)) ++first;
    while (last >= first && !isUnder(last)) --last;
    for (int r = within.ymin; r <= within.ymax; ++r)
        if (isNear(exactY[static_cast<std::size_t>(r - box.ymin)], centre.y, pen.height))
            mark(r, first, last);
}

void GiPenStroke::mark(int row, int first, int last)
{
    if (first > last) return;
    Ends& run = ends[static_cast<std::size_t>(row - box.ymin)];
    run =
        run.first > run.last ? Ends{first, last} : Ends{std::min(run.first, first), std::max(run.last, last)};
    giSetBits(bits.data() + wordsPerRow * (row - box.ymin), static_cast<unsigned long>(first - box.xmin),
              static_cast<unsigned long>(last - box.xmin + 1));
}

bool GiPenStroke::rowRange(int row, int& first, int& last) const
{
    const Ends& run = ends[static_cast<std::size_t>(row - box.ymin)];
    first = run.first;
    last = run.last;
    return first <= last;
}
