#pragma once

#include "core/GiBitRows.h"
#include "core/GiSelection2D.h"

/// Calls visit(x, y) for each selected pixel of a slice, row by row. Empty words are passed over where the
/// rows lie in one piece.
template <class Visit>
void giForEachPixel(const GiSelection2D& selection, const Visit& visit)
{
    if (!selection.bits) return;
    for (unsigned long y = 0; y < selection.height; ++y) {
        const unsigned long begin = y * selection.yStride + selection.offset;
        if (selection.xStride == 1) {
            const unsigned long end = begin + selection.width;
            unsigned long at = giFindSet(selection.bits->words(), begin, end);
            for (; at < end; at = giFindSet(selection.bits->words(), at + 1, end))
                visit(static_cast<int>(at - begin), static_cast<int>(y));
            continue;
        }
        for (unsigned long x = 0; x < selection.width; ++x)
            if (selection.bits->isSet(begin + x * selection.xStride))
                visit(static_cast<int>(x), static_cast<int>(y));
    }
}
