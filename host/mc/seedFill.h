#pragma once

/// Overwrites the 6-connected region of equal bytes round a voxel.
///
/// labels  dimX x dimY x dimZ bytes, x fastest
/// value   what the region becomes
/// box     six numbers: xmin, ymin, zmin, xmax, ymax, zmax of the region, both ends included;
///         untouched if the result is 0
/// returns the number of voxels, INT_MAX for more; 0 if the start lies outside or holds the value already
/// throws  McMemoryException if the stack cannot grow; a part of the region is then overwritten
///
/// A scan-line fill after P. Heckbert, "A Seed Fill Algorithm", Graphics Gems, 1990.
int seedFill(int x, int y, int z, int dimX, int dimY, int dimZ, unsigned char* labels, unsigned char value,
             int* box);
