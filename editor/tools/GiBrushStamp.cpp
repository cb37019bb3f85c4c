// Brush: which pixels a stamp or a stroke changes.

#include "core/Gi.h"
#include "core/GiBitRows.h"
#include "core/GiSelectionRow.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "tools/GiBrush.h"
#include "tools/GiPenStroke.h"
#include "tools/GiPixelTests.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace {

void changePixels(GiSelection2D& selection, const GiPenStroke& stroke, GiPixelTests& tests, bool set)
{
    if (stroke.reach().isEmpty()) return;
    std::vector<unsigned int> which;
    for (int row = stroke.reach().ymin; row <= stroke.reach().ymax; ++row) {
        int first, last;
        if (!stroke.rowRange(row, first, last)) continue;
        const int n = last - first + 1;
        which.assign(static_cast<std::size_t>((n + 31) / 32), 0);
        giOrBits(which.data(), 0, stroke.rowBits(row),
                 static_cast<unsigned long>(first - stroke.reach().xmin), static_cast<unsigned long>(n));
        if (!tests.acceptAll()) {
            const unsigned int* accepted = tests.accept(first, row, n);
            for (std::size_t i = 0; i < which.size(); ++i) which[i] &= accepted[i];
        }
        giChangeRow(selection, first, row, which.data(), static_cast<unsigned long>(n), set);
    }
}

McVec2i sizeOf(const GiSelection2D& selection)
{
    return McVec2i(static_cast<int>(selection.width), static_cast<int>(selection.height));
}

/// First data pixel of a pen that is as many data pixels wide. One of even width has its middle on the
/// nearest border between two pixels.
int penStart(int pointer, int width, const McDArray<int>& starts, int frameSize,
             const std::function<int(int)>& dataOf)
{
    if (width % 2 == 1) return dataOf(pointer) - (width - 1) / 2;
    const int halfPixel = (starts.size() > 1 ? starts[1] : frameSize) / 2;
    return dataOf(pointer + halfPixel) - width / 2;
}

/// Whether one of the four neighbours in the slice is selected.
bool touchesSelection(const GiSelection2D& selection, int x, int y)
{
    const McVec2i size = sizeOf(selection);
    return (x > 0 && selection.isSet(x - 1, y)) || (x + 1 < size.x && selection.isSet(x + 1, y)) ||
           (y > 0 && selection.isSet(x, y - 1)) || (y + 1 < size.y && selection.isSet(x, y + 1));
}

} // namespace

void GiBrush::putBrush(GiFrameBuffer* frameBuffer, McVec2i centre, int set)
{
    if (morphologicalMode) {
        putBrush2(frameBuffer, centre, set, 0);
        return;
    }
    stampAlong(*frameBuffer, McBox2i(centre.x, centre.y, centre.x, centre.y), {&centre, 1}, set);
}

void GiBrush::drawStroke(GiFrameBuffer& frameBuffer, const McVec2i& from, const McVec2i& to, int set)
{
    const long dx = to.x - from.x, dy = to.y - from.y;
    // kept: `to` itself is not stamped, and a step of less than a pixel stamps nothing. The next part of the
    // stroke begins there.
    const int n = static_cast<int>(std::hypot(static_cast<float>(dy), static_cast<float>(dx)));
    std::vector<McVec2i> places;
    for (long i = 0; i < n; ++i)
        places.emplace_back(from.x + static_cast<int>(dx * i / n), from.y + static_cast<int>(dy * i / n));
    if (morphologicalMode) {
        for (const McVec2i& place : places) putBrush2(&frameBuffer, place, set, 0);
        return;
    }
    stampAlong(frameBuffer,
               McBox2i(std::min(from.x, to.x), std::min(from.y, to.y), std::max(from.x, to.x),
                       std::max(from.y, to.y)),
               places, set);
}

void GiBrush::stampAlong(GiFrameBuffer& frameBuffer, const McBox2i& box, std::span<const McVec2i> places,
                         int set)
{
    if (places.empty() || !frameBuffer.viewer || !frameBuffer.selection) return;
    GiSelection2D& selection = *frameBuffer.selection;
    GiPenStroke stroke(frameBuffer, {brushWidth, brushHeight, squareBrush}, box, sizeOf(selection));
    for (const McVec2i& place : places) stroke.stamp(place);
    const GiViewer& shown = *frameBuffer.viewer;
    GiPixelTests tests(*gi, shown.getOrientation(), shown.getSlice());
    if (shown.maskingEnabled()) tests.requireValue(shown.getMaskingWindow());
    if (currentMaterialOnly()) tests.requireLabel(gi->currentTissue);
    changePixels(selection, stroke, tests, set != 0);
}

void GiBrush::putBrush2(GiFrameBuffer* frameBuffer, McVec2i centre, int, int erase)
{
    const GiGreyImage* image = frameBuffer->viewer ? frameBuffer->viewer->getGreyImage() : nullptr;
    if (erase || !brushMask || !image || !image->grey || !frameBuffer->selection) return;
    GiSelection2D& selection = *frameBuffer->selection;
    const McVec2i size(imageWidth, imageHeight);
    const bool fits = size == sizeOf(selection) && static_cast<unsigned long>(size.x) == image->width &&
                      static_cast<unsigned long>(size.y) == image->height;
    if (!fits) return;

    const int left = penStart(centre.x, brushWidth, frameBuffer->zoomedCoordsX, frameBuffer->zoomedSize.x,
                              [&](int x) { return frameBuffer->dataColumn(x); });
    const int top = penStart(centre.y, brushHeight, frameBuffer->zoomedCoordsY, frameBuffer->zoomedSize.y,
                             [&](int y) { return frameBuffer->dataRow(y); });
    const McBox2i pen(left, top, left + brushWidth - 1, top + brushHeight - 1);
    const McBox2i inner = pen.intersected(McBox2i(0, 1, size.x - 1, size.y - 2));
    int brightest = -1;
    McVec2i found;
    for (int y = inner.ymin; y <= inner.ymax; ++y) {
        for (int x = inner.xmin; x <= inner.xmax; ++x) {
            const int grey = image->grey[long(y) * size.x + x];
            const bool isHeavy = brushMask[long(y - top) * brushWidth + x - left] > kLeastWeight;
            if (grey <= brightest || !isHeavy || selection.isSet(x, y) || !touchesSelection(selection, x, y))
                continue;
            brightest = grey;
            found = McVec2i(x, y);
        }
    }
    if (brightest < 0) return;
    selection.set(found.x, found.y);
    const McBox2i visible = pen.intersected(McBox2i(0, 0, size.x - 1, size.y - 1));
    selection.extendSelectionBox(visible);
    const McBox2i screen = frameBuffer->screenBox(visible);
    frameBuffer->render(screen, nullptr);
    frameBuffer->paste(screen);
}
