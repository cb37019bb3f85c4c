#pragma once

#include "core/GiSelection2D.h"
#include "mc/McBitfield.h"
#include "mc/McDArray.h"
#include "mc/McHandable.h"

/// The selected voxels of the whole volume, one bit each, in voxel order (x fastest).
///
/// Slices are numbered along the axis of their orientation: 0 is the plane YZ along X, 1 XZ along
/// Y, 2 XY along Z; any other orientation counts as 0. Bounds of single voxels are the caller's
/// duty.
class GiSelection3D : public McHandable
{
public:
    using SelectMode = GiSelectMode;

    GiSelection3D();
    ~GiSelection3D() override;

    /// Makes an empty selection of this size; nothing happens if the size is unchanged.
    /// throws McMemoryException
    void resize(unsigned long nx, unsigned long ny, unsigned long nz);

    /// Width, height and number of slices.
    void getDims(int* sizes, int orientation) const;
    int getWidth(int orientation) const;
    int getHeight(int orientation) const;
    int getNumSlices(int orientation) const;

    /// Whether the voxel lies in the volume.
    bool contains(int x, int y, int z) const
    {
        const auto below = [](int i, unsigned long n) { return i >= 0 && static_cast<unsigned long>(i) < n; };
        return below(x, dims[0]) && below(y, dims[1]) && below(z, dims[2]);
    }
    bool get(int x, int y, int z) const { return bits.isSet(bitOf(x, y, z)); }
    void set(int x, int y, int z) { bits.set(bitOf(x, y, z)); }
    void unset(int x, int y, int z) { bits.unset(bitOf(x, y, z)); }
    bool isSet(unsigned long i) const { return bits.isSet(i); }
    void set(unsigned long i) { bits.set(i); }
    void unset(unsigned long i) { bits.unset(i); }
    /// 32 voxels from index 32 * i on.
    unsigned int getWord(unsigned long i) const { return bits.words()[i]; }
    unsigned long numBits() const { return bits.numBits(); }
    unsigned long numWords() const { return bits.numWords(); }
    /// The read of the flood fill.
    int operator()(int x, int y, int z) const { return get(x, y, z); }

    /// Whether any voxel is selected.
    bool isSet() const;
    /// 1 if no voxel of the slice is selected.
    int isEmpty(int slice, int orientation) const;

    void clear();
    void invert();
    void copyFrom(const McBitfield& source);
    void copyTo(McBitfield& target) const;

    /// Makes `target` a window onto the slice.
    void getSlice(GiSelection2D* target, int orientation, int slice);
    /// kept: here the slice comes first, in the pointer form the orientation; callers of both
    /// forms exist.
    GiSelection2D getSlice(int slice, int orientation);
    /// Adds the source's pixels to the slice; selected voxels of the slice stay selected.
    void setSlice(const GiSelection2D* source, int orientation, int slice);
    /// Copies slice `from` over slice `to`; silently nothing if either lies outside.
    void copy(int to, int from, int orientation);

    /// Selects by label over a label volume of this selection's size.
    void setTissue(const unsigned char* labels, int tissue, SelectMode mode);
    /// Selects everything that the background at the volume's eight corners does not reach
    /// (6-connected).
    void fillHoles();
    /// Slices are views and hold nothing that could be freed.
    void freeSlices() {}

    /// One word per slice and orientation. Bit 0: the slice was filled by interpolation and is no
    /// key slice. Bit 1 is only ever cleared.
    McDArray<unsigned int> sliceFlags[3];
    unsigned long dims[3] = {0, 0, 0};
    McBitfield bits;

private:
    unsigned long bitOf(int x, int y, int z) const
    {
        return (static_cast<unsigned long>(z) * dims[1] + static_cast<unsigned long>(y)) * dims[0] +
               static_cast<unsigned long>(x);
    }
};
