#include "display/GiViewer.h"

#include "core/Gi.h"
#include "core/GiMask.h"
#include "core/GiOrientation.h"
#include "display/GiFrameBuffer.h"
#include "hx/HxLabelLattice3.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kDefaultMaskingWindow[2] = {0, 1};

/// Rounded to a number of screen pixels. A volume without extent along some axis gives sizes that are no
/// numbers; they end in the limits.
int screenPixels(float size)
{
    constexpr float kMost = 1 << 30;
    if (!(size >= 1)) return size >= 0.5f ? 1 : 0;
    return static_cast<int>(std::min(size, kMost) + 0.5);
}

/// The axis with most voxels; of equals X before Y before Z.
int longestAxis(const int* dims)
{
    const int xy = dims[1] > dims[0] ? 1 : 0;
    return dims[2] > dims[xy] ? 2 : xy;
}

} // namespace

GiViewer::GiViewer(const char* title, Gi* owner) : HxViewerBase(title), gi(owner) {}

void GiViewer::setFrameBuffer(GiFrameBuffer* buffer)
{
    frameBuffer = buffer;
    if (!buffer) return;
    buffer->viewer = this;
    buffer->setGi(gi);
}

void GiViewer::createShapes()
{
    greyImage = new GiGreyImage;
    labelImage = new GiLabelImage(gi->locked, gi);
    selection = new GiSelection2D;
    if (!frameBuffer) return;
    frameBuffer->addShape(greyImage);
    frameBuffer->addShape(labelImage);
    frameBuffer->setSelection(selection, 1); // under the grey image alone
}

void GiViewer::computeZoomedSizes(float zoom, const int* dims, const float* bbox, int matched, McVec2i* sizes)
{
    const int m = longestAxis(dims);
    std::fill(sizes, sizes + 3, McVec2i(1, 1));
    // kept: also a line of voxels is a dot in every view, whatever the zoom. No slice of it has two sides
    // whose proportion could be kept, and two sides without one would show a thickness that is not there.
    if (dims[m] < 2 || (dims[(m + 1) % 3] < 2 && dims[(m + 2) % 3] < 2)) return;

    const float extent[3] = {bbox[1] - bbox[0], bbox[3] - bbox[2], bbox[5] - bbox[4]};
    // Pixels along `axis` where `along` has n.
    const auto inProportion = [&](int n, int along, int axis) {
        return axis == along ? n : screenPixels(static_cast<float>(n) * extent[axis] / extent[along]);
    };
    const auto ownPixels = [&](int axis) { return screenPixels(static_cast<float>(dims[axis]) * zoom); };
    for (int o = 0; o < 3; ++o) {
        const int w = giWidthAxis(o), h = giHeightAxis(o);
        // The slices across the longest axis do not contain it: they follow the others, or one of their
        // own axes.
        const int lead = o != m || matched ? m : dims[w] > 1 ? w : h;
        const int n = ownPixels(lead);
        sizes[o] = McVec2i(std::max(1, inProportion(n, lead, w)), std::max(1, inProportion(n, lead, h)));
    }
}

void GiViewer::computeReplicUniform(int n, int zoomed, int* result)
{
    for (int i = 0; i < n; ++i)
        result[i] = static_cast<int>((i + 1l) * zoomed / n) - static_cast<int>(long(i) * zoomed / n);
}

void GiViewer::computeReplicStacked(int n, int zoomed, const float* coords, int* result)
{
    const float length = n > 1 ? coords[n - 1] - coords[0] : 0;
    if (length == 0 || std::isnan(length)) { // no positions to go by
        computeReplicUniform(n, zoomed, result);
        return;
    }
    const float scale = static_cast<float>(zoomed) * 0.5f / length;
    int former = 0;
    for (int i = 0; i < n - 1; ++i) {
        const float middle =
            i == 0 ? (coords[1] - coords[0]) * scale : (coords[i + 1] + coords[i] - 2 * coords[0]) * scale;
        const int boundary = static_cast<int>(std::rint(middle));
        result[i] = boundary - former;
        former = boundary;
    }
    result[n - 1] = zoomed - former;
}

void GiViewer::setupCoordinateSystem()
{
    if (!gi || !gi->labelLattice) return;
    const HxLatticeCoords* coords = gi->labelLattice->coords();
    int size[3];
    gi->labelSlices.getDims(size, orientation);
    const unsigned long* sides = gi->labelLattice->dims();
    const int dims[3] = {static_cast<int>(sides[0]), static_cast<int>(sides[1]), static_cast<int>(sides[2])};
    McVec2i sizes[3];
    computeZoomedSizes(zoomFactor, dims, coords->boundingBox(), 1, sizes);
    const McVec2i zoomed = sizes[giSliceAxis(orientation)];

    replicX.resize(size[0]);
    replicY.resize(size[1]);
    computeReplicUniform(size[0], zoomed.x, replicX.data());
    // Across the slices a row is a slice, at a position of its own in a stack.
    if (coords->kind() == HxLatticeCoords::kStacked && orientation != 2)
        computeReplicStacked(size[1], zoomed.y, coords->zPositions(), replicY.data());
    else
        computeReplicUniform(size[1], zoomed.y, replicY.data());
}

void GiViewer::setSlice(int newSlice, bool notify)
{
    if (!gi) return;
    if (!gi->labelLattice) {
        if (labelImage) labelImage->setMemory(nullptr, 0, 0);
        if (greyImage) greyImage->clear();
        return;
    }
    int size[3];
    gi->imageSlices.getDims(size, orientation);
    if (size[0] == 0 || size[1] == 0 || size[2] == 0) return;

    slice = std::clamp(newSlice, 0, size[2] - 1);
    // First what needs no memory: when there is none for the picture, labels and selection are those of
    // this slice all the same, and edits stay inside the volume.
    if (selection) gi->selection->getSlice(selection, orientation, getSlice());
    bindLabels(size[0], size[1]);
    setupCoordinateSystem();
    if (frameBuffer) frameBuffer->resize(McVec2i(size[0], size[1]), replicX.data(), replicY.data());
    showImage(size);
    redraw();
    if (notify) gi->sliceNumberChanged(this);
}

void GiViewer::showImage(const int* size)
{
    // Without a buffer nothing is seen, and the pixels would be made in vain.
    if (!greyImage || !frameBuffer) return;
    unsigned char* data;
    long xStride, yStride;
    gi->imageSlices.accessSlice(orientation, getSlice(), data, xStride, yStride);
    const auto show = [&](const auto* elements) {
        greyImage->setImage(static_cast<unsigned long>(size[0]), static_cast<unsigned long>(size[1]),
                            dataWindow[0], dataWindow[1], elements, static_cast<int>(xStride),
                            static_cast<unsigned long>(yStride));
    };
    giDispatchImage(gi->primType, data, show);
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

void GiViewer::redraw()
{
    if (!frameBuffer) return;
    frameBuffer->render(nullptr);
    frameBuffer->paste();
}

void GiViewer::setZoomFactor(float zoom)
{
    zoomFactor = zoom;
    if (!frameBuffer) return;
    setSlice(getSlice(), true);
    redraw();
}

void GiViewer::setDataWindow(float min, float max, bool update)
{
    if (min == dataWindow[0] && max == dataWindow[1]) return;
    dataWindow[0] = min;
    dataWindow[1] = max;
    if (update) setSlice(getSlice(), false);
}

void GiViewer::getDataWindow(float& min, float& max) const
{
    min = dataWindow[0];
    max = dataWindow[1];
}

void GiViewer::setOrientation(int newOrientation)
{
    const bool changed = newOrientation != orientation;
    orientation = newOrientation;
    applyFlip();
    if (changed) setSlice(getSlice(), true);
}

/// Z grows upward on screen, where rows are counted downward: a viewer with Z as its vertical axis is
/// flipped unless the user flips Z.
void GiViewer::applyFlip()
{
    if (!frameBuffer) return;
    const int x = flip & 1, y = flip >> 1 & 1, z = flip >> 2 & 1;
    switch (orientation) {
    case 1:
        frameBuffer->setFlip(x, !z);
        break;
    case 2:
        frameBuffer->setFlip(x, y);
        break;
    default:
        frameBuffer->setFlip(y, !z);
    }
}

void GiViewer::setFlip(int x, int y, int z)
{
    flip = static_cast<unsigned char>((x ? 1 : 0) | (y ? 2 : 0) | (z ? 4 : 0));
    setOrientation(orientation);
}

void GiViewer::setRotate(int from, int to)
{
    if (frameBuffer) frameBuffer->setRotate(from, to);
}

const float* GiViewer::getMaskingWindow() const
{
    return greyImage ? greyImage->maskingWindow : kDefaultMaskingWindow;
}

void GiViewer::setMaskingOverlay(bool on)
{
    if (greyImage) greyImage->setMaskingOverlay(on);
    setSlice(getSlice(), true);
}

void GiViewer::setMaskingEnabled(bool on)
{
    if (greyImage) greyImage->setMaskingEnabled(on);
    setSlice(getSlice(), true);
}

bool GiViewer::maskingEnabled() const
{
    return greyImage && greyImage->maskingEnabled;
}

void GiViewer::setMaskingWindow(float min, float max, bool update)
{
    if (!greyImage) return;
    greyImage->setMaskingWindow(min, max);
    if (update && (greyImage->maskingEnabled || greyImage->maskingOverlay)) setSlice(getSlice(), false);
}

void GiViewer::setColormap(HxColormap* map)
{
    if (greyImage) greyImage->setColormap(map);
    setSlice(getSlice(), true);
}

void GiViewer::setCursor(const QCursor& cursor)
{
    if (frameBuffer) frameBuffer->setCursor(cursor);
}
