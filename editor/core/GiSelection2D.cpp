#include "core/GiSelection2D.h"

#include "core/GiBitRows.h"
#include "core/GiScanConvert.h"
#include "core/mcFloodFill.h"
#include "hx/HxMessage.h"
#include "mc/McMemoryException.h"
#include "mc/McMorphology.h"

#include <algorithm>

namespace {

// Before the first pixel: any pixel makes each side its own.
const McBox2i kUnbounded(100000, 100000, -1, -1);
const McBox2i kEmptyBox(1, 1, 0, 0);

void widen(McBox2i& box, const McBox2i& by)
{
    box.xmin = std::min(box.xmin, by.xmin);
    box.ymin = std::min(box.ymin, by.ymin);
    box.xmax = std::max(box.xmax, by.xmax);
    box.ymax = std::max(box.ymax, by.ymax);
}

} // namespace

GiSelection2D::GiSelection2D() : selectionBox(kEmptyBox), bits(&localBits) {}

GiSelection2D::~GiSelection2D() = default;

GiSelection2D::GiSelection2D(const GiSelection2D& other) : McHandable(other), localBits(other.localBits)
{
    copyFields(other);
}

GiSelection2D& GiSelection2D::operator=(const GiSelection2D& other)
{
    if (this == &other) return *this;
    localBits = other.localBits;
    copyFields(other);
    return *this;
}

void GiSelection2D::copyFields(const GiSelection2D& other)
{
    modified = other.modified;
    selectionBox = other.selectionBox;
    hidden = other.hidden;
    width = other.width;
    height = other.height;
    yStride = other.yStride;
    xStride = other.xStride;
    offset = other.offset;
    bits = other.bits == &other.localBits ? &localBits : other.bits;
    maskBits = other.maskBits;
}

void GiSelection2D::resize(int newWidth, int newHeight)
{
    const auto w = static_cast<unsigned long>(newWidth);
    const auto h = static_cast<unsigned long>(newHeight);
    if (w == width && h == height) return;
    // If the memory cannot be had this is an empty selection, not a wide one without bits.
    width = height = 0;
    bits = &localBits;
    localBits.resize(w * h);
    localBits.unsetAll();
    width = w;
    height = h;
    offset = 0;
    xStride = 1;
    yStride = w;
}

void GiSelection2D::setBitfield(McBitfield* field, unsigned long newWidth, unsigned long newHeight,
                                unsigned long newOffset, unsigned long newXStride, unsigned long newYStride)
{
    bits = field;
    width = newWidth;
    height = newHeight;
    offset = newOffset;
    xStride = newXStride;
    yStride = newYStride;
    localBits.resize(0);
    computeSelectionBox();
}

void GiSelection2D::makeLocal()
{
    if (bits == &localBits || !bits) return;
    GiSelection2D copy;
    copy.resize(static_cast<int>(width), static_cast<int>(height));
    copy.copyData(*this);
    localBits = std::move(copy.localBits);
    bits = &localBits;
    offset = 0;
    xStride = 1;
    yStride = width;
}

void GiSelection2D::clear()
{
    selectionBox = kEmptyBox;
    modified = 1;
    if (!bits) return;
    for (unsigned long y = 0; y < height; ++y) changeRun(0, width, y, giUnsetBits);
}

int GiSelection2D::clear(McBox2i& cleared)
{
    computeBoundingBox(cleared);
    clear();
    return cleared.isEmpty() ? 0 : 1;
}

void GiSelection2D::setSelectionBox(const McBox2i& box)
{
    selectionBox = box;
}

void GiSelection2D::extendSelectionBox(const McBox2i& box)
{
    selectionBox.extendBy(box);
}

void GiSelection2D::computeSelectionBox()
{
    selectionBox = tightBox(McBox2i(0, 0, static_cast<int>(width) - 1, static_cast<int>(height) - 1));
}

void GiSelection2D::updateSelectionBox(McBox2i box)
{
    box.xmin = std::max(box.xmin, 0);
    box.ymin = std::max(box.ymin, 0);
    box.xmax = std::min(box.xmax, static_cast<int>(width) - 1);
    box.ymax = std::min(box.ymax, static_cast<int>(height) - 1);
    const McBox2i found = tightBox(box);
    if (!found.isEmpty()) widen(selectionBox, found);
}

void GiSelection2D::computeBoundingBox(McBox2i& box) const
{
    box = tightBox(McBox2i(0, 0, static_cast<int>(width) - 1, static_cast<int>(height) - 1));
    if (box.isEmpty()) box = kEmptyBox;
}

/// The box of the set pixels within a rectangle of the slice, kUnbounded if there is none.
McBox2i GiSelection2D::tightBox(const McBox2i& within) const
{
    McBox2i box = kUnbounded;
    if (!bits || within.isEmpty()) return box;
    for (int y = within.ymin; y <= within.ymax; ++y) {
        int first = -1, last = -1;
        if (xStride == 1) {
            const unsigned long begin = bitOf(within.xmin, y), end = bitOf(within.xmax, y) + 1;
            const unsigned long found = giFindSet(bits->words(), begin, end);
            if (found < end) {
                first = within.xmin + static_cast<int>(found - begin);
                last = within.xmin + static_cast<int>(giFindLastSet(bits->words(), begin, end) - begin);
            }
        } else {
            for (int x = within.xmin; x <= within.xmax; ++x) {
                if (!isSet(x, y)) continue;
                if (first < 0) first = x;
                last = x;
            }
        }
        if (first >= 0) widen(box, McBox2i(first, y, last, y));
    }
    return box;
}

void GiSelection2D::setSelection(int n, const McVec2f* polygon, SelectMode mode)
{
    GiScanConvert converter(0, 0, static_cast<int>(width) - 1, static_cast<int>(height) - 1, 0);
    // kept: subtracting ignores the mask. A mask limits what can be marked; taking away is always
    // possible.
    if (mode == kSelectSubtract) converter.setSpanCB(clearPixel, this);
    if (mode == kSelectReplace) clear();
    if (mode == kSelectReplace || mode == kSelectAdd)
        converter.setSpanCB(maskBits ? maskPixel : fillPixel, this);
    converter.render(n, polygon);
    modified = 1;
    computeSelectionBox();
}

void GiSelection2D::setSelection(int n, const McVec2f* polygon, SelectMode mode, const McBitfield& mask)
{
    if (mask.numBits() != width * height) return;
    maskBits = &mask;
    try {
        setSelection(n, polygon, mode);
    } catch (...) {
        maskBits = nullptr; // the mask is the caller's and may be gone at the next call
        throw;
    }
    maskBits = nullptr;
}

int GiSelection2D::copyData(const GiSelection2D& source)
{
    if (source.width != width || source.height != height) return 0;
    for (unsigned long y = 0; y < height; ++y) {
        if (xStride == 1 && source.xStride == 1) {
            giCopyBits(bits->words(), y * yStride + offset, source.bits->words(),
                       y * source.yStride + source.offset, width);
            continue;
        }
        unsigned long to = y * yStride + offset;
        unsigned long from = y * source.yStride + source.offset;
        for (unsigned long x = 0; x < width; ++x, to += xStride, from += source.xStride) {
            if (source.bits->isSet(from))
                bits->set(to);
            else
                bits->unset(to);
        }
    }
    return 1;
}

void GiSelection2D::setTissue(const unsigned char* labels, int tissue, SelectMode mode)
{
    if (mode == kSelectReplace) clear();
    const bool adds = mode == kSelectReplace || mode == kSelectAdd;
    for (unsigned long y = 0; y < height; ++y) {
        unsigned long at = y * yStride;
        for (unsigned long x = 0; x < width; ++x, at += xStride) {
            if (labels[at] != tissue) continue;
            if (adds)
                bits->set(at + offset);
            else
                bits->unset(at + offset);
        }
    }
    modified = 1;
    computeSelectionBox();
}

void GiSelection2D::invert()
{
    for (unsigned long y = 0; y < height; ++y) changeRun(0, width, y, giToggleBits);
    modified = 1;
    computeSelectionBox();
}

void GiSelection2D::fillSelection(int x, int y, int mode)
{
    try {
        if (x < 0 || y < 0 || x >= static_cast<int>(width) || y >= static_cast<int>(height))
            closeHoles();
        else if (mode)
            deleteRegion(x, y);
        else
            fillRegion(x, y);
    } catch (const McMemoryException& e) {
        HxMessage::getTheMsg()->memError(e.size());
        return;
    }
    computeSelectionBox();
    modified = 1;
}

/// Floods the background from the border and selects what it did not reach. The slice is taken out of the
/// volume for it, so that its rows lie side by side.
void GiSelection2D::closeHoles()
{
    const int w = static_cast<int>(width), h = static_cast<int>(height);
    if (w == 0 || h == 0) return;
    GiSelection2D filled;
    filled.resize(w, h);
    filled.copyData(*this);
    McDArray<McVec3i> border;
    for (int x = 0; x < w; ++x) {
        border.append(McVec3i(x, 0, 0));
        border.append(McVec3i(x, h - 1, 0));
    }
    for (int y = 0; y < h; ++y) {
        border.append(McVec3i(0, y, 0));
        border.append(McVec3i(w - 1, y, 0));
    }
    const int dims[3] = {w, h, 1};
    const McBitfield before = filled.localBits;
    McMorphology::fillUnreached(filled.localBits, border, dims);
    for (unsigned long i = 0; i < before.numWords64(); ++i)
        filled.localBits.words64()[i] ^= before.words64()[i];
    changeMarked(filled.localBits, true);
}

void GiSelection2D::deleteRegion(int x, int y)
{
    McBitfield visited(width * height);
    McEqualityChecker<int> isSelected(1);
    mcFloodFill2D(*this, isSelected, x, y, visited, nullptr);
    changeMarked(visited, false);
}

void GiSelection2D::fillRegion(int x, int y)
{
    McBitfield visited(width * height);
    McEqualityChecker<int> unset(0);
    mcFloodFill2D(*this, unset, x, y, visited, nullptr);
    changeMarked(visited, true);
}

/// Sets or unsets the pixels that are marked in `marks`, a field of width * height bits.
void GiSelection2D::changeMarked(const McBitfield& marks, bool select)
{
    for (unsigned long y = 0; y < height; ++y) {
        const unsigned long begin = y * width, end = begin + width;
        unsigned long at = giFindSet(marks.words(), begin, end);
        for (; at < end; at = giFindSet(marks.words(), at + 1, end)) {
            const unsigned long bit = y * yStride + (at - begin) * xStride + offset;
            if (select)
                bits->set(bit);
            else
                bits->unset(bit);
        }
    }
}

/// Changes the pixels x0 <= x < end of a row by one of the operations on runs of bits.
template <class Change>
void GiSelection2D::changeRun(unsigned long x0, unsigned long end, unsigned long y, const Change& change)
{
    const unsigned long row = y * yStride + offset;
    if (xStride == 1) {
        change(bits->words(), row + x0, row + end);
        return;
    }
    for (unsigned long x = x0; x < end; ++x) change(bits->words(), row + x * xStride, row + x * xStride + 1);
}

void GiSelection2D::clearPixel(void* selection, int x0, int x1, int y, unsigned char*)
{
    static_cast<GiSelection2D*>(selection)->changeRun(static_cast<unsigned long>(x0),
                                                      static_cast<unsigned long>(x1) + 1,
                                                      static_cast<unsigned long>(y), giUnsetBits);
}

void GiSelection2D::fillPixel(void* selection, int x0, int x1, int y, unsigned char*)
{
    static_cast<GiSelection2D*>(selection)->changeRun(static_cast<unsigned long>(x0),
                                                      static_cast<unsigned long>(x1) + 1,
                                                      static_cast<unsigned long>(y), giSetBits);
}

void GiSelection2D::maskPixel(void* selection, int x0, int x1, int y, unsigned char*)
{
    auto* self = static_cast<GiSelection2D*>(selection);
    const unsigned long row = static_cast<unsigned long>(y) * self->width;
    for (int x = x0; x <= x1; ++x)
        if (self->maskBits->isSet(row + static_cast<unsigned long>(x))) self->set(x, y);
}
