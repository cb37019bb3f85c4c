#pragma once

#include <string>

class HxRegScalarField3;

/// Writes a field in the format that the suffix names; without a suffix, or with an unknown one, as NRRD.
///
/// inOwnForm  as NRRD whatever the suffix
///
/// What the format cannot carry is named in one console line, after the file is complete, and given back;
/// empty if the file keeps everything.
/// throws HxFileError, and an old file of that name is as it was
std::string hxWriteFile(const HxRegScalarField3& field, const std::string& path, bool inOwnForm);
