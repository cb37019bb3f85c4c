#pragma once

#include <QString>
#include <QStringList>

class QWidget;

// A widget as a script sees it: something with a value that is read and set as a person reads it, types it
// or clicks it. Check boxes, radio buttons and buttons that stay down have 0 and 1, boxes for numbers and
// sliders a number, range sliders two, combo boxes the text of an item or its index, lines and labels a text.
// Every button takes "click".

/// text  the value, or the complaint, a sentence about the widget without its name
/// returns false for a widget without a value
bool giReadWidget(const QWidget& widget, QString& text);

/// Sets a value through the same signals as a person would, and reads it back.
///
/// values  one word, for range sliders two words or one with both numbers
/// text    the value that the widget has then, empty after a click of a plain button; or the complaint
/// returns false if the widget is disabled or cannot take the value; it is as it was then
bool giSetWidget(QWidget& widget, const QStringList& values, QString& text);
