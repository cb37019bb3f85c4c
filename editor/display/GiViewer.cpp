#include "display/GiViewer.h"

#include "core/Gi.h"
#include "hx/HxLabelLattice3.h"

#include <algorithm>

GiViewer::GiViewer(const char* title, Gi* owner) : HxViewerBase(title), gi(owner) {}

void GiViewer::createShapes()
{
    labelImage = new GiLabelImage(gi->locked, gi);
    selection = new GiSelection2D;
}

void GiViewer::setSlice(int s, bool notify)
{
    if (!gi) return;
    if (!gi->labelLattice) {
        if (labelImage) labelImage->setMemory(nullptr, 0, 0);
        return;
    }
    int size[3];
    gi->imageSlices.getDims(size, orientation);
    if (size[0] == 0 || size[1] == 0 || size[2] == 0) return;

    slice = std::clamp(s, 0, size[2] - 1);
    bindLabels(size[0], size[1]);
    if (selection) gi->selection->getSlice(selection, orientation, getSlice());
    redraw();
    if (notify) gi->sliceNumberChanged(this);
}

void GiViewer::bindLabels(int width, int height)
{
    if (!labelImage) return;
    unsigned char* data;
    int xStride, yStride;
    gi->getLabelSlice(orientation, getSlice(), data, xStride, yStride);
    labelImage->resize(width, height);
    labelImage->setMemory(data, xStride, static_cast<unsigned long>(yStride));
    unsigned char* weights = gi->labelLattice->getWeights();
    labelImage->setProb(weights ? weights + (data - gi->labelLattice->getLabels()) : nullptr);
}

void GiViewer::setZoomFactor(float zoom)
{
    zoomFactor = zoom;
}

void GiViewer::setOrientation(int o)
{
    const bool changed = o != orientation;
    orientation = o;
    if (changed) setSlice(getSlice(), true);
}

void GiViewer::setFlip(int x, int y, int z)
{
    flip = static_cast<unsigned char>((x ? 1 : 0) | (y ? 2 : 0) | (z ? 4 : 0));
    setOrientation(orientation);
}
