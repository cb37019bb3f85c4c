#include "io/HxFileKind.h"

#include "io/HxFileError.h"
#include "io/HxItkFile.h"
#include "io/HxVoxelSource.h"

#include <string_view>

namespace {

bool isMetaHeader(const std::string& start)
{
    const std::string_view line = std::string_view(start).substr(0, start.find('\n'));
    for (const char* key : {"ObjectType", "NDims", "Comment", "ObjectSubType"})
        if (line.substr(0, std::string_view(key).size()) == key)
            return start.find("NDims") != std::string::npos && start.find('=') != std::string::npos;
    return false;
}

} // namespace

HxFileKind hxFileKind(const std::string& path)
{
    using namespace std::literals;
    const std::string start = HxVoxelSource::firstBytes(path, 512);
    const auto has = [&](std::size_t at, std::string_view magic) {
        return start.size() >= at + magic.size() && start.compare(at, magic.size(), magic) == 0;
    };
    if (has(0, "NRRD000")) return HxFileKind::nrrd;
    if (has(344, "n+1\0"sv) || has(344, "ni1\0"sv)) return HxFileKind::nifti;
    if (has(128, "DICM")) return HxFileKind::dicom;
    if (has(0, "\x89PNG\r\n\x1a\n")) return HxFileKind::png;
    if (has(0, "\xff\xd8\xff")) return HxFileKind::jpeg;
    for (std::string_view magic : {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv})
        if (has(0, magic)) return HxFileKind::tiff;
    if (has(0, "BM")) return HxFileKind::bmp;
    if (isMetaHeader(start)) return HxFileKind::meta;
    // Old files lack the DICOM preamble and begin with an element of group 2 or 8; only the library can tell.
    const bool mayBeDicom = has(0, "\2\0"sv) || has(0, "\10\0"sv);
    return mayBeDicom && HxItkFile::isDicom(path) ? HxFileKind::dicom : HxFileKind::unknown;
}

HxFileKind hxSeriesKind(const std::string& path)
{
    try {
        const HxFileKind kind = hxFileKind(path);
        return kind == HxFileKind::dicom || hxIsSliceKind(kind) ? kind : HxFileKind::unknown;
    } catch (const HxFileError&) {
        return HxFileKind::unknown; // who reads it will tell why that fails
    }
}

const char* hxNameOf(HxFileKind kind)
{
    switch (kind) {
    case HxFileKind::nrrd:
        return "NRRD";
    case HxFileKind::nifti:
        return "NIfTI";
    case HxFileKind::meta:
        return "MetaImage";
    case HxFileKind::dicom:
        return "DICOM";
    case HxFileKind::tiff:
        return "TIFF";
    case HxFileKind::png:
        return "PNG";
    case HxFileKind::jpeg:
        return "JPEG";
    case HxFileKind::bmp:
        return "BMP";
    case HxFileKind::unknown:
        break;
    }
    return "unknown";
}

bool hxIsSliceKind(HxFileKind kind)
{
    return kind == HxFileKind::tiff || kind == HxFileKind::png || kind == HxFileKind::jpeg ||
           kind == HxFileKind::bmp;
}
