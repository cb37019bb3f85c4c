#pragma once

#include "mc/McFHeap.h"

/// A voxel that a marching front has reached, as an element of a heap ordered by its key.
class VoxelType : public McFHeapNode
{
public:
    unsigned short x = 0, y = 0, z = 0;
    /// Arrival time.
    float key = 0;

    VoxelType() = default;
    VoxelType(int i, int j, int k, float time)
        : x(static_cast<unsigned short>(i)),
          y(static_cast<unsigned short>(j)),
          z(static_cast<unsigned short>(k)),
          key(time)
    {
    }

    friend bool operator<(const VoxelType& a, const VoxelType& b) { return a.key < b.key; }
};
