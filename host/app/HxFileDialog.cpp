#include "app/HxFileDialog.h"

#include "hx/HxMessage.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>

#include <optional>

namespace {

struct Format
{
    const char* title;
    const char* patterns; // as a file dialog wants them; the first is the suffix of a new file
    bool canBeWritten;
};

constexpr Format kFormats[] = {
    {QT_TRANSLATE_NOOP("HxFileDialog", "NRRD"), "*.nrrd *.nhdr", true},
    {QT_TRANSLATE_NOOP("HxFileDialog", "NRRD segmentation"), "*.seg.nrrd", true},
    {QT_TRANSLATE_NOOP("HxFileDialog", "NIfTI, compressed"), "*.nii.gz", true},
    {QT_TRANSLATE_NOOP("HxFileDialog", "NIfTI"), "*.nii *.hdr *.img", true},
    {QT_TRANSLATE_NOOP("HxFileDialog", "MetaImage"), "*.mha *.mhd", true},
    {QT_TRANSLATE_NOOP("HxFileDialog", "TIFF"), "*.tif *.tiff", true},
    {QT_TRANSLATE_NOOP("HxFileDialog", "DICOM"), "*.dcm *.dicom *.ima", false},
    {QT_TRANSLATE_NOOP("HxFileDialog", "Pictures"), "*.png *.jpg *.jpeg *.bmp", false},
    {QT_TRANSLATE_NOOP("HxFileDialog", "Scripts"), "*.hx *.tcl", false},
};

constexpr const char* kWritableSuffixes[] = {".nrrd", ".nii", ".nii.gz", ".mha", ".mhd", ".tif", ".tiff"};

std::optional<QStringList>& nextAnswer()
{
    static std::optional<QStringList> answer;
    return answer;
}

/// True if the dialog must not open; `answer` is then what it would have given.
bool isAnswered(QStringList& answer)
{
    if (nextAnswer()) {
        answer = *std::exchange(nextAnswer(), std::nullopt);
        return true;
    }
    if (QGuiApplication::platformName() != "offscreen") return false;
    HxMessage::getTheMsg()->printf("A file dialog needs a display; nothing was chosen.");
    return true;
}

QString translated(const char* text)
{
    return QCoreApplication::translate("HxFileDialog", text);
}

QString filter(const Format& format)
{
    return QString("%1 (%2)").arg(translated(format.title), format.patterns);
}

QString openFilters()
{
    QStringList all;
    QStringList each;
    for (const Format& format : kFormats) {
        all.append(format.patterns);
        each.append(filter(format));
    }
    return QString("%1 (%2);;").arg(translated("All that can be read"), all.join(' ')) + each.join(";;") +
           ";;" + translated("All files") + " (*)";
}

QString saveFilters()
{
    QStringList each;
    for (const Format& format : kFormats)
        if (format.canBeWritten) each.append(filter(format));
    return each.join(";;");
}

QString suffixOf(const QString& chosenFilter)
{
    for (const Format& format : kFormats)
        if (filter(format) == chosenFilter) return QString(format.patterns).section(' ', 0, 0).mid(1);
    return {};
}

/// Where the last file came from.
QString& folder()
{
    static QString path = QDir::currentPath();
    return path;
}

void rememberFolderOf(const QString& path)
{
    folder() = QFileInfo(path).absolutePath();
}

} // namespace

QStringList HxFileDialog::openFiles(QWidget* parent, const QString& title)
{
    QStringList paths;
    if (!isAnswered(paths)) paths = QFileDialog::getOpenFileNames(parent, title, folder(), openFilters());
    if (!paths.isEmpty()) rememberFolderOf(paths.front());
    return paths;
}

QString HxFileDialog::openFolder(QWidget* parent, const QString& title)
{
    QStringList paths;
    if (!isAnswered(paths)) paths.append(QFileDialog::getExistingDirectory(parent, title, folder()));
    const QString path = paths.value(0);
    if (!path.isEmpty()) rememberFolderOf(path);
    return path;
}

QString HxFileDialog::saveFile(QWidget* parent, const QString& title, const QString& suggestion)
{
    QStringList paths;
    if (isAnswered(paths)) return paths.value(0);

    QFileDialog dialog(parent, title, folder(), saveFilters());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.selectFile(suggestion);
    const auto useSuffix = [&dialog](const QString& chosen) { dialog.setDefaultSuffix(suffixOf(chosen)); };
    useSuffix(dialog.selectedNameFilter());
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, useSuffix);
    if (dialog.exec() != QDialog::Accepted) return {};
    const QString path = dialog.selectedFiles().value(0);
    rememberFolderOf(path);
    return path;
}

void HxFileDialog::setNextAnswer(const QStringList& paths)
{
    nextAnswer() = paths;
}

bool HxFileDialog::isWritable(const QString& path)
{
    const QFileInfo file(path);
    if (file.isDir()) return false;
    for (const char* suffix : kWritableSuffixes)
        if (file.fileName().endsWith(suffix, Qt::CaseInsensitive)) return true;
    return !file.fileName().contains('.'); // without a suffix the own form is written
}
