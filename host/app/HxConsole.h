#pragma once

#include <QWidget>

class HxConsoleInput;
class QLabel;
class QPlainTextEdit;

/// The console: messages of the program above a line for script commands.
class HxConsole : public QWidget
{
    Q_OBJECT

public:
    explicit HxConsole(QWidget* parent = nullptr);

    enum class Kind
    {
        message,
        command,
        error
    };

    /// One entry; a trailing newline is dropped.
    void append(const QString& text, Kind kind = Kind::message);

    HxConsoleInput* input() const { return line; }
    QString text() const;
    void clear();

    QSize sizeHint() const override;

private:
    void takeLine(const QString& text);
    void evaluate(const QString& script);

    QPlainTextEdit* output;
    QLabel* prompt;
    HxConsoleInput* line;
    QString command; // lines that are not yet a whole command
};
