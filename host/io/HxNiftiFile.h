#pragma once

#include "io/HxVolume.h"

#include <string>

class HxAtomicFile;

/// NIfTI-1 files, single (.nii, .nii.gz) or in two parts (.hdr and .img).
///
/// Where a file has an sform its matrix is the geometry; all else goes through ITK. The voxels we read and
/// write ourselves, since the library takes missing voxels for zeros. The scaling of the header is applied
/// and gives floating-point numbers; without one the element type stays.
struct HxNiftiFile
{
    /// throws HxFileError
    static HxVolume read(const std::string& path);

    /// throws HxFileError
    static void write(HxAtomicFile& file, const unsigned long* dims, HxFileType type, const void* voxels,
                      const HxVolumeGeometry& geometry, bool gzip);
};
