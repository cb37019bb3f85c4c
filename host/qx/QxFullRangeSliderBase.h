#pragma once

#include <QWidget>

class McHistogram;
class QxRangeField;
class QxRangeTrack;

/// A slider for a pair of values, minimum and maximum of a window, over a histogram.
///
/// Each end has a handle and a field to type into; the band between the handles drags both. The arrow keys
/// move the handle that has the focus by one step, page keys by ten, Home and End take it to the end of the
/// scale, Escape takes a running drag back.
///
/// The scale is what is drawn. It bounds what a drag can reach, not the values: a value beyond it shows at
/// the end of the scale, and can be typed or set. Only limits, which setRange brings, bound the values.
/// Whatever is set, the maximum is never below the minimum: a minimum above the maximum takes it along, and a
/// maximum below the minimum stops there.
class QxFullRangeSliderBase : public QWidget
{
    Q_OBJECT

public:
    /// Scale and values from 0 to 255, step 1, no limits, discrete, tracking.
    explicit QxFullRangeSliderBase(QWidget* parent = nullptr);

    /// Whether the fields stand at both sides of the slider, narrow, instead of below it: for panels where
    /// height is dear.
    void setFieldsBeside(bool on);

    /// Discrete values are whole numbers: others are rounded, those beyond a limit to the last one within.
    void setDiscrete(bool on);
    bool isDiscrete() const { return discrete; }

    /// What is drawn, and the step of keys and fields. Limits stay as they were. A step that is a large part
    /// of the scale is taken as a hundredth of it, unless the values are discrete.
    void setDisplayRange(float min, float max, float step);
    /// Scale and limits. Values beyond are brought within.
    void setRange(float min, float max);
    float displayMin() const;
    float displayMax() const;

    /// Backdrop, drawn with the logarithm of the counts so that an empty background does not flatten the
    /// rest; an empty histogram takes it away.
    void setHistogram(const McHistogram& histogram);

    /// A line at a value, such as the one under the pointer.
    void setMarker(float value);
    void clearMarker();

    /// Off: a drag tells of its end only. A listener that is told of a step and then switches tracking off
    /// has put its work off: it is told the values once more, at the end of the drag, or at once if there is
    /// none.
    void setTracking(bool on) { tracking = on; }
    bool isTracking() const { return tracking; }

    float minValue() const { return low; }
    float maxValue() const { return high; }

public slots:
    /// Tells the new values if they differ from the present ones. Not-a-number leaves an end as it is.
    void setValue(float min, float max);

signals:
    void valueChanged(float min, float max);

protected:
    QxRangeTrack* rangeTrack() const { return track; }

private:
    void dragTo(float min, float max);
    void announce();
    void endDrag();
    bool store(float min, float max);
    float legal(float value) const;
    void showValues();
    void showScale(float min, float max);
    void takeField(const QxRangeField* field);

    QxRangeTrack* track;
    QxRangeField* minField;
    QxRangeField* maxField;
    float low = 0, high = 255;
    float toldLow = 0, toldHigh = 255; // what listeners know; behind low and high in a drag without tracking
    float limitLow, limitHigh;
    float wantedStep = 1;
    bool discrete = true;
    bool tracking = true;
    bool endIsOwed = false; // a listener waits for the end of the drag
};
