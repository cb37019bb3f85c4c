#pragma once

class McBitfield;

/// Makes a selection of all voxels whose value lies in a window: sets their bits and takes back all others.
///
/// primType  Gi's own code of the element type
/// values    as many as `selected` has bits
/// window    minimum and maximum, both included, compared as GiValueWindow says
/// labels    null, or one per voxel: only voxels of `label` are selected
///
/// Each block of voxels is tested by vector compares and stored as whole words.
void giSelectWindow(int primType, const void* values, const float* window, const unsigned char* labels,
                    int label, McBitfield& selected, int threads);
