#include "qx/QxFullRangeSliderBase.h"

#include "mc/McHistogram.h"
#include "qx/QxRangeField.h"
#include "qx/QxRangeTrack.h"

#include <QGridLayout>
#include <QSignalBlocker>

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace {

constexpr float kCoarsest = 20; // a continuous scale has at least so many steps, else it gets kFine of them
constexpr float kFine = 100;

} // namespace

QxFullRangeSliderBase::QxFullRangeSliderBase(QWidget* parent)
    : QWidget(parent),
      track(new QxRangeTrack(this)),
      minField(new QxRangeField(this)),
      maxField(new QxRangeField(this)),
      limitLow(-FLT_MAX),
      limitHigh(FLT_MAX)
{
    track->setObjectName("track");
    minField->setObjectName("minField");
    minField->setAccessibleName(tr("Minimum"));
    maxField->setObjectName("maxField");
    maxField->setAccessibleName(tr("Maximum"));
    setFocusProxy(track);

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(2);
    grid->setColumnStretch(1, 1);
    setFieldsBeside(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

    connect(track, &QxRangeTrack::dragMoved, this, &QxFullRangeSliderBase::dragTo);
    connect(track, &QxRangeTrack::dragEnded, this, &QxFullRangeSliderBase::endDrag);
    connect(track, &QxRangeTrack::keyed, this, &QxFullRangeSliderBase::setValue);
    for (const QxRangeField* field : {minField, maxField})
        connect(field, &QxRangeField::valueChanged, this, [this, field] { takeField(field); });

    showScale(low, high);
    showValues();
}

void QxFullRangeSliderBase::setFieldsBeside(bool on)
{
    auto* grid = static_cast<QGridLayout*>(layout());
    const int fieldRow = on ? 0 : 1;
    grid->addWidget(track, 0, on ? 1 : 0, 1, on ? 1 : 3);
    grid->addWidget(minField, fieldRow, 0);
    grid->addWidget(maxField, fieldRow, 2);
    for (QxRangeField* field : {minField, maxField})
        field->setButtonSymbols(on ? QAbstractSpinBox::NoButtons : QAbstractSpinBox::UpDownArrows);
}

// ---- scale

void QxFullRangeSliderBase::showScale(float min, float max)
{
    max = std::max(min, max);
    float step = std::abs(wantedStep);
    if (discrete)
        step = std::max(1.0f, std::round(step));
    else if (!(step > 0) || step > (max - min) / kCoarsest)
        step = max > min ? (max - min) / kFine : 1.0f;
    track->setScale(min, max, step);
    minField->setSingleStep(step);
    maxField->setSingleStep(step);
}

void QxFullRangeSliderBase::setDiscrete(bool on)
{
    discrete = on;
    showScale(track->scaleMin(), track->scaleMax());
    setValue(low, high);
}

void QxFullRangeSliderBase::setDisplayRange(float min, float max, float step)
{
    if (!std::isfinite(min) || !std::isfinite(max)) return;
    wantedStep = step;
    showScale(min, max);
}

void QxFullRangeSliderBase::setRange(float min, float max)
{
    if (!std::isfinite(min) || !std::isfinite(max)) return;
    limitLow = min;
    limitHigh = std::max(min, max);
    showScale(min, max);
    setValue(low, high);
}

float QxFullRangeSliderBase::displayMin() const
{
    return track->scaleMin();
}

float QxFullRangeSliderBase::displayMax() const
{
    return track->scaleMax();
}

void QxFullRangeSliderBase::setHistogram(const McHistogram& histogram)
{
    track->setHistogram(histogram);
}

void QxFullRangeSliderBase::setMarker(float value)
{
    track->setMarker(value);
}

void QxFullRangeSliderBase::clearMarker()
{
    track->setMarker({});
}

// ---- values

float QxFullRangeSliderBase::legal(float value) const
{
    if (!discrete) return std::clamp(value, limitLow, limitHigh);
    const float first = std::ceil(limitLow), last = std::floor(limitHigh);
    if (first > last) return std::clamp(value, limitLow, limitHigh); // no whole number lies within
    // Halves go up on both sides of zero, so that a band that is dragged keeps its width.
    return std::clamp(std::floor(value + 0.5f), first, last);
}

/// Keeps what the values become by the rules; true if that changed them.
bool QxFullRangeSliderBase::store(float min, float max)
{
    min = std::isnan(min) ? low : legal(min);
    max = std::max(min, std::isnan(max) ? high : legal(max));
    const bool changed = min != low || max != high;
    low = min;
    high = max;
    // Also when nothing changed: the track and the fields may show what was wished for.
    showValues();
    return changed;
}

void QxFullRangeSliderBase::showValues()
{
    track->setValues(low, high);
    for (QxRangeField* field : {minField, maxField}) {
        const QSignalBlocker blocker(field);
        field->setValue(field == minField ? low : high);
    }
}

void QxFullRangeSliderBase::announce()
{
    if (low == toldLow && high == toldHigh) return;
    toldLow = low;
    toldHigh = high;
    const bool told = tracking;
    endIsOwed = false;
    emit valueChanged(low, high);
    if (!told || tracking) return;
    endIsOwed = true;
    if (!track->isDragging()) endDrag(); // keys, fields and scripts make single steps: no end follows
}

void QxFullRangeSliderBase::endDrag()
{
    announce();
    if (!endIsOwed) return;
    endIsOwed = false;
    emit valueChanged(low, high);
}

void QxFullRangeSliderBase::setValue(float min, float max)
{
    store(min, max);
    announce();
}

void QxFullRangeSliderBase::dragTo(float min, float max)
{
    if (store(min, max) && tracking) announce();
}

void QxFullRangeSliderBase::takeField(const QxRangeField* field)
{
    // A field that was left without an edit still says what it shows: its value has fewer digits than ours.
    if (field->shows(field == minField ? low : high)) return;
    if (field == minField)
        setValue(float(field->value()), high);
    else
        setValue(low, float(field->value()));
}
