#pragma once

#include <QDoubleSpinBox>

/// A spin box for values of any magnitude: it writes as many digits as a float holds instead of a fixed
/// number of decimals, accepts exponents, and ignores the wheel unless it has the focus. Without buttons it
/// is narrow.
class QxRangeField : public QDoubleSpinBox
{
    Q_OBJECT

public:
    explicit QxRangeField(QWidget* parent = nullptr);

    /// Whether the text is what the field writes for this value: a field that was not edited then keeps
    /// the digits that it does not show.
    bool shows(double value) const { return cleanText() == textFromValue(value); }

    QString textFromValue(double value) const override;
    double valueFromText(const QString& text) const override;
    QValidator::State validate(QString& text, int& position) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void wheelEvent(QWheelEvent* event) override;
};
