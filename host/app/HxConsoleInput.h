#pragma once

#include <QLineEdit>
#include <QStringList>

#include <functional>

/// A line for commands: Up and Down walk through earlier ones, Tab completes a word.
class HxConsoleInput : public QLineEdit
{
    Q_OBJECT

public:
    /// The last word of the text before the cursor, and what it may be completed to.
    struct Completion
    {
        qsizetype wordStart = 0;
        QStringList words;
    };
    using Completer = std::function<Completion(const QString& before)>;

    explicit HxConsoleInput(QWidget* parent = nullptr);

    void setCompleter(Completer function) { completer = std::move(function); }

    const QStringList& history() const { return earlier; }

signals:
    void entered(const QString& line);
    /// Tab was pressed where several words are possible.
    void choices(const QStringList& words);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void enter();
    void recall(qsizetype index);
    void complete();

    Completer completer;
    QStringList earlier;    // latest last
    qsizetype position = 0; // in `earlier`; its size: the line that is being typed
    QString draft;          // that line, while an earlier one shows
};
