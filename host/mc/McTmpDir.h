#pragma once

#include "mc/McString.h"

/// A directory of its own below the system's folder for temporary files. It outlives this object: a
/// background job may still need it. Whoever is done with it calls remove().
class McTmpDir
{
public:
    /// name  start of the directory's name, which a random suffix makes unique. The numbers are reserved.
    McTmpDir(const char* name, int reserved0, int reserved1);

    /// mode  access rights as for `chmod`, as 0775
    /// returns false if the directory cannot be made
    bool create(int mode);

    /// Deletes the directory with its contents; false if something of it is left. True if there is none.
    bool remove();

    /// Full path; empty before create() and after remove().
    const McString& path() const { return directory; }
    operator const char*() const { return directory; }

private:
    McString prefix;
    McString directory;
};
