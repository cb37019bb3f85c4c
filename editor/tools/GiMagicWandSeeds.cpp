// Magic wand: which seeds there are, which one is active, and how it is picked.

#include "core/Gi.h"
#include "core/GiOrientation.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxParamBundle.h"
#include "mc/McEvent.h"
#include "mc/McHandle.h"
#include "tools/GiMagicWand.h"
#include "tools/MagicWandActions.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int kLeft = 1;

} // namespace

bool GiMagicWand::isShown(const MagicWandSeed& seed, const GiViewer& viewer) const
{
    const int orientation = viewer.getOrientation();
    return seed.coordinate(giSliceAxis(orientation)) == viewer.getSlice() &&
           (seed.is3D || seed.orientation == orientation);
}

McVec2i GiMagicWand::markCentre(const MagicWandSeed& seed, const GiFrameBuffer& frameBuffer) const
{
    const int orientation = frameBuffer.viewer->getOrientation();
    return frameBuffer.pixelCentre(seed.coordinate(giWidthAxis(orientation)),
                                   seed.coordinate(giHeightAxis(orientation)));
}

/// The seed whose mark is under the pointer, -1 for none. A new one that is active is no target: it has just
/// been clicked.
///
/// kept: hidden marks are targets, too. Hiding them clears the view; a click into a kept region must not
/// leave a second seed there that differs from the first by nothing.
int GiMagicWand::seedAt(const GiFrameBuffer& frameBuffer, const McEvent& event) const
{
    for (int i = 0; i < seeds.size(); ++i) {
        if ((i == currentSeed && !seedIsStored) || !isShown(seeds[i], *frameBuffer.viewer)) continue;
        const McVec2i centre = markCentre(seeds[i], frameBuffer);
        if (std::abs(event.x - centre.x) <= kMarkReach && std::abs(event.y - centre.y) <= kMarkReach)
            return i;
    }
    return -1;
}

void GiMagicWand::checkCursor(const GiFrameBuffer& frameBuffer, const McEvent& event)
{
    const bool isRefused = gi->maskingEnabled() && !isInWindow(gi->valueUnderPointer);
    setCursor(seedAt(frameBuffer, event) >= 0 || isRefused ? kArrow : kToolCursor);
}

bool GiMagicWand::checkForClickOnSeedPoint(const GiFrameBuffer& frameBuffer, const McEvent& event)
{
    int found = -1;
    if (McMouseButtonEvent::isButtonPressEvent(&event, kLeft))
        found = seedAt(frameBuffer, event);
    else if (const auto* key = event.as<McKeyboardEvent>(); key && !key->released && key->key == 'n')
        found = nextSeed(*frameBuffer.viewer);
    if (found < 0) return false;
    selectSeed(found);
    return true;
}

/// The seed of the slice that follows the active one in the list, which goes on from its end with its start.
int GiMagicWand::nextSeed(const GiViewer& viewer) const
{
    const int n = seeds.size();
    const int first = hasActiveSeed() ? currentSeed + 1 : 0;
    const int others = hasActiveSeed() ? n - 1 : n;
    for (int i = first; i < first + others; ++i) {
        const MagicWandSeed& seed = seeds[i % n];
        if (seed.orientation == viewer.getOrientation() && isShown(seed, viewer)) return i % n;
    }
    return -1;
}

void GiMagicWand::recordClick(int secondSeed)
{
    const McHandle<MagicWandClickAction> action(new MagicWandClickAction(*this, *gi, secondSeed));
    gi->addUndoAction(action, true);
}

void GiMagicWand::selectSeed(int i)
{
    if (seeds[i].is3D) {
        gi->saveUndoInformationForVolume(1, 0, nullptr);
    } else {
        gi->saveUndoInformationForSlice(1, 0, nullptr);
        recordClick(i);
    }
    if (hasActiveSeed()) {
        seeds[currentSeed] = seedBackup;
        // kept: the index is not corrected for the seed that goes, and so means the one behind the mark. New
        // seeds stand at the end, unless undo has put an older one behind them.
        if (!seedIsStored && currentSeed != i) seeds.remove(currentSeed);
    }
    currentSeed = -1;
    if (i >= seeds.size()) {
        gi->redraw();
        return;
    }
    currentSeed = i;
    seedIsStored = 1;
    seedBackup = seeds[i];
    restorePanel(seedBackup.min, seedBackup.max, seedBackup);
    const MagicWandSeed picked = seedBackup;
    const bool isGrown = regrow();
    if (!isGrown) gi->undo();
    redrawSeeds(1); // also where nothing was grown, as in a viewer of another orientation
    if (!isGrown && !picked.is3D) return; // the undone step was the pick, too
    const int material = picked.material;
    if (material > 0 && gi->materials && material < gi->materials->nBundles()) gi->setCurrentTissue(material);
}

/// Makes a new seed the active one. A new one that is active serves again, so that a series of clicks leaves
/// one seed.
void GiMagicWand::beginSeed()
{
    if (hasActiveSeed() && !seedIsStored) return;
    if (hasActiveSeed()) seeds[currentSeed] = seedBackup;
    currentSeed = seeds.append(MagicWandSeed());
    seedIsStored = 0;
}

void GiMagicWand::fillSeed(int orientation, const McVec3i& voxel, float value)
{
    lastValue = value;
    MagicWandSeed& seed = seeds[currentSeed];
    seed = panelOptions();
    seed.orientation = orientation;
    seed.setVoxel(voxel);
    gi->getToolDataWindow(seed.min, seed.max);
}

/// Limits the voxel to the volume: a seed of a file may lie anywhere.
void GiMagicWand::checkRange(MagicWandSeed& seed) const
{
    const unsigned long* dims = gi->imageSlices.dims();
    McVec3i voxel = seed.voxel();
    for (int axis = 0; axis < 3; ++axis)
        voxel[axis] = std::clamp(voxel[axis], 0, static_cast<int>(dims[axis]) - 1);
    seed.setVoxel(voxel);
}

bool GiMagicWand::regrow()
{
    GiViewer* viewer = gi->getCurrentViewer();
    if (!hasActiveSeed() || !viewer || !viewer->getFrameBuffer() || !gi->imageSlices.data() || isRunning)
        return true;
    if (seeds[currentSeed].orientation != viewer->getOrientation()) return true;
    checkRange(seeds[currentSeed]);
    const McVec3i voxel = seeds[currentSeed].voxel();
    gi->setToolDataWindowMarker(imageValue(voxel));
    fillSeed(viewer->getOrientation(), voxel, lastValue);
    const MagicWandSeed seed = seeds[currentSeed];
    if (isGrowing3D()) return regionGrowing3D(kReplace, voxel);
    // kept: it grows in its own slice and is shown in the viewer's, which may be another one by now. So one
    // seed marks a structure in a run of slices that look alike.
    return regionGrowing2D(*viewer->getFrameBuffer(), kReplace, seed);
}

// kept: whatever the reason, and be it that a limit line came or went, the region replaces the selection,
// also one that several clicks with Shift have gathered. Only the last of these has left a seed, so what the
// others would grow to now is not known.
void GiMagicWand::update()
{
    regrow();
}

void GiMagicWand::update3D()
{
    const bool all = isGrowing3D();
    showOptions(panelOptions());
    // Growing the volume at every step of a drag would be too slow.
    if (!gi->maskingEnabled()) gi->setToolDataWindowSliderTracking(!all);
    if (!hasActiveSeed() || !gi->imageSlices.data()) return;
    if (all || grown3D)
        gi->saveUndoInformationForVolume(1, 0, nullptr);
    else
        gi->saveUndoInformationForSlice(1, 0, nullptr);
    if (!all && grown3D) {
        gi->selection->clear();
        gi->updateSelectionBoxes();
        // A viewer of another orientation grows nothing that would show and tell it.
        gi->redraw();
        gi->touchData(1, 0, 0, -1, 0, 0);
    }
    if (!regrow()) gi->undo();
}

void GiMagicWand::dataWindowChanged(float min, float max)
{
    if (gi->maskingEnabled()) {
        gi->setToolDataWindowSliderTracking(true);
        return;
    }
    if (gi->toolDataWindowSliderTracking() && isGrowing3D()) {
        gi->setToolDataWindowSliderTracking(false); // the slider's release brings the next change
        return;
    }
    gi->setToolDataWindowSliderTracking(true);
    GiViewer* viewer = hasActiveSeed() ? viewerOf(seeds[currentSeed].orientation) : nullptr;
    if (!viewer || !gi->imageSlices.data() || isRunning) return;
    seeds[currentSeed].min = min;
    seeds[currentSeed].max = max;
    const MagicWandSeed seed = seeds[currentSeed];
    // kept: in limit mode the region of the volume is added, as `mode` says. Somebody who draws lines keeps
    // what other slices hold.
    if (isGrowing3D())
        regionGrowing3D(mode, seed.voxel());
    else
        regionGrowing2D(*viewer->getFrameBuffer(), kReplace, seed);
}

/// The current viewer, if it has this orientation, else any that has; null without one.
GiViewer* GiMagicWand::viewerOf(int orientation) const
{
    const auto fits = [=](const GiViewer* viewer) {
        return viewer && viewer->getFrameBuffer() && viewer->getOrientation() == orientation;
    };
    if (GiViewer* current = gi->getCurrentViewer(); fits(current)) return current;
    for (int i = 0; i < gi->viewers.size(); ++i)
        if (fits(gi->viewers[i])) return gi->viewers[i];
    return nullptr;
}
