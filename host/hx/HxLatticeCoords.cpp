#include "hx/HxLatticeCoords.h"

#include <algorithm>

namespace {

float stepOf(const float* ends, unsigned long n)
{
    const float extent = ends[1] - ends[0];
    return n > 1 ? extent / static_cast<float>(n - 1) : extent;
}

/// Position of index i between two ends: exact at both, and linear beyond them.
float between(const float* ends, unsigned long n, int i)
{
    if (n < 2) return ends[0] + static_cast<float>(i) * stepOf(ends, n);
    const double t = static_cast<double>(i) / static_cast<double>(n - 1);
    return static_cast<float>((1 - t) * ends[0] + t * ends[1]);
}

} // namespace

HxLatticeCoords::HxLatticeCoords(int kind, const unsigned long* dims) : coordKind(kind)
{
    for (int axis = 0; axis < 3; axis++) {
        size[axis] = dims[axis];
        box[2 * axis] = 0;
        box[2 * axis + 1] = dims[axis] > 0 ? static_cast<float>(dims[axis] - 1) : 0;
    }
    spreadZ();
}

void HxLatticeCoords::spreadZ()
{
    if (coordKind != kStacked) return;
    z.resize(size[2]);
    for (unsigned long k = 0; k < size[2]; k++) z[k] = between(box + 4, size[2], static_cast<int>(k));
}

void HxLatticeCoords::setBoundingBox(const float* sixFloats)
{
    const float oldZ[2] = {box[4], box[5]};
    std::copy(sixFloats, sixFloats + 6, box);
    if (coordKind != kStacked || z.empty() || (box[4] == oldZ[0] && box[5] == oldZ[1])) return;

    if (oldZ[0] == oldZ[1]) {
        spreadZ();
        return;
    }
    const double scale = (static_cast<double>(box[5]) - box[4]) / (static_cast<double>(oldZ[1]) - oldZ[0]);
    for (float& position : z)
        position = static_cast<float>(box[4] + (static_cast<double>(position) - oldZ[0]) * scale);
    // The ends are the box's to the last bit.
    z.front() = box[4];
    if (z.size() > 1) z.back() = box[5];
}

void HxLatticeCoords::setZPositions(const float* positions)
{
    if (coordKind != kStacked || z.empty()) return;
    std::copy(positions, positions + z.size(), z.begin());
    box[4] = z.front();
    box[5] = z.back();
}

McVec3f HxLatticeCoords::position(int i, int j, int k) const
{
    const float x = between(box, size[0], i);
    const float y = between(box + 2, size[1], j);
    if (coordKind != kStacked || k < 0 || k >= static_cast<long>(z.size()))
        return McVec3f(x, y, between(box + 4, size[2], k));
    return McVec3f(x, y, z[k]);
}

McVec3f HxLatticeCoords::voxelSize() const
{
    return McVec3f(stepOf(box, size[0]), stepOf(box + 2, size[1]), stepOf(box + 4, size[2]));
}

void HxLatticeCoords::resize(const unsigned long* dims)
{
    const bool sameSlices = dims[2] == size[2];
    std::copy(dims, dims + 3, size);
    if (!sameSlices) spreadZ();
}
