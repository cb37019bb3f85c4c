#pragma once

class McBitfield;

// The volume loops that move voxels between the selection and the labels. All of them work on
// plain arrays: `bits` has one bit per voxel (bit i is voxel i), `labels` one byte. Work is split
// over `threads` threads in contiguous chunks of whole words (below 1 counts as 1); the result
// does not depend on the number of threads.

/// Writes `tissue` into every voxel of the set whose present label is not locked.
///
/// n       number of voxels, at most the number of bits
/// locked  256 flags by label, or null for none
void giAddVoxels(const McBitfield& bits, unsigned char* labels, unsigned long n, int tissue,
                 const int* locked, int threads);

/// Finds the label that the voxels of the set would get when they leave `tissue`: the most
/// frequent label other than `tissue` around the set, counted once for each pair of a set voxel
/// and a face neighbour outside the set; the lowest label on a tie. If nothing else surrounds the
/// set, its own labels are counted too. 0 if that finds none either.
///
/// dims  X, Y, Z
int giChooseTarget3D(const McBitfield& bits, const unsigned char* labels, const unsigned long* dims,
                     int tissue, int threads);

/// Writes `target` into every voxel of the set that has the label `tissue`.
void giMoveVoxels(const McBitfield& bits, unsigned char* labels, unsigned long n, int tissue, int target,
                  int threads);

/// Selects by label. mode 0: voxels with the label join the set. 2: they become the set. Any other
/// mode: they leave the set.
void giSelectTissue(McBitfield& bits, const unsigned char* labels, unsigned long n, int tissue, int mode,
                    int threads);

/// Marks in `region` all 6-connected pieces of `tissue` that hold at least one selected voxel.
/// `region` is sized and cleared first.
/// throws McMemoryException
void giMarkPieces(const McBitfield& selection, const unsigned char* labels, const unsigned long* dims,
                  int tissue, McBitfield& region);
