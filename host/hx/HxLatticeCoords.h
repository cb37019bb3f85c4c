#pragma once

#include "mc/McVec.h"

#include <vector>

/// Positions of the nodes of a 3D lattice: uniform, or stacked with a Z position per slice.
///
/// All lengths are in world units. The bounding box goes through voxel centres, so the voxel size
/// is extent / (n - 1). An axis of one voxel has its extent as given, often 0.
class HxLatticeCoords
{
public:
    static constexpr int kUniform = 1;
    static constexpr int kStacked = 2;

    /// Unit spacing from 0 on; Z positions 0 to nz - 1 for the stacked kind.
    HxLatticeCoords(int kind, const unsigned long* dims);

    int kind() const { return coordKind; }
    const unsigned long* dims() const { return size; }

    /// Six floats: xmin, xmax, ymin, ymax, zmin, zmax.
    const float* boundingBox() const { return box; }
    /// Stacked: new z ends move and stretch the Z positions with them.
    void setBoundingBox(const float* sixFloats);

    /// One float per slice for the stacked kind, null for the uniform one.
    const float* zPositions() const { return coordKind == kStacked ? z.data() : nullptr; }
    /// nz floats, rising; sets the z ends of the box. No effect on the uniform kind.
    void setZPositions(const float* positions);

    /// World position of a node; indices outside extrapolate with the voxel size.
    McVec3f position(int i, int j, int k) const;

    /// Extent / (n - 1) per axis, the mean spacing along a stacked z; the extent where n is 1.
    McVec3f voxelSize() const;

    /// A copy with the same dimensions; the caller owns it.
    HxLatticeCoords* clone() const { return new HxLatticeCoords(*this); }

    /// New dimensions in the same box. Z positions stay if the number of slices does, else they
    /// are spread evenly between their ends.
    void resize(const unsigned long* dims);

private:
    void spreadZ();

    int coordKind;
    unsigned long size[3];
    float box[6];
    std::vector<float> z;
};
