// Magic wand: clicks and keys over a slice, and what happens around the tool.

#include "tools/GiMagicWand.h"

#include "core/Gi.h"
#include "core/GiMask.h"
#include "core/GiModifySelection.h"
#include "core/GiNotice.h"
#include "core/GiOrientation.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxResource.h"
#include "mc/McEvent.h"
#include "mc/McHandle.h"

namespace {

using Key = McKeyboardEvent;

constexpr int kLeft = 1;
constexpr int kControlX = 24; // the character that Control makes of "x"

/// The key that an event presses, 0 if it presses none.
int pressedKey(const McEvent& event)
{
    const auto* key = event.as<McKeyboardEvent>();
    return key && !key->released ? key->key : 0;
}

bool isDeleteKey(const McEvent& event)
{
    const int key = pressedKey(event);
    return key == Key::kDelete || key == Key::kKeypadDelete || key == kControlX || (key == 'x' && event.ctrl);
}

bool isInFrame(const GiFrameBuffer& buffer, const McEvent& event)
{
    return event.x >= 0 && event.y >= 0 && event.x < buffer.zoomedSize.x && event.y < buffer.zoomedSize.y;
}

int growCode(const McEvent& event)
{
    if (event.ctrl) return GiMagicWand::kSubtract;
    return event.shift ? GiMagicWand::kAdd : GiMagicWand::kReplace;
}

} // namespace

GiMagicWand::GiMagicWand(Gi* owner) : GiTool(owner)
{
    name = "Magic Wand";
}

GiMagicWand::~GiMagicWand()
{
    writeSettings();
}

QCursor GiMagicWand::makeCursor() const
{
    return HxResource::readCursor("SegMagicWandCursor.png", nullptr, 15, 15);
}

const QCursor* GiMagicWand::getToolCursor() const
{
    // Never destroyed: that would be after the application, which cursors need.
    switch (cursorKind) {
    case kPencil: {
        static const auto* pencil =
            new QCursor(HxResource::readCursor("SegPencilCursor.png", nullptr, 7, 16));
        return pencil;
    }
    case kDelete: {
        static const auto* eraser = new QCursor(HxResource::readCursor("SegDeleteCursor.png", nullptr, 9, 8));
        return eraser;
    }
    case kArrow: {
        static const auto* arrow = new QCursor(Qt::ArrowCursor);
        return arrow;
    }
    default:
        return GiTool::getToolCursor();
    }
}

void GiMagicWand::setCursor(Cursor kind)
{
    cursorKind = kind;
    gi->updateCursor();
}

void GiMagicWand::select()
{
    if (!(flags & kSelected)) dropActiveSeed();
    flags |= kSelected;
    gi->redraw();
    savedTracking = gi->toolDataWindowSliderTracking();
}

void GiMagicWand::deselect(GiFrameBuffer*)
{
    if (!(flags & kSelected)) return; // called once per viewer
    if (flags & kDrawingLimit) finishLimit();
    flags &= ~kSelected;
    setSeedMode();
    dropActiveSeed();
    gi->redraw();
    gi->clearToolDataWindowMarker();
    gi->setToolDataWindowSliderTracking(savedTracking != 0);
}

void GiMagicWand::dropActiveSeed()
{
    if (hasActiveSeed() && !seedIsStored) seeds.remove(currentSeed);
    currentSeed = -1;
}

void GiMagicWand::endRestoring()
{
    // Another tool works with the window and the selection by now: a seed that became active here would grow
    // into its work as soon as the wand is chosen.
    if (!(flags & kSelected)) dropActiveSeed();
}

void GiMagicWand::init()
{
    flags &= ~(kSeedsHidden | kDrawingLimit);
    setSeedMode();
    grown3D = 0;
    initSeeds();
    initLimits();
    if (seeds.size() > 0 || limits.size() > 0) gi->redraw();
}

// Events

int GiMagicWand::handleEvent(GiFrameBuffer* frameBuffer, McEvent* event)
{
    if (!frameBuffer->viewer || !frameBuffer->selection || !gi->imageSlices.data()) return 0;
    if (isRunning) return 1; // windows stay alive while the volume is grown; the wand itself must not
    if (pressedKey(*event) == 'h' && !event->as<McKeyboardEvent>()->autoRepeat) {
        flags ^= kSeedsHidden;
        redrawSeeds(1);
    }
    return mode == kLimitMode ? handleEventLimitMode(*frameBuffer, *event)
                              : handleEventSeedMode(*frameBuffer, *event);
}

int GiMagicWand::handleEventSeedMode(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    const int key = pressedKey(event);
    // kept: Control alone leads to the limit lines, so a press with Control draws a line; it subtracts only
    // while the key was pressed outside the viewer. The line tool must be at hand without a look at the
    // panel.
    if (key == 'l' || key == Key::kControlLeft || key == Key::kControlRight) {
        setLimitMode(&frameBuffer, &event);
        if (key != 'l') flags |= kOpenedByControl;
        return 1;
    }
    checkCursor(frameBuffer, event);
    if (checkForClickOnSeedPoint(frameBuffer, event)) return 1;
    if (McMouseButtonEvent::isButtonPressEvent(&event, kLeft)) {
        click(frameBuffer, event);
        return 1;
    }
    if (!hasActiveSeed() || !isDeleteKey(event)) return 0;
    deleteActiveSeed();
    return 1;
}

void GiMagicWand::deleteActiveSeed()
{
    gi->saveUndoInformationForVolume(1, 0, nullptr);
    // The seed is a thing of its own in the file: to bring back the selection alone would lose it. It comes
    // back as it was stored, not with the window that was tried on it.
    if (seedIsStored) seeds[currentSeed] = seedBackup;
    recordClick(-1);
    deleteActiveEntry();
    removeActiveSeed();
    gi->selection->clear();
    gi->updateSelectionBoxes();
    gi->redraw();
    gi->touchData(1, 0, 0, -1, 0, 0);
}

/// Takes the active seed out of the label data, under each name that it has had since it was picked: a voxel
/// outside the volume was brought within.
void GiMagicWand::deleteActiveEntry()
{
    deleteSeed(seeds[currentSeed]);
    if (seedIsStored) deleteSeed(seedBackup);
}

void GiMagicWand::removeActiveSeed()
{
    seeds.remove(currentSeed);
    currentSeed = -1;
}

bool GiMagicWand::isInWindow(float value) const
{
    float min, max;
    gi->getToolDataWindow(min, max);
    return value >= min && value <= max;
}

void GiMagicWand::click(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    const float value = gi->valueUnderPointer;
    if (gi->maskingEnabled() && !isInWindow(value)) return;
    if (!isInFrame(frameBuffer, event)) return;
    const McVec2i pixel(frameBuffer.dataColumn(event.x), frameBuffer.dataRow(event.y));
    if (pixel.x >= frameBuffer.originalSize.x || pixel.y >= frameBuffer.originalSize.y) return;
    GiViewer& viewer = *frameBuffer.viewer;
    gi->setToolDataWindowMarker(value);
    if (isGrowing3D()) {
        // kept: the step brings the selection back, not the seeds.
        gi->saveUndoInformationForVolume(1, 0, nullptr);
    } else {
        gi->saveUndoInformationForSlice(1, 0, &viewer);
        recordClick(-1);
    }
    beginSeed();
    fillSeed(viewer.getOrientation(), gi->getPoint3D(pixel.x, pixel.y, &viewer), value);
    const MagicWandSeed seed = seeds[currentSeed];
    const bool isGrown = isGrowing3D() ? regionGrowing3D(growCode(event), seed.voxel())
                                       : regionGrowing2D(frameBuffer, growCode(event), seed);
    if (!isGrown) gi->undo(); // the selection has not changed: the step that was opened goes, too
}

void GiMagicWand::regionGrowingVolPick(const McVec3i& voxel, float value, int code)
{
    GiViewer* viewer = gi->getCurrentViewer();
    if (!viewer || !viewer->getFrameBuffer() || !gi->imageSlices.data() || isRunning) return;
    if (!gi->selection->contains(voxel.x, voxel.y, voxel.z)) return;
    const int orientation = viewer->getOrientation(), slice = voxel[giSliceAxis(orientation)];
    if (isGrowing3D()) {
        gi->saveUndoInformationForVolume(1, 0, nullptr);
    } else {
        gi->saveUndoInformationForSlice(1, 0, viewer);
        recordClick(-1);
        if (slice != viewer->getSlice()) {
            gi->selection->sliceFlags[giSliceAxis(orientation)][slice] = 0;
            const McHandle<GiModifySelection> action(new GiModifySelection(gi));
            action->saveSlice(gi->selection, slice, orientation);
            gi->addUndoAction(action, true);
        }
    }
    beginSeed();
    fillSeed(orientation, voxel, value);
    const MagicWandSeed seed = seeds[currentSeed];
    if (isGrowing3D()) {
        if (!regionGrowing3D(code, voxel)) gi->undo();
        return;
    }
    if (code == kReplace) viewer->getSelection()->clear();
    viewer->setSlice(slice, true);
    if (!regionGrowing2D(*viewer->getFrameBuffer(), code, seed)) gi->undo();
}

void GiMagicWand::selectionNotify(int what)
{
    if (!hasActiveSeed() || what == kMode3DChanged || what == kZoomModeChanged) return;
    recordClick(-1);
    const MagicWandSeed seed = seeds[currentSeed];
    switch (what) {
    case kSelectionStored:
    case kMaterialReplaced:
        saveSeed(seed);
        currentSeed = -1;
        redrawSeeds(1);
        break;
    case kSelectionCleared:
        if (!seedIsStored) removeActiveSeed();
        currentSeed = -1;
        break;
    case kSelectionSubtracted:
        if (seedIsStored) deleteActiveEntry();
        removeActiveSeed();
        eraseMark(seed);
        break;
    default:
        break;
    }
}

float GiMagicWand::imageValue(const McVec3i& voxel) const
{
    const unsigned long* dims = gi->imageSlices.dims();
    const unsigned long at =
        static_cast<unsigned long>(voxel.x) +
        dims[0] * (static_cast<unsigned long>(voxel.y) + dims[1] * static_cast<unsigned long>(voxel.z));
    float value = 0;
    giDispatchImage(gi->primType, gi->imageSlices.data(),
                    [&](const auto* values) { value = static_cast<float>(values[at]); });
    return value;
}
