#include "io/HxItkFile.h"

#include "io/HxDicomPixels.h"
#include "io/HxFileError.h"
#include "io/HxLibraryProbe.h"
#include "io/HxQuietLibraries.h"
#include "io/HxTiffPages.h"

#include <algorithm>
#include <cmath>
#include <itkGDCMImageIO.h>
#include <itkMetaDataObject.h>
#include <itkMetaImageIO.h>
#include <itkNiftiImageIO.h>
#include <itkTIFFImageIO.h>
#include <sstream>

namespace {

using Component = itk::IOComponentEnum;

itk::ImageIOBase::Pointer makeImageIo(HxFileKind kind)
{
    switch (kind) {
    case HxFileKind::nifti:
        return itk::NiftiImageIO::New().GetPointer();
    case HxFileKind::meta:
        return itk::MetaImageIO::New().GetPointer();
    case HxFileKind::dicom:
        return itk::GDCMImageIO::New().GetPointer();
    case HxFileKind::tiff:
        return itk::TIFFImageIO::New().GetPointer();
    case HxFileKind::png:
    case HxFileKind::jpeg:
    case HxFileKind::bmp:
    case HxFileKind::nrrd:
    case HxFileKind::unknown:
        break;
    }
    return nullptr;
}

struct ComponentName
{
    Component component;
    HxFileType type;
};

// The first entry of a type is the one for writing.
constexpr ComponentName kComponents[] = {
    {Component::UCHAR, HxFileType::uint8},      {Component::CHAR, HxFileType::int8},
    {Component::USHORT, HxFileType::uint16},    {Component::SHORT, HxFileType::int16},
    {Component::UINT, HxFileType::uint32},      {Component::INT, HxFileType::int32},
    {Component::ULONG, HxFileType::uint64},     {Component::LONG, HxFileType::int64},
    {Component::ULONGLONG, HxFileType::uint64}, {Component::LONGLONG, HxFileType::int64},
    {Component::FLOAT, HxFileType::float32},    {Component::DOUBLE, HxFileType::float64},
};

// The library's texts run over several lines, with class names, addresses and the path again.
std::string sentence(const itk::ExceptionObject& error, const std::string& path)
{
    std::string text = error.GetDescription();
    for (auto at = text.find(path); at != std::string::npos; at = text.find(path, at + 2))
        text.replace(at, path.size(), "it");
    std::istringstream in(text);
    std::string plain;
    for (std::string word; in >> word;) {
        // "NiftiImageIO(0x55d0c8):" tells a user nothing.
        const bool isAddress = word.find("(0x") != std::string::npos && word.back() == ':';
        if (word != "ITK" && word != "ERROR:" && !isAddress) plain += (plain.empty() ? "" : " ") + word;
    }
    while (!plain.empty() && std::string(".!:").find(plain.back()) != std::string::npos) plain.pop_back();
    return plain.empty() ? "" : " (" + plain + ")";
}

// Runs calls of the library; its exceptions become errors that begin with our own words.
template <class Call>
void guarded(const std::string& path, const std::string& failure, Call&& call)
{
    const HxQuietLibraries quiet;
    try {
        call();
    } catch (const itk::ExceptionObject& error) {
        throw HxFileError(path, failure + sentence(error, path));
    } catch (const HxFileError&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw HxFileError(path, "not enough memory");
    } catch (const std::exception& error) {
        throw HxFileError(path, failure + " (" + error.what() + ")");
    }
}

void setWholeRegion(itk::ImageIOBase& io)
{
    const unsigned int n = io.GetNumberOfDimensions();
    itk::ImageIORegion region(n);
    for (unsigned int k = 0; k < n; ++k) {
        region.SetIndex(k, 0);
        region.SetSize(k, io.GetDimensions(k));
    }
    io.SetIORegion(region);
}

} // namespace

struct HxItkFile::Library
{
    itk::ImageIOBase::Pointer io;
};

HxItkFile::HxItkFile(const std::string& path, HxFileKind fileKind)
    : HxSliceFile(path), kind(fileKind), library(std::make_unique<Library>(Library{makeImageIo(fileKind)}))
{
    if (kind == HxFileKind::tiff) hxCheckTiffPages(file);
    itk::ImageIOBase& io = *library->io;
    guarded(file, std::string("the ") + hxNameOf(kind) + " header cannot be read", [&] {
        io.SetFileName(file);
        io.SetExpandRGBPalette(false); // a palette's indices are the values
        if (!io.CanReadFile(file.c_str()))
            throw HxFileError(file, std::string("is no readable ") + hxNameOf(kind) + " file");
        io.ReadImageInformation();
    });
    const unsigned int n = io.GetNumberOfDimensions();
    for (unsigned int k = 3; k < n; ++k)
        if (io.GetDimensions(k) > 1)
            throw HxFileError(file,
                              "the data have " + std::to_string(n) + " dimensions; only three can be read");
    for (unsigned int k = 0; k < std::min(n, 3u); ++k) {
        size[k] = io.GetDimensions(k);
        const double spacing = std::abs(io.GetSpacing(k));
        if (std::isfinite(spacing) && spacing > 0) place.spacing[k] = spacing;
        place.origin[k] = io.GetOrigin(k) + 0.0; // no negative zero
        const std::vector<double> direction = io.GetDirection(k);
        double unit[3] = {0, 0, 0};
        for (std::size_t x = 0; x < std::min<std::size_t>(direction.size(), 3); ++x)
            unit[x] = direction[x] + 0.0;
        // A matrix of a foreign file may stretch its axes; the spacing says all of that here.
        constexpr double kLengthTolerance = 1e-6;
        const double length = std::hypot(unit[0], unit[1], unit[2]);
        if (std::isfinite(length) && length > 0 && std::abs(length - 1) > kLengthTolerance) {
            place.spacing[k] *= length;
            for (double& x : unit) x /= length;
        }
        place.setAxis(static_cast<int>(k), unit);
    }
    const auto* found =
        std::find_if(std::begin(kComponents), std::end(kComponents),
                     [&](const ComponentName& c) { return c.component == io.GetComponentType(); });
    if (found == std::end(kComponents)) throw HxFileError(file, "its element type cannot be read");
    elementType = found->type;
}

HxItkFile::~HxItkFile() = default;

bool HxItkFile::isDicom(const std::string& path)
{
    bool is = false;
    const auto ask = [&](int) {
        guarded(path, "cannot be read", [&] { is = itk::GDCMImageIO::New()->CanReadFile(path.c_str()); });
    };
    constexpr std::size_t kExtraBytes = std::size_t(256) << 20;
    if (HxLibraryProbe::firstFailure(1, kExtraBytes, ask)) return false;
    ask(0);
    return is;
}

std::string HxItkFile::dicomText(const char* tag) const
{
    std::string text;
    itk::ExposeMetaData<std::string>(library->io->GetMetaDataDictionary(), tag, text);
    const auto last = text.find_last_not_of(std::string(" \0", 2));
    return last == std::string::npos ? "" : text.substr(0, last + 1);
}

HxVolume HxItkFile::read() const
{
    itk::ImageIOBase& io = *library->io;
    checkScalar();
    if (kind == HxFileKind::dicom) hxCheckDicomPixels(file);
    HxVolume volume(file, size, elementType);
    volume.geometry = place;
    guarded(file, "the voxels cannot be read", [&] {
        setWholeRegion(io);
        if (static_cast<std::size_t>(io.GetImageSizeInBytes()) != volume.bytes())
            throw HxFileError(file, "the header and the voxels contradict each other");
        io.Read(volume.data());
    });
    return volume;
}

void HxItkFile::checkScalar() const
{
    const unsigned int components = library->io->GetNumberOfComponents();
    if (components != 1)
        throw HxFileError(file, "has " + std::to_string(components) +
                                    " values per voxel, such as colors; only images of one can be read");
}

void HxItkFile::write(const std::string& path, const std::string& named, HxFileKind kind,
                      const unsigned long* dims, HxFileType type, const void* voxels,
                      const HxVolumeGeometry& geometry)
{
    const itk::ImageIOBase::Pointer io = makeImageIo(kind);
    guarded(named, std::string("cannot be written as ") + hxNameOf(kind), [&] {
        io->SetFileName(path);
        io->SetNumberOfDimensions(3);
        for (unsigned int k = 0; k < 3; ++k) {
            double unit[3];
            geometry.getAxis(static_cast<int>(k), unit);
            io->SetDimensions(k, dims[k]);
            io->SetSpacing(k, geometry.spacing[k]);
            io->SetOrigin(k, geometry.origin[k]);
            io->SetDirection(k, std::vector<double>(unit, unit + 3));
        }
        io->SetPixelType(itk::IOPixelEnum::SCALAR);
        io->SetNumberOfComponents(1);
        io->SetComponentType(
            std::find_if(std::begin(kComponents), std::end(kComponents), [type](const ComponentName& c) {
                return c.type == type;
            })->component);
        io->SetUseCompression(false);
        setWholeRegion(*io);
        io->Write(voxels);
    });
}
