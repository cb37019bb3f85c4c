#pragma once

#include "io/HxVolume.h"

#include <memory>
#include <string>

/// A file of which the header has been read: a slice of a series, or a volume by itself.
class HxSliceFile
{
public:
    explicit HxSliceFile(const std::string& path) : file(path) {}
    virtual ~HxSliceFile() = default;
    HxSliceFile(const HxSliceFile&) = delete;
    HxSliceFile& operator=(const HxSliceFile&) = delete;

    const std::string& path() const { return file; }
    /// Shape and place of the file's volume; one slice for a flat image.
    const unsigned long* dims() const { return size; }
    const HxVolumeGeometry& geometry() const { return place; }
    /// Element type as read() gives it, with the file's intensity scaling applied.
    HxFileType type() const { return elementType; }

    /// Reads all voxels. throws HxFileError also for colour images and for files that end early
    virtual HxVolume read() const = 0;

protected:
    std::string file;
    unsigned long size[3] = {1, 1, 1};
    HxVolumeGeometry place;
    HxFileType elementType = HxFileType::uint8;
};
