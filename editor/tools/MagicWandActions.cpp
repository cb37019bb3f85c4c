#include "tools/MagicWandActions.h"

#include "core/Gi.h"
#include "tools/GiMagicWand.h"

namespace {

MagicWandSeed seedOf(const GiMagicWand& tool, int i)
{
    return i >= 0 && i < tool.seeds.size() ? tool.seeds[i] : MagicWandSeed();
}

} // namespace

MagicWandClickAction::MagicWandClickAction(GiMagicWand& wand, const Gi& gi, int second)
    : tool(wand),
      numSeeds(wand.seeds.size()),
      currentSeed(wand.currentSeed),
      seedIsStored(wand.seedIsStored),
      secondIndex(second),
      seed(seedOf(wand, currentSeed)),
      secondSeed(seedOf(wand, second)),
      seedBackup(wand.seedBackup),
      options(wand.panelOptions())
{
    gi.getToolDataWindow(min, max);
}

void MagicWandClickAction::restore(int i, const MagicWandSeed& copy, bool stored)
{
    if (i < 0 || i >= tool.seeds.size()) return;
    tool.seeds[i] = copy;
    // kept: the copy holds the window that was tried on a picked seed, and with it goes into the file, also
    // if the selection was only cleared meanwhile. What is restored is what the user saw at that moment.
    if (stored)
        tool.saveSeed(copy);
    else
        tool.deleteSeed(copy);
}

void MagicWandClickAction::execute()
{
    McDArray<MagicWandSeed>& seeds = tool.seeds;
    if (seeds.size() == numSeeds + 1) seeds.pop();
    // kept: a seed that is gone comes back at the end, and what stands at its old index becomes it, too: the
    // one behind it in the list is no longer shown. The label data still has all of them, and the list is
    // read anew with the next data set.
    else if (seeds.size() == numSeeds - 1 && currentSeed >= 0)
        seeds.append(seed);
    tool.currentSeed = currentSeed < seeds.size() ? currentSeed : -1;
    tool.seedIsStored = seedIsStored;
    tool.seedBackup = seedBackup;
    restore(currentSeed, seed, seedIsStored != 0);
    restore(secondIndex, secondSeed, true);
    tool.restorePanel(min, max, options);
    tool.endRestoring();
}

MagicWandLimitAction::MagicWandLimitAction(GiMagicWand& wand, const MagicWandLimit& line, int place)
    : tool(wand), limit(line), index(place)
{
}

void MagicWandLimitAction::execute()
{
    if (limit.id == kNewest)
        tool.dropNewestLimit();
    else if (limit.points.size() > 0)
        tool.bringBackLimit(limit, index);
    tool.update();
}

long MagicWandLimitAction::getMemSize()
{
    return limit.points.size() * static_cast<long>(sizeof(McVec2f));
}
