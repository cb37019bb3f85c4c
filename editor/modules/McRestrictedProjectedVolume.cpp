#include "modules/McRestrictedProjectedVolume.h"

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
    const int width = static_cast<int>(selection->width), height = static_cast<int>(selection->height);
    unsigned long i = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width && i < bits.numBits(); ++x, ++i)
            if (selection->isSet(x, y)) bits.set(i);
}
