#include "core/GiModifySelection.h"

#include "core/GiBitRows.h"
#include "core/GiSelection3D.h"

GiModifySelection::GiModifySelection(Gi* owner) : gi(owner) {}

/// Calls copyRow(saved, bit, length) for each row of the box: its first bit among the saved ones and
/// in the selection, and its length.
template <class CopyRow>
void GiModifySelection::forEachRow(const CopyRow& copyRow) const
{
    const auto length = static_cast<unsigned long>(box.xmax - box.xmin + 1);
    unsigned long saved = 0;
    for (int z = box.zmin; z <= box.zmax; ++z) {
        for (int y = box.ymin; y <= box.ymax; ++y, saved += length) {
            const unsigned long row =
                static_cast<unsigned long>(z) * selection->dims[1] + static_cast<unsigned long>(y);
            copyRow(saved, row * selection->dims[0] + static_cast<unsigned long>(box.xmin), length);
        }
    }
}

void GiModifySelection::saveVolume(GiSelection3D* source)
{
    selection = source;
    wholeVolume = true;
    source->copyTo(savedBits);
}

void GiModifySelection::saveRegion(GiSelection3D* source, const McBox3i& region)
{
    selection = source;
    wholeVolume = false;
    box = region;
    savedBits.resize(0);
    if (box.isEmpty()) return;
    savedBits.resize(static_cast<unsigned long>(box.xmax - box.xmin + 1) *
                     static_cast<unsigned long>(box.ymax - box.ymin + 1) *
                     static_cast<unsigned long>(box.zmax - box.zmin + 1));
    forEachRow([this](unsigned long saved, unsigned long bit, unsigned long length) {
        giCopyBits(savedBits.words(), saved, selection->bits.words(), bit, length);
    });
}

void GiModifySelection::saveSlice(GiSelection3D* source, int slice, int orientation)
{
    McBox3i region(0, static_cast<int>(source->dims[0]) - 1, 0, static_cast<int>(source->dims[1]) - 1, 0,
                   static_cast<int>(source->dims[2]) - 1);
    switch (orientation) {
    case 0:
        region.xmin = region.xmax = slice;
        break;
    case 1:
        region.ymin = region.ymax = slice;
        break;
    case 2:
        region.zmin = region.zmax = slice;
        break;
    default:
        return;
    }
    saveRegion(source, region);
}

void GiModifySelection::execute()
{
    if (!selection) return;
    if (wholeVolume) {
        // The bits are given away below; a second run has nothing to restore.
        if (savedBits.numBits() != selection->numBits()) return;
        selection->copyFrom(savedBits);
        savedBits.resize(0);
        return;
    }
    if (box.isEmpty()) return;
    forEachRow([this](unsigned long saved, unsigned long bit, unsigned long length) {
        giCopyBits(selection->bits.words(), bit, savedBits.words(), saved, length);
    });
}

long GiModifySelection::getMemSize()
{
    return static_cast<long>(savedBits.numWords()) * 4;
}
