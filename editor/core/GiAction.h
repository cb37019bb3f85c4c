#pragma once

#include "mc/McHandable.h"

/// An entry of the undo list: a state saved before a change.
class GiAction : public McHandable
{
public:
    /// Puts the saved state back.
    virtual void execute() = 0;
    /// Bytes held.
    virtual long getMemSize() = 0;
};
