#pragma once

#include "io/HxFileKind.h"
#include "io/HxSliceFile.h"

/// A PNG, JPEG or BMP file, grey or with a palette, whose indices then are the values.
///
/// Read by Qt: ITK's reader of PNG ends the program when a header is damaged.
class HxPictureFile : public HxSliceFile
{
public:
    /// throws HxFileError
    HxPictureFile(const std::string& path, HxFileKind kind);

    HxVolume read() const override;

private:
    void checkEnd(HxFileKind kind) const;

    bool isInverted = false; // the decoder's index 0 stands for white
};
