#pragma once

#include "io/HxFileKind.h"
#include "io/HxSliceFile.h"

/// One DICOM, TIFF, NIfTI or MetaImage file behind ITK's ImageIO, which this class alone knows: no exception
/// and no printing of the library gets past it. All failures are HxFileErrors of one sentence.
///
/// A TIFF file that fails in the middle costs the library a buffer and, when writing, an open file, which it
/// never gives back; so it is asked only when all pages are there, or when the disk has room.
class HxItkFile : public HxSliceFile
{
public:
    /// Reads the header only.
    HxItkFile(const std::string& path, HxFileKind kind);
    ~HxItkFile() override;

    static bool isDicom(const std::string& path);

    /// Text of a DICOM element such as "0020|0032"; empty if absent.
    std::string dicomText(const char* tag) const;

    HxVolume read() const override;

    /// Writes a complete file of a kind that only the library writes, NIfTI or TIFF.
    ///
    /// path    where; the suffix chooses packed or unpacked
    /// named   file that errors name
    static void write(const std::string& path, const std::string& named, HxFileKind kind,
                      const unsigned long* dims, HxFileType type, const void* voxels,
                      const HxVolumeGeometry& geometry);

private:
    struct Library; // the ImageIO object

    void checkScalar() const;

    HxFileKind kind;
    std::unique_ptr<Library> library;
};
