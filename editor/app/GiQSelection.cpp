// Commands on the selection as a whole, the way through the slices that hold some of it, and the warning
// when it reaches where nobody looks.

#include "app/GiQ.h"
#include "app/GiQToolbox.h"
#include "core/GiBusy.h"
#include "core/giHasHiddenVoxels.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxWorkArea.h"

#include <vector>

void GiQ::selectionFill()
{
    fillSelection(-1, -1, 0);
    touchData(1, 0, 0, 0, 0, 0);
    redraw();
}

void GiQ::selectionFillAll()
{
    if (!selection) return;
    saveUndoInformationForVolume(1, 0, nullptr);
    {
        const GiBusy busy("Filling ...");
        HxWorkArea* area = HxWorkArea::getTheWorkArea();
        const int orientation = getCurrentOrientation();
        const int n = selection->getNumSlices(orientation);
        GiSelection2D slice;
        for (int i = 0; i < n; ++i) {
            if (!selection->isEmpty(i, orientation)) {
                selection->getSlice(&slice, orientation, i);
                slice.fillSelection(-1, -1, 0);
            }
            area->setProgress((i + 0.5) / n);
            // What is filled stays filled: undo takes it back as a whole.
            if (area->interrupted()) break;
        }
        updateSelectionBoxes();
    }
    touchData(1, 0, 0, 0, 0, 0);
    redraw();
}

void GiQ::selectionFillVolume()
{
    if (!selection) return;
    saveUndoInformationForVolume(1, 0, nullptr);
    selection->fillHoles();
    updateSelectionBoxes();
    touchData(1, 0, 0, 0, 0, 0);
    redraw();
}

void GiQ::selectionInvert2D()
{
    invertSelection(0);
}

void GiQ::selectionInvert3D()
{
    invertSelection(1);
}

// Slices with a selection

int GiQ::firstSliceWithSelection(int current, int orientation)
{
    for (int i = 0; i < current; ++i)
        if (!selection->isEmpty(i, orientation)) return i;
    return current;
}

int GiQ::lastSliceWithSelection(int current, int orientation)
{
    for (int i = selection->getNumSlices(orientation) - 1; i > current; --i)
        if (!selection->isEmpty(i, orientation)) return i;
    return current;
}

int GiQ::prevSliceWithSelection(int current, int orientation)
{
    for (int i = current - 1; i >= 0; --i)
        if (!selection->isEmpty(i, orientation)) return i;
    return current;
}

int GiQ::nextSliceWithSelection(int current, int orientation)
{
    const int n = selection->getNumSlices(orientation);
    for (int i = current + 1; i < n; ++i)
        if (!selection->isEmpty(i, orientation)) return i;
    return current;
}

void GiQ::goToSlice(int (GiQ::*find)(int, int))
{
    GiViewer* viewer = getCurrentViewer();
    if (!viewer || !selection) return;
    const int found = (this->*find)(viewer->getSlice(), getCurrentOrientation());
    if (found != viewer->getSlice()) viewer->setSlice(found, true);
}

void GiQ::showFirstSliceWithSelection()
{
    goToSlice(&GiQ::firstSliceWithSelection);
}

void GiQ::showPrevSliceWithSelection()
{
    goToSlice(&GiQ::prevSliceWithSelection);
}

void GiQ::showNextSliceWithSelection()
{
    goToSlice(&GiQ::nextSliceWithSelection);
}

void GiQ::showLastSliceWithSelection()
{
    goToSlice(&GiQ::lastSliceWithSelection);
}

// Hidden selection

void GiQ::checkForHiddenSelection()
{
    if (scanSuspended || !toolbox || !toolbox->selectionIs3D()) return;
    std::vector<GiShownSlice> shown;
    for (HxViewerBase* visible : visibleViewers()) {
        if (!isOwnViewer(visible)) continue;
        const auto* viewer = static_cast<GiViewer*>(visible);
        // Leafing must not wait for the scan; its end starts one.
        const GiFrameBuffer* buffer = viewer->getFrameBuffer();
        if (buffer && buffer->isBrowsing()) return;
        shown.push_back({viewer->getOrientation(), viewer->getSlice()});
    }
    emit hiddenSelectionDetected(giHasHiddenVoxels(*selection, shown) ? 1 : 0);
}
