#pragma once

#include "mc/McVec.h"

// Planes of numbers over a slice, from which a growing curve takes its speed. All are rows of `width`
// numbers, one per pixel. Differences are central, half of that between the two neighbors, and those to the
// one neighbor at the border.

/// Length of the gradient of a picture, at most 255.
void mcAbsOfGradient(const unsigned char* picture, int width, int height, float* result);

/// 1 / (value + 1): 1 in flat places, near 0 at edges.
void mcSpeedOfGradient(const float* gradient, long n, float* speed);

void mcGradientOf(const float* plane, int width, int height, McVec2f* result);

/// Bilinear interpolation; what lies outside counts as the border.
float mcInterpolated(const float* plane, int width, int height, const McVec2f& p);
