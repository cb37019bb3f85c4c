#include "app/HxRecentFile.h"

#include "hx/HxSettingsMgr.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

constexpr const char* kKey = "recentFiles";
constexpr qsizetype kMost = 10;

// An entry of the settings is a text of lines: the mark, if there is one, and a path each. A path is absolute
// and so never equals the mark.
constexpr const char* kLabelsMark = "-labels";

QString written(const HxRecentFile& file)
{
    return (file.asLabels ? QStringList(kLabelsMark) + file.paths : file.paths).join('\n');
}

HxRecentFile readEntry(const QString& text)
{
    HxRecentFile file;
    file.paths = text.split('\n', Qt::SkipEmptyParts);
    file.asLabels = file.paths.value(0) == kLabelsMark;
    if (file.asLabels) file.paths.removeFirst();
    return file;
}

} // namespace

QList<HxRecentFile> HxRecentFile::all()
{
    QList<HxRecentFile> files;
    for (const QString& text : HxSettingsMgr::getInstance()->getTexts(kKey)) {
        const HxRecentFile file = readEntry(text);
        if (!file.paths.isEmpty()) files.append(file);
    }
    return files;
}

void HxRecentFile::remember() const
{
    HxRecentFile latest{{}, asLabels};
    for (const QString& path : paths) latest.paths.append(QFileInfo(path).absoluteFilePath());
    QStringList entries{written(latest)};
    for (const HxRecentFile& file : all())
        if (file.paths != latest.paths && entries.size() < kMost) entries.append(written(file));
    HxSettingsMgr::getInstance()->setTexts(kKey, entries);
}

QString HxRecentFile::title() const
{
    QString text = QFileInfo(paths.value(0)).fileName();
    if (paths.size() > 1)
        text += QCoreApplication::translate("HxRecentFile", " and %1 more").arg(paths.size() - 1);
    return asLabels ? text + QCoreApplication::translate("HxRecentFile", " (labels)") : text;
}
