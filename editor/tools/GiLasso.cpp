// Lasso: outlines drawn and clicked by hand, and what all gestures share.

#include "tools/GiLasso.h"

#include "core/Gi.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxResource.h"
#include "mc/McEvent.h"
#include "mc/McMemoryException.h"
#include "tools/giDrawOutline.h"

#include <utility>

namespace {

constexpr int kFewestPoints = 2;

bool isAlt(int key)
{
    return key == McKeyboardEvent::kAltLeft || key == McKeyboardEvent::kAltRight;
}

} // namespace

GiLasso::GiLasso(Gi* owner) : GiTool(owner)
{
    name = "Lasso";
}

GiLasso::~GiLasso() = default;

QCursor GiLasso::makeCursor() const
{
    return HxResource::readCursor("SegLassoCursor.png", nullptr, 6, 3);
}

GiSelectMode GiLasso::modeOf(const McEvent& event)
{
    return event.ctrl ? kSelectSubtract : event.shift ? kSelectAdd : kSelectReplace;
}

int GiLasso::handleEvent(GiFrameBuffer* buffer, McEvent* event)
{
    if (!buffer->viewer) return 0;
    keepUpWithView();
    if (isDragging() && isGivenUp(*event)) {
        abandon();
        return 1;
    }
    if (drawingMode == kEllipse) return handleEventEllipse(*buffer, *event);
    if (drawingMode == kRectangle) return handleEventRectangle(*buffer, *event);
    return autoTrace ? handleEventAutoTrace(*buffer, *event) : handleEventFreehand(*buffer, *event);
}

int GiLasso::handleEventFreehand(GiFrameBuffer& buffer, McEvent& event)
{
    const bool isElsewhere = !path.isEmpty() && &buffer != frameBuffer;
    if (const auto* button = event.as<McButtonEvent>()) {
        // A release goes where its press went, and that was swallowed.
        if (isElsewhere) return 1;
        if (button->pressed)
            addCorner(buffer, event);
        else if (!event.alt)
            finishInteraction(buffer);
        return 1;
    }
    if (event.as<McMotionEvent>()) {
        if (!isElsewhere) movePointer(buffer, event);
        return 1;
    }
    const auto* key = event.as<McKeyboardEvent>();
    if (!key || !key->released || !isAlt(key->key) || event.left) return 0;
    // The key goes to the viewer with the focus, which need not be that of the outline.
    finishInteraction(isElsewhere ? *frameBuffer : buffer);
    return 1;
}

void GiLasso::addCorner(GiFrameBuffer& buffer, const McEvent& event)
{
    const McVec2i at(event.x, event.y);
    McBox2i changed(at.x, at.y, at.x, at.y);
    if (path.isEmpty()) {
        // kept: a click without a drag selects nothing and leaves its step all the same. Whoever undoes what
        // he did counts presses, and cannot know which of them were too short.
        saveUndo(*buffer.viewer);
        selectionMode = modeOf(event);
        frameBuffer = &buffer;
    } else {
        changed.extendBy(path.last().x, path.last().y);
        changed.extendBy(currentPos.x, currentPos.y); // the rubber band that the new edge replaces
    }
    currentPos = at;
    appendPoint(buffer, at);
    buffer.render(changed, nullptr);
    buffer.paste(changed);
}

void GiLasso::movePointer(GiFrameBuffer& buffer, const McEvent& event)
{
    const McVec2i at(event.x, event.y), former = std::exchange(currentPos, at);
    // The press was another's, such as the cross hair's, and so is the drag: no outline begins without a step
    // of undo.
    if (path.isEmpty()) return;
    McBox2i changed(at.x, at.y, at.x, at.y);
    changed.extendBy(former.x, former.y);
    changed.extendBy(path.last().x, path.last().y);
    if (event.left && (!event.alt || path.size() >= kFewestPoints)) appendPoint(buffer, at);
    buffer.render(changed, nullptr);
    buffer.paste(changed);
}

/// The pixel is looked up at once: the tables cover the window only, and that can be elsewhere at the end.
void GiLasso::appendPoint(const GiFrameBuffer& buffer, const McVec2i& at)
{
    if (path.isEmpty()) {
        pathView = viewOf(buffer);
        pathZoom = buffer.zoomedSize;
    }
    pathPixels.append(McVec2i(buffer.dataColumn(at.x), buffer.dataRow(at.y)));
    path.append(at);
}

/// Selects the outline, which is gone afterwards, also if there is no memory for it.
void GiLasso::finishInteraction(GiFrameBuffer& buffer)
{
    if (path.isEmpty()) {
        undoStep.forget();
        return;
    }
    const bool selects = buffer.selection && path.size() >= kFewestPoints;
    McDArray<McVec2f> centres;
    try {
        // Another undo or another slice in mid-gesture: the slice that changes now gets its own step.
        const bool undoStands = undoStep.isNewest(*gi) && undoSlice == buffer.viewer->getSlice();
        if (selects && !undoStands) saveUndo(*buffer.viewer);
        centres.resize(pathPixels.size());
    } catch (const McMemoryException&) {
        abandon();
        throw;
    }
    for (int i = 0; i < centres.size(); ++i)
        centres[i] =
            McVec2f(static_cast<float>(pathPixels[i].x) + 0.5f, static_cast<float>(pathPixels[i].y) + 0.5f);
    frameBuffer = nullptr;
    path.clear();
    pathPixels.clear();
    if (selects)
        selectOutline(buffer, centres, selectionMode);
    else
        gi->redraw(); // the marks go
    undoStep.forget();
}

/// outline  in pixels of the slice
void GiLasso::selectOutline(GiFrameBuffer& buffer, const McDArray<McVec2f>& outline, GiSelectMode mode)
{
    undoStep.forget(); // what it holds is the past from now on: the step stays
    try {
        McBitfield mask;
        if (gi->getMask(&buffer, mask))
            buffer.selection->setSelection(outline.size(), outline.data(), mode, mask);
        else
            buffer.selection->setSelection(outline.size(), outline.data(), mode);
    } catch (const McMemoryException&) {
        showSelection(buffer); // the marks go, and what was replaced may be gone
        throw;
    }
    showSelection(buffer);
}

void GiLasso::showSelection(GiFrameBuffer& buffer)
{
    McBox2i box = buffer.selection->selectionBox;
    gi->updateSelectionBoxes(box, buffer.viewer);
    gi->redraw();
    gi->touchData(1, 0, buffer.viewer->getOrientation(), buffer.viewer->getSlice(), 0, 0);
}

void GiLasso::saveUndo(GiViewer& viewer)
{
    gi->saveUndoInformationForSlice(1, 0, &viewer); // selection, not labels
    undoStep.open(*gi);
    undoSlice = viewer.getSlice();
}

// What is on screen

void GiLasso::render(GiFrameBuffer* buffer, const McBox2i&)
{
    if (!gi->imageLattice) return;
    if (buffer == frameBuffer && viewOf(*buffer) == pathView) {
        keepUpWithZoom(*buffer);
        giSetOutlineColor(*buffer);
        if (autoTrace)
            renderAutoTrace(*buffer);
        else if (!path.isEmpty())
            giDrawSegment(*buffer, path.last(), currentPos); // the rubber band
        for (int i = 0; i + 1 < path.size(); ++i) giDrawSegment(*buffer, path[i], path[i + 1]);
    }
    if (buffer == shapeBuffer && viewOf(*buffer) == shapeView) renderShape(*buffer);
}

McBox2i GiLasso::getBoundingBox()
{
    if (path.size() < kFewestPoints) return GiTool::getBoundingBox();
    McBox2i box;
    for (const McVec2i& p : path) box.extendBy(p.x, p.y);
    return box;
}

bool GiLasso::isDragging() const
{
    return !path.isEmpty() || isTracing() || ellipseActive || rectangleActive;
}

GiLasso::View GiLasso::viewOf(const GiFrameBuffer& buffer)
{
    return {buffer.viewer ? buffer.viewer->getOrientation() : 0, buffer.originalSize};
}

/// An outline in pixels of another plane, or of a viewer that was closed, can mean nothing any more.
void GiLasso::keepUpWithView()
{
    const auto isStale = [this](const GiFrameBuffer* buffer, const View& view) {
        return buffer && (isGone(buffer) || !(viewOf(*buffer) == view));
    };
    if (isStale(frameBuffer, pathView) || isStale(shapeBuffer, shapeView))
        abandon();
    else if (frameBuffer)
        keepUpWithZoom(*frameBuffer);
}

void GiLasso::keepUpWithZoom(const GiFrameBuffer& buffer)
{
    if (pathZoom == buffer.zoomedSize) return;
    pathZoom = buffer.zoomedSize;
    for (int i = 0; i < path.size(); ++i)
        path[i] = isTracing() ? tracePosition(buffer, pathPixels[i])
                              : buffer.pixelCentre(pathPixels[i].x, pathPixels[i].y);
    if (!path.isEmpty()) currentPos = path.last();
}

bool GiLasso::isGone(const GiFrameBuffer* buffer) const
{
    for (int i = 0; i < gi->viewers.size(); ++i)
        if (gi->viewers[i]->getFrameBuffer() == buffer) return false;
    return true;
}

/// Ends what is under way, selects nothing, and takes the marks off the screen.
void GiLasso::abandon()
{
    GiFrameBuffer* marked[] = {std::exchange(frameBuffer, nullptr), std::exchange(shapeBuffer, nullptr)};
    path.clear();
    pathPixels.clear();
    undoStep.drop(*gi); // the outline has changed nothing
    stopTracing();
    ellipseActive = rectangleActive = false;
    for (GiFrameBuffer* buffer : marked) {
        if (!buffer || isGone(buffer)) continue;
        buffer->render(nullptr);
        buffer->paste();
    }
}

void GiLasso::init()
{
    abandon();
    costSlice = -1; // the same slice of other data has other costs
}

void GiLasso::deselect(GiFrameBuffer*)
{
    abandon();
}
