#include "io/HxFileReader.h"

#include "hx/HxLabelField3.h"
#include "hx/HxMessage.h"
#include "io/HxFileError.h"
#include "io/HxFileKind.h"
#include "io/HxMetaImageFile.h"
#include "io/HxNaturalOrder.h"
#include "io/HxNiftiFile.h"
#include "io/HxNrrdField.h"
#include "io/HxSliceFile.h"
#include "io/HxSliceSeries.h"
#include "io/HxVolumeField.h"

#include <algorithm>
#include <filesystem>
#include <map>

namespace {

namespace fs = std::filesystem;

using Warnings = std::vector<std::string>;
using Field = std::unique_ptr<HxRegScalarField3>;

void checkReadable(const std::string& path)
{
    std::error_code failed;
    const fs::file_status status = fs::status(path, failed);
    if (!fs::exists(status)) throw HxFileError(path, "does not exist");
    if (!fs::is_regular_file(status)) throw HxFileError(path, "is no regular file");
    if (fs::file_size(path, failed) == 0) throw HxFileError(path, "is empty");
    if (FILE* file = std::fopen(path.c_str(), "rb"))
        std::fclose(file);
    else
        throw HxFileError(path, "cannot be opened, permission is missing");
}

HxFileKind knownKind(const std::string& path)
{
    checkReadable(path);
    const HxFileKind kind = hxFileKind(path);
    if (kind == HxFileKind::unknown) throw HxFileError(path, "has no format that can be read");
    return kind;
}

Field fieldOf(HxVolume&& volume, const std::string& named, bool asLabels)
{
    if (!asLabels) return HxVolumeField::makeImage(std::move(volume), named);
    const int largest = volume.toLabels(named);
    std::unique_ptr<HxLabelField3> labels = HxVolumeField::makeLabels(std::move(volume));
    HxVolumeField::completeMaterials(*labels, largest);
    return labels;
}

Field readFile(const std::string& path, bool asLabels, Warnings& warnings)
{
    const HxFileKind kind = knownKind(path);
    if (kind == HxFileKind::nrrd) return HxNrrdField::read(path, asLabels, warnings);
    if (kind == HxFileKind::nifti) return fieldOf(HxNiftiFile::read(path), path, asLabels);
    if (kind == HxFileKind::meta) return fieldOf(HxMetaImageFile::read(path), path, asLabels);
    return fieldOf(HxSliceSeries::open(path, kind)->read(), path, asLabels);
}

Field readSeries(const std::vector<std::string>& files, HxFileKind kind, const std::string& named,
                 bool asLabels, Warnings& warnings)
{
    if (kind == HxFileKind::dicom)
        return fieldOf(HxSliceSeries::readDicom(files, named, warnings), named, asLabels);
    return fieldOf(HxSliceSeries::readStack(files, named), named, asLabels);
}

Field readSeveral(const std::vector<std::string>& paths, bool asLabels, Warnings& warnings)
{
    const HxFileKind kind = knownKind(paths.front());
    for (const std::string& path : paths) {
        const HxFileKind other = knownKind(path);
        if (other != kind)
            throw HxFileError(path, std::string("is a ") + hxNameOf(other) + " file, but " + paths.front() +
                                        " is a " + hxNameOf(kind) +
                                        " file; several files must be one series");
        if (kind != HxFileKind::dicom && !hxIsSliceKind(kind))
            throw HxFileError(path, std::string("is a ") + hxNameOf(kind) +
                                        " volume; several files can only be the slices of one series");
    }
    return readSeries(paths, kind, paths.front(), asLabels, warnings);
}

std::map<HxFileKind, std::vector<std::string>> filesByKind(const std::string& folder)
{
    std::map<HxFileKind, std::vector<std::string>> files;
    std::error_code failed;
    fs::directory_iterator entries(folder, failed);
    if (failed) throw HxFileError(folder, "cannot be opened: " + failed.message());
    for (const fs::directory_entry& entry : entries) {
        const std::string name = entry.path().filename().string();
        // The table of contents of a DICOM medium is a DICOM file without an image.
        if (!entry.is_regular_file(failed) || name[0] == '.' || name == "DICOMDIR") continue;
        files[hxFileKind(entry.path().string())].push_back(entry.path().string());
    }
    files.erase(HxFileKind::unknown);
    for (auto& [kind, list] : files) std::sort(list.begin(), list.end(), hxNaturalLess);
    return files;
}

Field readFolder(const std::string& folder, bool asLabels, Warnings& warnings)
{
    auto files = filesByKind(folder);
    // Pictures beside a DICOM series are previews of it.
    if (files.count(HxFileKind::dicom))
        return readSeries(files[HxFileKind::dicom], HxFileKind::dicom, folder, asLabels, warnings);
    if (files.empty()) throw HxFileError(folder, "the folder holds no file that can be read");
    if (files.size() > 1) {
        std::string list;
        for (const auto& [kind, some] : files)
            list += (list.empty() ? "" : ", ") + std::to_string(some.size()) + " " + hxNameOf(kind);
        throw HxFileError(folder,
                          "the folder holds files of several formats (" + list + "), load those of one");
    }
    const auto& [kind, list] = *files.begin();
    if (list.size() == 1) return readFile(list.front(), asLabels, warnings);
    if (hxIsSliceKind(kind)) return readSeries(list, kind, folder, asLabels, warnings);
    throw HxFileError(folder, "the folder holds " + std::to_string(list.size()) + " " + hxNameOf(kind) +
                                  " volumes, load one of them");
}

} // namespace

HxRegScalarField3* hxReadFiles(const std::vector<std::string>& paths, bool asLabels)
{
    Warnings warnings;
    std::error_code failed;
    Field field;
    if (paths.size() > 1)
        field = readSeveral(paths, asLabels, warnings);
    else if (fs::is_directory(paths.front(), failed))
        field = readFolder(paths.front(), asLabels, warnings);
    else
        field = readFile(paths.front(), asLabels, warnings);
    for (const std::string& text : warnings)
        HxMessage::getTheMsg()->printf("%s: %s.", paths.front().c_str(), text.c_str());
    return field.release();
}
