#include "qx/QxLineEdit.h"

QxLineEdit::QxLineEdit(QWidget* parent) : QLineEdit(parent)
{
    connect(this, &QLineEdit::textEdited, this, [this] { edited = true; });
    connect(this, &QLineEdit::returnPressed, this, [this] {
        edited = false;
        emit inputReady();
    });
}

void QxLineEdit::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    if (!edited || !hasAcceptableInput()) return;
    edited = false;
    emit inputReady();
}
