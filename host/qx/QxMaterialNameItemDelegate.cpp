#include "qx/QxMaterialNameItemDelegate.h"

#include "qx/QxMaterialValidator.h"

#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>

QWidget* QxMaterialNameItemDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                                  const QModelIndex& index) const
{
    auto* line = new QLineEdit(parent);
    line->setFrame(false);
    auto* validator = new QxMaterialValidator(line);
    // A name of a file can be longer than what can be typed. Who mends a letter of it must not have to cut
    // it.
    const qsizetype present = index.data(Qt::EditRole).toString().toUtf8().size();
    validator->setMaxBytes(std::max<qsizetype>(present, QxMaterialValidator::kMaxBytes));
    line->setValidator(validator);
    return line;
}

bool QxMaterialNameItemDelegate::eventFilter(QObject* editor, QEvent* event)
{
    // The base class keeps an editor open whose text is not acceptable. An empty name is a way to say "as it
    // was", and whoever takes the text knows what that is. A name of a file can hold what cannot be typed,
    // and keeps it as long as nobody edits it.
    auto* line = qobject_cast<QLineEdit*>(editor);
    if (line && event->type() == QEvent::KeyPress && (line->text().isEmpty() || !line->isModified())) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            if (line->text().isEmpty()) emit commitData(line);
            emit closeEditor(line, line->text().isEmpty() ? SubmitModelCache : RevertModelCache);
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(editor, event);
}
