#pragma once

#include "mc/McDArray.h"

/// RGB colour; components from 0 to 1.
class McColor
{
public:
    float r = 0, g = 0, b = 0;

    McColor() = default;
    McColor(float red, float green, float blue) : r(red), g(green), b(blue) {}

    friend bool operator==(const McColor&, const McColor&) = default;

    /// The colour of the grid of steps of 0.2 whose nearest colour of the list is farthest off; on ties the
    /// first in order of r, g, b. Where the list holds the whole grid, one of half the steps, and so on. Red
    /// for an empty list.
    ///
    /// Distances are taken in OKLab, where equal distances look equally different: B. Ottosson, "A perceptual
    /// color space for image processing", 2020.
    static McColor mostDifferentColorRGB(const McDArray<McColor>& list);
};
