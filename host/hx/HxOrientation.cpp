#include "hx/HxOrientation.h"

#include "hx/HxParamBundle.h"

#include <algorithm>

namespace {

constexpr const char* kDirections = "Directions";
constexpr const char* kOrigin = "Origin";
constexpr const char* kSpacing = "Spacing";

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
        !parameters.findReal(kOrigin, 3, found.origin))
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
