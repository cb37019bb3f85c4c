// Brush: what it does with events and what of the pictures it draws anew.

#include "tools/GiBrush.h"

#include "core/Gi.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxResource.h"
#include "mc/McEvent.h"

#include <algorithm>

namespace {

constexpr int kLeft = 1, kRight = 3;
constexpr int kOutlineMargin = 2;   // the outline lies around the pen
constexpr int kSmallestOutline = 4; // smaller pens show none
constexpr int kPolygonColor[3] = {255, 192, 0};
constexpr float kDashPercent = 5; // of a side of the square, and degrees of the circle

bool isVisible(GiViewer& viewer)
{
    const QWidget* widget = viewer.getWidget();
    return !widget || widget->isVisible();
}

/// Data pixels under a box of the screen.
McBox2i dataBox(const GiFrameBuffer& buffer, const McBox2i& box)
{
    const int x0 = buffer.dataColumn(box.xmin), x1 = buffer.dataColumn(box.xmax);
    const int y0 = buffer.dataRow(box.ymin), y1 = buffer.dataRow(box.ymax);
    return McBox2i(std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1));
}

} // namespace

bool GiBrush::autoHide = true;
bool GiBrush::squareBrush = false;
int GiBrush::morphologicalMode = 0;

GiBrush::GiBrush(Gi* owner) : GiTool(owner)
{
    name = "Brush";
}

QCursor GiBrush::makeCursor() const
{
    return HxResource::readCursor("SegBrushCursor.png", nullptr, 5, 15);
}

void GiBrush::setBrushSize(int size)
{
    brushWidth = brushHeight = size;
}

McBox2i GiBrush::penBox(const McVec2i& centre, int width, int height) const
{
    const int reachX = width / 2 + kOutlineMargin, reachY = height / 2 + kOutlineMargin;
    return McBox2i(centre.x - reachX, centre.y - reachY, centre.x + reachX, centre.y + reachY);
}

int GiBrush::handleEvent(GiFrameBuffer* frameBuffer, McEvent* event)
{
    if (!frameBuffer->selection || !frameBuffer->viewer) return 0;
    if (event->as<McLeaveWindowEvent>()) {
        clear(frameBuffer);
        return 1;
    }
    keepUpWithButton(*event);
    mousePos = McVec2i(event->x, event->y);
    drawing = event->left;
    const McBox2i frame(0, 0, frameBuffer->zoomedSize.x - 1, frameBuffer->zoomedSize.y - 1);
    if (!frame.contains(event->x, event->y)) {
        clear(frameBuffer);
        return 1;
    }
    viewer = frameBuffer->viewer;
    McBox2i repaint = startRepaint(*frameBuffer);
    if (const auto* button = event->as<McButtonEvent>()) {
        if (button->button == kRight && button->pressed) {
            fillAt(*frameBuffer, *event);
            return 1;
        }
        if (button->button == kLeft && button->pressed) press(*frameBuffer, *event);
        if (button->button == kLeft && !button->pressed) release(*frameBuffer, *event, repaint);
    } else if (event->as<McMotionEvent>() && event->left && !event->alt) {
        drag(*frameBuffer, *event);
    }
    McBox2i changed = dataBox(*frameBuffer, repaint);
    if (drawing && !event->alt) gi->updateSelectionBoxes(changed, viewer);
    lastPos = mousePos;
    repaintViewers(changed);
    return 1;
}

void GiBrush::keepUpWithButton(const McEvent& event)
{
    const bool begins = McMouseButtonEvent::isButtonPressEvent(&event, kLeft);
    const bool ends = McMouseButtonEvent::isButtonReleaseEvent(&event, kLeft) ||
                      (event.as<McMotionEvent>() && !event.left); // also if nobody saw the release
    if (begins) strokeStep.forget();
    if (begins || ends) isPressed = begins;
}

/// The part of the screen where the outline was and where it will be.
McBox2i GiBrush::startRepaint(GiFrameBuffer& frameBuffer)
{
    const int width = std::max(lastWidth, brushWidth), height = std::max(lastHeight, brushHeight);
    McBox2i repaint = penBox(mousePos, width, height);
    lastWidth = brushWidth;
    lastHeight = brushHeight;
    if (hasPosition())
        repaint.extendBy(penBox(lastPos, width, height));
    else
        frameBuffer.paste();
    if (points.size() > 0) repaint.extendBy(points.last().x, points.last().y);
    return repaint;
}

void GiBrush::fillAt(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    gi->fillSelection(frameBuffer.dataColumn(event.x), frameBuffer.dataRow(event.y), event.ctrl);
    gi->redraw();
}

void GiBrush::press(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    startInteraction(viewer);
    if (!event.alt && points.isEmpty())
        putBrush(&frameBuffer, mousePos, !event.ctrl);
    else
        points.append(mousePos);
    frameBuffer.paste();
}

/// The way since the last event. The button may have gone down on another tool, which a key has replaced
/// since; then there is no stroke.
void GiBrush::drag(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    if (!isPressed || mousePos == lastPos) return;
    openStep();
    if (hasPosition())
        drawStroke(frameBuffer, lastPos, mousePos, !event.ctrl);
    else
        putBrush(&frameBuffer, mousePos, !event.ctrl);
}

void GiBrush::release(GiFrameBuffer& frameBuffer, McEvent& event, McBox2i& repaint)
{
    if (points.size() > 0 && !event.alt) {
        for (const McVec2i& corner : points) repaint.extendBy(penBox(corner, brushWidth, brushHeight));
        finishInteraction(&frameBuffer, &event);
        drawing = 1; // what follows treats the polygon as the stroke that it has become
    }
    if (points.isEmpty()) gi->touchData(1, 0, viewer->getOrientation(), viewer->getSlice(), 0, 0);
    strokeStep.forget();
}

void GiBrush::startInteraction(GiViewer* inViewer)
{
    gi->saveUndoInformationForSlice(1, 0, inViewer); // selection, not labels
    strokeStep.open(*gi);
    strokeOrientation = inViewer->getOrientation();
    strokeSlice = inViewer->getSlice();
}

/// Opens an undo step unless the newest one is that of the stroke, for the slice in view: a press beside the
/// image has made none, and keys can undo, change the selection or go to another slice in mid-stroke.
void GiBrush::openStep()
{
    const bool holdsSlice =
        viewer->getOrientation() == strokeOrientation && viewer->getSlice() == strokeSlice;
    if (!strokeStep.isNewest(*gi) || !holdsSlice) startInteraction(viewer);
}

void GiBrush::finishInteraction(GiFrameBuffer* frameBuffer, McEvent* event)
{
    if (points.isEmpty()) return;
    const int set = !event->ctrl;
    openStep();
    // The polygon stays open: it is a stroke with corners.
    for (int i = 0; i + 1 < points.size(); ++i) drawStroke(*frameBuffer, points[i], points[i + 1], set);
    drawStroke(*frameBuffer, points.last(), mousePos, set);
    points.clear();
}

/// changed  data pixels of the viewer with the pointer
void GiBrush::repaintViewers(const McBox2i& changed)
{
    for (int i = 0; i < gi->viewers.size(); ++i) {
        GiViewer* shown = gi->viewers[i];
        GiFrameBuffer* buffer = shown->getFrameBuffer();
        if (!buffer || !isVisible(*shown) || (shown != viewer && !drawing)) continue;
        McBox2i part = changed;
        if (shown != viewer) gi->projectBox(viewer, shown, changed, part);
        if (part.isEmpty()) continue;
        // The outlines of the selection's neighbours change with it, in every viewer on both sides.
        const McBox2i screen =
            buffer->screenBox(McBox2i(part.xmin - 1, part.ymin - 1, part.xmax + 1, part.ymax + 1));
        buffer->render(screen, nullptr);
        buffer->paste(screen);
    }
}

void GiBrush::render(GiFrameBuffer* frameBuffer, const McBox2i&)
{
    if (frameBuffer->viewer != viewer) return;
    if (points.size() > 0) renderPolygon(*frameBuffer);
    if (drawing && autoHide) return;
    if (!hasPosition() || brushWidth < kSmallestOutline) return;
    frameBuffer->setColor(255, 255, 255);
    frameBuffer->setFunction(GiFrameBuffer::kDraw);
    const McVec2i half(brushWidth / 2, brushHeight / 2);
    if (squareBrush)
        frameBuffer->drawStippleRect(mousePos, half, kDashPercent, 0);
    else
        frameBuffer->drawStippleEllipse(mousePos.x, mousePos.y, static_cast<float>(half.x),
                                        static_cast<float>(half.y), kDashPercent, 0);
}

void GiBrush::renderPolygon(GiFrameBuffer& frameBuffer) const
{
    frameBuffer.setColor(kPolygonColor[0], kPolygonColor[1], kPolygonColor[2]);
    frameBuffer.drawLine(points.last().x, points.last().y, mousePos.x, mousePos.y);
    for (int i = 0; i + 1 < points.size(); ++i)
        frameBuffer.drawLine(points[i].x, points[i].y, points[i + 1].x, points[i + 1].y);
}

void GiBrush::deselect(GiFrameBuffer* frameBuffer)
{
    isPressed = false;
    strokeStep.forget();
    if (!frameBuffer || mousePos.x < kSomewhere) return;
    drawing = 1;
    const McBox2i box = penBox(mousePos, brushWidth, brushHeight);
    // Without this tool: while "Hide cursor" is off, an outline would be drawn for good.
    frameBuffer->render(box, this);
    frameBuffer->paste(box);
}

void GiBrush::clear(GiFrameBuffer* frameBuffer)
{
    if (!hasPosition()) return;
    lastPos = McVec2i(kNowhere, kNowhere);
    points.clear();
    frameBuffer->render(nullptr);
    frameBuffer->paste();
}
