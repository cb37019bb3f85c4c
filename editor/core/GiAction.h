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
    /// Told when labels get other numbers, as at the deletion of a material; the state stays as it was saved.
    virtual void labelsRenumbered() {}
    /// Whether the state holds labels by numbers that are no longer those of the materials.
    virtual bool hasOldNumbers() const { return false; }
};
