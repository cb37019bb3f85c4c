#pragma once

#include "mc/McException.h"

#include <string>

/// A file that cannot be read or written. Thrown within host/io only: the reader and the writer that
/// HxFileAccess calls turn it into their error text.
class HxFileError : public McException
{
public:
    /// what() is "FILE: reason."
    ///
    /// reason  one sentence without its full stop
    HxFileError(const std::string& file, const std::string& reason)
        : McException((file + ": " + reason + ".").c_str())
    {
    }
};
