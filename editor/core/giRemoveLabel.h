#pragma once

/// Takes one label out of a volume: its voxels become another label, and all labels above go down by one, so
/// that none is left out in between.
///
/// labels       slices * sliceSize bytes
/// removed      0 to 255
/// replacement  0 to 255, counted as after the removal
/// threads      at least 1; each takes a run of slices, and the result does not depend on their number
void giRemoveLabel(unsigned char* labels, unsigned long sliceSize, unsigned long slices, int removed,
                   int replacement, int threads);
