#include "qx/QxRangeField.h"

#include <QLineEdit>
#include <QLocale>
#include <QStyleOptionSpinBox>
#include <QWheelEvent>

#include <cfloat>
#include <cmath>

namespace {

constexpr int kDigits = 6;     // what a float always holds
constexpr double kWhole = 1e9; // up to here whole numbers are written out
constexpr int kDecimals = 60;  // the base class rounds to these; none that a float has are lost

/// The number that the text stands for in the user's notation, or else in that of the scripts.
bool numberOf(const QLocale& locale, const QString& text, double& number)
{
    bool ok = false;
    number = locale.toDouble(text.trimmed(), &ok);
    if (!ok) number = QLocale::c().toDouble(text.trimmed(), &ok);
    return ok && std::isfinite(number);
}

} // namespace

QxRangeField::QxRangeField(QWidget* parent) : QDoubleSpinBox(parent)
{
    setDecimals(kDecimals);
    setRange(-FLT_MAX, FLT_MAX);
    setKeyboardTracking(false);
    setFocusPolicy(Qt::StrongFocus);
    setAlignment(Qt::AlignRight);
}

QString QxRangeField::textFromValue(double value) const
{
    QLocale plain = locale();
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    if (value == std::floor(value) && std::abs(value) <= kWhole) return plain.toString(value, 'f', 0);
    return plain.toString(value, 'g', kDigits);
}

double QxRangeField::valueFromText(const QString& text) const
{
    double number = value();
    numberOf(locale(), text, number);
    return number;
}

QValidator::State QxRangeField::validate(QString& text, int&) const
{
    double number;
    if (numberOf(locale(), text, number))
        return std::abs(number) <= FLT_MAX ? QValidator::Acceptable : QValidator::Invalid;
    for (const QChar c : text)
        if (!c.isDigit() && !QString("+-.,eE \u2212").contains(c)) return QValidator::Invalid;
    return QValidator::Intermediate;
}

QSize QxRangeField::sizeHint() const
{
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    const bool isNarrow = buttonSymbols() == NoButtons;
    const QString longest = isNarrow ? QStringLiteral("-000.00") : QStringLiteral("-00000.00 ");
    const QSize text(fontMetrics().horizontalAdvance(longest), lineEdit()->sizeHint().height());
    return style()->sizeFromContents(QStyle::CT_SpinBox, &option, text, this);
}

void QxRangeField::wheelEvent(QWheelEvent* event)
{
    // A panel that is scrolled under the pointer must not change values on its way.
    if (hasFocus())
        QDoubleSpinBox::wheelEvent(event);
    else
        event->ignore();
}
