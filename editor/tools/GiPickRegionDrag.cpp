// Pick region: moving and turning the selection.

#include "core/Gi.h"
#include "core/GiBusy.h"
#include "core/GiOrientation.h"
#include "core/giMoveSelection.h"
#include "core/giSelectionBoxes.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxMessage.h"
#include "mc/McEvent.h"
#include "mc/McMemoryException.h"
#include "tools/GiPickRegion.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr int kLeft = 1, kMiddle = 2;

McVec3f worldPoint(const Gi& gi, const McVec3i& voxel)
{
    return gi.labelLattice->coords()->position(voxel.x, voxel.y, voxel.z);
}

GiAction* newestStep(const Gi& gi)
{
    return gi.undoActions.size() > 0 ? gi.undoActions.last() : nullptr;
}

bool holds(const McBox2i& outer, const McBox2i& inner)
{
    return outer.contains(inner.xmin, inner.ymin) && outer.contains(inner.xmax, inner.ymax);
}

double angleAbout(const McBox2i& box, const McVec2i& pixel)
{
    return std::atan2(pixel.y - (box.ymin + box.height() * 0.5), pixel.x - (box.xmin + box.width() * 0.5));
}

} // namespace

void GiPickRegion::startDrag(GiFrameBuffer& frameBuffer, const McEvent& event, int button)
{
    const GiViewer& viewer = *frameBuffer.viewer;
    dragStart = McVec2i(frameBuffer.dataColumn(event.x), frameBuffer.dataRow(event.y));
    // Strokes that erase leave the box as it was; a turn goes about the middle of what is seen.
    frameBuffer.selection->computeSelectionBox();
    startBox = frameBuffer.selection->selectionBox;
    pressPoint = lastPoint = worldPoint(*gi, gi->getPoint3D(dragStart.x, dragStart.y, frameBuffer.viewer));
    // kept: the middle button turns, though the pan tool takes it first in the viewers. A host that offers
    // its own events to the tool has a second button for turning.
    const bool rotates = event.shift || button == kMiddle;
    if (rotates) setCursor(kRotate);
    flags |= kUndoPending | (rotates ? kRotating : kTranslating);
    rotation = 0;
    offset = McVec2i();
    dragBuffer = &frameBuffer;
    dragButton = button;
    orientation = viewer.getOrientation();
    slice = viewer.getSlice();
    std::copy(gi->selection->dims, gi->selection->dims + 3, dims);
    undoStep = newestStep(*gi);
}

// Motions

/// The first motion takes the pattern and makes the step of undo: a press alone changes nothing.
void GiPickRegion::prepareChange(GiFrameBuffer& frameBuffer)
{
    if (!(flags & kUndoPending)) return;
    pattern = GiSlicePattern(*frameBuffer.selection, startBox);
    dragsVolume = inAllSlices();
    if (dragsVolume)
        gi->saveUndoInformationForVolume(1, 0, frameBuffer.viewer); // selection, not labels
    else
        gi->saveUndoInformationForSlice(1, 0, frameBuffer.viewer);
    undoStep = newestStep(*gi);
    flags &= ~kUndoPending;
}

void GiPickRegion::showChange(GiFrameBuffer& frameBuffer, const McBox2i& old, const McBox2i& now)
{
    McBox2i changed = now;
    gi->updateSelectionBoxes(changed, frameBuffer.viewer);
    changed.extendBy(old);
    for (int i = 0; i < gi->viewers.size(); ++i) {
        GiViewer& viewer = *gi->viewers[i];
        GiFrameBuffer* buffer = viewer.getFrameBuffer();
        McBox2i part = changed;
        if (&viewer != frameBuffer.viewer) gi->projectBox(frameBuffer.viewer, &viewer, changed, part);
        if (!buffer || part.isEmpty()) continue;
        // The outlines of the selection's neighbours change with it.
        const McBox2i screen =
            buffer->screenBox(McBox2i(part.xmin - 1, part.ymin - 1, part.xmax + 1, part.ymax + 1));
        buffer->render(screen, nullptr);
        buffer->paste(screen);
    }
}

int GiPickRegion::handleEventTranslate(GiFrameBuffer* frameBuffer, McEvent* event)
{
    if (endsDrag(*event)) endDrag();
    if (!event->as<McMotionEvent>()) return event->as<McButtonEvent>() ? 1 : 0;
    prepareChange(*frameBuffer);
    const McVec2i pixel(frameBuffer->dataColumn(event->x), frameBuffer->dataRow(event->y));
    if (pixel - dragStart == offset) return 1;
    offset = pixel - dragStart;
    lastPoint = worldPoint(*gi, gi->getPoint3D(pixel.x, pixel.y, frameBuffer->viewer));
    const McBox2i old = startBox;
    GiSelection2D& selection = *frameBuffer->selection;
    GiSlicePattern::erase(selection, old);
    startBox = pattern.putMoved(selection, offset);
    selection.setSelectionBox(startBox);
    showChange(*frameBuffer, old, startBox);
    return 1;
}

int GiPickRegion::handleEventRotate(GiFrameBuffer* frameBuffer, McEvent* event)
{
    if (endsDrag(*event)) endDrag();
    if (!event->as<McMotionEvent>()) return event->as<McButtonEvent>() ? 1 : 0;
    prepareChange(*frameBuffer);
    const McVec2i pixel(frameBuffer->dataColumn(event->x), frameBuffer->dataRow(event->y));
    const double angle = angleAbout(startBox, pixel) - angleAbout(startBox, dragStart);
    rotation = static_cast<float>(angle * 180 / std::numbers::pi);
    const McBox2i square = pattern.putRotated(*frameBuffer->selection, rotation, startBox);
    frameBuffer->selection->setSelectionBox(square);
    showChange(*frameBuffer, startBox, square);
    return 1;
}

// The other slices

void GiPickRegion::translate3d()
{
    giMoveSelection(*gi->selection, orientation, slice, offset);
    translationVec += lastPoint - pressPoint;
}

void GiPickRegion::rotate3d()
{
    const GiBusy busy;
    GiSelection3D& volume = *gi->selection;
    const std::vector<McBox2i> boxes = giSelectionBoxes(volume, orientation);
    const unsigned long steps[3] = {1, volume.dims[0], volume.dims[0] * volume.dims[1]};
    GiSelection2D pixels;
    volume.getSlice(&pixels, orientation, 0);
    for (int i = 0; i < volume.getNumSlices(orientation); ++i) {
        McBox2i box = boxes[static_cast<std::size_t>(i)];
        if (i == slice || box.isEmpty()) continue;
        // All slices turn about the same pixel. One that holds more than the slice in view turns as a whole:
        // the box at the press would cut the rest off.
        if (holds(startBox, box))
            box = startBox;
        else
            box.extendBy(startBox);
        pixels.offset = static_cast<unsigned long>(i) * steps[giSliceAxis(orientation)];
        GiSlicePattern(pixels, box).putRotated(pixels, rotation, startBox);
    }
}

// The end of a drag

bool GiPickRegion::endsDrag(const McEvent& event) const
{
    return McMouseButtonEvent::isButtonReleaseEvent(&event, dragButton);
}

/// Whether the selection is as the drag left it. Whatever else changes it makes, or takes, a step of undo.
bool GiPickRegion::isOurs() const
{
    return std::equal(dims, dims + 3, gi->selection->dims) && undoStep.get() == newestStep(*gi);
}

bool GiPickRegion::isInView() const
{
    for (int i = 0; i < gi->viewers.size(); ++i) {
        const GiViewer& viewer = *gi->viewers[i];
        if (viewer.getFrameBuffer() == dragBuffer)
            return viewer.getOrientation() == orientation && viewer.getSlice() == slice;
    }
    return false;
}

/// Whether a mouse event tells that the button went up where nobody saw it.
bool GiPickRegion::missedRelease(const GiFrameBuffer& frameBuffer, const McEvent& event) const
{
    const bool isElsewhere = &frameBuffer != dragBuffer;
    if (const auto* button = event.as<McButtonEvent>())
        return isElsewhere || (button->pressed && button->button == dragButton);
    if (event.as<McMotionEvent>()) return isElsewhere || !(dragButton == kLeft ? event.left : event.middle);
    return false; // keys come from wherever the keyboard is
}

void GiPickRegion::settleDrag(const GiFrameBuffer& frameBuffer, const McEvent& event)
{
    if (!isDragging()) return;
    if (!isOurs())
        dropDrag();
    else if (!isInView() || missedRelease(frameBuffer, event))
        endDrag();
}

void GiPickRegion::endDrag()
{
    const bool hasMoved = !(flags & kUndoPending);
    if (hasMoved && dragsVolume) {
        if (flags & kTranslating)
            translate3d();
        else
            rotate3d();
    }
    dropDrag();
    if (hasMoved) gi->updateSelectionBoxes();
    gi->touchData(1, 0, orientation, slice, 0, 0);
    gi->redraw();
}

void GiPickRegion::dropDrag()
{
    flags &= ~(kDragging | kUndoPending);
    dragBuffer = nullptr;
    undoStep = nullptr;
    pattern = GiSlicePattern();
}

/// Back to where the selection was at the press, without a step of undo.
void GiPickRegion::cancelDrag()
{
    const bool hasMoved = isDragging() && !(flags & kUndoPending);
    dropDrag();
    if (hasMoved) gi->undo();
}

void GiPickRegion::giveUp(const McMemoryException& exception)
{
    cancelDrag(); // some of the slices may have followed, others not
    HxMessage::getTheMsg()->memError(exception.size());
}

void GiPickRegion::deselect(GiFrameBuffer*)
{
    try {
        if (isDragging() && isOurs()) endDrag();
    } catch (const McMemoryException& exception) {
        giveUp(exception);
    }
    dropDrag();
    flags = kPick;
}
