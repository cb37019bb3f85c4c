#include "qx/QxRangeTrack.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kHandleHalfWidth = 5;
constexpr int kGrabRadius = 7; // a little more than what is drawn: the hand need not be exact
constexpr double kPageSteps = 10;
constexpr QColor kMarkerColor(224, 92, 32);

int histogramHeight(const QFontMetrics& metrics)
{
    return metrics.height() * 8 / 5;
}

int rampHeight(const QFontMetrics& metrics)
{
    return metrics.height() / 2;
}

int handleHeight(const QFontMetrics& metrics)
{
    return metrics.height() * 2 / 3;
}

} // namespace

QxRangeTrack::QxRangeTrack(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

// ---- what is shown

void QxRangeTrack::setScale(float min, float max, float newStep)
{
    scaleLow = min;
    scaleHigh = max;
    step = newStep;
    update();
}

void QxRangeTrack::setValues(float min, float max)
{
    low = min;
    high = max;
    update();
}

void QxRangeTrack::setHistogram(const McHistogram& values)
{
    histogram = values;
    update();
}

void QxRangeTrack::setMarker(std::optional<float> value)
{
    marker = value;
    update();
}

void QxRangeTrack::setRamp(std::function<unsigned int(float)> colors)
{
    if (bool(colors) != bool(rampColor)) updateGeometry();
    rampColor = std::move(colors);
    update();
}

// ---- places

QSize QxRangeTrack::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    const int ramp = rampColor ? rampHeight(metrics) : 0;
    return {metrics.averageCharWidth() * 30, histogramHeight(metrics) + ramp + handleHeight(metrics) + 2};
}

QSize QxRangeTrack::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 12, sizeHint().height()};
}

QRectF QxRangeTrack::histogramRect() const
{
    return QRectF(kHandleHalfWidth + 1, 1, width() - 2 * (kHandleHalfWidth + 1),
                  histogramHeight(fontMetrics()));
}

QRectF QxRangeTrack::rampRect() const
{
    const QRectF above = histogramRect();
    return QRectF(above.left(), above.bottom(), above.width(), rampColor ? rampHeight(fontMetrics()) : 0);
}

double QxRangeTrack::onScale(double value) const
{
    return std::clamp<double>(value, scaleLow, std::max(scaleLow, scaleHigh));
}

double QxRangeTrack::xOf(double value) const
{
    const QRectF rect = histogramRect();
    const double span = double(scaleHigh) - scaleLow;
    const double fraction = span > 0 ? (onScale(value) - scaleLow) / span : value > scaleLow ? 1 : 0;
    return rect.left() + fraction * rect.width();
}

double QxRangeTrack::xOfHandle(Handle handle) const
{
    // On a scale without width the handles stand at its two ends.
    if (handle == Handle::High) return scaleHigh > scaleLow ? xOf(high) : histogramRect().right();
    return xOf(low);
}

int QxRangeTrack::pixelOf(Handle handle) const
{
    if (handle == Handle::Both) return qRound((xOfHandle(Handle::Low) + xOfHandle(Handle::High)) / 2);
    return qRound(xOfHandle(handle));
}

double QxRangeTrack::valueAt(double x) const
{
    const QRectF rect = histogramRect();
    return scaleLow + (x - rect.left()) / std::max(rect.width(), 1.0) * (double(scaleHigh) - scaleLow);
}

QxRangeTrack::Handle QxRangeTrack::handleAt(double x) const
{
    const double toLow = x - xOfHandle(Handle::Low);
    const double toHigh = x - xOfHandle(Handle::High);
    if (toLow < -kGrabRadius) return Handle::Low;
    if (toHigh > kGrabRadius) return Handle::High;
    const bool nearLow = std::abs(toLow) <= kGrabRadius;
    const bool nearHigh = std::abs(toHigh) <= kGrabRadius;
    if (nearLow && nearHigh) {
        // At the upper end of the scale only the lower handle of a pair can still move.
        if (low >= scaleHigh) return Handle::Low;
        return std::abs(toLow) < std::abs(toHigh) || toLow < 0 ? Handle::Low : Handle::High;
    }
    return nearLow ? Handle::Low : nearHigh ? Handle::High : Handle::Both;
}

// ---- drags and keys

std::pair<float, float> QxRangeTrack::placed(Handle handle, double value, float fromLow, float fromHigh) const
{
    // A value beyond the scale may stay there, but nothing gets farther out.
    if (handle == Handle::Both) {
        const double shift = std::clamp(value - fromLow, std::min(double(scaleLow) - fromLow, 0.0),
                                        std::max(double(scaleHigh) - fromHigh, 0.0));
        return {float(fromLow + shift), float(fromHigh + shift)};
    }
    const float from = handle == Handle::Low ? fromLow : fromHigh;
    const float to = std::clamp(float(value), std::min(scaleLow, from), std::max(scaleHigh, from));
    if (handle == Handle::Low) return {to, std::max(to, fromHigh)};
    return {fromLow, std::max(fromLow, to)};
}

void QxRangeTrack::dragTo(double x)
{
    const auto [min, max] = placed(drag->handle, valueAt(x) - drag->grip, drag->startLow, drag->startHigh);
    emit dragMoved(min, max);
}

void QxRangeTrack::finishDrag()
{
    if (!drag) return;
    drag.reset();
    giveKeysBack();
    update();
    emit dragEnded();
}

/// For Escape, while the button is down.
void QxRangeTrack::takeKeys()
{
    keysBefore = window()->focusWidget();
    setFocus(Qt::MouseFocusReason);
}

void QxRangeTrack::giveKeysBack()
{
    if (keysBefore)
        keysBefore->setFocus(Qt::OtherFocusReason);
    else
        clearFocus();
}

void QxRangeTrack::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || drag) {
        event->ignore();
        return;
    }
    const double x = event->position().x();
    focused = handleAt(x);
    const double handleX = xOfHandle(focused);
    const bool away = focused != Handle::Both && std::abs(x - handleX) > kGrabRadius;
    const double held = focused == Handle::Both ? double(low) : onScale(focused == Handle::Low ? low : high);
    takeKeys();
    drag = Drag{focused, away ? 0 : valueAt(x) - held, low, high};
    if (away) dragTo(x); // the handle comes to the pointer
    update();
}

void QxRangeTrack::mouseMoveEvent(QMouseEvent* event)
{
    if (drag) dragTo(event->position().x());
}

void QxRangeTrack::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) finishDrag();
}

void QxRangeTrack::keyPressEvent(QKeyEvent* event)
{
    if (drag) {
        if (event->key() != Qt::Key_Escape) return; // the hand on the mouse has the say
        emit dragMoved(drag->startLow, drag->startHigh);
        finishDrag();
        return;
    }
    const double value = focused == Handle::High ? high : low;
    double wanted;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        wanted = value - step;
        break;
    case Qt::Key_Right:
    case Qt::Key_Up:
        wanted = value + step;
        break;
    case Qt::Key_PageDown:
        wanted = value - kPageSteps * step;
        break;
    case Qt::Key_PageUp:
        wanted = value + kPageSteps * step;
        break;
    case Qt::Key_Home:
        wanted = scaleLow;
        break;
    case Qt::Key_End:
        wanted = scaleHigh;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    const auto [min, max] = placed(focused, wanted, low, high);
    emit keyed(min, max);
}

void QxRangeTrack::focusInEvent(QFocusEvent* event)
{
    if (event->reason() == Qt::TabFocusReason) focused = Handle::Low;
    if (event->reason() == Qt::BacktabFocusReason) focused = Handle::High;
    QWidget::focusInEvent(event);
}

bool QxRangeTrack::focusNextPrevChild(bool next)
{
    // Tab visits one handle after the other before it leaves.
    const Handle other = next ? Handle::High : Handle::Low;
    if (focused == other) return QWidget::focusNextPrevChild(next);
    focused = other;
    update();
    return true;
}

void QxRangeTrack::hideEvent(QHideEvent* event)
{
    finishDrag(); // the release will go elsewhere
    QWidget::hideEvent(event);
}

void QxRangeTrack::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange && !isEnabled()) finishDrag();
    QWidget::changeEvent(event);
}

// ---- drawing

void QxRangeTrack::drawHistogram(QPainter& painter) const
{
    const QRectF rect = histogramRect();
    const QRectF window(QPointF(xOfHandle(Handle::Low), rect.top()),
                        QPointF(xOfHandle(Handle::High), rect.bottom()));
    painter.fillRect(rect, palette().base());
    QColor tint = palette().color(QPalette::Highlight);
    tint.setAlpha(48);
    painter.fillRect(window, tint);

    unsigned long largest = 0;
    for (int i = 0; i < histogram.numBins(); ++i) largest = std::max(largest, histogram.count(i));
    QPainterPath bars;
    const double binWidth =
        (double(histogram.getMax()) - histogram.getMin()) / std::max(histogram.numBins(), 1);
    for (int i = 0; i < histogram.numBins() && largest > 0; ++i) {
        const double from = histogram.getMin() + i * binWidth;
        const double to = from + binWidth;
        if (histogram.count(i) == 0 || to < scaleLow || from > scaleHigh) continue;
        const double height =
            rect.height() * std::log1p(double(histogram.count(i))) / std::log1p(double(largest));
        // No bar is so thin that it cannot be seen, a constant image's in particular.
        const double width = std::max(xOf(to) - xOf(from), 1.0);
        bars.addRect(QRectF(xOf(from), rect.bottom() - height, width, height));
    }
    bars.setFillRule(Qt::WindingFill);
    painter.save();
    painter.setClipRect(rect);
    painter.fillPath(bars, palette().mid());
    painter.setClipRect(window);
    painter.fillPath(bars, palette().highlight());
    painter.restore();
}

void QxRangeTrack::drawRamp(QPainter& painter) const
{
    const QRectF rect = rampRect();
    const int pixels = std::max(qRound(rect.width() * devicePixelRatioF()), 1); // one colour per device pixel
    QImage row(pixels, 1, QImage::Format_ARGB32);
    auto* colors = reinterpret_cast<QRgb*>(row.scanLine(0));
    for (int x = 0; x < pixels; ++x) {
        const double value = scaleLow + (x + 0.5) / pixels * (double(scaleHigh) - scaleLow);
        const double u = high > low ? (value - low) / (double(high) - low) : value < low ? -1 : 2;
        const unsigned int rgba = rampColor(float(u));
        colors[x] = qRgba(rgba >> 24, rgba >> 16 & 255, rgba >> 8 & 255, rgba & 255);
    }
    painter.fillRect(rect, Qt::lightGray); // shows how see-through the colours are
    painter.drawImage(rect, row);
}

void QxRangeTrack::drawMarker(QPainter& painter) const
{
    if (!marker || *marker < scaleLow || *marker > scaleHigh) return;
    const double x = xOf(*marker);
    painter.setPen(QPen(isEnabled() ? kMarkerColor : palette().color(QPalette::Mid), 1.6));
    painter.drawLine(QPointF(x, histogramRect().top()), QPointF(x, rampRect().bottom()));
}

void QxRangeTrack::drawHandle(QPainter& painter, Handle handle) const
{
    const double x = xOfHandle(handle);
    const double top = rampRect().bottom() - 2;
    const double height = handleHeight(fontMetrics());
    const double shoulder = top + std::min(height * 0.5, double(kHandleHalfWidth));
    const QPolygonF shape({{x, top},
                           {x + kHandleHalfWidth, shoulder},
                           {x + kHandleHalfWidth, top + height},
                           {x - kHandleHalfWidth, top + height},
                           {x - kHandleHalfWidth, shoulder}});
    const bool active = hasFocus() && (focused == handle || focused == Handle::Both);
    painter.setPen(QPen(palette().color(QPalette::ButtonText), 1));
    painter.setBrush(active ? palette().highlight() : palette().button());
    painter.drawPolygon(shape);
    painter.setPen(QPen(palette().color(QPalette::ButtonText), 1));
    painter.drawLine(QPointF(x, histogramRect().top()), QPointF(x, top));
}

void QxRangeTrack::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    drawHistogram(painter);
    if (rampColor) drawRamp(painter);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(histogramRect().united(rampRect()));
    painter.setRenderHint(QPainter::Antialiasing);
    drawMarker(painter);
    drawHandle(painter, Handle::High);
    drawHandle(painter, Handle::Low);
}
