#include "modules/McRestrictedProjectedVolume.h"

#include "core/GiBitRows.h"
#include "core/GiSelection2D.h"

#include <algorithm>

McRestrictedProjectedVolume::McRestrictedProjectedVolume(const int* newDims)
{
    init(newDims);
}

void McRestrictedProjectedVolume::init(const int* newDims)
{
    for (McBitfield& plane : planes) plane.resize(0);
    std::copy_n(newDims, 3, dims);
}

void McRestrictedProjectedVolume::setPlane(int plane, const GiSelection2D* selection)
{
    if (plane < 0 || plane > 2 || !selection) return;
    McBitfield& bits = planes[plane];
    bits.resize(static_cast<unsigned long>(dims[(plane + 2) % 3]) *
                static_cast<unsigned long>(dims[(plane + 1) % 3]));
    bits.unsetAll();
    const unsigned long width = selection->width;
    unsigned long first = 0;
    for (unsigned long y = 0; y < selection->height && first < bits.numBits(); ++y, first += width) {
        const unsigned long n = std::min(width, bits.numBits() - first);
        if (selection->xStride == 1) {
            giCopyBits(bits.words(), first, selection->bits->words(),
                       y * selection->yStride + selection->offset, n);
            continue;
        }
        for (unsigned long x = 0; x < n; ++x)
            if (selection->isSet(static_cast<int>(x), static_cast<int>(y))) bits.set(first + x);
    }
}
