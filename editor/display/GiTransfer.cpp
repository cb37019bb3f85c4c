// The road from the selection into the labels: add, replace and subtract, in the current slice and
// in the volume, each with its undo step and its notices.

#include "core/Gi.h"
#include "core/GiBusy.h"
#include "core/GiLabelTransfer.h"
#include "core/GiNotice.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxMessage.h"
#include "hx/HxParamBundle.h"
#include "hx/HxSettingsMgr.h"
#include "mc/McMemoryException.h"

namespace {

int threadCount()
{
    return HxSettingsMgr::getInstance()->numThreads();
}

unsigned long voxelCount(const HxLabelLattice3& lattice)
{
    return lattice.dims()[0] * lattice.dims()[1] * lattice.dims()[2];
}

} // namespace

void Gi::storeSelection(int tissue, int in3D, int clearAfter)
{
    if (!labelLattice || tissue < 0 || tissue > 255 || locked[tissue]) return;
    if (projectionMode) {
        storeProjected(tissue);
    } else if (in3D) {
        GiBusy busy;
        saveUndoInformationForVolume(1, 1, nullptr);
        giAddVoxels(selection->bits, labelLattice->getLabels(), voxelCount(*labelLattice), tissue, locked,
                    threadCount());
        if (clearAfter) clearVolumeSelection();
        clearModifiedFlags();
        touchData(1, 1, 0, -1, 0, 0);
    } else if (GiViewer* viewer = getCurrentViewer()) {
        saveUndoInformationForSlice(1, 1, nullptr);
        viewer->getLabelImage()->addSelection(viewer->getSelection(), tissue);
        markLabelRangeStale();
        if (clearAfter) {
            McBox2i cleared;
            viewer->getSelection()->clear(cleared);
            viewer->getSelection()->modified = 0;
            touchData(1, 1, viewer->getOrientation(), viewer->getSlice(), 1, 0);
        }
        // kept: no announcement while the selection stays. It is the step by which tools fill a
        // slice with several materials; the announcement comes with the last one.
    }
    notifyTool(kSelectionStored);
    redraw();
}

/// Marks what a projected image showed through the whole depth of the volume.
void Gi::storeProjected(int tissue)
{
    GiSelection2D* pixels = currentSelection();
    if (!pixels) return;
    GiBusy busy;
    clearUndo(1); // a change through all slices is too large to be kept for undo
    const int orientation = getCurrentOrientation();
    int size[3];
    labelSlices.getDims(size, orientation);
    unsigned char* labels = labelLattice->getLabels();
    unsigned char* weights = labelLattice->getWeights();
    const long step =
        labelSlices.getOffset(0, 0, 1, orientation) - labelSlices.getOffset(0, 0, 0, orientation);
    for (int y = 0; y < size[1]; ++y) {
        for (int x = 0; x < size[0]; ++x) {
            if (!pixels->isSet(x, y)) continue;
            long offset = labelSlices.getOffset(x, y, 0, orientation);
            // kept: locks of the overwritten labels are not looked at here. A projected structure
            // crosses whatever lies before and behind it.
            for (int s = 0; s < size[2]; ++s, offset += step) {
                labels[offset] = static_cast<unsigned char>(tissue);
                if (weights) weights[offset] = 1;
            }
        }
    }
    pixels->clear();
    clearModifiedFlags();
    markLabelRangeStale();
}

void Gi::printLocked(const char* format, int tissue) const
{
    const HxParamBundle* material = materials ? materials->bundle(tissue) : nullptr;
    if (!material) return;
    McString name = material->getName();
    material->findString("LongName", name);
    HxMessage::getTheMsg()->printf(format, static_cast<const char*>(name));
}

void Gi::subtractSelection(int tissue, int in3D)
{
    if (locked[tissue & 255]) {
        printLocked("Cannot subtract selected voxels from %s, because the material is locked!", tissue);
        return;
    }
    if (!labelLattice) return;
    if (in3D)
        subtractVolume(tissue);
    else
        subtractSlice(tissue);
}

void Gi::subtractSlice(int tissue)
{
    GiViewer* viewer = getCurrentViewer();
    if (!viewer) return;
    saveUndoInformationForSlice(1, 1, nullptr);
    // Taken before the transfer: pixels that a tool holds back leave the selection, too.
    McBox2i selected;
    viewer->getSelection()->computeBoundingBox(selected);
    viewer->getLabelImage()->subtractSelection(*viewer->getSelection(), tissue);
    viewer->getSelection()->clear();
    // Taken before the tool is told: its answer may be another slice. The outline of the neighbours lies one
    // pixel further out.
    GiFrameBuffer* buffer = viewer->getFrameBuffer();
    McBox2i screen;
    if (!selected.isEmpty() && buffer)
        screen = buffer->screenBox(
            McBox2i(selected.xmin - 1, selected.ymin - 1, selected.xmax + 1, selected.ymax + 1));
    notifyTool(kSelectionSubtracted);
    if (!screen.isEmpty()) {
        buffer->render(screen, nullptr);
        buffer->paste(screen);
    }
    touchData(1, 1, viewer->getOrientation(), viewer->getSlice(), 1, 1);
}

void Gi::subtractVolume(int tissue)
{
    {
        GiBusy busy;
        saveUndoInformationForVolume(1, 1, nullptr);
        if (subtractSelection3D(selection->bits, tissue)) clearVolumeSelection();
    }
    notifyTool(kSelectionSubtracted);
    redraw();
    touchData(1, 1, 0, -1, 1, 1);
}

int Gi::subtractSelection3D(const McBitfield& voxels, int tissue)
{
    unsigned char* labels = labelLattice->getLabels();
    const int target = giChooseTarget3D(voxels, labels, labelLattice->dims(), tissue, threadCount());
    if (locked[target]) {
        printLocked("Cannot assign subtracted voxels to %s, because the material is locked!", target);
        return 0;
    }
    giMoveVoxels(voxels, labels, voxelCount(*labelLattice), tissue, target, threadCount());
    return 1;
}

// kept: no lock test of its own. In the volume a locked material loses the touched pieces and the
// selection does not take their place; the lock protects against additions, and replace starts by
// taking away.
void Gi::replaceBySelection(int tissue, int in3D)
{
    if (!labelLattice) return;
    if (in3D)
        replaceVolume(tissue);
    else
        replaceSlice(tissue);
    notifyTool(kMaterialReplaced);
    redraw();
}

void Gi::replaceSlice(int tissue)
{
    GiViewer* viewer = getCurrentViewer();
    if (!viewer) return;
    saveUndoInformationForSlice(1, 1, nullptr);
    viewer->getLabelImage()->replaceBySelection(viewer->getSelection(), tissue);
    McBox2i cleared;
    viewer->getSelection()->clear(cleared);
    viewer->getSelection()->modified = 0;
    touchData(1, 1, viewer->getOrientation(), viewer->getSlice(), 1, 0);
}

void Gi::replaceVolume(int tissue)
{
    GiBusy busy;
    McBitfield region;
    saveUndoInformationForVolume(1, 1, nullptr);
    giMarkPieces(selection->bits, labelLattice->getLabels(), labelLattice->dims(), tissue, region);
    subtractSelection3D(region, tissue);
    try {
        // kept: storing makes an undo step of its own, so this operation leaves two; each is a state
        // that the user has seen by name.
        storeSelection(tissue, 1, 1);
    } catch (const McMemoryException&) {
        // The first half has changed labels; whoever shows them must know before the error is told.
        touchData(1, 1, 0, -1, 0, 0);
        redraw();
        throw;
    }
}

void Gi::clearVolumeSelection()
{
    selection->clear();
    for (int i = 0; i < viewers.size(); ++i)
        if (GiSelection2D* slice = viewers[i]->getSelection()) slice->setSelectionBox(McBox2i(1, 1, 0, 0));
}

void Gi::clearSelection(bool in3D, bool saveUndo)
{
    if (in3D) {
        if (saveUndo) saveUndoInformationForVolume(1, 0, nullptr);
        clearVolumeSelection();
        touchData(1, 0, 0, -1, 1, 1);
    } else if (GiViewer* viewer = getCurrentViewer()) {
        if (saveUndo) saveUndoInformationForSlice(1, 0, nullptr);
        viewer->getSelection()->clear();
        updateSelectionBoxes();
        touchData(1, 0, viewer->getOrientation(), viewer->getSlice(), 1, 1);
    }
    notifyTool(kSelectionCleared);
    redraw();
}

void Gi::invertSelection(int in3D)
{
    if (in3D) {
        saveUndoInformationForVolume(1, 0, nullptr);
        selection->invert();
        updateSelectionBoxes();
        touchData(1, 0, 0, -1, 0, 0);
    } else if (GiViewer* viewer = getCurrentViewer()) {
        saveUndoInformationForSlice(1, 0, nullptr);
        viewer->getSelection()->invert();
        touchData(1, 0, viewer->getOrientation(), viewer->getSlice(), 0, 0);
    }
    redraw();
}

void Gi::fillSelection(int x, int y, int mode)
{
    saveUndoInformationForSlice(1, 0, nullptr);
    if (GiSelection2D* slice = currentSelection()) slice->fillSelection(x, y, mode);
    touchData(1, 0, 0, -1, 0, 0);
    redraw();
}
