#pragma once

#include <QStringList>

class QWidget;

/// Asks the person for files and folders. Without a display nobody can answer: the next answer that was set
/// is taken, and without one the console says so and nothing is chosen.
class HxFileDialog
{
public:
    /// Existing data files and scripts; none when cancelled.
    static QStringList openFiles(QWidget* parent, const QString& title);

    /// Empty when cancelled.
    static QString openFolder(QWidget* parent, const QString& title);

    /// A file to write, which the person has agreed to replace if it exists; empty when cancelled. The name
    /// gets the suffix of the chosen format if it has none.
    static QString saveFile(QWidget* parent, const QString& title, const QString& suggestion);

    /// Answers the next dialog, with a display, too; an empty list cancels it.
    static void setNextAnswer(const QStringList& paths);

    /// Whether a file of this name can be written in the format of its suffix.
    static bool isWritable(const QString& path);
};
