#pragma once

/// Gradient magnitude of an image, scaled so that the largest one in the volume becomes `largest`.
///
/// image      dims[0] x dims[1] x dims[2] voxels, x fastest; only read
/// weight     per axis: what a derivative in index steps is multiplied with
/// largest    at most what T can hold
/// magnitude  same size as the image; every voxel is written
/// throws     McMemoryException if the rows in work cannot be had
///
/// The derivative is the central difference, one-sided at the ends; an axis of one voxel has none.
/// Differences of whole numbers are exact, all else is float; whole magnitudes are cut. Where the scale is no
/// number, as in an image of one value, real magnitudes are what the arithmetic gives and whole ones 0. The
/// result does not depend on the number of threads.
///
/// T is one of the element types of an image but double.
template <class T>
void giGradientMagnitude(const T* image, const unsigned long* dims, const float* weight, float largest,
                         T* magnitude);
