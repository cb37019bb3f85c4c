#pragma once

#include "mc/McString.h"

/// What the program is called and where its texts are.
class HxSkin
{
public:
    static HxSkin* getGlobalInstance();

    /// First line of every script file, newline included.
    const char* scriptHeader() const { return "# Hx script 1.0\n"; }

    /// Path of a help page in the resource folder of a package, whether the file exists or not; an unknown
    /// package is looked for in the first resource folder.
    McString getPathToHelpFile(const char* file, const char* package) const;
};
