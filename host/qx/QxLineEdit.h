#pragma once

#include <QLineEdit>

/// A line that tells when its text is meant: at Return, and when the focus leaves it after an edit.
class QxLineEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit QxLineEdit(QWidget* parent = nullptr);

signals:
    void inputReady();

protected:
    void focusOutEvent(QFocusEvent* event) override;

private:
    bool edited = false; // since the last inputReady
};
