#pragma once

#include "core/GiAction.h"
#include "mc/McDArray.h"

/// Restores slices of a byte grid that a tool keeps to itself.
///
/// Slice s starts at data + s * width * height; the grid must outlive this.
class GiModifyVoxelGrid : public GiAction
{
public:
    GiModifyVoxelGrid(unsigned char* grid, int sliceWidth, int sliceHeight);
    ~GiModifyVoxelGrid() override;
    GiModifyVoxelGrid(const GiModifyVoxelGrid&) = delete;
    GiModifyVoxelGrid& operator=(const GiModifyVoxelGrid&) = delete;

    /// Saves one more slice.
    /// throws McMemoryException
    void saveSlice(int slice);

    /// Restores all slices in the order of saving, so the last copy of a slice wins.
    void execute() override;
    long getMemSize() override;

private:
    struct SavedSlice
    {
        unsigned char* bytes; // malloc'ed
        int slice;
    };
    unsigned long sliceBytes() const;

    int width, height;
    unsigned char* data;
    McDArray<SavedSlice> savedSlices;
};
