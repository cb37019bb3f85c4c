#pragma once

#include "io/HxVolume.h"

#include <string>

class HxAtomicFile;

/// MetaImage files: one file (.mha), or a header (.mhd) with one or more files of voxels.
///
/// The geometry goes through ITK; the voxels we read and write ourselves, since the library takes a file
/// that ends early for complete.
struct HxMetaImageFile
{
    /// throws HxFileError
    static HxVolume read(const std::string& path);

    /// The one file of voxels that the header in a file names; empty if there is no such header, or the
    /// voxels are in it or in several files.
    static std::string dataFileOf(const std::string& path);

    /// dataFile  null: the voxels follow the header in `file`. Otherwise they go there, and the header names
    ///           it; the caller commits it first
    /// throws HxFileError
    static void write(HxAtomicFile& file, HxAtomicFile* dataFile, const unsigned long* dims, HxFileType type,
                      const void* voxels, const HxVolumeGeometry& geometry);
};
