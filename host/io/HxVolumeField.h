#pragma once

#include "io/HxVolume.h"

#include <memory>

class HxLabelField3;
class HxRegScalarField3;

/// The passage between volumes of files and the fields of the pool.
///
/// A field has its box in single precision and axis-parallel. What a file tells beyond that lies in its
/// parameters: "Directions" and "Origin" (HxOrientation), "Spacing" (3 doubles), each only when the box
/// cannot give it back. As long as the box is not changed they restore the geometry of the file exactly;
/// the positions of unequal slices alone have single precision.
struct HxVolumeField
{
    /// Takes the voxels over. An axis of one voxel gets its spacing as extent.
    /// throws HxFileError if no element type of the host holds the values
    static std::unique_ptr<HxRegScalarField3> makeImage(HxVolume&& volume, const std::string& file);

    /// The same for labels, 8-bit ones, with the one material "Exterior".
    static std::unique_ptr<HxLabelField3> makeLabels(HxVolume&& volume);

    /// Adds the materials that are missing: "Exterior", and for the labels from 1 on "Material1" and so on,
    /// in default colours.
    static void completeMaterials(HxLabelField3& field, int largestLabel);

    static HxVolumeGeometry geometryOf(const HxRegScalarField3& field);
    static void setGeometry(HxRegScalarField3& field, const HxVolumeGeometry& geometry);

    /// Whether a parameter is one of those that hold the geometry.
    static bool isGeometryParameter(const char* name);
};
