#pragma once

#include <string>
#include <vector>

class HxRegScalarField3;

/// Reads one image or label field from one file, from several files of a series, or from a folder.
///
/// Nothing but the result is made or changed, and what it could not keep is said on the console.
/// returns a new field, which the caller owns
/// throws  HxFileError
HxRegScalarField3* hxReadFiles(const std::vector<std::string>& paths, bool asLabels);
