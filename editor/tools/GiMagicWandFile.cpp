// Magic wand: seeds and limit lines in the parameters of the label data.

#include "core/Gi.h"
#include "hx/HxData.h"
#include "hx/HxParamBundle.h"
#include "mc/McString.h"
#include "tools/GiMagicWand.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr int kNumSeedValues = 4; // orientation, min, max, flags
constexpr int kIs3D = 1, kAlways = 2, kSameMaterial = 4, kFillInterior = 8, kMaterialShift = 8;

McString sliceName(const MagicWandSeed& seed)
{
    return McString::printf("Slice%04d", seed.z);
}

// kept: the orientation is no part of the name, so of two seeds on one voxel the one that is kept later has
// the entry. Files are read by this name in every version; a second entry would read as a seed elsewhere.
McString nameOf(const MagicWandSeed& seed)
{
    return McString::printf("S%04dx%04d", seed.x, seed.y);
}

McString sliceName(const MagicWandLimit& limit)
{
    const char letter = limit.orientation == 2 ? 'X' : limit.orientation == 1 ? 'Y' : 'Z';
    return McString::printf("Slice%c%04d", letter, limit.slice);
}

McString nameOf(const MagicWandLimit& limit)
{
    return McString::printf("Limit%04d", limit.id);
}

/// Without its fraction; limited to the numbers there are.
int wholeNumber(float v)
{
    constexpr double kLeast = std::numeric_limits<int>::min(), kMost = std::numeric_limits<int>::max();
    if (std::isnan(v)) return 0;
    return static_cast<int>(std::clamp(std::trunc(static_cast<double>(v)), kLeast, kMost));
}

int flagsOf(const MagicWandSeed& seed)
{
    return (seed.is3D ? kIs3D : 0) | kAlways | (seed.sameMaterial ? kSameMaterial : 0) |
           (seed.fillInterior ? kFillInterior : 0) | seed.material << kMaterialShift;
}

/// An entry of a slice's bundle, without making what is not there; null if there is none.
HxParamBundle* findSlice(HxParamBundle& parameters, const char* kind, const McString& slice)
{
    HxParamBundle* all = parameters.bundle(kind, 0);
    return all ? all->bundle(slice, 0) : nullptr;
}

} // namespace

void GiMagicWand::saveSeed(const MagicWandSeed& seed)
{
    if (!gi->imageLattice || !gi->labelData) return;
    const int values[kNumSeedValues] = {seed.orientation, wholeNumber(seed.min), wholeNumber(seed.max),
                                        flagsOf(seed)};
    gi->labelData->parameters.bundle("Seeds", 1)
        ->bundle(sliceName(seed), 1)
        ->set(nameOf(seed), kNumSeedValues, values);
    gi->labelData->setModified(true);
}

void GiMagicWand::deleteSeed(const MagicWandSeed& seed)
{
    if (!gi->imageLattice || !gi->labelData) return;
    HxParamBundle* slice = findSlice(gi->labelData->parameters, "Seeds", sliceName(seed));
    if (!slice || !slice->remove(nameOf(seed))) return;
    gi->labelData->setModified(true);
    for (int i = 0; i < seeds.size(); ++i)
        if (i != currentSeed && seeds[i].voxel() == seed.voxel()) saveSeed(seeds[i]);
}

void GiMagicWand::saveLimit(const MagicWandLimit& limit)
{
    if (!gi->imageLattice || !gi->labelData || limit.points.isEmpty()) return;
    std::vector<float> values;
    for (const McVec2f& point : limit.points) {
        values.push_back(point.x);
        values.push_back(point.y);
    }
    HxParamBundle* slice = gi->labelData->parameters.bundle("Limits", 1)->bundle(sliceName(limit), 1);
    slice->set(nameOf(limit), static_cast<int>(values.size()), values.data());
    gi->labelData->setModified(true);
}

void GiMagicWand::deleteLimit(const MagicWandLimit& limit)
{
    if (!gi->imageLattice || !gi->labelData) return;
    HxParamBundle* slice = findSlice(gi->labelData->parameters, "Limits", sliceName(limit));
    if (slice && slice->remove(nameOf(limit))) gi->labelData->setModified(true);
}

// Reading

void GiMagicWand::readMaterialColors()
{
    materialColors.clear();
    for (int i = 0; gi->materials && i < gi->materials->nBundles(); ++i) {
        float rgb[3] = {1, 1, 0};
        gi->materials->bundle(i)->findColor(rgb);
        materialColors.append(McVec3f(rgb[0], rgb[1], rgb[2]));
    }
}

void GiMagicWand::initSeeds()
{
    seeds.clear();
    currentSeed = -1;
    seedIsStored = 0;
    readMaterialColors();
    const HxParamBundle* all =
        gi->labelData ? std::as_const(gi->labelData->parameters).bundle("Seeds") : nullptr;
    for (int i = 0; all && i < all->nBundles(); ++i) {
        int z = 0;
        if (std::sscanf(all->bundle(i)->getName(), "Slice%d", &z) == 1) readSeeds(*all->bundle(i), z);
    }
}

void GiMagicWand::readSeeds(const HxParamBundle& slice, int z)
{
    for (int i = 0; i < slice.nParameters(); ++i) {
        const HxParameter& entry = *slice.parameter(i);
        MagicWandSeed seed;
        if (std::sscanf(entry.getName(), "S%dx%d", &seed.x, &seed.y) != 2) continue;
        if (entry.primType() != HxParameter::kInt || entry.dim() != kNumSeedValues) continue;
        seed.z = z;
        seed.orientation = entry.getInt(0);
        seed.min = static_cast<float>(entry.getInt(1));
        seed.max = static_cast<float>(entry.getInt(2));
        const int stored = entry.getInt(3);
        seed.is3D = (stored & kIs3D) != 0;
        seed.sameMaterial = (stored & kSameMaterial) != 0;
        seed.fillInterior = (stored & kFillInterior) != 0;
        seed.material = static_cast<unsigned char>(stored >> kMaterialShift);
        seeds.append(seed);
    }
}

void GiMagicWand::initLimits()
{
    limits.clear();
    hoveredLimit = -1;
    const HxParamBundle* all =
        gi->labelData ? std::as_const(gi->labelData->parameters).bundle("Limits") : nullptr;
    for (int i = 0; all && i < all->nBundles(); ++i) {
        char letter = 0;
        int number = 0;
        if (std::sscanf(all->bundle(i)->getName(), "Slice%c%d", &letter, &number) != 2) continue;
        readLimits(*all->bundle(i), number, letter == 'X' ? 2 : letter == 'Y' ? 1 : 0);
    }
    firstNewLimit = limits.size();
}

void GiMagicWand::readLimits(const HxParamBundle& slice, int number, int orientation)
{
    for (int i = 0; i < slice.nParameters(); ++i) {
        const HxParameter& entry = *slice.parameter(i);
        MagicWandLimit limit;
        if (std::sscanf(entry.getName(), "Limit%d", &limit.id) != 1 || entry.dim() < 2) continue;
        limit.slice = number;
        limit.orientation = orientation;
        for (int k = 0; k + 1 < entry.dim(); k += 2)
            limit.points.append(
                McVec2f(static_cast<float>(entry.getReal(k)), static_cast<float>(entry.getReal(k + 1))));
        limits.append(limit);
    }
}
