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
    const char* read;  // patterns as a file dialog wants them
    const char* write; // the first is the suffix of a new file; null if it cannot be written
    bool onlyLabels = false;
};

constexpr Format kFormats[] = {
    {QT_TRANSLATE_NOOP("HxFileDialog", "NRRD"), "*.nrrd *.nhdr", "*.nrrd"},
    {QT_TRANSLATE_NOOP("HxFileDialog", "NRRD segmentation"), "*.seg.nrrd", "*.seg.nrrd", true},
    {QT_TRANSLATE_NOOP("HxFileDialog", "NIfTI, compressed"), "*.nii.gz", "*.nii.gz"},
    {QT_TRANSLATE_NOOP("HxFileDialog", "NIfTI"), "*.nii *.hdr *.img", "*.nii"},
    {QT_TRANSLATE_NOOP("HxFileDialog", "MetaImage"), "*.mha *.mhd", "*.mha *.mhd"},
    {QT_TRANSLATE_NOOP("HxFileDialog", "TIFF"), "*.tif *.tiff", "*.tif *.tiff"},
    {QT_TRANSLATE_NOOP("HxFileDialog", "DICOM"), "*.dcm *.dicom *.ima", nullptr},
    {QT_TRANSLATE_NOOP("HxFileDialog", "Pictures"), "*.png *.jpg *.jpeg *.bmp", nullptr},
    {QT_TRANSLATE_NOOP("HxFileDialog", "Scripts"), "*.hx *.tcl", nullptr},
};

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

QString filter(const char* title, const char* patterns)
{
    return QString("%1 (%2)").arg(translated(title), patterns);
}

QString openFilters()
{
    QStringList all;
    QStringList each;
    for (const Format& format : kFormats) {
        all.append(format.read);
        each.append(filter(format.title, format.read));
    }
    return QString("%1 (%2);;").arg(translated("All that can be read"), all.join(' ')) + each.join(";;") +
           ";;" + translated("All files") + " (*)";
}

/// Suffixes, with their dots, of the format's files that can be written; the first is that of a new one.
QStringList suffixes(const Format& format)
{
    QStringList each;
    for (const QString& pattern : QString(format.write).split(' ', Qt::SkipEmptyParts))
        each.append(pattern.mid(1));
    return each;
}

/// That with the longest suffix of those that fit the name, as .seg.nrrd is also .nrrd; null if none does.
const Format* formatOf(const QString& path)
{
    const QString name = QFileInfo(path).fileName();
    const Format* found = nullptr;
    qsizetype longest = 0;
    for (const Format& format : kFormats)
        for (const QString& suffix : suffixes(format))
            if (suffix.size() > longest && name.endsWith(suffix, Qt::CaseInsensitive)) {
                found = &format;
                longest = suffix.size();
            }
    return found;
}

QString suffixOf(const QString& chosenFilter)
{
    for (const Format& format : kFormats)
        if (format.write && filter(format.title, format.write) == chosenFilter)
            return suffixes(format).front();
    return {};
}

/// Where the last file came from.
QString& folder()
{
    static QString path = QDir::currentPath();
    return path;
}

/// Where the last file was saved.
QString& saveFolder()
{
    static QString path;
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

QString HxFileDialog::saveFile(QWidget* parent, const QString& title, const QString& suggestion, bool labels)
{
    QStringList paths;
    if (isAnswered(paths)) return paths.value(0);

    const QFileInfo proposed(suggestion);
    QFileDialog dialog(parent, title, proposed.absolutePath());
    dialog.setNameFilters(saveFilters(labels));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    if (const Format* format = formatOf(suggestion))
        dialog.selectNameFilter(filter(format->title, format->write));
    dialog.selectFile(proposed.fileName());
    const auto useSuffix = [&dialog](const QString& chosen) { dialog.setDefaultSuffix(suffixOf(chosen)); };
    useSuffix(dialog.selectedNameFilter());
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, useSuffix);
    if (dialog.exec() != QDialog::Accepted) return {};
    return dialog.selectedFiles().value(0);
}

QStringList HxFileDialog::saveFilters(bool labels)
{
    QStringList each;
    for (const Format& format : kFormats)
        if (format.write && (labels || !format.onlyLabels)) each.append(filter(format.title, format.write));
    return each;
}

QString HxFileDialog::proposal(const QString& name, const QString& ownFile)
{
    const QFileInfo own(ownFile);
    // A series has a folder for its file; what is saved beside the slices would be read with them.
    const QString start = !ownFile.isEmpty()       ? own.absolutePath()
                          : saveFolder().isEmpty() ? QDir::currentPath()
                                                   : saveFolder();
    if (!ownFile.isEmpty() && !own.isDir() && formatOf(ownFile)) return own.absoluteFilePath();
    QString file = name;
    file.replace('/', '_');
    return QDir(start).filePath(formatOf(file) ? file : file + ".nrrd");
}

void HxFileDialog::rememberSaved(const QString& path)
{
    saveFolder() = QFileInfo(path).absolutePath();
}

void HxFileDialog::setNextAnswer(const QStringList& paths)
{
    nextAnswer() = paths;
}

bool HxFileDialog::isWritable(const QString& path)
{
    const QFileInfo file(path);
    if (file.isDir()) return false;
    return formatOf(path) || !file.fileName().contains('.'); // without a suffix the own form is written
}
