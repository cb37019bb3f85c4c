#pragma once

#include <QList>
#include <QStringList>

/// What a person opened or saved, as the menu offers it again: a file, a folder, or the files of one series,
/// and whether they were read as labels. The settings keep the last ten, the latest first.
struct HxRecentFile
{
    QStringList paths;
    bool asLabels = false;

    static QList<HxRecentFile> all();

    /// Puts this on top, with absolute paths; the same files further down go, however they were read.
    void remember() const;

    /// Name of the first file, with what else there is to know of it.
    QString title() const;
};
