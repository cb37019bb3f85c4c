#pragma once

/// For each axis the slice that holds most voxels of one label.
struct GiThickestSlices
{
    bool found = false;
    int slice[3] = {0, 0, 0}; // by axis X, Y, Z; the lowest one on a tie
};

/// labels  X * Y * Z bytes, x fastest
/// dims    X, Y, Z
GiThickestSlices giThickestSlices(const unsigned char* labels, const unsigned long* dims, int label);
