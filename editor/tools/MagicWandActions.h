#pragma once

#include "core/GiAction.h"
#include "tools/MagicWandSeed.h"

class Gi;
class GiMagicWand;

/// Brings the magic wand's seeds, window and panel back to what they were when the action was made. It joins
/// the step of undo that restores the selection.
///
/// The tool must outlive the action.
class MagicWandClickAction : public GiAction
{
public:
    /// secondSeed  index of a seed, beside the active one, that is about to change; -1 for none
    MagicWandClickAction(GiMagicWand& tool, const Gi& gi, int secondSeed);

    void execute() override;
    long getMemSize() override { return 0; }

private:
    void restore(int i, const MagicWandSeed& copy, bool stored);

    GiMagicWand& tool;
    int numSeeds;
    int currentSeed;
    int seedIsStored;
    int secondIndex;
    MagicWandSeed seed, secondSeed; // at these indices
    MagicWandSeed seedBackup;
    float min, max;        // the tools' window
    MagicWandSeed options; // the panel's boxes and the material of new seeds
};

/// Takes back that a limit line was drawn or deleted.
class MagicWandLimitAction : public GiAction
{
public:
    static constexpr int kNewest = -1; // as the line's id: the newest line was drawn

    /// limit  the deleted line, or one with the id kNewest
    /// index  of the deleted line in the tool's list
    MagicWandLimitAction(GiMagicWand& tool, const MagicWandLimit& limit, int index);

    void execute() override;
    long getMemSize() override;

private:
    GiMagicWand& tool;
    MagicWandLimit limit;
    int index;
};
