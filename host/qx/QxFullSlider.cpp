#include "qx/QxFullSlider.h"

#include "qx/QxRangeField.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int kTicks = 1000; // finer than a hand can place a slider of usual width
constexpr int kSteps = 100;  // of the field's arrows

} // namespace

QxFullSlider::QxFullSlider(const QString& label, QWidget* parent)
    : QWidget(parent),
      title(new QLabel(label, this)),
      slider(new QSlider(Qt::Horizontal, this)),
      field(new QxRangeField(this))
{
    slider->setObjectName("slider");
    slider->setRange(0, kTicks);
    slider->setPageStep(kTicks / 10);
    slider->setSingleStep(kTicks / kSteps);
    field->setObjectName("field");
    title->setBuddy(field);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(title);
    row->addWidget(slider, 1);
    row->addWidget(field);

    connect(slider, &QSlider::valueChanged, this,
            [this](int tick) { setValue(low + float(tick) / kTicks * (high - low)); });
    connect(field, &QxRangeField::valueChanged, this, [this](double typed) {
        // A field that was left without an edit still says what it shows, with fewer digits.
        if (!field->shows(current)) setValue(float(typed));
    });
    showValue();
}

void QxFullSlider::setLabel(const QString& text)
{
    title->setText(text);
}

void QxFullSlider::setMinValue(float min)
{
    low = min;
    high = std::max(low, high);
    setValue(current);
    showValue();
}

void QxFullSlider::setMaxValue(float max)
{
    high = std::max(low, max);
    setValue(current);
    showValue();
}

void QxFullSlider::setValue(float value)
{
    if (std::isnan(value)) return;
    const float former = std::exchange(current, std::clamp(value, low, high));
    showValue();
    if (current != former) emit valueChanged(current);
}

void QxFullSlider::showValue()
{
    const QSignalBlocker quietSlider(slider);
    const QSignalBlocker quietField(field);
    slider->setValue(high > low ? int(std::lround((current - low) / (high - low) * kTicks)) : 0);
    field->setSingleStep(high > low ? (high - low) / kSteps : 1);
    field->setValue(current);
}
