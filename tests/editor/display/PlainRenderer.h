#pragma once

#include "mc/McVec.h"

#include <array>
#include <cmath>
#include <functional>
#include <vector>

/// What a slice looks like, worked out pixel by pixel from the rules alone: the reference for all that is
/// fast in the display.
struct PlainRenderer
{
    int width = 0, height = 0;      // data pixels
    std::vector<int> columns, rows; // screen pixels per data pixel
    McVec2i offset, memSize;
    bool flipX = false, flipY = false;

    std::function<float(int, int)> value;
    std::function<int(int, int)> label;
    std::function<bool(int, int)> selected;

    float windowMin = 0, windowMax = 1;
    std::function<unsigned int(float)> color; // packed RGBA of a place in the map; empty: grey
    bool overlay = false;
    float maskMin = 0, maskMax = 1;
    int alpha = 96;
    std::array<int, 256> style{};
    std::function<unsigned int(int)> labelPixel; // 0xRRGGBB
    int selectionStyle = 0;
    unsigned int selectionPixel = 0xFF0000;
    bool selectionHidden = false;

    /// The memory image, rows of memSize.x pixels; lower 24 bits only.
    std::vector<unsigned int> picture() const
    {
        std::vector<unsigned int> pixels;
        for (int my = 0; my < memSize.y; ++my)
            for (int mx = 0; mx < memSize.x; ++mx)
                pixels.push_back(pixel((flipX ? memSize.x - 1 - mx : mx) + offset.x,
                                       (flipY ? memSize.y - 1 - my : my) + offset.y) &
                                 0xFFFFFF);
        return pixels;
    }

private:
    struct Place
    {
        int data, sub;
    };

    static Place locate(const std::vector<int>& blocks, int zoomed)
    {
        int c = 0;
        while (zoomed >= blocks[static_cast<std::size_t>(c)]) zoomed -= blocks[static_cast<std::size_t>(c++)];
        return {c, zoomed};
    }

    unsigned int greyPixel(int x, int y) const
    {
        const float d = windowMax - windowMin, scale = d == 0 ? 255 : 255 / d, bias = -scale * windowMin;
        const float v = value(x, y), t = scale * v + bias;
        unsigned int c;
        if (t < 0)
            c = color ? color(-0.001f) >> 8 : 0;
        else if (t > 255)
            c = color ? color(1.001f) >> 8 : 0xFFFFFF;
        else
            c = color ? color(std::rint(t) / 255) >> 8 : static_cast<unsigned int>(std::rint(t)) * 0x010101;
        if (overlay && v >= maskMin && v <= maskMax) {
            const unsigned int r = c >> 16 & 255, g = c >> 8 & 255, b = c & 255;
            c = (r * 159 >> 8) << 16 | (g * 159 >> 8) << 8 | (b * 159 + 24480) >> 8;
        }
        return c;
    }

    unsigned int blended(unsigned int c) const
    {
        unsigned int result = 0;
        for (int shift = 0; shift < 24; shift += 8) {
            const int byte = static_cast<int>(c >> shift & 255),
                      s = static_cast<int>(selectionPixel >> shift & 255);
            result |= static_cast<unsigned int>((byte * (255 - alpha) + s * alpha) >> 8) << shift;
        }
        return result;
    }

    static bool isInPattern(int s, int x, int y)
    {
        return (s == 2 && (x + y) % 5 == 0) || (s == 3 && x % 2 != y % 2) ||
               (s == 4 && x % 2 == 0 && y % 2 == 0 && (x & 2) != (y & 2));
    }

    /// Whether a screen pixel belongs to the outline or the fill of its region.
    bool isDrawn(int zx, int zy, int s, const std::function<bool(int, int)>& isSame) const
    {
        const Place px = locate(columns, zx), py = locate(rows, zy);
        const auto differs = [&](int x, int y) {
            return x < 0 || y < 0 || x >= width || y >= height || !isSame(x, y);
        };
        const int x = px.data, y = py.data;
        return (py.sub == 0 && differs(x, y - 1)) ||
               (py.sub == rows[static_cast<std::size_t>(y)] - 1 && differs(x, y + 1)) ||
               (px.sub == 0 && differs(x - 1, y)) ||
               (px.sub == columns[static_cast<std::size_t>(x)] - 1 && differs(x + 1, y)) ||
               isInPattern(s, zx, zy);
    }

    unsigned int pixel(int zx, int zy) const
    {
        const int x = locate(columns, zx).data, y = locate(rows, zy).data;
        unsigned int c = greyPixel(x, y);
        const int l = label(x, y), s = style[static_cast<std::size_t>(l)];
        if (!selectionHidden && selectionStyle == 0 && selected(x, y)) c = blended(c);
        if (s != 0 && isDrawn(zx, zy, s, [&](int i, int j) { return label(i, j) == l; })) c = labelPixel(l);
        if (selectionStyle != 0 && selected(x, y) && isDrawn(zx, zy, selectionStyle, selected))
            c = selectionPixel;
        return c;
    }
};
