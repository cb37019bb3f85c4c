#pragma once

class McBitfield;
class McProgressInterface;

/// What a fill over a volume of numbers may enter: values from `min` to `max`, both included, and,
/// if `labels` is given and `label` is not negative, voxels of that label only.
///
/// T is one of the seven image element types. NaN is never entered.
template <class T>
struct McFillWindow
{
    const T* values; // x fastest, contiguous
    T min, max;
    const unsigned char* labels = nullptr; // the same volume
    int label = -1;
};

/// Marks the 6-connected region of accepted voxels around (x, y, z): same region, count and box as
/// mcFloodFill3D with a checker for the window, but several times faster, and without its limit on
/// the sides.
///
/// dims     X, Y, Z
/// visited  one bit per voxel; sized and cleared if its size differs, otherwise kept: what earlier
///          fills have marked is not entered. These must have had disjoint acceptances or the same
///          one, so that a run of accepted voxels along x is marked as a whole or not at all.
/// box      null, or six ints for xmin, xmax, ymin, ymax, zmin, zmax
/// progress  null, or what shows how far the fill is and can stop it; of a fill that was interrupted marks,
///           count and box mean nothing
/// throws   McMemoryException
///
/// Each row is tested as a whole when the fill first reaches it, by vector compares into one bit
/// per voxel; the rest is word operations (see GiRowFill). Costs one more bit per voxel of the volume
/// if `visited` comes with marks, otherwise a few planes of bits and eight bytes per row.
template <class T>
unsigned long mcFloodFillWindow(const McFillWindow<T>& window, const unsigned long* dims, int x, int y, int z,
                                McBitfield& visited, int* box, McProgressInterface* progress = nullptr);
