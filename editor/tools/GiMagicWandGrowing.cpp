// Magic wand: from a seed to the selected voxels.

#include "core/Gi.h"
#include "core/GiBusy.h"
#include "core/GiMask.h"
#include "core/GiOrientation.h"
#include "core/GiSelectionRow.h"
#include "core/mcFloodFillSlice.h"
#include "core/mcFloodFillWindow.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxMessage.h"
#include "mc/McClampCastToType.h"
#include "mc/McData2D.h"
#include "mc/McMemoryException.h"
#include "mc/McSimd.h"
#include "tools/GiMagicWand.h"

#include <cmath>
#include <optional>
#include <type_traits>

namespace {

template <class T>
struct Range
{
    T min, max; // both included
};

/// A window in the element type of a volume: whole numbers are rounded and limited to the type.
template <class T>
std::optional<Range<T>> elementRange(float min, float max)
{
    if constexpr (std::is_floating_point_v<T>) {
        return Range<T>{min, max};
    } else {
        if (std::isnan(min) || std::isnan(max)) return {};
        const auto element = [](float v) {
            return McClampCastToType<T>(std::floor(static_cast<double>(v) + 0.5));
        };
        return Range<T>{element(min), element(max)};
    }
}

/// The same for a slice.
template <class T>
std::optional<Range<T>> sliceRange(float min, float max)
{
    // kept: a window that begins below the smallest short holds nothing, while other types limit it. Such a
    // window is a slip of typing over an image of signed numbers, and the whole slice the wrong answer.
    constexpr float kSmallestShort = -32768;
    if (std::is_same_v<T, short> && min < kSmallestShort) return {};
    return elementRange<T>(min, max);
}

MC_TARGET_CLONES
void addWords(McBitfield::Word64* words, const McBitfield::Word64* marks, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i) words[i] |= marks[i];
}

MC_TARGET_CLONES
void removeWords(McBitfield::Word64* words, const McBitfield::Word64* marks, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i) words[i] &= ~marks[i];
}

/// Sets or clears in the selection what is marked in the box of a slice.
void changePixels(GiSelection2D& selection, const McBitfield& marks, const McBox2i& box, bool set)
{
    if (selection.xStride == 1 && selection.yStride == selection.width && selection.offset % 64 == 0) {
        // The slice lies in the volume as it lies in the marks, which have no bit outside the box.
        const unsigned long first = static_cast<unsigned long>(box.ymin) * selection.width / 64,
                            end = (static_cast<unsigned long>(box.ymax + 1) * selection.width + 63) / 64;
        (set ? addWords : removeWords)(selection.bits->words64() + selection.offset / 64 + first,
                                       marks.words64() + first, end - first);
        return;
    }
    const auto n = static_cast<unsigned long>(box.width()), column = static_cast<unsigned long>(box.xmin);
    const auto change = [set](unsigned int& word, unsigned int bits, unsigned int) {
        word = set ? word | bits : word & ~bits;
    };
    McDArray<unsigned int> row(static_cast<int>((n + 31) / 32));
    for (int y = box.ymin; y <= box.ymax; ++y) {
        const unsigned long first = static_cast<unsigned long>(y) * selection.width + column;
        if (selection.xStride == 1) {
            giCombineBits(selection.bits->words(),
                          static_cast<unsigned long>(y) * selection.yStride + column + selection.offset,
                          marks.words(), first, n, change);
        } else {
            giCopyBits(row.data(), 0, marks.words(), first, n);
            giChangeRow(selection, box.xmin, y, row.data(), n, set);
        }
    }
}

/// The same for a volume, strictly within the box.
///
/// box  xmin, xmax, ymin, ymax, zmin, zmax
void changeVoxels(GiSelection3D& selection, const McBitfield& marks, const int* box, bool set)
{
    const auto index = [&](int x, int y, int z) {
        const auto row = static_cast<unsigned long>(y) + selection.dims[1] * static_cast<unsigned long>(z);
        return static_cast<unsigned long>(x) + selection.dims[0] * row;
    };
    if (box[2] == box[3] && box[4] == box[5]) {
        // In a volume of a single row the fill's box stays at the seed, though marks lie beyond it.
        const unsigned long begin = index(box[0], box[2], box[4]),
                            n = static_cast<unsigned long>(box[1] - box[0]) + 1;
        giCombineBits(selection.bits.words(), begin, marks.words(), begin, n,
                      [set](unsigned int& word, unsigned int bits, unsigned int) {
                          word = set ? word | bits : word & ~bits;
                      });
        return;
    }
    // With more than a row no mark lies beyond the box: its words are taken whole.
    const unsigned long first = index(box[0], box[2], box[4]) / 64, last = index(box[1], box[3], box[5]) / 64;
    (set ? addWords : removeWords)(selection.bits.words64() + first, marks.words64() + first,
                                   last - first + 1);
}

/// Whether two seeds of a slice, one in the region of the other, have the same region.
bool growsAlike(const MagicWandSeed& a, const MagicWandSeed& b)
{
    return a.min == b.min && a.max == b.max && a.sameMaterial == b.sameMaterial && !a.fillInterior &&
           !b.fillInterior;
}

/// True while it lives.
class Running
{
public:
    explicit Running(bool& state) : flag(state) { flag = true; }
    ~Running() { flag = false; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

private:
    bool& flag;
};

} // namespace

// In a slice

/// kept: the labels are those of the slice in view, whatever slice the seed lies in: what the user sees
/// decides. Only a viewer of another orientation has none that would fit.
McData2D<const unsigned char> GiMagicWand::labelsForSeed(const MagicWandSeed& seed) const
{
    if (!gi->labelSlices.data()) return {};
    const int orientation = giSliceAxis(seed.orientation);
    const bool fits = gi->getCurrentOrientation() == seed.orientation;
    int size[3];
    gi->labelSlices.getDims(size, orientation);
    unsigned char* first;
    int xStride, yStride;
    gi->getLabelSlice(orientation, fits ? gi->getCurrentSlice() : seed.coordinate(orientation), first,
                      xStride, yStride);
    return McData2D<const unsigned char>(first, size[0], size[1], xStride, yStride);
}

template <class T>
int GiMagicWand::markSlice(const T* values, const MagicWandSeed& seed, McBitfield& bits, int* box) const
{
    const std::optional<Range<T>> window = sliceRange<T>(seed.min, seed.max);
    if (!window) return 0;
    const int orientation = giSliceAxis(seed.orientation);
    int size[3];
    gi->imageSlices.getDims(size, orientation);
    const auto offset = [&](int x, int y) {
        return gi->imageSlices.getOffset(x, y, seed.coordinate(orientation), orientation);
    };
    McFillSlice<T> slice{McData2D<const T>(values + offset(0, 0), size[0], size[1],
                                           offset(1, 0) - offset(0, 0), offset(0, 1) - offset(0, 0)),
                         window->min,
                         window->max,
                         {},
                         0};
    McDArray<unsigned char> limitSlice;
    const bool hasLimits = computeLimitSlice(limitSlice, seed) > 0;
    if (hasLimits)
        slice.labels = McData2D<const unsigned char>(limitSlice.data(), size[0], size[1]);
    else if (seed.sameMaterial)
        slice.labels = labelsForSeed(seed);
    const int x = box[0], y = box[1];
    if (slice.labels.data()) slice.label = slice.labels(x, y);
    return mcFloodFillSlice(slice, x, y, bits, box);
}

int GiMagicWand::grow2D(McBitfield& bits, McBox2i& box, const MagicWandSeed& seed) const
{
    const int orientation = giSliceAxis(seed.orientation);
    const int x = seed.coordinate(giWidthAxis(orientation)), y = seed.coordinate(giHeightAxis(orientation));
    int size[3];
    gi->imageSlices.getDims(size, orientation);
    box = McBox2i(x, y, x, y);
    bits.resize(0);
    const auto numBits = static_cast<unsigned long>(size[0]) * static_cast<unsigned long>(size[1]);
    if (!gi->imageSlices.data() || !gi->selection->contains(seed.x, seed.y, seed.z)) {
        bits.resize(numBits);
        return 0;
    }

    int bounds[4] = {x, y, x, y};
    int numPixels = 0;
    giDispatchImage(gi->primType, gi->imageSlices.data(),
                    [&](const auto* values) { numPixels = markSlice(values, seed, bits, bounds); });
    bits.resize(numBits); // for a window that holds nothing
    if (numPixels > 0 && seed.fillInterior) mcFillInterior(bits, size[0], bounds);
    box = McBox2i(bounds[0], bounds[1], bounds[2], bounds[3]);
    return numPixels;
}

bool GiMagicWand::regionGrowing2D(GiFrameBuffer& frameBuffer, int code, const MagicWandSeed& seed)
{
    try {
        growInto(frameBuffer, code, seed);
        return true;
    } catch (const McMemoryException& exception) {
        HxMessage::getTheMsg()->memError(exception.size());
        return false;
    }
}

void GiMagicWand::growInto(GiFrameBuffer& frameBuffer, int code, const MagicWandSeed& seed)
{
    GiSelection2D& selection = *frameBuffer.selection;
    McBitfield bits;
    McBox2i box;
    const int numPixels = grow2D(bits, box, seed);
    if (bits.numBits() != selection.width * selection.height) return; // a viewer of another orientation
    if (code == kReplace) selection.clear();
    if (numPixels > 0) changePixels(selection, bits, box, code != kSubtract);

    if (gi->viewers.size() > 1)
        gi->updateSelectionBoxes();
    else if (code == kSubtract)
        selection.computeSelectionBox();
    else if (code == kReplace)
        selection.setSelectionBox(box);
    else
        selection.extendSelectionBox(box);
    gi->redraw();
    const GiViewer& viewer = *frameBuffer.viewer;
    if (hasActiveSeed()) gi->touchData(1, 0, viewer.getOrientation(), viewer.getSlice(), 0, 0);
    grown3D = 0;
}

void GiMagicWand::lockInactiveSeeds(GiSelection2D& selection)
{
    const GiViewer* viewer = gi->getCurrentViewer();
    if (!viewer) return;
    const int orientation = viewer->getOrientation();
    const auto width = static_cast<unsigned long>(gi->selection->getWidth(orientation));
    McBitfield bits;
    McBox2i box;
    const MagicWandSeed* grown = nullptr; // the seed whose region is in `bits`
    for (int i = 0; i < seeds.size(); ++i) {
        const MagicWandSeed& seed = seeds[i];
        if (i == currentSeed || seed.is3D || seed.orientation != orientation || !isShown(seed, *viewer))
            continue;
        // A file may hold thousands of seeds in one region; it is grown once.
        const McVec2i pixel(seed.coordinate(giWidthAxis(orientation)),
                            seed.coordinate(giHeightAxis(orientation)));
        if (grown && growsAlike(*grown, seed) && box.contains(pixel.x, pixel.y) &&
            bits.isSet(static_cast<unsigned long>(pixel.y) * width + static_cast<unsigned long>(pixel.x)))
            continue;
        grown = grow2D(bits, box, seed) > 0 ? &seed : nullptr;
        if (grown && bits.numBits() == selection.width * selection.height)
            changePixels(selection, bits, box, false);
    }
}

// In the volume

template <class T>
bool GiMagicWand::markVolume(const T* values, const McVec3i& voxel, McBitfield& region, int* box) const
{
    float min, max;
    gi->getToolDataWindow(min, max);
    const std::optional<Range<T>> window = elementRange<T>(min, max);
    if (!window) return false;
    McFillWindow<T> fill{values, window->min, window->max};
    if (isChecked(sameMaterial)) { // kept: as the panel says now, not the seed
        const auto* labels = static_cast<const unsigned char*>(gi->labelSlices.data());
        fill.labels = labels;
        if (labels) fill.label = labels[gi->labelSlices.getOffset(voxel.x, voxel.y, voxel.z, 2)];
    }
    return mcFloodFillWindow(fill, gi->imageSlices.dims(), voxel.x, voxel.y, voxel.z, region, box,
                             HxWorkArea::getTheWorkArea()) > 0;
}

bool GiMagicWand::regionGrowing3D(int code, const McVec3i& voxel)
{
    if (!gi->selection->contains(voxel.x, voxel.y, voxel.z)) return true;
    const Running running(isRunning);
    const GiBusy busy("3D region growing...");
    lastValue = imageValue(voxel);
    McBitfield region;
    int box[6];
    bool isGrown = false;
    try {
        if (isInWindow(lastValue))
            giDispatchImage(gi->primType, gi->imageSlices.data(),
                            [&](const auto* values) { isGrown = markVolume(values, voxel, region, box); });
    } catch (const McMemoryException& exception) {
        HxMessage::getTheMsg()->memError(exception.size());
        return false;
    }
    if (HxWorkArea::getTheWorkArea()->interrupted()) return false;

    if (code == kReplace) gi->selection->clear();
    if (isGrown) changeVoxels(*gi->selection, region, box, code != kSubtract);
    gi->touchData(1, 0, 0, -1, 0, 0);
    gi->updateSelectionBoxes();
    gi->redraw();
    grown3D = 1;
    return true;
}
