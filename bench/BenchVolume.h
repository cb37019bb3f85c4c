#pragma once

#include "mc/McBitfield.h"

#include <string>
#include <vector>

// The data of the benchmarks: cubes of side `size`, made from fixed seeds, x fastest.

using BenchLabels = std::vector<unsigned char>;
using BenchImage = std::vector<unsigned short>;

/// Smooth random blobs from 0 to about 4000 with a little noise, as a filtered scan has them.
BenchImage benchBlobs(unsigned long size);

/// Labels 1 to 4 by the height of the blobs: large pieces with smooth borders, all of them touching others.
BenchLabels benchLabels(const BenchImage& blobs);

/// The ball around the centre with this radius in voxels.
McBitfield benchBall(unsigned long size, double radius);

/// Every voxel with a probability of a half.
McBitfield benchNoise(unsigned long size);

/// One voxel in every thousandth word.
McBitfield benchSparse(unsigned long size);

unsigned long benchCount(const McBitfield& bits);

// Plain bytes, for the processes of peers. A file that cannot be written, or holds another number of
// bytes, ends the program.
void benchSave(const std::string& path, const void* data, unsigned long bytes);
void benchLoad(const std::string& path, void* data, unsigned long bytes);
