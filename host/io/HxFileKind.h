#pragma once

#include <string>

/// What a file is, told from its first bytes.
enum class HxFileKind
{
    unknown,
    nrrd,
    nifti,
    meta,
    dicom,
    tiff,
    png,
    jpeg,
    bmp
};

HxFileKind hxFileKind(const std::string& path);

/// The kind of a file that may be one of the files of a series; unknown for all others, also for one that
/// cannot be read. Throws nothing.
HxFileKind hxSeriesKind(const std::string& path);

/// Name for messages: "NIfTI".
const char* hxNameOf(HxFileKind kind);

/// Whether such a file can be one slice of a stack.
bool hxIsSliceKind(HxFileKind kind);
