#pragma once

#include "mc/McBitfield.h"
#include "mc/McBox.h"
#include "mc/McHandable.h"
#include "mc/McVec.h"

/// How an operation combines its pixels with those already selected.
enum GiSelectMode : int
{
    kSelectAdd = 0,
    kSelectSubtract = 1,
    kSelectReplace = 2 // clear first, then add
};

/// The selected pixels of one slice.
///
/// In normal use an object owns no bits: it is a strided window into the bit field of the volume's
/// selection, so setting a pixel sets the voxel, with no copy and no write-back. It can also own
/// its bits (`localBits`) and then stands alone. Pixel (x, y) is bit
/// y * yStride + x * xStride + offset of `bits`.
///
/// Bounds of single pixels are the caller's duty. A view must not outlive its bit field.
class GiSelection2D : public McHandable
{
public:
    using SelectMode = GiSelectMode;

    GiSelection2D();
    /// Owned bits are copied by value; a view stays a view of the same field.
    GiSelection2D(const GiSelection2D& other);
    GiSelection2D& operator=(const GiSelection2D& other);
    ~GiSelection2D() override;

    /// Makes this a private, empty selection of width x height; nothing happens if the size is
    /// unchanged, not even to a view.
    void resize(int newWidth, int newHeight);
    /// Makes this a window into `field` and computes the selection box. Strides and offset in bits.
    void setBitfield(McBitfield* field, unsigned long newWidth, unsigned long newHeight,
                     unsigned long newOffset, unsigned long newXStride, unsigned long newYStride);
    /// Copies a view's pixels into own bits; nothing happens to a private selection.
    void makeLocal();

    bool isSet(int x, int y) const { return bits->isSet(bitOf(x, y)); }
    void set(int x, int y) { bits->set(bitOf(x, y)); }
    void unset(int x, int y) { bits->unset(bitOf(x, y)); }
    // kept: the test by index takes the bare index, set and unset add the offset. These forms
    // serve private selections, where the offset is 0.
    bool isSet(unsigned long i) const { return bits->isSet(i); }
    void set(unsigned long i) { bits->set(i + offset); }
    void unset(unsigned long i) { bits->unset(i + offset); }
    /// The read of the flood fill.
    int operator()(int x, int y) const { return isSet(x, y); }

    void clear();
    /// The same, and tells which box held the set pixels: 1, or 0 and (1, 1, 0, 0) if none was set.
    int clear(McBox2i& cleared);

    void setSelectionBox(const McBox2i& box);
    /// Widens the box by another; an empty box counts for nothing on either side.
    void extendSelectionBox(const McBox2i& box);
    /// Scans all pixels; with nothing set the box becomes (100000, 100000, -1, -1).
    void computeSelectionBox();
    /// Scans only the given rectangle, cut to the slice, and widens the box by its set pixels. The
    /// box never shrinks, and an empty one gets no special treatment: call computeSelectionBox()
    /// at least once before.
    void updateSelectionBox(McBox2i box);
    /// The tight box of the set pixels, (1, 1, 0, 0) if there is none; `selectionBox` stays.
    void computeBoundingBox(McBox2i& box) const;

    /// Fills a polygon of n points (pixel coordinates, even-odd rule, pixels sampled at their
    /// centres). A mode other than the three changes no pixel.
    void setSelection(int n, const McVec2f* polygon, SelectMode mode);
    /// The same, but sets only pixels whose bit y * width + x is set in `mask`. A mask of another
    /// size than width * height makes it a no-op.
    void setSelection(int n, const McVec2f* polygon, SelectMode mode, const McBitfield& mask);
    /// Copies all pixels of a selection of the same size; 0 if the sizes differ.
    int copyData(const GiSelection2D& source);
    /// Selects by label. `labels` points to the slice's first voxel and is walked with this
    /// selection's strides, in bytes.
    void setTissue(const unsigned char* labels, int tissue, SelectMode mode);
    void invert();

    /// Fills or deletes 4-connected regions:
    /// - (x, y) outside the slice: closes every hole, whatever the mode;
    /// - mode 0: selects the unselected region at (x, y);
    /// - any other mode: deletes the selected region at (x, y).
    /// Memory exhaustion is reported to the user and leaves the selection as it was.
    void fillSelection(int x, int y, int mode);

    // Span callbacks for GiScanConvert; `selection` is a GiSelection2D.
    static void clearPixel(void* selection, int x0, int x1, int y, unsigned char* coverage);
    static void fillPixel(void* selection, int x0, int x1, int y, unsigned char* coverage);
    static void maskPixel(void* selection, int x0, int x1, int y, unsigned char* coverage);

    /// 1 after each operation that changed bits through this object (clear, setSelection,
    /// setTissue, invert, fillSelection); set back to 0 by the transfer into labels.
    int modified = 0;
    McBox2i selectionBox; // empty if a max lies below its min
    int hidden = 0;       // 0: the frame buffer blends this selection
    unsigned long width = 0, height = 0;
    unsigned long yStride = 0, xStride = 0; // in bits
    unsigned long offset = 0;               // bit of pixel (0, 0)
    McBitfield localBits;                   // empty while this is a view
    McBitfield* bits;                       // &localBits, or the volume's
    const McBitfield* maskBits = nullptr;   // only during a masked setSelection

private:
    unsigned long bitOf(int x, int y) const
    {
        return static_cast<unsigned long>(y) * yStride + static_cast<unsigned long>(x) * xStride + offset;
    }
    void copyFields(const GiSelection2D& other);
    McBox2i tightBox(const McBox2i& within) const;
    void closeHoles();
    void fillRegion(int x, int y);
    void deleteRegion(int x, int y);
    void changeMarked(const McBitfield& marks, bool select);
    template <class Change>
    void changeRun(unsigned long x0, unsigned long end, unsigned long y, const Change& change);
};
