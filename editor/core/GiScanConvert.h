#pragma once

#include "mc/McVec.h"

/// Turns a polygon into spans of pixels.
///
/// A pixel belongs to the polygon if its centre does, by the even-odd rule. A centre exactly on an
/// edge counts at the top and at both sides, and not at the bottom, so that polygons that meet
/// along a horizontal line share no row. Polygons may be concave and may cross themselves.
///
/// Method: Heckbert, "Concave Polygon Scan Conversion", Graphics Gems, 1990.
class GiScanConvert
{
public:
    using SpanCallback = void (*)(void* user, int x0, int x1, int y, unsigned char* coverage);
    using PixelCallback = void (*)(void* user, int x, int y, unsigned char coverage);

    /// The clip window, both ends included.
    GiScanConvert(int xmin, int ymin, int xmax, int ymax, int antiAlias);
    ~GiScanConvert();
    GiScanConvert(const GiScanConvert&) = delete;
    GiScanConvert& operator=(const GiScanConvert&) = delete;

    /// Called once per span; x0 and x1 included, `coverage` one byte per pixel of a row, all 255.
    void setSpanCB(SpanCallback callback, void* user);
    /// Called once per pixel, while no span callback of the caller's own is set.
    void setPixelCB(PixelCallback callback, void* user);
    void setAntiAlias(int on);

    /// Reports the spans of a polygon of n points from the top row down, in a row from left to
    /// right. Nothing happens with anti-aliasing on, with n below 1, or if a coordinate is not
    /// finite.
    void render(int n, const McVec2f* polygon);

private:
    static void pixelsOfSpan(void* converter, int x0, int x1, int y, unsigned char* coverage);

    void* userData = nullptr;
    SpanCallback spanCallback;
    void* spanUser;
    PixelCallback pixelCallback = nullptr;
    int antiAlias;
    unsigned char* coverage;
    int xmin, ymin, xmax, ymax;
};
