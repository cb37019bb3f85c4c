#pragma once

#include <string>

/// Makes sure that the pixels that a DICOM file announces are all there: the library takes missing ones
/// for zeros.
///
/// throws HxFileError if the file ends early
void hxCheckDicomPixels(const std::string& path);
