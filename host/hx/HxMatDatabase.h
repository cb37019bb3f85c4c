#pragma once

#include "hx/HxParamBundle.h"
#include "mc/McColor.h"

/// Default names and colours of materials.
class HxMatDatabase
{
public:
    static HxMatDatabase* getTheDatabase();

    /// The colour of a known material, else one that follows from the name, so that materials of
    /// unknown names differ and keep their colours from one session to the next.
    McColor getColor(const char* name) const;

    /// The known materials, a bundle with "Color" each.
    HxParamBundle* materials() { return &known; }

    /// Adds materials to the few that are built in, or changes their colours. Each line of the file
    /// holds a name and three numbers from 0 to 1; empty lines and those that begin with '#' are
    /// skipped. False, with one sentence in `error`, if it cannot be read; nothing is changed then.
    bool load(const char* path, McString& error);

private:
    HxMatDatabase();

    HxParamBundle known{"Materials"};
};
