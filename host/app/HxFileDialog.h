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
    /// gets the suffix of the chosen format if it has none. The suggestion is the path that the dialog starts
    /// with.
    static QString saveFile(QWidget* parent, const QString& title, const QString& suggestion, bool labels);

    /// The filters of a dialog for saving: the formats that can be written, of labels or of other data.
    static QStringList saveFilters(bool labels);

    /// The path to suggest for an object of this name: its own file if that can be written, else a file of
    /// its name in the folder of its own file, in that of the last save, or in the current one, whichever
    /// there is first. `ownFile` is empty for an object without one.
    static QString proposal(const QString& name, const QString& ownFile);

    /// The next proposals may start where this file is.
    static void rememberSaved(const QString& path);

    /// Answers the next dialog, with a display, too; an empty list cancels it.
    static void setNextAnswer(const QStringList& paths);

    /// Whether a file of this name can be written in the format of its suffix.
    static bool isWritable(const QString& path);
};
