#include "app/HxConsoleInput.h"

#include <QKeyEvent>

namespace {

constexpr qsizetype kMostLines = 500;

QString commonStart(const QStringList& words)
{
    QString start = words.front();
    for (const QString& word : words) {
        qsizetype length = 0;
        while (length < start.size() && length < word.size() && start[length] == word[length]) ++length;
        start.truncate(length);
    }
    return start;
}

} // namespace

HxConsoleInput::HxConsoleInput(QWidget* parent) : QLineEdit(parent)
{
    connect(this, &QLineEdit::returnPressed, this, &HxConsoleInput::enter);
}

bool HxConsoleInput::event(QEvent* event)
{
    // Before the widget makes it a step to the next one.
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Tab && key->modifiers() == Qt::NoModifier) {
            complete();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void HxConsoleInput::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Up)
        recall(position - 1);
    else if (event->key() == Qt::Key_Down)
        recall(position + 1);
    else
        QLineEdit::keyPressEvent(event);
}

void HxConsoleInput::enter()
{
    const QString line = text();
    clear();
    if (!line.trimmed().isEmpty() && (earlier.isEmpty() || earlier.back() != line)) earlier.append(line);
    if (earlier.size() > kMostLines) earlier.removeFirst();
    position = earlier.size();
    draft.clear();
    emit entered(line);
}

void HxConsoleInput::recall(qsizetype index)
{
    if (index < 0 || index > earlier.size() || index == position) return;
    if (position == earlier.size()) draft = text();
    position = index;
    setText(index == earlier.size() ? draft : earlier[index]);
}

void HxConsoleInput::complete()
{
    if (!completer) return;
    const QString before = text().left(cursorPosition());
    const Completion found = completer(before);
    if (found.words.isEmpty()) return;
    QString word = commonStart(found.words);
    if (found.words.size() == 1 && !word.endsWith('/'))
        word += ' ';
    else if (word == before.mid(found.wordStart))
        emit choices(found.words);
    const QString completed = before.left(found.wordStart) + word;
    setText(completed + text().mid(before.size()));
    setCursorPosition(static_cast<int>(completed.size()));
}
