// The two sliders of the toolbox, the colormap and the masking switches: how values of the image become
// grey levels, and which of them the tools may take.

#include "app/GiQ.h"
#include "app/GiQToolbox.h"
#include "display/GiViewer.h"
#include "hx/HxColormap.h"
#include "hx/HxHistogramInterface.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxParamBundle.h"
#include "mc/McInterface.h"
#include "qx/QxColormapFullRangeSlider.h"
#include "tools/GiTool.h"

#include <QCheckBox>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kHostFloat = 3, kHostDouble = 4; // element types whose windows keep fractions
constexpr int kSliderBins = 120;
constexpr unsigned int kValuesChanged = 4; // bit of the mask of a touched colormap

bool isReal(const HxLattice& lattice)
{
    return lattice.primType() == kHostFloat || lattice.primType() == kHostDouble;
}

float cut(float value)
{
    return std::trunc(value);
}

} // namespace

void GiQ::initRangeSliders(HxData* image, float& min, float& max)
{
    float rangeMin = 0, rangeMax = 255;
    McHistogram histogram;
    if (auto* source = mcinterface_cast<HxHistogramInterface>(image)) {
        histogram = source->getHistogram(kSliderBins);
        rangeMin = histogram.getMin();
        rangeMax = histogram.getMax();
    }
    QxColormapFullRangeSlider* dataSlider = toolbox->qxRangeSlider;
    QxColormapFullRangeSlider* toolSlider = toolbox->wMaskingWindowSlider;
    {
        const QSignalBlocker quietData(dataSlider), quietTool(toolSlider);
        if (const auto* lattice = mcinterface_cast<HxLattice>(image)) {
            dataSlider->setDiscrete(!isReal(*lattice));
            toolSlider->setDiscrete(!isReal(*lattice));
        }
        dataSlider->setDisplayRange(rangeMin, rangeMax, 1.0f);
        toolSlider->setRange(rangeMin, rangeMax);
        toolSlider->clearMarker();
    }
    dataSlider->setHistogram(histogram);
    toolSlider->setHistogram(histogram);
    setToolDataWindow(0.75f * rangeMin + 0.25f * rangeMax, rangeMax, true);

    float window[2] = {rangeMin, rangeMax};
    if (mcinterface_cast<HxLabelLattice>(image)) {
        auto* labels = mcinterface_cast<HxLabelLattice3>(image);
        window[0] = 0;
        window[1] =
            labels && labels->materials() ? static_cast<float>(labels->materials()->nBundles() - 1) : 255.0f;
    } else if (image) {
        image->parameters.findReal("DataWindow", 2, window);
    }
    min = std::max(rangeMin, window[0]);
    max = std::min(rangeMax, window[1]);
}

void GiQ::emptySliders()
{
    if (!toolbox) return;
    QxColormapFullRangeSlider* dataSlider = toolbox->qxRangeSlider;
    {
        const QSignalBlocker quiet(dataSlider);
        dataSlider->setDisplayRange(0, 255, 1.0f);
        dataSlider->setHistogram(McHistogram());
        dataSlider->setColormap(nullptr);
    }
    setDataWindow(0, 255, true);
    QxColormapFullRangeSlider* toolSlider = toolbox->wMaskingWindowSlider;
    {
        const QSignalBlocker quiet(toolSlider);
        toolSlider->setRange(0, 255);
        toolSlider->setHistogram(McHistogram());
        toolSlider->clearMarker();
    }
    setToolDataWindow(0, 255, true);
}

void GiQ::preInit(float min, float max, const McHistogram& histogram)
{
    QxColormapFullRangeSlider* dataSlider = toolbox->qxRangeSlider;
    QxColormapFullRangeSlider* toolSlider = toolbox->wMaskingWindowSlider;
    {
        const QSignalBlocker quietData(dataSlider), quietTool(toolSlider);
        dataSlider->setDisplayRange(min, max, 1.0f);
        toolSlider->setRange(min, max);
    }
    dataSlider->setHistogram(histogram);
    toolSlider->setHistogram(histogram);
    preInitShowOnly();
    setDataWindow(min, max, false);
}

void GiQ::setDataWindow(float min, float max, bool redrawAfter)
{
    dataWindow[0] = min;
    dataWindow[1] = max;
    if (zoomAllViewers)
        for (int i = 0; i < viewers.size(); ++i) viewers[i]->setDataWindow(min, max, redrawAfter);
    else if (GiViewer* viewer = getCurrentViewer())
        viewer->setDataWindow(min, max, redrawAfter);
    const QSignalBlocker quiet(toolbox->qxRangeSlider);
    toolbox->qxRangeSlider->setValue(min, max);
}

void GiQ::setDataWindow(float min, float max)
{
    setDataWindow(min, max, true);
}

void GiQ::setToolDataWindow(float min, float max, bool redrawAfter)
{
    const bool whole = imageLattice && !isReal(*imageLattice);
    toolDataWindow[0] = whole ? cut(min) : min;
    toolDataWindow[1] = whole ? cut(max) : max;
    {
        const QSignalBlocker quiet(toolbox->wMaskingWindowSlider);
        toolbox->wMaskingWindowSlider->setValue(toolDataWindow[0], toolDataWindow[1]);
    }
    for (int i = 0; i < viewers.size(); ++i)
        viewers[i]->setMaskingWindow(toolDataWindow[0], toolDataWindow[1], redrawAfter);
}

void GiQ::toolDataWindowSliderChanged(float min, float max)
{
    setToolDataWindow(min, max, true);
    if (currentTool) currentTool->dataWindowChanged(min, max);
}

void GiQ::setEnableMask(int state)
{
    if (state != Qt::PartiallyChecked)
        for (int i = 0; i < viewers.size(); ++i) viewers[i]->setMaskingEnabled(state == Qt::Checked);
    const bool overlay = state != Qt::Unchecked && toolbox->wShowMaskingCheckBox->isChecked();
    setShowMask(overlay ? Qt::Checked : Qt::Unchecked);
    toolbox->wShowMaskingCheckBox->setEnabled(state != Qt::Unchecked);
    setToolDataWindowSliderTracking(true);
}

void GiQ::setShowMask(int state)
{
    if (state == Qt::PartiallyChecked) return;
    for (int i = 0; i < viewers.size(); ++i) viewers[i]->setMaskingOverlay(state == Qt::Checked);
}

void GiQ::setColormap(HxColormap* map)
{
    if (map != colormap) {
        if (colormap) disconnect(colormap, &HxColormap::dataObjectTouched, this, &GiQ::slot2DColormapTouched);
        if (map) connect(map, &HxColormap::dataObjectTouched, this, &GiQ::slot2DColormapTouched);
        colormap = map;
    }
    toolbox->qxRangeSlider->setColormap(map);
    for (int i = 0; i < viewers.size(); ++i) viewers[i]->setColormap(map);
}

void GiQ::slot2DColormapTouched(unsigned int mask)
{
    if (!(mask & kValuesChanged)) return;
    for (int i = 0; i < viewers.size(); ++i) viewers[i]->setColormap(colormap);
}
