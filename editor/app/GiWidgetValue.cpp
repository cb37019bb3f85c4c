#include "app/GiWidgetValue.h"

#include "qx/QxFullRangeSliderBase.h"
#include "qx/QxFullSlider.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QButtonGroup>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QRadioButton>
#include <QSpinBox>
#include <QToolButton>
#include <QWidget>

#include <charconv>
#include <cmath>
#include <optional>

namespace {

/// As few digits as tell the number from its neighbours.
template <class Real>
QString shortest(Real value)
{
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, value);
    return QString::fromLatin1(digits, end.ptr - digits);
}

QString outOfRange(const QString& value, const QString& low, const QString& high)
{
    return QString("takes a number from %1 to %2, not \"%3\".").arg(low, high, value);
}

std::optional<double> real(const QString& text)
{
    bool isNumber;
    const double value = text.toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

// One kind of widget per function: false with the complaint in `text`.

/// Chooses an entry of the button's menu; opening the menu would wait for a hand.
bool chooseEntry(QMenu& menu, const QString& value, QString& text)
{
    emit menu.aboutToShow();
    QStringList entries;
    for (QAction* action : menu.actions()) {
        const QString name = action->text().remove('&');
        entries.append(name);
        if (name != value) continue;
        if (action->isEnabled())
            action->trigger();
        else
            text = QString("has its entry %1 disabled.").arg(value);
        return action->isEnabled();
    }
    text = QString("opens a menu; its values are its entries: %1.").arg(entries.join(", "));
    return false;
}

bool setButton(QAbstractButton& button, const QString& value, QString& text)
{
    if (auto* opener = qobject_cast<QToolButton*>(&button); opener && opener->menu())
        return chooseEntry(*opener->menu(), value, text);
    if (value == "click") {
        button.click();
        return true;
    }
    if (!button.isCheckable()) {
        text = "is a button; its only value is click.";
        return false;
    }
    if (value != "0" && value != "1") {
        text = QString("takes 0, 1 or click, not \"%1\".").arg(value);
        return false;
    }
    const bool on = value == "1";
    const bool isOneOfSome = button.autoExclusive() || (button.group() && button.group()->exclusive());
    if (isOneOfSome && button.isChecked() && !on) {
        text = "goes out when another one of its group is chosen.";
        return false;
    }
    if (button.isChecked() != on) button.click();
    return true;
}

bool setSpinBox(QSpinBox& box, const QString& value, QString& text)
{
    bool isNumber;
    const int number = value.toInt(&isNumber);
    if (!isNumber || number < box.minimum() || number > box.maximum()) {
        text = outOfRange(value, QString::number(box.minimum()), QString::number(box.maximum()));
        return false;
    }
    box.setValue(number);
    emit box.editingFinished();
    return true;
}

bool setDoubleSpinBox(QDoubleSpinBox& box, const QString& value, QString& text)
{
    const std::optional<double> number = real(value);
    if (!number || *number < box.minimum() || *number > box.maximum()) {
        text = outOfRange(value, shortest(box.minimum()), shortest(box.maximum()));
        return false;
    }
    box.setValue(*number);
    emit box.editingFinished();
    return true;
}

bool setSlider(QAbstractSlider& slider, const QString& value, QString& text)
{
    bool isNumber;
    const int number = value.toInt(&isNumber);
    if (!isNumber || number < slider.minimum() || number > slider.maximum()) {
        text = outOfRange(value, QString::number(slider.minimum()), QString::number(slider.maximum()));
        return false;
    }
    slider.setSliderPosition(number);
    slider.triggerAction(
        QAbstractSlider::SliderMove); // a slider that tells only of the end of a drag tells now
    return true;
}

bool setFullSlider(QxFullSlider& slider, const QString& value, QString& text)
{
    const std::optional<double> number = real(value);
    if (!number || *number < static_cast<double>(slider.minValue()) ||
        *number > static_cast<double>(slider.maxValue())) {
        text = outOfRange(value, shortest(slider.minValue()), shortest(slider.maxValue()));
        return false;
    }
    slider.setValue(static_cast<float>(*number));
    return true;
}

bool setRangeSlider(QxFullRangeSliderBase& slider, const QStringList& values, QString& text)
{
    const QStringList ends = values.join(' ').split(' ', Qt::SkipEmptyParts);
    const std::optional<double> min = real(ends.value(0)), max = real(ends.value(1));
    if (ends.size() != 2 || !min || !max || *min > *max) {
        text = QString("takes two numbers, the smaller one first, not \"%1\".").arg(values.join(' '));
        return false;
    }
    slider.setValue(static_cast<float>(*min), static_cast<float>(*max));
    return true;
}

bool setComboBox(QComboBox& box, const QString& value, QString& text)
{
    bool isNumber;
    int index = box.findText(value);
    if (index < 0)
        index = value.toInt(&isNumber);
    else
        isNumber = true;
    if (!isNumber || index < 0 || index >= box.count()) {
        QStringList items;
        for (int i = 0; i < box.count(); ++i) items.append(box.itemText(i));
        text = QString("has no item \"%1\"; it has: %2.").arg(value, items.join(", "));
        return false;
    }
    box.setCurrentIndex(index);
    emit box.activated(index);
    emit box.textActivated(box.itemText(index));
    return true;
}

bool setLine(QLineEdit& line, const QString& value, QString& text)
{
    if (line.isReadOnly()) {
        text = "can only be read.";
        return false;
    }
    const QString former = line.text();
    line.setText(value);
    if (!line.hasAcceptableInput() || line.text() != value) {
        line.setText(former);
        text = QString("does not accept \"%1\".").arg(value);
        return false;
    }
    emit line.textEdited(value);
    emit line.returnPressed();
    emit line.editingFinished();
    return true;
}

bool setOneValue(QWidget& widget, const QString& value, QString& text)
{
    if (auto* button = qobject_cast<QAbstractButton*>(&widget)) return setButton(*button, value, text);
    if (auto* box = qobject_cast<QSpinBox*>(&widget)) return setSpinBox(*box, value, text);
    if (auto* box = qobject_cast<QDoubleSpinBox*>(&widget)) return setDoubleSpinBox(*box, value, text);
    if (auto* slider = qobject_cast<QAbstractSlider*>(&widget)) return setSlider(*slider, value, text);
    if (auto* slider = qobject_cast<QxFullSlider*>(&widget)) return setFullSlider(*slider, value, text);
    if (auto* box = qobject_cast<QComboBox*>(&widget)) return setComboBox(*box, value, text);
    if (auto* line = qobject_cast<QLineEdit*>(&widget)) return setLine(*line, value, text);
    text = "can only be read.";
    return false;
}

} // namespace

bool giReadWidget(const QWidget& widget, QString& text)
{
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget))
        text = button->isCheckable() ? QString::number(button->isChecked()) : button->text();
    else if (const auto* whole = qobject_cast<const QSpinBox*>(&widget))
        text = QString::number(whole->value());
    else if (const auto* box = qobject_cast<const QDoubleSpinBox*>(&widget))
        text = shortest(box->value());
    else if (const auto* slider = qobject_cast<const QAbstractSlider*>(&widget))
        text = QString::number(slider->value());
    else if (const auto* full = qobject_cast<const QxFullSlider*>(&widget))
        text = shortest(full->value());
    else if (const auto* range = qobject_cast<const QxFullRangeSliderBase*>(&widget))
        text = shortest(range->minValue()) + ' ' + shortest(range->maxValue());
    else if (const auto* combo = qobject_cast<const QComboBox*>(&widget))
        text = combo->currentText();
    else if (const auto* line = qobject_cast<const QLineEdit*>(&widget))
        text = line->text();
    else if (const auto* label = qobject_cast<const QLabel*>(&widget))
        text = label->text();
    else {
        text = "has no value.";
        return false;
    }
    return true;
}

bool giSetWidget(QWidget& widget, const QStringList& values, QString& text)
{
    if (!giReadWidget(widget, text)) return false;
    if (!widget.isEnabled()) {
        text = "is disabled.";
        return false;
    }
    const QPointer<QWidget> alive(&widget); // what is clicked may close its own window
    bool isSet;
    if (auto* range = qobject_cast<QxFullRangeSliderBase*>(&widget)) {
        isSet = setRangeSlider(*range, values, text);
    } else if (values.size() != 1) {
        text = "takes one value.";
        isSet = false;
    } else {
        isSet = setOneValue(widget, values[0], text);
    }
    if (!isSet) return false;
    const auto* button = qobject_cast<const QAbstractButton*>(alive.data());
    text.clear();
    if (alive && !(button && !button->isCheckable())) giReadWidget(*alive, text);
    return true;
}
