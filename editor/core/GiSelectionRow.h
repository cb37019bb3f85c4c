#pragma once

#include "core/GiBitRows.h"
#include "core/GiSelection2D.h"

#include <bit>

/// Marks or erases those pixels of a run in a row whose bit is set.
///
/// which  n bits for the pixels from `column` on, the first one lowest; those beyond count for nothing
inline void giChangeRow(GiSelection2D& selection, int column, int row, const unsigned int* which,
                        unsigned long n, bool set)
{
    const unsigned long first = static_cast<unsigned long>(row) * selection.yStride +
                                static_cast<unsigned long>(column) * selection.xStride + selection.offset;
    if (selection.xStride == 1) {
        giCombineBits(selection.bits->words(), first, which, 0, n,
                      [set](unsigned int& word, unsigned int bits, unsigned int) {
                          word = set ? word | bits : word & ~bits;
                      });
        return;
    }
    for (unsigned long i = 0; i < n; i += 32) {
        for (unsigned int word = which[i / 32]; word != 0; word &= word - 1) {
            const unsigned long pixel = i + static_cast<unsigned long>(std::countr_zero(word));
            if (pixel >= n) break;
            if (set)
                selection.bits->set(first + pixel * selection.xStride);
            else
                selection.bits->unset(first + pixel * selection.xStride);
        }
    }
}
