#pragma once

#include "io/HxNrrdFile.h"

class HxAtomicFile;

/// Writes an NRRD file with attached data.
///
/// voxels  dims[0] * dims[1] * dims[2] elements, x fastest
/// throws  HxFileError
void hxWriteNrrd(HxAtomicFile& file, const unsigned long* dims, HxFileType type, const void* voxels,
                 const HxVolumeGeometry& geometry, const HxNrrdPairs& keyValues, bool gzip);
