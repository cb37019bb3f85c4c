#pragma once

class GiSelection2D;

/// The colour of the selection mixed into pixels.
///
/// Each byte of the lower 24 bits of a pixel becomes (byte * (255 - alpha) + colour * alpha) >> 8; the top
/// byte stays.
class GiSelectionBlend
{
public:
    /// pixel  the colour, in the format of the pixels
    /// alpha  its weight, limited to 0 to 255
    GiSelectionBlend(unsigned int pixel, int alpha);

    unsigned int operator()(unsigned int pixel) const
    {
        // Two bytes at once: a product fits into 16 bits.
        const unsigned int mixed = (pixel & 0xFF00FF) * rest + outer;
        const unsigned int mixedMiddle = (pixel >> 8 & 0xFF) * rest + middle;
        return (pixel & 0xFF000000) | (mixed >> 8 & 0xFF00FF) | (mixedMiddle & 0xFF00);
    }

    /// Mixes it into those of n neighbouring pixels of a row that are selected.
    ///
    /// first, row  the first pixel; pixels outside the selection are not selected
    /// marks       room for n numbers
    void mixRow(unsigned int* pixels, const GiSelection2D& selection, int first, int row, int n,
                int* marks) const;

    /// The same for pixels picked from a row.
    ///
    /// columns  of the n pixels, counted from `first`, rising
    void mixPicked(unsigned int* pixels, const GiSelection2D& selection, int first, int row,
                   const int* columns, int n, int* marks) const;

private:
    unsigned int rest;          // weight of a pixel
    unsigned int outer, middle; // the colour with its weight: bytes 0 and 2, and byte 1
};
