#pragma once

#include "mc/McHistogram.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>
#include <utility>

/// The drawn part of a pair slider: histogram, window, ramp, marker and two handles. It turns mouse and keys
/// into wishes for values; what becomes of them is its owner's affair, who then calls setValues.
///
/// It takes the keys by Tab, and by mouse for the time of a drag; then they go back to who had them.
class QxRangeTrack : public QWidget
{
    Q_OBJECT

public:
    enum class Handle
    {
        Low,
        High,
        Both ///< the band between them
    };

    explicit QxRangeTrack(QWidget* parent = nullptr);

    void setScale(float min, float max, float step);
    float scaleMin() const { return scaleLow; }
    float scaleMax() const { return scaleHigh; }
    void setValues(float min, float max);
    void setHistogram(const McHistogram& values);
    void setMarker(std::optional<float> value);

    /// Colour as packed RGBA, red in the top byte, of 0 at the lower handle to 1 at the upper one, of less
    /// below and more above. Empty: no ramp.
    void setRamp(std::function<unsigned int(float)> colors);

    /// Where a handle points to, from the left edge; for the tests and for help texts.
    int pixelOf(Handle handle) const;
    bool isDragging() const { return drag.has_value(); }
    /// Ends a drag as releasing the button would; nothing happens without one.
    void finishDrag();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// A drag wants these values.
    void dragMoved(float min, float max);
    void dragEnded();
    /// A key wants these values.
    void keyed(float min, float max);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    struct Drag
    {
        Handle handle;
        double grip;               // what the value under the pointer was ahead of the handle's at the press
        float startLow, startHigh; // Escape goes back to them
    };

    QRectF histogramRect() const;
    QRectF rampRect() const;
    double xOf(double value) const;
    double xOfHandle(Handle handle) const;
    double valueAt(double x) const;
    Handle handleAt(double x) const;
    double onScale(double value) const;
    std::pair<float, float> placed(Handle handle, double value, float fromLow, float fromHigh) const;
    void dragTo(double x);
    void takeKeys();
    void giveKeysBack();

    void drawHistogram(QPainter& painter) const;
    void drawRamp(QPainter& painter) const;
    void drawMarker(QPainter& painter) const;
    void drawHandle(QPainter& painter, Handle handle) const;

    McHistogram histogram;
    std::function<unsigned int(float)> rampColor;
    std::optional<float> marker;
    std::optional<Drag> drag;
    QPointer<QWidget> keysBefore; // had them when the drag began; null: nobody
    Handle focused = Handle::Low;
    float scaleLow = 0, scaleHigh = 255;
    float low = 0, high = 255;
    float step = 1;
};
