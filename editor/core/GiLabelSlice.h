#pragma once

#include "core/GiSelection2D.h"

#include <functional>

/// A strided view of one slice of the label volume, with the transfer between it and a selection
/// of the same size.
///
/// `memory` is the label of pixel (0, 0); strides in bytes. `prob` and `prob2` are either null or
/// byte arrays addressed like `memory`. `locked` has 256 flags by label.
class GiLabelSlice
{
public:
    /// Takes pixels out of a selection that some other owner claims; may be empty.
    using ReleasePixels = std::function<void(GiSelection2D&)>;

    /// Writes `tissue` into every selected pixel whose label is not locked. With both weight arrays
    /// present they follow: a pixel that is new in the material, or whose weight was below 1, gets
    /// (1, 0), and so does an unselected one whose weight was above 1.
    void addSelection(const GiSelection2D& selection, int tissue);

    /// Moves the selected pixels of `tissue` into the neighbouring material.
    ///
    /// selection  decides the target
    /// working    decides which pixels move; normally a view of the same bits
    ///
    /// Nothing happens if the target or `tissue` is locked.
    void subtractSelection(const GiSelection2D& selection, const GiSelection2D& working, int tissue);

    /// The same, with the working copy made here. A non-empty `release` gets the working copy
    /// before; as long as the selection has the size of the slice, that copy is a view and pixels
    /// taken out of it leave the selection.
    void subtractSelection(GiSelection2D& selection, int tissue, const ReleasePixels& release);

    /// Takes all 4-connected pieces of `tissue` that the selection touches out of the material, and
    /// puts the selection in their place.
    /// throws McMemoryException
    void replaceBySelection(GiSelection2D& selection, int tissue, const ReleasePixels& release);

    unsigned long yStride = 0;
    int xStride = 0;
    const int* locked = nullptr;
    unsigned long width = 0, height = 0;
    unsigned char* memory = nullptr;
    unsigned char* prob = nullptr;
    unsigned char* prob2 = nullptr;

private:
    unsigned char* pixel(unsigned char* base, long x, long y) const
    {
        return base + y * static_cast<long>(yStride) + x * xStride;
    }
    int chooseTarget(const GiSelection2D& selection, int tissue) const;
    void markPieces(const GiSelection2D& selection, int tissue, McBitfield& region) const;
};
