// Commands on the selection as a whole, the way through the slices that hold some of it, and the warning
// when it reaches where nobody looks.

#include "app/GiQ.h"
#include "app/GiQToolbox.h"
#include "core/GiBusy.h"
#include "core/giFillSlices.h"
#include "core/giHasHiddenVoxels.h"
#include "core/giOccupiedSlices.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "filters/GiShapeFilter.h"
#include "hx/HxWorkArea.h"

#include <algorithm>
#include <vector>

void GiQ::announceSelection()
{
    touchData(1, 0, 0, 0, 0, 0);
    redraw();
}

// Growing and shrinking

void GiQ::changeSlice(void (*change)(GiSelection2D&))
{
    const GiViewer* viewer = getCurrentViewer();
    if (!selection || !viewer || !viewer->getSelection()) return;
    saveUndoInformationForSlice(1, 0, nullptr);
    {
        const GiBusy busy;
        change(*viewer->getSelection());
        updateSelectionBoxes();
    }
    announceSelection();
}

void GiQ::changeVolume(const char* text, const std::function<void()>& change)
{
    if (!selection) return;
    saveUndoInformationForVolume(1, 0, nullptr);
    {
        const GiBusy busy(text);
        change();
        updateSelectionBoxes();
    }
    announceSelection();
}

/// The slices change together within milliseconds: nobody would see how many of them are done.
void GiQ::changeAllSlices(const char* text, void (*change)(GiSelection3D&, int))
{
    changeVolume(text, [this, change] {
        change(*selection, getCurrentOrientation());
        HxWorkArea::getTheWorkArea()->setProgress(1);
    });
}

void GiQ::growSelection2D()
{
    // kept: before there are voxels this leaves no undo step, unlike all other commands, which leave an empty
    // one. It is the one that has a key of the viewers, which gets here early; the others come from scripts
    // then, which count their steps.
    if (selection && selection->numBits() > 0) changeSlice(GiShapeFilter::dilate2D);
}

void GiQ::shrinkSelection2D()
{
    changeSlice(GiShapeFilter::erode2D);
}

void GiQ::growSelectionAll2D()
{
    changeAllSlices("Enlarging ...", GiShapeFilter::dilateSlices);
}

void GiQ::shrinkSelectionAll2D()
{
    changeAllSlices("Shrinking ...", GiShapeFilter::erodeSlices);
}

void GiQ::growSelection3D()
{
    changeVolume("Grow Selection 3D",
                 [this] { GiShapeFilter::dilate3D(*selection, HxWorkArea::getTheWorkArea()); });
}

void GiQ::shrinkSelection3D()
{
    changeVolume("Shrink Selection",
                 [this] { GiShapeFilter::erode3D(*selection, HxWorkArea::getTheWorkArea()); });
}

void GiQ::selectionEllipse()
{
    if (!selection) return;
    {
        const GiBusy busy;
        GiShapeFilter(this).applyEllipse();
        updateSelectionBoxes();
    }
    announceSelection();
}

// Filling

void GiQ::selectionFill()
{
    fillSelection(-1, -1, 0);
    // kept: told and drawn a second time, as the fill does both itself. Listeners hear the same of all
    // entries of the menu, whatever the operation behind one tells.
    announceSelection();
}

void GiQ::selectionFillAll()
{
    changeVolume("Filling ...", [this] {
        HxWorkArea* area = HxWorkArea::getTheWorkArea();
        const int orientation = getCurrentOrientation();
        const int n = selection->getNumSlices(orientation);
        giFillSlices(*selection, orientation, [area, n](int i) {
            area->setProgress((i + 0.5) / n);
            // What is filled stays filled: undo takes it back as a whole.
            return !area->interrupted();
        });
    });
}

void GiQ::selectionFillVolume()
{
    if (!selection) return;
    saveUndoInformationForVolume(1, 0, nullptr);
    selection->fillHoles();
    updateSelectionBoxes();
    announceSelection();
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

namespace {

/// The first occupied slice of from, from + step, ... before `end`; `otherwise` if there is none.
int findOccupied(const GiSelection3D* selection, int orientation, int from, int end, int step, int otherwise)
{
    if (!selection) return otherwise;
    const std::vector<unsigned char> occupied = giOccupiedSlices(*selection, orientation);
    const int n = static_cast<int>(occupied.size());
    // A viewer can stand on a slice that is no longer there.
    const int begin = step > 0 ? std::max(from, 0) : std::min(from, n - 1);
    const int limit = step > 0 ? std::min(end, n) : std::max(end, -1);
    for (int i = begin; step > 0 ? i < limit : i > limit; i += step)
        if (occupied[static_cast<std::size_t>(i)]) return i;
    return otherwise;
}

} // namespace

int GiQ::firstSliceWithSelection(int current, int orientation)
{
    return findOccupied(selection, orientation, 0, current, 1, current);
}

int GiQ::lastSliceWithSelection(int current, int orientation)
{
    const int last = selection ? selection->getNumSlices(orientation) - 1 : current;
    return findOccupied(selection, orientation, last, current, -1, current);
}

int GiQ::prevSliceWithSelection(int current, int orientation)
{
    return findOccupied(selection, orientation, current - 1, -1, -1, current);
}

int GiQ::nextSliceWithSelection(int current, int orientation)
{
    const int n = selection ? selection->getNumSlices(orientation) : 0;
    return findOccupied(selection, orientation, current + 1, n, 1, current);
}

void GiQ::goBack(int (GiQ::*find)(int, int))
{
    GiViewer* viewer = getCurrentViewer();
    if (!viewer || !selection) return;
    const int found = (this->*find)(viewer->getSlice(), getCurrentOrientation());
    if (found < viewer->getSlice()) viewer->setSlice(found, true);
}

void GiQ::goForth(int (GiQ::*find)(int, int))
{
    GiViewer* viewer = getCurrentViewer();
    if (!viewer || !selection) return;
    const int found = (this->*find)(viewer->getSlice(), getCurrentOrientation());
    if (found > viewer->getSlice()) viewer->setSlice(found, true);
}

void GiQ::showFirstSliceWithSelection()
{
    goBack(&GiQ::firstSliceWithSelection);
}

void GiQ::showPrevSliceWithSelection()
{
    goBack(&GiQ::prevSliceWithSelection);
}

void GiQ::showNextSliceWithSelection()
{
    goForth(&GiQ::nextSliceWithSelection);
}

void GiQ::showLastSliceWithSelection()
{
    goForth(&GiQ::lastSliceWithSelection);
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
