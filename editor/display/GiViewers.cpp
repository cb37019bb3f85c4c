// What Gi says to its viewers: which one is current, which slices and zoom they show, and which
// parts of them a change touches.

#include "core/Gi.h"
#include "core/GiMask.h"
#include "core/GiMultiAction.h"
#include "core/GiOrientation.h"
#include "core/GiThickestSlices.h"
#include "display/GiFrameBuffer.h"
#include "display/GiGreyImage.h"
#include "display/GiLabelImage.h"
#include "display/GiViewer.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxMessage.h"
#include "hx/HxSettingsMgr.h"
#include "hx/HxViewerPanelBase.h"

#include <algorithm>
#include <cstdio>

namespace {

/// Colours of labels that tools use for marks; they must be told from any material's own colour.
struct MarkColor
{
    int label, r, g, b;
};

constexpr MarkColor kMarkColors[] = {{128, 0, 255, 0}, {129, 0, 255, 255},   {130, 255, 0, 255},
                                     {131, 0, 0, 255}, {255, 255, 255, 255}, {127, 255, 255, 0}};

/// Whether one data pixel fills the whole window.
bool fillsWindow(const GiViewer* viewer)
{
    const GiFrameBuffer* buffer = viewer->getFrameBuffer();
    if (!buffer || buffer->replicX.isEmpty() || buffer->replicY.isEmpty()) return false;
    const McVec2i window = buffer->windowSize();
    return buffer->replicX[0] >= window.x && buffer->replicY[0] >= window.y;
}

bool isDot(const GiViewer* viewer)
{
    const GiFrameBuffer* buffer = viewer->getFrameBuffer();
    return buffer && buffer->zoomedSize.x < 2 && buffer->zoomedSize.y < 2;
}

float zoomForSize(const unsigned long* dims)
{
    if (dims[0] > 256 && dims[1] > 256) return 1;
    if (dims[0] > 128 && dims[1] > 128) return 2;
    return 3;
}

} // namespace

void Gi::setVolume(const unsigned long* dims, McTypedPointer data, HxLabelLattice3* lattice)
{
    imageSlices.init(dims, data);
    labelLattice = lattice;
    const unsigned long* own = lattice->dims();
    if (own[0] != dims[0] || own[1] != dims[1] || own[2] != dims[2])
        lattice->resize(dims[0], dims[1], dims[2]);
    labelSlices.init(dims, 1, lattice->getLabels());
    selection->resize(dims[0], dims[1], dims[2]);
    resetMaterialColors();
    showMiddleSlices(dims);
    setZoomFactor(zoomForSize(dims));
    computeCoordinateDigits();
}

void Gi::resetMaterialColors()
{
    if (materials) GiLabelImage::setColor(this, *materials);
    // kept: these six replace whatever the material with that label chose.
    for (const MarkColor& mark : kMarkColors)
        GiLabelImage::setColor(this, mark.label, mark.r, mark.g, mark.b);
}

void Gi::showMiddleSlices(const unsigned long* dims)
{
    for (int i = 0; i < viewers.size(); ++i) {
        const unsigned long n = dims[giSliceAxis(viewers[i]->getOrientation())];
        viewers[i]->setSlice(n > 0 ? static_cast<int>((n - 1) / 2) : 0, false);
    }
}

GiViewer* Gi::getCurrentViewer()
{
    if (viewerPanel) {
        if (auto* active = dynamic_cast<GiViewer*>(viewerPanel->getActiveViewer())) {
            lastViewer = active;
            return active;
        }
    }
    for (int i = 0; i < viewers.size(); ++i)
        if (viewers[i] == lastViewer) return lastViewer;
    return viewers.size() > 0 ? viewers[0] : nullptr;
}

int Gi::getCurrentOrientation()
{
    const GiViewer* viewer = getCurrentViewer();
    return viewer ? viewer->getOrientation() : 0;
}

int Gi::getCurrentSlice()
{
    const GiViewer* viewer = getCurrentViewer();
    return viewer ? viewer->getSlice() : 0;
}

McVec3i Gi::getPoint3D(int x, int y, GiViewer* viewer)
{
    if (!viewer) viewer = getCurrentViewer();
    const int slice = viewer ? viewer->getSlice() : 0;
    switch (viewer ? viewer->getOrientation() : 0) {
    case 2:
        return McVec3i(x, y, slice);
    case 1:
        return McVec3i(x, slice, y);
    default:
        return McVec3i(slice, x, y);
    }
}

GiSelection2D* Gi::currentSelection()
{
    GiViewer* viewer = getCurrentViewer();
    return viewer ? viewer->getSelection() : nullptr;
}

void Gi::clearModifiedFlags()
{
    for (int i = 0; i < viewers.size(); ++i)
        if (GiSelection2D* slice = viewers[i]->getSelection()) slice->modified = 0;
}

void Gi::selectTissue(int tissue, int mode, int in3D)
{
    if (in3D) {
        if (!labelLattice) return;
        selection->setTissue(labelLattice->getLabels(), tissue, static_cast<GiSelectMode>(mode));
        updateSelectionBoxes();
    } else {
        GiSelection2D* slice = currentSelection();
        if (!slice || !labelLattice) return;
        unsigned char* data;
        int xStride, yStride;
        getCurrentLabelSlice(data, xStride, yStride);
        slice->setTissue(data, tissue, static_cast<GiSelectMode>(mode));
    }
    touchData(1, 0, -1, -1, 0, 0);
    redraw();
}

int Gi::tissueSelected(int tissue)
{
    const GiSelection2D* slice = currentSelection();
    if (!slice || !labelLattice) return 0;
    unsigned char* data;
    int xStride, yStride;
    getCurrentLabelSlice(data, xStride, yStride);
    const int width = static_cast<int>(slice->width), height = static_cast<int>(slice->height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (data[long(y) * yStride + long(x) * xStride] == tissue && slice->isSet(x, y)) return 1;
    return 0;
}

void Gi::locateTissue(int tissue)
{
    if (!labelLattice) return;
    const GiThickestSlices best = giThickestSlices(labelLattice->getLabels(), labelLattice->dims(), tissue);
    if (!best.found) {
        HxMessage::getTheMsg()->printf("No voxel with this tissue found");
        return;
    }
    for (int i = 0; i < viewers.size(); ++i)
        viewers[i]->setSlice(best.slice[giSliceAxis(viewers[i]->getOrientation())], true);
}

void Gi::zoomIn()
{
    const GiViewer* viewer = zoomAllViewers && viewers.size() > 0 ? viewers[0] : getCurrentViewer();
    if (!viewer) return;
    if (fillsWindow(getCurrentViewer())) return;
    const float zoom = viewer->getZoomFactor();
    // A slice that is one voxel thin can be larger than its window in one direction alone, for ever.
    if (zoom >= GiViewer::kLargestZoomFactor) return;
    if (zoom < 0.51f) {
        setZoomFactor(2 * zoom);
        return;
    }
    const int n = static_cast<int>(zoom + 0.5f);
    const int next = n >= 1 && n <= 3 ? n + 1 : static_cast<int>(n * 3 * 0.5 + 0.5);
    setZoomFactor(std::min(static_cast<float>(next), GiViewer::kLargestZoomFactor));
}

void Gi::zoomOut()
{
    const GiViewer* viewer = zoomAllViewers && viewers.size() > 0 ? viewers[0] : getCurrentViewer();
    if (!viewer || isDot(getCurrentViewer())) return;
    const float zoom = viewer->getZoomFactor();
    setZoomFactor(zoom > 2.9f ? static_cast<float>(static_cast<int>(2 * zoom / 3 + 0.5f)) : zoom / 2);
}

void Gi::setZoomFactor(float zoom)
{
    if (zoomAllViewers)
        for (int i = 0; i < viewers.size(); ++i) viewers[i]->setZoomFactor(zoom);
    else if (GiViewer* viewer = getCurrentViewer())
        viewer->setZoomFactor(zoom);
}

const char* Gi::getZoomFactorText()
{
    static char text[32];
    const GiViewer* viewer = zoomAllViewers && viewers.size() > 0 ? viewers[0] : getCurrentViewer();
    const float zoom = viewer ? viewer->getZoomFactor() : 1;
    if (zoom >= 1)
        std::snprintf(text, sizeof text, "%d:1 ", static_cast<int>(zoom + 0.5f));
    else
        std::snprintf(text, sizeof text, "1:%d ", static_cast<int>(1 / zoom + 0.5f));
    return text;
}

void Gi::redraw()
{
    for (int i = 0; i < viewers.size(); ++i) viewers[i]->redraw();
}

void Gi::redraw(const McBox2i& box, GiViewer* source)
{
    if (!source) source = getCurrentViewer();
    if (!source) return;
    for (int i = 0; i < viewers.size(); ++i) {
        McBox2i part = box;
        if (viewers[i] != source) projectBox(source, viewers[i], box, part);
        GiFrameBuffer* buffer = viewers[i]->getFrameBuffer();
        if (part.isEmpty() || !buffer) continue;
        const McBox2i screen = buffer->screenBox(part);
        buffer->render(screen, nullptr);
        buffer->paste(screen);
    }
}

void Gi::projectBox(GiViewer* source, GiViewer* target, const McBox2i& box, McBox2i& result) const
{
    result = McBox2i(1, 1, 0, 0);
    if (!source || !target) return;
    // Ranges along X, Y and Z of the box as a block that is one voxel thick at the source's slice.
    const int s = source->getSlice();
    int low[3], high[3];
    const int from = source->getOrientation(), to = target->getOrientation();
    low[giWidthAxis(from)] = box.xmin, high[giWidthAxis(from)] = box.xmax;
    low[giHeightAxis(from)] = box.ymin, high[giHeightAxis(from)] = box.ymax;
    low[giSliceAxis(from)] = high[giSliceAxis(from)] = s;

    const int w = giWidthAxis(to), h = giHeightAxis(to), depth = giSliceAxis(to);
    const int t = target->getSlice();
    if (t >= low[depth] && t <= high[depth]) result = McBox2i(low[w], low[h], high[w], high[h]);
}

void Gi::updateSelectionBoxes()
{
    for (int i = 0; i < viewers.size(); ++i)
        if (GiSelection2D* slice = viewers[i]->getSelection()) slice->computeSelectionBox();
}

void Gi::updateSelectionBoxes(McBox2i& box, GiViewer* viewer)
{
    if (!viewer) viewer = getCurrentViewer();
    if (!viewer) return;
    if (GiSelection2D* slice = viewer->getSelection()) slice->updateSelectionBox(box);
    for (int i = 0; i < viewers.size(); ++i) {
        GiSelection2D* slice = viewers[i]->getSelection();
        if (viewers[i] == viewer || !slice) continue;
        McBox2i part;
        projectBox(viewer, viewers[i], box, part);
        if (part.xmin <= part.xmax && part.ymin <= part.ymax) slice->updateSelectionBox(part);
    }
}

int Gi::getMask(GiFrameBuffer* frameBuffer, McBitfield& mask)
{
    const GiViewer* viewer = frameBuffer->viewer;
    if (!viewer || !viewer->maskingEnabled()) return 0;
    int dims[3];
    imageSlices.getDims(dims, viewer->getOrientation());
    if (dims[2] < 1 || !imageSlices.data()) return 0;

    unsigned char* data;
    int strides[2];
    imageSlices.accessSlice(viewer->getOrientation(), viewer->getSlice(), data, strides[0], strides[1]);
    mask.resize(static_cast<unsigned long>(dims[0]) * static_cast<unsigned long>(dims[1]));
    mask.unsetAll(); // the tests below only add
    giDispatchImage(primType, data, [&](const auto* elements) {
        computeMask(mask, dims, strides, elements, viewer->getMaskingWindow());
    });
    return 1;
}

void Gi::readSelectionDrawStyle()
{
    const HxPreferences& preferences = HxSettingsMgr::getInstance()->getPreferences();
    selectionDrawStyle = static_cast<unsigned char>(preferences.selectionDrawStyle);
    for (int i = 0; i < viewers.size(); ++i)
        if (GiFrameBuffer* buffer = viewers[i]->getFrameBuffer())
            buffer->selectionAlpha = preferences.selectionAlpha;
    redraw();
}

void Gi::saveUndoInformationForSlice(int selectionChanges, int labelsChange, GiViewer* viewer)
{
    if (!viewer) viewer = getCurrentViewer();
    // An empty snapshot is stored too: one change is always one step of undo.
    McHandle<GiMultiAction> snapshot(new GiMultiAction);
    if (viewer) {
        if (selectionChanges) saveSliceSelection(viewer->getSlice(), viewer->getOrientation(), *snapshot);
        if (labelsChange) saveSliceLabels(viewer->getSlice(), viewer->getOrientation(), *snapshot);
    }
    addUndoAction(snapshot, false);
    updateUndoSensitivity();
}

void Gi::destroyViewers()
{
    for (int i = 0; i < viewers.size(); ++i) viewers[i]->unref();
    viewers.clear();
    lastViewer = nullptr;
}
