#include "io/HxFileWriter.h"

#include "hx/HxLabelField3.h"
#include "hx/HxMessage.h"
#include "io/HxAtomicFile.h"
#include "io/HxFileError.h"
#include "io/HxItkFile.h"
#include "io/HxMetaImageFile.h"
#include "io/HxNiftiFile.h"
#include "io/HxNrrdField.h"
#include "io/HxVolumeField.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <vector>

namespace {

enum class Format
{
    nrrd,
    segmentation,
    nifti,
    packedNifti,
    meta,
    metaInTwoFiles,
    tiff,
    unwritable
};

struct Suffix
{
    const char* text;
    Format format;
};

// Longer suffixes before those they end in.
constexpr Suffix kSuffixes[] = {
    {".seg.nrrd", Format::segmentation},
    {".nrrd", Format::nrrd},
    {".nii.gz", Format::packedNifti},
    {".nii", Format::nifti},
    {".mha", Format::meta},
    {".mhd", Format::metaInTwoFiles},
    {".tif", Format::tiff},
    {".tiff", Format::tiff},
    {".nhdr", Format::unwritable},
    {".hdr", Format::unwritable},
    {".img", Format::unwritable},
    {".dcm", Format::unwritable},
    {".dicom", Format::unwritable},
    {".png", Format::unwritable},
    {".jpg", Format::unwritable},
    {".jpeg", Format::unwritable},
    {".bmp", Format::unwritable},
    {".gif", Format::unwritable},
    {".vtk", Format::unwritable},
    {".vti", Format::unwritable},
    {".mnc", Format::unwritable},
    {".mgh", Format::unwritable},
    {".mgz", Format::unwritable},
    {".gipl", Format::unwritable},
    {".raw", Format::unwritable},
    {".npy", Format::unwritable},
    {".h5", Format::unwritable},
    {".gz", Format::unwritable},
    {".bz2", Format::unwritable},
    {".xz", Format::unwritable},
    {".zip", Format::unwritable},
};

bool endsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

Format formatOf(const std::string& path)
{
    std::string name = std::filesystem::path(path).filename().string();
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
    for (const Suffix& suffix : kSuffixes)
        if (endsWith(name, suffix.text)) return suffix.format;
    return Format::nrrd; // labels such as "brain.intpol" have endings that are no suffixes
}

// "a, b and c"; long lists are cut.
std::string listed(std::vector<std::string> items)
{
    constexpr std::size_t kMost = 6;
    if (items.size() > kMost) {
        const std::size_t rest = items.size() - kMost + 1;
        items.resize(kMost - 1);
        items.push_back(std::to_string(rest) + " more");
    }
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i)
        text += (i == 0 ? "" : i + 1 == items.size() ? " and " : ", ") + items[i];
    return text;
}

std::vector<std::string> parametersThatAreLost(const HxRegScalarField3& field)
{
    std::vector<std::string> names;
    const HxParamBundle& tree = field.parameters;
    for (int i = 0; i < tree.nParameters(); ++i)
        if (!HxVolumeField::isGeometryParameter(tree.parameter(i)->getName()))
            names.push_back(tree.parameter(i)->getName());
    for (int i = 0; i < tree.nBundles(); ++i)
        if (std::string(tree.bundle(i)->getName()) != "Materials") names.push_back(tree.bundle(i)->getName());
    return names;
}

bool hasWeights(const HxRegScalarField3& field)
{
    const auto* labels = dynamic_cast<const HxLabelField3*>(&field);
    return labels && labels->labelLattice()->getWeights();
}

std::string warnOfLosses(const HxRegScalarField3& field, const HxVolumeGeometry& geometry, Format format,
                         const std::string& path)
{
    std::vector<std::string> lost;
    if (format != Format::nrrd && format != Format::segmentation) {
        if (field.parameters.index("Materials") >= 0) lost.push_back("the names and colors of the materials");
        const std::vector<std::string> names = parametersThatAreLost(field);
        if (!names.empty()) lost.push_back("the parameters (" + listed(names) + ")");
        if (geometry.zPositions.size() > 1) lost.push_back("the positions of the slices");
    }
    if (format == Format::tiff) lost.push_back("the place in space and the slice distance");
    if (hasWeights(field)) lost.push_back("the weights of the labels");
    if (lost.empty()) return {};
    const std::string text = path + ": the file does not keep " + listed(lost) + ".";
    HxMessage::getTheMsg()->printf("%s", text.c_str());
    return text;
}

/// An empty file whose name nothing else had; removed at the end unless kept.
class FreshFile
{
public:
    explicit FreshFile(const std::filesystem::path& header)
    {
        for (int n = 0; !isMade; ++n) {
            name = (header.parent_path() / rawName(header, n)).string();
            const int file = ::open(name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
            if (file < 0 && errno != EEXIST) return; // who writes to it will tell the reason
            isMade = file >= 0;
            if (isMade) ::close(file);
        }
    }
    ~FreshFile()
    {
        if (isMade) ::unlink(name.c_str());
    }
    FreshFile(const FreshFile&) = delete;
    FreshFile& operator=(const FreshFile&) = delete;

    const std::string& path() const { return name; }
    void keep() { isMade = false; }

    static std::string rawName(const std::filesystem::path& header, int n)
    {
        return header.stem().string() + (n > 0 ? "-" + std::to_string(n) : "") + ".raw";
    }

private:
    std::string name;
    bool isMade = false;
};

// Voxels of a header that a save has replaced go if their name is one that a save gives.
void removeOldVoxels(const std::filesystem::path& header, const std::string& old)
{
    const std::string stem = header.stem().string() + "-";
    int n = 0; // of "NAME-<n>.raw"; text that is no number leads to another name
    if (old.compare(0, stem.size(), stem) == 0) n = std::atoi(old.c_str() + stem.size());
    if (old != FreshFile::rawName(header, n)) return;
    std::error_code failed;
    std::filesystem::remove(header.parent_path() / old, failed);
    if (failed)
        HxMessage::getTheMsg()->printf("%s: the old voxels in %s remain: %s.", header.c_str(), old.c_str(),
                                       failed.message().c_str());
}

// New voxels never take the place of others: until the header is exchanged, the old volume is whole, and
// from then on the new one is.
void writeMetaInTwoFiles(const HxLattice3& lattice, const HxVolumeGeometry& geometry, const std::string& path)
{
    const std::string old = HxMetaImageFile::dataFileOf(path);
    HxAtomicFile header(path);
    FreshFile fresh(path);
    HxAtomicFile voxels(fresh.path());
    HxMetaImageFile::write(header, &voxels, lattice.dims(), hxFileType(lattice.primType()), lattice.dataPtr(),
                           geometry);
    voxels.commit();
    header.commit();
    fresh.keep();
    removeOldVoxels(path, old);
}

void writeMeta(const HxLattice3& lattice, const HxVolumeGeometry& geometry, const std::string& path)
{
    HxAtomicFile file(path);
    HxMetaImageFile::write(file, nullptr, lattice.dims(), hxFileType(lattice.primType()), lattice.dataPtr(),
                           geometry);
    file.commit();
}

void writeTiff(const HxLattice3& lattice, const HxVolumeGeometry& geometry, const std::string& path)
{
    const HxFileType type = hxFileType(lattice.primType());
    if (hxSizeOf(type) > 2 && type != HxFileType::float32)
        throw HxFileError(path, std::string("TIFF files cannot hold ") + hxNameOf(type) +
                                    ", save as .nrrd instead");
    HxAtomicFile file(path, ".tif");
    file.checkSpace(lattice.numBytes());
    HxItkFile::write(file.path(), path, HxFileKind::tiff, lattice.dims(), type, lattice.dataPtr(), geometry);
    if (std::filesystem::file_size(file.path()) < lattice.numBytes())
        throw HxFileError(path, "cannot be written completely");
    file.commit();
}

} // namespace

std::string hxWriteFile(const HxRegScalarField3& field, const std::string& path, bool inOwnForm)
{
    const Format format = inOwnForm ? Format::nrrd : formatOf(path);
    const HxLattice3& lattice = *field.lattice();
    if (!lattice.dataPtr() || lattice.numNodes() == 0) throw HxFileError(path, "the field is empty");
    if (lattice.numDataVars() != 1) throw HxFileError(path, "fields of several components cannot be saved");
    if (format == Format::unwritable)
        throw HxFileError(
            path,
            "this format cannot be written; the suffixes are .nrrd, .nii, .nii.gz, .mha, .mhd and .tif");
    if (format == Format::segmentation && !dynamic_cast<const HxLabelField3*>(&field))
        throw HxFileError(path, "an image is no segmentation, save it as .nrrd");

    const HxVolumeGeometry geometry = HxVolumeField::geometryOf(field);
    switch (format) {
    case Format::nifti:
    case Format::packedNifti: {
        HxAtomicFile file(path);
        HxNiftiFile::write(file, lattice.dims(), hxFileType(lattice.primType()), lattice.dataPtr(), geometry,
                           format == Format::packedNifti);
        file.commit();
        break;
    }
    case Format::meta:
        writeMeta(lattice, geometry, path);
        break;
    case Format::metaInTwoFiles:
        writeMetaInTwoFiles(lattice, geometry, path);
        break;
    case Format::tiff:
        writeTiff(lattice, geometry, path);
        break;
    case Format::nrrd:
    case Format::segmentation:
    case Format::unwritable:
        HxNrrdField::write(field, path);
        break;
    }
    return warnOfLosses(field, geometry, format, path);
}
