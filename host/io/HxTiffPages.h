#pragma once

#include <string>

/// Walks the pages of a TIFF or BigTIFF file and makes sure that all of them, with all their pixels, lie
/// within the file: ITK takes a stack that was cut short for one of fewer slices.
///
/// throws HxFileError if a page or pixels are missing
void hxCheckTiffPages(const std::string& path);
