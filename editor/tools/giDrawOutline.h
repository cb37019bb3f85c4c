#pragma once

#include "mc/McVec.h"

class GiFrameBuffer;

/// The colour of outlines that are being drawn over a slice.
void giSetOutlineColor(GiFrameBuffer& frameBuffer);

/// A line in zoomed coordinates, passed over if it lies outside the clip box: of an outline with thousands of
/// edges few are drawn anew at a time.
void giDrawSegment(GiFrameBuffer& frameBuffer, const McVec2i& from, const McVec2i& to);
