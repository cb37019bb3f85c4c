#pragma once

class HxParamBundle;

/// How the voxel axes of a volume lie in the patient, as the file told it: kept through load and
/// save, used for nothing else. The host's own coordinates stay axis-parallel.
///
/// Stored on the data object as the parameters "Directions" (9 doubles) and "Origin" (3 doubles).
/// Readers of files may keep "Origin" alone, and "Spacing" (3 doubles), where the bounding box, which has
/// single precision, would lose digits.
struct HxOrientation
{
    /// Unit vectors of the i, j and k axis, in LPS (x to the left, y to the back, z to the head),
    /// as the columns of a matrix that is written row by row:
    /// ix jx kx  iy jy ky  iz jz kz.
    double directions[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    /// LPS position of the centre of voxel (0, 0, 0), in the unit of the bounding box.
    double origin[3] = {0, 0, 0};

    bool isIdentity() const;

    /// Reads what write() stored. Absent, incomplete or no unit vectors that span a volume: false, and `out`
    /// is the identity at 0.
    static bool read(const HxParamBundle& parameters, HxOrientation& out);

    /// Stores both entries, or removes them if the directions are the identity.
    void write(HxParamBundle& parameters) const;

    /// Makes the target's entries "Directions", "Origin" and "Spacing" those of the source as they are,
    /// absent ones included, so that two fields over the same voxels are saved with the same geometry.
    static void copy(const HxParamBundle& from, HxParamBundle& to);
};
