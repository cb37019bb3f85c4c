// Pick region: the regions under the pointer.

#include "core/Gi.h"
#include "core/GiBitRows.h"
#include "core/GiBusy.h"
#include "core/GiLabelTransfer.h"
#include "core/GiLabelWords.h"
#include "core/GiSelectionRow.h"
#include "core/mcFloodFill.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxSettingsMgr.h"
#include "mc/McEvent.h"
#include "tools/GiPickRegion.h"

#include <utility>
#include <vector>

namespace {

using LabelSlice = McData2D<unsigned char>;
using LabelVolume = McData3D<unsigned char>;

LabelSlice labelsOf(const Gi& gi, const GiFrameBuffer& frameBuffer)
{
    const GiSelection2D& selection = *frameBuffer.selection;
    unsigned char* first;
    int xStride, yStride;
    gi.getLabelSlice(frameBuffer.viewer->getOrientation(), frameBuffer.viewer->getSlice(), first, xStride,
                     yStride);
    return LabelSlice(first, static_cast<int>(selection.width), static_cast<int>(selection.height), xStride,
                      yStride);
}

/// Marks all pixels of a label, bit y * width + x, and tells their box.
void selectAll(const LabelSlice& labels, unsigned char label, McBitfield& bits, McBox2i& box)
{
    const auto width = static_cast<unsigned long>(labels.width());
    bits.resize(width * static_cast<unsigned long>(labels.height()));
    box = McBox2i();
    for (int y = 0; y < labels.height(); ++y) {
        const unsigned long row = static_cast<unsigned long>(y) * width;
        int first = -1, last = -1;
        for (int x = 0; x < labels.width(); ++x) {
            if (labels(x, y) != label) continue;
            bits.set(row + static_cast<unsigned long>(x));
            if (first < 0) first = x;
            last = x;
        }
        if (first >= 0) box.extendBy(McBox2i(first, y, last, y));
    }
}

void selectAll(const LabelVolume& labels, unsigned char label, McBitfield& bits)
{
    bits.resize(labels.numElements());
    giSelectTissue(bits, labels.data(), labels.numElements(), label, kLabelsReplace,
                   HxSettingsMgr::getInstance()->numThreads());
}

void markRegion(const LabelSlice& labels, const McVec2i& pixel, bool wholeLabel, McBitfield& bits,
                McBox2i& box)
{
    const unsigned char label = labels(pixel.x, pixel.y);
    if (wholeLabel) {
        selectAll(labels, label, bits, box);
        return;
    }
    McEqualityChecker<unsigned char> sameLabel(label);
    int bounds[4];
    mcFloodFill2D(labels, sameLabel, pixel.x, pixel.y, bits, bounds);
    box = McBox2i(bounds[0], bounds[1], bounds[2], bounds[3]);
}

void markRegion(const LabelVolume& labels, const McVec3i& voxel, bool wholeLabel, McBitfield& bits)
{
    const unsigned char label = labels(voxel.x, voxel.y, voxel.z);
    if (wholeLabel) {
        selectAll(labels, label, bits);
        return;
    }
    McEqualityChecker<unsigned char> sameLabel(label);
    mcFloodFill3D(labels, sameLabel, voxel.x, voxel.y, voxel.z, bits, nullptr);
}

/// Sets or unsets the pixels that are marked within the box.
/// bits  bit y * width + x
void copyBuffer2D(GiSelection2D& selection, const McBitfield& bits, const McBox2i& box, bool set)
{
    const auto n = static_cast<unsigned long>(box.width());
    std::vector<unsigned int> row;
    for (int y = box.ymin; y <= box.ymax; ++y) {
        row.assign((n + 31) / 32, 0);
        giCopyBits(row.data(), 0, bits.words(),
                   static_cast<unsigned long>(y) * selection.width + static_cast<unsigned long>(box.xmin), n);
        giChangeRow(selection, box.xmin, y, row.data(), n, set);
    }
}

void copyBuffer3D(McBitfield& selection, const McBitfield& bits, bool set)
{
    McBitfield::Word64* to = selection.words64();
    const McBitfield::Word64* from = bits.words64();
    for (unsigned long i = 0; i < bits.numWords64(); ++i) to[i] = set ? to[i] | from[i] : to[i] & ~from[i];
}

} // namespace

void GiPickRegion::pick(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    const McVec2i pixel(frameBuffer.dataColumn(event.x), frameBuffer.dataRow(event.y));
    if (!gi->selection->contains(pressVoxel.x, pressVoxel.y, pressVoxel.z)) return;
    const bool volume = inAllSlices();
    if (volume)
        pickInVolume(event);
    else
        pickInSlice(frameBuffer, pixel, event);
    gi->updateSelectionBoxes();
    gi->redraw();
    // Whoever listens may look at the selection at once: boxes and pictures come first.
    if (volume)
        gi->touchData(1, 0, 0, -1, 0, 0);
    else
        gi->touchData(1, 0, frameBuffer.viewer->getOrientation(), frameBuffer.viewer->getSlice(), 0, 0);
}

void GiPickRegion::pickInSlice(GiFrameBuffer& frameBuffer, const McVec2i& pixel, const McEvent& event)
{
    McBitfield bits;
    McBox2i box;
    markRegion(labelsOf(*gi, frameBuffer), pixel, takesWholeLabel(), bits, box);
    gi->saveUndoInformationForSlice(1, 0, frameBuffer.viewer); // selection, not labels
    GiSelection2D& selection = *frameBuffer.selection;
    if (!event.shift && !event.ctrl) selection.clear();
    copyBuffer2D(selection, bits, box, !event.ctrl);
    if (event.ctrl)
        selection.computeSelectionBox();
    else if (event.shift)
        selection.extendSelectionBox(box);
    else
        selection.setSelectionBox(box);
}

void GiPickRegion::pickInVolume(const McEvent& event)
{
    const GiBusy busy;
    const unsigned long* size = gi->selection->dims;
    const LabelVolume labels(static_cast<unsigned char*>(gi->labelSlices.data()), static_cast<int>(size[0]),
                             static_cast<int>(size[1]), static_cast<int>(size[2]));
    McBitfield bits;
    markRegion(labels, pressVoxel, takesWholeLabel(), bits);
    gi->saveUndoInformationForVolume(1, 0, nullptr); // selection, not labels
    if (event.shift || event.ctrl)
        copyBuffer3D(gi->selection->bits, bits, !event.ctrl);
    else
        gi->selection->bits = std::move(bits); // cheaper than to clear and to copy
}
