#include "hx/HxStandardColormaps.h"

#include "hx/HxColormap.h"

#include <QColor>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Color = HxColormap::Color;

constexpr int kEntries = 256;

float gammaCoded(double linear)
{
    const double v = std::clamp(linear, 0.0, 1.0);
    return static_cast<float>(v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055);
}

/// From OKLab lightness, chroma and hue to screen colours: B. Ottosson, "A perceptual color space
/// for image processing", 2020.
Color fromOklab(double lightness, double chroma, double hueDegrees)
{
    const double hue = hueDegrees * std::numbers::pi / 180;
    const double a = chroma * std::cos(hue);
    const double b = chroma * std::sin(hue);
    const double l = std::pow(lightness + 0.3963377774 * a + 0.2158037573 * b, 3);
    const double m = std::pow(lightness - 0.1055613458 * a - 0.0638541728 * b, 3);
    const double s = std::pow(lightness - 0.0894841775 * a - 1.2914855480 * b, 3);
    return {gammaCoded(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
            gammaCoded(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
            gammaCoded(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s), 1};
}

std::vector<Color> greyTable()
{
    std::vector<Color> table(kEntries);
    for (int i = 0; i < kEntries; i++) {
        const float v = static_cast<float>(i) / (kEntries - 1);
        table[i] = {v, v, v, 1};
    }
    return table;
}

std::vector<Color> perceptualTable()
{
    std::vector<Color> table(kEntries);
    for (int i = 0; i < kEntries; i++) {
        const double t = static_cast<double>(i) / (kEntries - 1);
        // Chroma is widest in the middle, where the screen can show it; the hue turns from violet
        // through red to yellow.
        table[i] =
            fromOklab(0.12 + 0.84 * t, 0.17 * std::sin(std::numbers::pi * (0.08 + 0.84 * t)), -70 + 180 * t);
    }
    return table;
}

std::vector<Color> labelTable()
{
    constexpr double kGoldenTurn = 0.6180339887; // of a full turn: new hues fall between the old ones
    std::vector<Color> table(kEntries);
    table[0] = {0, 0, 0, 1};
    for (int i = 1; i < kEntries; i++) {
        const double hue = std::fmod(i * kGoldenTurn, 1.0);
        const QColor color =
            QColor::fromHsvF(static_cast<float>(hue), i % 2 ? 0.85f : 0.55f, i % 4 < 2 ? 0.95f : 0.75f);
        table[i] = {color.redF(), color.greenF(), color.blueF(), 1};
    }
    return table;
}

struct Standard
{
    const char* name;
    std::vector<Color> (*make)();
    bool interpolate;
};

constexpr Standard kStandards[] = {
    {"grey", greyTable, true},
    {"perceptual", perceptualTable, true},
    {"labels", labelTable, false},
};

} // namespace

McDArray<McString> hxStandardColormapNames()
{
    McDArray<McString> names;
    for (const Standard& standard : kStandards) names.append(McString(standard.name));
    return names;
}

bool hxSetStandardColormap(HxColormap& map, const char* name)
{
    for (const Standard& standard : kStandards) {
        if (!(McString(standard.name) == name)) continue;
        map.setTable(standard.make(), standard.interpolate);
        return true;
    }
    return false;
}
