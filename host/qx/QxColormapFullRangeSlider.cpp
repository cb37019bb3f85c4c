#include "qx/QxColormapFullRangeSlider.h"

#include "qx/QxRangeTrack.h"

#include <algorithm>
#include <cmath>

namespace {

unsigned int greyColor(float u)
{
    const auto grey = static_cast<unsigned int>(std::lround(std::clamp(u, 0.0f, 1.0f) * 255));
    return grey << 24 | grey << 16 | grey << 8 | 255;
}

} // namespace

QxColormapFullRangeSlider::QxColormapFullRangeSlider(QWidget* parent) : QxFullRangeSliderBase(parent)
{
    rangeTrack()->setRamp(greyColor);
}

QxColormapFullRangeSlider::~QxColormapFullRangeSlider()
{
    setColormap(nullptr);
}

void QxColormapFullRangeSlider::setColormap(HxColormap* map)
{
    if (map == colormap) return;
    if (colormap) disconnect(colormap, nullptr, this, nullptr);
    colormap = map;
    if (!map) {
        rangeTrack()->setRamp(greyColor);
        return;
    }
    rangeTrack()->setRamp([map](float u) { return map->packedColor(u); });
    connect(map, &HxData::dataObjectTouched, rangeTrack(), qOverload<>(&QWidget::update));
}
