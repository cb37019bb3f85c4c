#include "app/hxShowDialog.h"

#include "hx/HxMessage.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include <vector>

namespace {

QMessageBox::Icon iconOf(HxDialogRequest::Kind kind)
{
    switch (kind) {
    case HxDialogRequest::Kind::info:
        return QMessageBox::Information;
    case HxDialogRequest::Kind::warning:
        return QMessageBox::Warning;
    case HxDialogRequest::Kind::question:
        return QMessageBox::Question;
    case HxDialogRequest::Kind::error:
        return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

} // namespace

int hxShowDialog(const HxDialogRequest& request)
{
    QMessageBox box(QApplication::activeWindow());
    box.setIcon(iconOf(request.kind));
    box.setWindowTitle(QApplication::applicationDisplayName());
    box.setTextFormat(Qt::PlainText); // a file name may look like markup
    box.setText(QString::fromStdString(request.text));
    std::vector<QAbstractButton*> buttons;
    for (const std::string& text : request.buttons)
        buttons.push_back(box.addButton(QString::fromStdString(text), QMessageBox::ActionRole));
    box.setDefaultButton(static_cast<QPushButton*>(buttons[static_cast<std::size_t>(request.defaultIndex)]));
    box.setEscapeButton(buttons[static_cast<std::size_t>(request.escapeIndex)]);

    // A question that comes in the middle of an operation is not to be answered with a wait cursor.
    const bool waiting = QApplication::overrideCursor() != nullptr;
    if (waiting) QApplication::setOverrideCursor(Qt::ArrowCursor);
    box.exec();
    if (waiting) QApplication::restoreOverrideCursor();

    for (std::size_t i = 0; i < buttons.size(); ++i)
        if (buttons[i] == box.clickedButton()) return static_cast<int>(i);
    return request.escapeIndex;
}
