#pragma once

#include "io/HxFileKind.h"
#include "io/HxVolume.h"

#include <memory>
#include <string>

/// One file behind ITK's ImageIO, which this class alone knows: no exception and no printing of the
/// library gets past it. All failures are HxFileErrors of one sentence.
class HxItkFile
{
public:
    /// Reads the header only.
    HxItkFile(const std::string& path, HxFileKind kind);
    ~HxItkFile();

    static bool isDicom(const std::string& path);

    const std::string& path() const { return file; }
    /// Shape and place of the file's volume; one slice for a flat image.
    const unsigned long* dims() const { return size; }
    const HxVolumeGeometry& geometry() const { return place; }
    /// Element type as read() gives it, with the file's intensity scaling applied.
    HxFileType type() const { return elementType; }

    /// Text of a DICOM element such as "0020|0032"; empty if absent.
    std::string dicomText(const char* tag) const;

    /// Reads all voxels. throws HxFileError also for colour images and for files that end early
    HxVolume read() const;

    /// Writes a complete file of a kind that only the library writes, NIfTI or TIFF.
    ///
    /// path    where; the suffix chooses packed or unpacked
    /// named   file that errors name
    static void write(const std::string& path, const std::string& named, HxFileKind kind,
                      const unsigned long* dims, HxFileType type, const void* voxels,
                      const HxVolumeGeometry& geometry);

private:
    struct Library; // the ImageIO object

    void checkEnd() const;
    void checkScalar() const;

    std::string file;
    HxFileKind kind;
    std::unique_ptr<Library> library;
    unsigned long size[3] = {1, 1, 1};
    HxVolumeGeometry place;
    HxFileType elementType = HxFileType::uint8;
};
