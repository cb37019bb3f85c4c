#include "io/HxSliceSeries.h"

#include "io/HxFileError.h"
#include "io/HxFileKind.h"
#include "io/HxItkFile.h"
#include "io/HxLibraryProbe.h"
#include "io/HxNaturalOrder.h"
#include "io/HxPictureFile.h"
#include "io/hxStopIfInterrupted.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace {

std::string sizeText(const HxSliceFile& file)
{
    std::string text = std::to_string(file.dims()[0]) + " x " + std::to_string(file.dims()[1]);
    return file.dims()[2] == 1 ? text : text + " x " + std::to_string(file.dims()[2]);
}

// Packed pixels grow to some tens of times of the file; a file that asks for more is damaged.
std::size_t memoryFor(const std::vector<std::string>& files)
{
    constexpr std::size_t kLeast = std::size_t(256) << 20;
    constexpr std::size_t kGrowth = 64;
    std::size_t largest = 0;
    for (const std::string& file : files)
        largest = std::max<std::size_t>(largest, std::filesystem::file_size(file));
    return kLeast + kGrowth * largest;
}

} // namespace

HxVolume HxSliceSeries::readStack(std::vector<std::string> files, const std::string& named)
{
    std::sort(files.begin(), files.end(), hxNaturalLess);
    std::vector<std::unique_ptr<HxSliceFile>> slices;
    for (const std::string& file : files) slices.push_back(open(file, hxFileKind(file)));
    return join(slices, named);
}

void HxSliceSeries::probeDicom(const std::vector<std::string>& files)
{
    const auto readOne = [&](int i) {
        HxItkFile(files[static_cast<std::size_t>(i)], HxFileKind::dicom).read();
    };
    const auto failure =
        HxLibraryProbe::firstFailure(static_cast<int>(files.size()), memoryFor(files), readOne);
    if (!failure) return;
    const std::string& file = files[static_cast<std::size_t>(failure->call)];
    const std::string named = file + ": ";
    if (failure->text.size() <= named.size() + 1 || failure->text.compare(0, named.size(), named) != 0)
        throw HxFileError(file, "the DICOM file is damaged");
    throw HxFileError(file, failure->text.substr(named.size(), failure->text.size() - named.size() - 1));
}

std::unique_ptr<HxSliceFile> HxSliceSeries::open(const std::string& path, HxFileKind kind)
{
    if (kind == HxFileKind::dicom) probeDicom({path});
    if (kind == HxFileKind::dicom || kind == HxFileKind::tiff) return std::make_unique<HxItkFile>(path, kind);
    return std::make_unique<HxPictureFile>(path, kind);
}

HxVolume HxSliceSeries::join(const std::vector<std::unique_ptr<HxSliceFile>>& files, const std::string& named)
{
    const HxSliceFile& first = *files.front();
    HxFileType type = first.type();
    for (const auto& file : files) {
        if (file->dims()[2] != 1)
            throw HxFileError(file->path(), "holds " + std::to_string(file->dims()[2]) +
                                                " slices, so it cannot be one slice of a series");
        if (file->dims()[0] != first.dims()[0] || file->dims()[1] != first.dims()[1])
            throw HxFileError(file->path(), "has " + sizeText(*file) +
                                                " pixels, but the other slices of its series have " +
                                                sizeText(first));
        if (file->type() != type) type = hxCommonType(type, file->type());
    }
    const unsigned long dims[3] = {first.dims()[0], first.dims()[1], files.size()};
    HxVolume volume(named, dims, type);
    volume.geometry = first.geometry();
    const std::size_t sliceBytes = volume.bytes() / files.size();
    char* to = static_cast<char*>(volume.data());
    for (const auto& file : files) {
        hxStopIfInterrupted(named);
        HxVolume slice = file->read();
        slice.convert(file->path(), type);
        std::memcpy(to, slice.data(), sliceBytes);
        to += sliceBytes;
    }
    return volume;
}
