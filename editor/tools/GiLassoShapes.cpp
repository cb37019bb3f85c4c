// Lasso: ellipse and rectangle, dragged with the left button.
//
// kept: neither of them saves an undo step. They are quick to draw again, and dragging one over and over
// until it fits must not push the steps of slow outlines off the end of the undo list. So a mere click, which
// encloses nothing, empties the slice for good unless Shift or Control is held.

#include "core/Gi.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "mc/McEvent.h"
#include "tools/GiLasso.h"
#include "tools/giDrawOutline.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace {

constexpr int kLeft = 1;
constexpr int kEllipsePoints = 32;

McVec2f halfWay(const McVec2f& a, const McVec2f& b)
{
    return McVec2f((a.x + b.x) / 2, (a.y + b.y) / 2);
}

/// Half axes are counted by the corner of a box around the centre: the ellipse goes through the corners and
/// so reaches beyond the box.
McDArray<McVec2f> ellipse(const McVec2i& start, const McVec2i& end, bool fromCenter)
{
    const McVec2f s(start), p(end);
    const McVec2f c = fromCenter ? s : halfWay(s, p);
    const McVec2f half = fromCenter ? p - c : s - c;
    const double a = static_cast<double>(half.x), b = static_cast<double>(half.y);
    McDArray<McVec2f> points(kEllipsePoints);
    for (int i = 0; i < kEllipsePoints; ++i) {
        const auto t = static_cast<float>(i * (-2 * std::numbers::pi) / kEllipsePoints);
        const double sine = std::sin(static_cast<double>(t)), cosine = std::cos(static_cast<double>(t));
        points[i] = McVec2f(static_cast<float>(static_cast<double>(c.x) + a * sine + a * cosine),
                            static_cast<float>(static_cast<double>(c.y) + b * cosine - b * sine));
    }
    return points;
}

/// kept: corners are those of pixels, the upper left ones, so the row and column of the lower right end are
/// left out. Areas are as large as the way of the pointer, and two rectangles that share a corner do not
/// overlap. Dragged from the center to the upper left, one reaches the last row and column of a slice, too.
McDArray<McVec2f> rectangle(const McVec2i& start, const McVec2i& end, bool fromCenter)
{
    const McVec2f s(start), p(end);
    const McVec2f c = fromCenter ? s : halfWay(s, p);
    const McVec2f half = p - c;
    return {McVec2f(c.x - half.x, c.y + half.y), McVec2f(c.x + half.x, c.y + half.y),
            McVec2f(c.x + half.x, c.y - half.y), McVec2f(c.x - half.x, c.y - half.y)};
}

McVec2i pixelOf(const GiFrameBuffer& buffer, const McEvent& event)
{
    return McVec2i(buffer.dataColumn(event.x), buffer.dataRow(event.y));
}

McBox2i boxOnScreen(const GiFrameBuffer& buffer, const McDArray<McVec2f>& outline)
{
    McBox2i box;
    for (const McVec2f& p : outline) {
        const McVec2i at = buffer.zoomf(p);
        box.extendBy(at.x, at.y);
    }
    return box;
}

} // namespace

int GiLasso::handleEventEllipse(GiFrameBuffer& buffer, McEvent& event)
{
    const auto* button = event.as<McButtonEvent>();
    const McVec2i pixel = pixelOf(buffer, event);
    const bool isElsewhere = ellipseActive && &buffer != shapeBuffer;
    if (button && !isElsewhere) {
        if (!button->pressed) {
            stopEllipse(pixel, modeOf(event));
        } else if (button->button == kLeft) {
            ellipseFromCenter = event.alt;
            startEllipse(buffer, pixel);
        }
        return 1;
    }
    if (event.as<McMotionEvent>() && !isElsewhere) moveEllipse(pixel);
    return ellipseActive;
}

void GiLasso::startEllipse(GiFrameBuffer& buffer, const McVec2i& pixel)
{
    ellipseStart = pixel;
    ellipseActive = true;
    rectangleActive = false;
    beginShape(buffer, pixel);
}

void GiLasso::moveEllipse(const McVec2i& pixel)
{
    if (ellipseActive) moveShape(pixel);
}

void GiLasso::stopEllipse(const McVec2i& pixel, GiSelectMode mode)
{
    if (!ellipseActive) return;
    const McDArray<McVec2f> outline = ellipse(ellipseStart, pixel, ellipseFromCenter);
    ellipseActive = false;
    selectShape(outline, mode);
}

int GiLasso::handleEventRectangle(GiFrameBuffer& buffer, McEvent& event)
{
    const auto* button = event.as<McButtonEvent>();
    const McVec2i pixel = pixelOf(buffer, event);
    const bool isElsewhere = rectangleActive && &buffer != shapeBuffer;
    if (button && !isElsewhere) {
        if (!button->pressed) {
            stopRectangle(pixel, modeOf(event));
        } else if (button->button == kLeft) {
            rectangleFromCenter = event.alt;
            startRectangle(buffer, pixel);
        }
        return 1;
    }
    if (event.as<McMotionEvent>() && !isElsewhere) moveRectangle(pixel);
    return rectangleActive;
}

void GiLasso::startRectangle(GiFrameBuffer& buffer, const McVec2i& pixel)
{
    rectangleStart = pixel;
    rectangleActive = true;
    ellipseActive = false;
    beginShape(buffer, pixel);
}

void GiLasso::moveRectangle(const McVec2i& pixel)
{
    if (rectangleActive) moveShape(pixel);
}

void GiLasso::stopRectangle(const McVec2i& pixel, GiSelectMode mode)
{
    if (!rectangleActive) return;
    const McDArray<McVec2f> outline = rectangle(rectangleStart, pixel, rectangleFromCenter);
    rectangleActive = false;
    selectShape(outline, mode);
}

void GiLasso::beginShape(GiFrameBuffer& buffer, const McVec2i& pixel)
{
    // A second press without a release in between, which nobody saw: the marks of the former shape go.
    if (shapeBuffer != &buffer) shapeBox = McBox2i();
    shapeBuffer = &buffer;
    shapeView = viewOf(buffer);
    moveShape(pixel);
}

/// The outline under way, in pixels of the slice.
McDArray<McVec2f> GiLasso::shapeOnScreen() const
{
    return ellipseActive ? ellipse(ellipseStart, shapeEnd, ellipseFromCenter)
                         : rectangle(rectangleStart, shapeEnd, rectangleFromCenter);
}

void GiLasso::moveShape(const McVec2i& pixel)
{
    shapeEnd = pixel;
    McBox2i changed = shapeBox;
    shapeBox = boxOnScreen(*shapeBuffer, shapeOnScreen());
    changed.extendBy(shapeBox);
    shapeBuffer->render(changed, nullptr);
    shapeBuffer->paste(changed);
}

void GiLasso::selectShape(const McDArray<McVec2f>& outline, GiSelectMode mode)
{
    GiFrameBuffer* buffer = std::exchange(shapeBuffer, nullptr);
    if (buffer->selection)
        selectOutline(*buffer, outline, mode);
    else
        gi->redraw(); // the marks go
}

void GiLasso::renderShape(GiFrameBuffer& buffer) const
{
    if (!ellipseActive && !rectangleActive) return;
    const McDArray<McVec2f> outline = shapeOnScreen();
    giSetOutlineColor(buffer);
    for (int i = 0; i < outline.size(); ++i)
        giDrawSegment(buffer, buffer.zoomf(outline[i]), buffer.zoomf(outline[(i + 1) % outline.size()]));
}
