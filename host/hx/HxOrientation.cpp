#include "hx/HxOrientation.h"

#include "hx/HxParamBundle.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr const char* kDirections = "Directions";
constexpr const char* kOrigin = "Origin";
constexpr const char* kSpacing = "Spacing";

// Three finite unit vectors that span a volume; anything else cannot come from a file.
bool isFrame(const double* d)
{
    constexpr double kLengthTolerance = 1e-3;
    constexpr double kLeastVolume = 1e-6;
    for (int axis = 0; axis < 3; axis++) {
        const double length = std::hypot(d[axis], d[axis + 3], d[axis + 6]);
        if (!(std::abs(length - 1) <= kLengthTolerance)) return false; // nor not-a-number
    }
    const double volume = d[0] * (d[4] * d[8] - d[5] * d[7]) - d[1] * (d[3] * d[8] - d[5] * d[6]) +
                          d[2] * (d[3] * d[7] - d[4] * d[6]);
    return std::abs(volume) > kLeastVolume;
}

} // namespace

bool HxOrientation::isIdentity() const
{
    const HxOrientation identity;
    return std::equal(directions, directions + 9, identity.directions);
}

bool HxOrientation::read(const HxParamBundle& parameters, HxOrientation& out)
{
    out = HxOrientation();
    HxOrientation found;
    if (!parameters.findReal(kDirections, 9, found.directions) ||
        !parameters.findReal(kOrigin, 3, found.origin) || !isFrame(found.directions))
        return false;
    out = found;
    return true;
}

void HxOrientation::write(HxParamBundle& parameters) const
{
    if (isIdentity()) {
        parameters.remove(kDirections);
        parameters.remove(kOrigin);
        return;
    }
    parameters.set(kDirections, 9, directions);
    parameters.set(kOrigin, 3, origin);
}

void HxOrientation::copy(const HxParamBundle& from, HxParamBundle& to)
{
    for (const char* name : {kDirections, kOrigin, kSpacing}) {
        to.remove(name);
        if (const HxParameter* entry = from.parameter(name)) to.insert(entry->clone());
    }
}
