#include "hx/HxField3.h"

#include <algorithm>
#include <limits>

HxField3::HxField3() = default;

McTypeId HxField3::getClassTypeId()
{
    return hxClassType<HxField3, HxData>("HxField3");
}

void HxField3::getRange(double& min, double& max)
{
    if (!rangeIsKnown) {
        minimum = maximum = 0;
        computeRange(minimum, maximum);
        rangeIsKnown = true;
    }
    min = minimum;
    max = maximum;
}

void HxField3::getRange(float& min, float& max)
{
    constexpr double kLimit = std::numeric_limits<float>::max();
    double low, high;
    getRange(low, high);
    min = static_cast<float>(std::clamp(low, -kLimit, kLimit));
    max = static_cast<float>(std::clamp(high, -kLimit, kLimit));
}

void HxField3::touchMinMax(float min, float max, int flag)
{
    rangeIsKnown = flag != 0;
    minimum = min;
    maximum = max;
    // kept: no dataObjectTouched. Whoever edits the labels calls this once per stroke, and a
    // listener that binds its data anew on each touch would end the editing.
    HxObject::touch(kValuesChanged);
    // A range that somebody has just set comes with new values, one that went stale with edited ones.
    if (!rangeIsKnown) setModified(true);
}

void HxField3::touch(unsigned int mask)
{
    if (mask & ~kParametersChanged) rangeIsKnown = false;
    HxData::touch(mask);
}
