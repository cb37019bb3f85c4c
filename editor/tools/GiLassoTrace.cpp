// Lasso: outlines that cling to what the picture shows.

#include "core/Gi.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "mc/McEvent.h"
#include "tools/GiLasso.h"
#include "tools/giDrawOutline.h"

#include <algorithm>

namespace {

constexpr int kLeft = 1;
constexpr int kClosingDistance = 5; // screen pixels; a fixing click nearer to the first point closes
// Pixels at the pointer that a fixing click does not fix: there the path is least settled, as the pointer is
// rarely on the edge itself.
constexpr int kUnsettled = 3;
constexpr McVec2i kNowhere(-1, -1);

} // namespace

/// Where a pixel of a trace is drawn.
McVec2i GiLasso::tracePosition(const GiFrameBuffer& buffer, const McVec2i& pixel)
{
    return McVec2i(buffer.columnStart(pixel.x), buffer.rowStart(pixel.y));
}

int GiLasso::handleEventAutoTrace(GiFrameBuffer& buffer, McEvent& event)
{
    // Corners clicked before the box was checked are finished as they were begun, or continued by a trace.
    if (!isTracing() && !path.isEmpty() && event.as<McKeyboardEvent>())
        return handleEventFreehand(buffer, event);
    const auto* button = event.as<McButtonEvent>();
    const bool isElsewhere = frameBuffer && &buffer != frameBuffer;
    if (isElsewhere) return button != nullptr;
    const McVec2i pixel(buffer.dataColumn(event.x), buffer.dataRow(event.y));
    if (!isTracing()) {
        if (!McMouseButtonEvent::isButtonPressEvent(&event, kLeft)) return 0;
        startAutoTracing(buffer, event, pixel);
        return 1;
    }
    if (event.as<McLeaveWindowEvent>()) {
        abandon();
        return 0;
    }
    if (event.as<McMotionEvent>()) {
        updateAutoTracing(buffer, pixel);
        return 1;
    }
    if (!button) return 0;
    if (button->pressed && button->button == kLeft)
        resetAutoTracing(buffer, event, pixel);
    else if (button->pressed)
        stopAutoTracing(buffer, event, pixel);
    return 1;
}

/// Brings the costs of the scissors up to date; false if the viewer shows no picture.
bool GiLasso::initAutoTracing(GiViewer& viewer)
{
    const GiGreyImage* image = viewer.getGreyImage();
    if (!image || !image->grey) return false;
    float window[2];
    viewer.getDataWindow(window[0], window[1]);
    const McVec2i size(static_cast<int>(image->width), static_cast<int>(image->height));
    const bool isCurrent =
        std::equal(window, window + 2, costWindow) && size == costSize && hasCostsOf(viewer, *image);
    if (isCurrent) return true;
    costSlice = -1; // in case that memory runs out
    costImage.resize(size.x * size.y);
    std::copy_n(image->grey, costImage.size(), costImage.data());
    scissors.init(size.x, size.y, costImage.data(),
                  traceEdges() ? IScissors::kFollowEdges : IScissors::kFollowBright);
    costSlice = viewer.getSlice();
    std::copy_n(window, 2, costWindow);
    costSize = size;
    costOrientation = viewer.getOrientation();
    costData = gi->imageSlices.data();
    return true;
}

/// kept: the orientation is not compared, so that the gradients computed so far survive when the user goes
/// back and forth between viewers. Only cubes at equal slice numbers can show a difference, and a notch of
/// the wheel or a box of the panel renews the costs. In the same orientation the picture tells if values have
/// changed.
bool GiLasso::hasCostsOf(const GiViewer& viewer, const GiGreyImage& image) const
{
    if (viewer.getSlice() != costSlice || gi->imageSlices.data() != costData) return false;
    return viewer.getOrientation() != costOrientation ||
           std::equal(costImage.begin(), costImage.end(), image.grey);
}

void GiLasso::startAutoTracing(GiFrameBuffer& buffer, const McEvent& event, const McVec2i& pixel)
{
    hasTraceEnd = false;
    if (!initAutoTracing(*buffer.viewer) || !scissors.start(pixel.x, pixel.y)) return;
    frameBuffer = &buffer;
    pathView = viewOf(buffer);
    anchor = pixel;
    if (!path.isEmpty()) return;
    pathZoom = buffer.zoomedSize;
    selectionMode = modeOf(event); // should it be finished by hand
}

/// The panel has changed what is traced, or whether.
void GiLasso::goOnWithTrace()
{
    if (!autoTrace && !path.isEmpty()) {
        stopTracing();
        currentPos = path.last();
    } else if (autoTrace && initAutoTracing(*frameBuffer->viewer) && scissors.start(anchor.x, anchor.y)) {
        hasTraceEnd = hasTraceEnd && scissors.isValid(traceEnd.x, traceEnd.y);
        if (hasTraceEnd) changeOfTrace(traceEnd);
    } else {
        abandon();
        return;
    }
    frameBuffer->render(nullptr);
    frameBuffer->paste();
}

void GiLasso::stopTracing()
{
    scissors.currentCost = -1;
    hasTraceEnd = false;
}

void GiLasso::updateAutoTracing(GiFrameBuffer& buffer, const McVec2i& pixel)
{
    if (!scissors.isValid(pixel.x, pixel.y)) return;
    const McBox2i changed = buffer.screenBox(changeOfTrace(pixel));
    buffer.render(changed, nullptr);
    buffer.paste(changed);
}

/// Makes a pixel the end of the trace and tells which pixels of the slice have to be drawn anew: the old way
/// and the new one, each up to where they meet.
McBox2i GiLasso::changeOfTrace(const McVec2i& end)
{
    McVec2i old, fork;
    scissors.markPath(end.x, end.y, old.x, old.y, fork.x, fork.y);
    McBox2i changed;
    if (hasTraceEnd) {
        extendByWay(changed, old, fork);
        extendByWay(changed, end, fork);
    } else {
        // After a fixing click nothing is drawn of the old way, which the new one may lead through.
        extendByWay(changed, end, kNowhere); // as far as it goes
    }
    traceEnd = end;
    hasTraceEnd = true;
    return changed;
}

/// The way of the trace from a pixel up to another one, or else to where the trace begins.
void GiLasso::extendByWay(McBox2i& box, McVec2i from, const McVec2i& to)
{
    box.extendBy(from.x, from.y);
    while (!(from == to) && scissors.next(from.x, from.y)) box.extendBy(from.x, from.y);
    if (!(from == to)) box.extendBy(startOfTrace(from));
}

/// What is drawn between the outline that is fixed and the first pixel of the trace.
McBox2i GiLasso::startOfTrace(const McVec2i& first) const
{
    McBox2i box(first.x, first.y, first.x, first.y);
    if (!pathPixels.isEmpty()) box.extendBy(pathPixels.last().x, pathPixels.last().y);
    return box;
}

/// Draws from the end of the trace back to the outline that is fixed already.
void GiLasso::renderAutoTrace(GiFrameBuffer& buffer)
{
    if (!isTracing() || !hasTraceEnd) return;
    scissors.getPath(traceEnd.x, traceEnd.y, tracePath);
    McVec2i at = tracePosition(buffer, traceEnd);
    for (const McVec2i& pixel : tracePath) {
        const McVec2i before = tracePosition(buffer, pixel);
        giDrawSegment(buffer, at, before);
        at = before;
    }
    if (!path.isEmpty()) giDrawSegment(buffer, at, path.last());
}

/// The end of the trace that a click means: the pixel, or on the border, where no path ends, what is on
/// screen.
McVec2i GiLasso::traceEndAt(const McVec2i& pixel)
{
    return !scissors.isValid(pixel.x, pixel.y) && hasTraceEnd ? traceEnd : pixel;
}

/// Appends the way from the seed to a pixel, both left out.
void GiLasso::appendAutoTraceToPath(const GiFrameBuffer& buffer, const McVec2i& pixel)
{
    scissors.getPath(pixel.x, pixel.y, tracePath);
    for (int i = tracePath.size() - 1; i > 0; --i) { // the first one is the pixel itself
        path.append(tracePosition(buffer, tracePath[i]));
        pathPixels.append(tracePath[i]);
    }
}

/// A left click while tracing: closes near the first point, or else fixes what lies behind the pointer.
void GiLasso::resetAutoTracing(GiFrameBuffer& buffer, const McEvent& event, const McVec2i& pixel)
{
    if (!path.isEmpty()) {
        const long dx = long(event.x) - path[0].x, dy = long(event.y) - path[0].y;
        if (dx * dx + dy * dy < kClosingDistance * kClosingDistance) {
            stopAutoTracing(buffer, event, pixel);
            return;
        }
    }
    anchor = traceEndAt(pixel);
    McBox2i unfixed(anchor.x, anchor.y, anchor.x, anchor.y);
    // Without a move before the click the way there was never drawn.
    if (scissors.isValid(anchor.x, anchor.y)) unfixed.extendBy(changeOfTrace(anchor));
    for (int i = 0; i < kUnsettled && scissors.next(anchor.x, anchor.y); ++i)
        unfixed.extendBy(anchor.x, anchor.y);
    appendAutoTraceToPath(buffer, anchor);
    scissors.restart(anchor.x, anchor.y);
    hasTraceEnd = false;
    unfixed.extendBy(startOfTrace(anchor));
    const McBox2i changed = buffer.screenBox(unfixed);
    buffer.render(changed, nullptr);
    buffer.paste(changed);
}

void GiLasso::stopAutoTracing(GiFrameBuffer& buffer, const McEvent& event, const McVec2i& pixel)
{
    saveUndo(*buffer.viewer); // first: if there is no memory for it, the trace goes on
    selectionMode = modeOf(event);
    appendAutoTraceToPath(buffer, traceEndAt(pixel));
    stopTracing();
    finishInteraction(buffer);
    frameBuffer = nullptr;
}
