#pragma once

#include <QWidget>

class QLabel;
class QSlider;
class QxRangeField;

/// A slider for one value, with a label before it and a field to type into behind it.
class QxFullSlider : public QWidget
{
    Q_OBJECT

public:
    /// From 0 to 1, at 0.
    explicit QxFullSlider(const QString& label, QWidget* parent = nullptr);
    explicit QxFullSlider(QWidget* parent = nullptr) : QxFullSlider(QString(), parent) {}

    void setLabel(const QString& text);

    /// A value beyond the new range is brought within. A maximum below the minimum counts as the minimum.
    void setMinValue(float min);
    void setMaxValue(float max);
    float minValue() const { return low; }
    float maxValue() const { return high; }
    float value() const { return current; }

public slots:
    /// Brings the value within the range; tells it if it differs from the present one.
    virtual void setValue(float value);

signals:
    void valueChanged(float value);

private:
    void showValue();

    QLabel* title;
    QSlider* slider;
    QxRangeField* field;
    float low = 0, high = 1;
    float current = 0;
};
