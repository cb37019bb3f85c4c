#include "tools/GiLassoVoxel.h"

#include "core/GiSelection3D.h"
#include "tools/GiScreenOutline.h"

namespace {

bool isInside(const GiLassoStruct& voxel)
{
    return voxel.lasso->isSelected(voxel.screen);
}

/// As floats, whatever the element type.
template <class T>
bool isInWindow(const GiLassoStruct& voxel)
{
    const auto value = static_cast<float>(static_cast<const T*>(voxel.row)[voxel.x]);
    return value >= voxel.minValue && value <= voxel.maxValue;
}

void set(GiLassoStruct& voxel)
{
    voxel.selection->set(static_cast<unsigned long>(voxel.index));
}

void unset(GiLassoStruct& voxel)
{
    voxel.selection->unset(static_cast<unsigned long>(voxel.index));
}

void cbSet(GiLassoStruct& voxel)
{
    if (isInside(voxel)) set(voxel);
}

void cbUnset(GiLassoStruct& voxel)
{
    if (isInside(voxel)) unset(voxel);
}

void cbSetOutside(GiLassoStruct& voxel)
{
    if (!isInside(voxel)) set(voxel);
}

void cbUnsetOutside(GiLassoStruct& voxel)
{
    if (!isInside(voxel)) unset(voxel);
}

// The window comes first: it is cheaper than the outline.

template <class T>
void cbSetMasking(GiLassoStruct& voxel)
{
    if (isInWindow<T>(voxel) && isInside(voxel)) set(voxel);
}

template <class T>
void cbUnsetMasking(GiLassoStruct& voxel)
{
    if (isInWindow<T>(voxel) && isInside(voxel)) unset(voxel);
}

template <class T>
void cbSetMaskingOutside(GiLassoStruct& voxel)
{
    if (isInWindow<T>(voxel) && !isInside(voxel)) set(voxel);
}

template <class T>
void cbUnsetMaskingOutside(GiLassoStruct& voxel)
{
    if (isInWindow<T>(voxel) && !isInside(voxel)) unset(voxel);
}

template <class T>
GiLassoCallback masking(bool outside, bool takesAway)
{
    if (outside) return takesAway ? cbUnsetMaskingOutside<T> : cbSetMaskingOutside<T>;
    return takesAway ? cbUnsetMasking<T> : cbSetMasking<T>;
}

GiLassoCallback maskingOf(int primType, bool outside, bool takesAway)
{
    switch (primType) {
    case 0:
        return masking<unsigned char>(outside, takesAway);
    case 1:
        return masking<short>(outside, takesAway);
    case 2:
        return masking<unsigned short>(outside, takesAway);
    case 3:
        return masking<int>(outside, takesAway);
    case 5:
        return masking<float>(outside, takesAway);
    case 6:
        return masking<double>(outside, takesAway);
    default:
        return cbSet;
    }
}

} // namespace

GiLassoAction giLassoAction(bool outside, bool ctrl, bool shift, bool masks, int primType)
{
    const bool takesAway = outside ? !shift : ctrl;
    const bool clearsFirst = !outside && !ctrl && !shift;
    if (masks) return {maskingOf(primType, outside, takesAway), clearsFirst};
    if (outside) return {takesAway ? cbUnsetOutside : cbSetOutside, clearsFirst};
    return {takesAway ? cbUnset : cbSet, clearsFirst};
}
