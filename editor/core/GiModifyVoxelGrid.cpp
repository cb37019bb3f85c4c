#include "core/GiModifyVoxelGrid.h"

#include "mc/McMemory.h"

#include <cstdlib>
#include <cstring>

GiModifyVoxelGrid::GiModifyVoxelGrid(unsigned char* grid, int sliceWidth, int sliceHeight)
    : width(sliceWidth), height(sliceHeight), data(grid)
{
}

GiModifyVoxelGrid::~GiModifyVoxelGrid()
{
    for (const SavedSlice& saved : savedSlices) std::free(saved.bytes);
}

unsigned long GiModifyVoxelGrid::sliceBytes() const
{
    return static_cast<unsigned long>(width) * static_cast<unsigned long>(height);
}

void GiModifyVoxelGrid::saveSlice(int slice)
{
    // The record comes first, so that the copy has an owner from the start.
    SavedSlice& saved = savedSlices[savedSlices.append(SavedSlice{nullptr, slice})];
    try {
        saved.bytes = static_cast<unsigned char*>(mcAllocate(sliceBytes()));
    } catch (...) {
        savedSlices.pop();
        throw;
    }
    std::memcpy(saved.bytes, data + static_cast<unsigned long>(slice) * sliceBytes(), sliceBytes());
}

void GiModifyVoxelGrid::execute()
{
    for (const SavedSlice& saved : savedSlices)
        std::memcpy(data + static_cast<unsigned long>(saved.slice) * sliceBytes(), saved.bytes, sliceBytes());
}

long GiModifyVoxelGrid::getMemSize()
{
    return static_cast<long>(sliceBytes()) * savedSlices.size();
}
