#pragma once

#include "mc/McString.h"

/// A path and its parts. Parts are taken from the text alone; the file need not exist.
class McFilename
{
public:
    McFilename() = default;
    McFilename(const char* path) : text(path) {}
    /// Joins with one slash. An empty directory gives the name, an absolute name wins over the directory.
    McFilename(const char* directory, const char* name);

    const McString& path() const { return text; }
    operator const char*() const { return text; }

    /// "/data" of "/data/brain.seg.nrrd"; empty without a slash, "/" for the root.
    McString directory() const;
    /// "brain.seg.nrrd"
    McString fileName() const;
    /// "brain.seg": the file name without its last suffix.
    McString baseName() const;
    /// "nrrd": what follows the last dot of the file name; a dot at its start begins no suffix.
    McString suffix() const;

private:
    McString text;
};
