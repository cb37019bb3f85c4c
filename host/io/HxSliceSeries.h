#pragma once

#include "io/HxFileKind.h"
#include "io/HxVolume.h"

#include <memory>
#include <string>
#include <vector>

class HxSliceFile;

/// Volumes whose slices lie in one file each.
struct HxSliceSeries
{
    /// One DICOM series, in any order of the files: sorted by position along the slice normal. Equal gaps
    /// (within a hundredth) make a uniform volume, others one with Z positions.
    ///
    /// named     what errors about the whole name: the folder, or the first file
    /// warnings  sentences about what could not be kept or was missing, added at the end
    /// throws    HxFileError if the files belong to several series, which it then lists
    static HxVolume readDicom(const std::vector<std::string>& files, const std::string& named,
                              std::vector<std::string>& warnings);

    /// Tries in a child process whether the library can read the files, and survives. throws HxFileError
    static void probeDicom(const std::vector<std::string>& files);

    /// Flat images of one size, in natural order of their names, 1 apart.
    /// throws HxFileError
    static HxVolume readStack(std::vector<std::string> files, const std::string& named);

    /// A file of a kind that can be a slice. throws HxFileError
    static std::unique_ptr<HxSliceFile> open(const std::string& path, HxFileKind kind);

    /// The slices in the given order, one file each; the geometry is that of the first file.
    /// throws HxFileError
    static HxVolume join(const std::vector<std::unique_ptr<HxSliceFile>>& files, const std::string& named);
};
