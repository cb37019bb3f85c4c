#include "app/HxConsole.h"

#include "app/HxConsoleInput.h"
#include "hx/HxEditor.h"
#include "hx/HxInterpreter.h"
#include "hx/HxObjectPool.h"

#include <QDir>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <tcl.h>

namespace {

constexpr int kMostEntries = 5000; // a script that prints without end must not eat the memory
constexpr int kFirstHeight = 120;

/// The object or editor that a script speaks to by this name.
const HxBase* findTarget(const QString& name)
{
    if (const HxObject* object = HxObjectPool::getThePool()->find(name.toUtf8())) return object;
    for (const HxEditor* editor : HxEditor::all())
        if (name == editor->getLabel()) return editor;
    return nullptr;
}

QStringList startingWith(QStringList words, const QString& start)
{
    words.removeIf([&](const QString& word) { return !word.startsWith(start); });
    words.removeDuplicates();
    words.sort();
    return words;
}

QStringList commandNames()
{
    McString list;
    if (HxInterpreter::getTheInterpreter()->eval("info commands", list) != TCL_OK) return {};
    return QString::fromUtf8(list.c_str()).split(' ', Qt::SkipEmptyParts);
}

QStringList commandsOf(const HxBase& target)
{
    McDArray<HxCommandHelp> help;
    target.commandHelp(help);
    QStringList names;
    for (int i = 0; i < help.size(); ++i) names.append(QString::fromUtf8(help[i].name.c_str()));
    return names;
}

QStringList objectNames()
{
    const HxObjectPool* pool = HxObjectPool::getThePool();
    QStringList names;
    for (int i = 0; i < pool->size(); ++i) names.append(QString::fromUtf8(pool->object(i)->getLabel()));
    return names;
}

/// Files and folders, for words with a slash or of commands that take files.
QStringList pathsLike(const QString& word)
{
    const qsizetype end = word.lastIndexOf('/') + 1;
    const QString folder = word.left(end);
    QStringList paths;
    for (const QFileInfo& entry :
         QDir(folder.isEmpty() ? "." : folder).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot))
        paths.append(folder + entry.fileName() + (entry.isDir() ? "/" : ""));
    return paths;
}

HxConsoleInput::Completion completionsOf(const QString& before)
{
    HxConsoleInput::Completion found;
    const qsizetype bracket = std::max(before.lastIndexOf('['), before.lastIndexOf(';')) + 1;
    found.wordStart = std::max(before.lastIndexOf(' ') + 1, bracket);
    const QString word = before.mid(found.wordStart);
    const QStringList earlier = before.mid(bracket, found.wordStart - bracket).split(' ', Qt::SkipEmptyParts);

    QStringList words;
    if (earlier.isEmpty())
        words = commandNames();
    else if (const HxBase* target = findTarget(earlier.front()); target && earlier.size() == 1)
        words = commandsOf(*target);
    else
        words = objectNames() + pathsLike(word);
    found.words = startingWith(words, word);
    return found;
}

} // namespace

HxConsole::HxConsole(QWidget* parent)
    : QWidget(parent),
      output(new QPlainTextEdit(this)),
      prompt(new QLabel(">", this)),
      line(new HxConsoleInput(this))
{
    setObjectName("console");
    const QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    output->setObjectName("consoleText");
    output->setReadOnly(true);
    output->setMaximumBlockCount(kMostEntries);
    output->setFont(font);
    output->setFrameShape(QFrame::NoFrame);
    output->setFocusPolicy(Qt::ClickFocus);
    line->setObjectName("consoleInput");
    line->setFont(font);
    line->setPlaceholderText(tr("Script command; Tab completes, Up recalls, help explains"));
    line->setCompleter(completionsOf);

    auto* row = new QHBoxLayout;
    row->setContentsMargins(4, 0, 4, 2);
    row->addWidget(prompt);
    row->addWidget(line, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(output, 1);
    column->addLayout(row);

    connect(line, &HxConsoleInput::entered, this, &HxConsole::takeLine);
    connect(line, &HxConsoleInput::choices, this,
            [this](const QStringList& words) { append(words.join("  ")); });
}

QSize HxConsole::sizeHint() const
{
    return {QWidget::sizeHint().width(), kFirstHeight};
}

void HxConsole::append(const QString& text, Kind kind)
{
    QTextCharFormat format;
    if (kind == Kind::command) format.setFontWeight(QFont::Bold);
    // Legible on a light and on a dark background.
    if (kind == Kind::error) format.setForeground(QColor(0xd0, 0x40, 0x40));
    QTextCursor cursor(output->document());
    cursor.movePosition(QTextCursor::End);
    if (!output->document()->isEmpty()) cursor.insertBlock();
    cursor.insertText(text.endsWith('\n') ? text.chopped(1) : text, format);
    output->moveCursor(QTextCursor::End);
    output->moveCursor(QTextCursor::StartOfLine);
    output->ensureCursorVisible();
}

QString HxConsole::text() const
{
    return output->toPlainText();
}

void HxConsole::clear()
{
    output->clear();
}

void HxConsole::takeLine(const QString& text)
{
    append(prompt->text() + " " + text, Kind::command);
    command += text + "\n";
    const bool complete = Tcl_CommandComplete(command.toUtf8().constData());
    prompt->setText(complete ? ">" : "...");
    if (!complete) return;
    const QString script = command;
    command.clear();
    evaluate(script);
}

void HxConsole::evaluate(const QString& script)
{
    HxInterpreter* interpreter = HxInterpreter::getTheInterpreter();
    McString result;
    const int code = interpreter->eval(script.toUtf8().constData(), result);
    if (interpreter->quitCode() || result.isEmpty()) return;
    append(QString::fromUtf8(result.c_str()), code == TCL_ERROR ? Kind::error : Kind::message);
}
