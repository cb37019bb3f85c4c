#include "io/HxMetaImageFile.h"

#include "io/HxAtomicFile.h"
#include "io/HxFileError.h"
#include "io/HxItkFile.h"
#include "io/HxNumberText.h"
#include "io/HxVoxelSource.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

namespace {

struct ElementType
{
    const char* name;
    HxFileType type;
};

constexpr ElementType kElementTypes[] = {
    {"MET_CHAR", HxFileType::int8},         {"MET_UCHAR", HxFileType::uint8},
    {"MET_SHORT", HxFileType::int16},       {"MET_USHORT", HxFileType::uint16},
    {"MET_INT", HxFileType::int32},         {"MET_UINT", HxFileType::uint32},
    {"MET_LONG", HxFileType::int32},        {"MET_ULONG", HxFileType::uint32},
    {"MET_LONG_LONG", HxFileType::int64},   {"MET_FLOAT", HxFileType::float32},
    {"MET_ULONG_LONG", HxFileType::uint64}, {"MET_DOUBLE", HxFileType::float64},
};

constexpr std::streamoff kLongestHeader = 1 << 20;

std::string trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t\r");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

struct Header
{
    std::string path;
    std::map<std::string, std::string> fields;
    std::vector<std::string> listed; // lines after "ElementDataFile = LIST"
    long long end = 0;               // where voxels in the same file begin

    explicit Header(const std::string& file) : path(file)
    {
        std::ifstream in(path, std::ios::binary);
        for (std::string line; std::getline(in, line) && in.tellg() < kLongestHeader;) {
            const auto equals = line.find('=');
            if (equals == std::string::npos) continue;
            const std::string key = trimmed(line.substr(0, equals));
            fields[key] = trimmed(line.substr(equals + 1));
            if (key != "ElementDataFile") continue;
            end = static_cast<long long>(in.tellg());
            if (fields[key].compare(0, 4, "LIST") == 0)
                while (std::getline(in, line))
                    if (!trimmed(line).empty()) listed.push_back(trimmed(line));
            return;
        }
        fail("the MetaImage header names no ElementDataFile");
    }

    std::string text(const std::string& key, const std::string& otherwise = "") const
    {
        const auto found = fields.find(key);
        return found == fields.end() ? otherwise : found->second;
    }

    bool flag(const std::string& key) const
    {
        const std::string value = text(key);
        return value == "True" || value == "true" || value == "1" || value == "TRUE";
    }

    std::vector<long long> numbers(const std::string& key) const
    {
        std::istringstream in(text(key));
        std::vector<long long> all;
        for (long long n = 0; in >> n;) all.push_back(n);
        return all;
    }

    [[noreturn]] void fail(const std::string& reason) const { throw HxFileError(path, reason); }
};

void readSizes(const Header& header, unsigned long* dims)
{
    const std::vector<long long> sizes = header.numbers("DimSize");
    const std::vector<long long> numDims = header.numbers("NDims");
    if (numDims.size() != 1 || numDims[0] != static_cast<long long>(sizes.size()) || sizes.size() < 2)
        header.fail("the MetaImage header has no sizes that fit its number of dimensions");
    for (std::size_t k = 0; k < sizes.size(); ++k) {
        if (sizes[k] < 1) header.fail("the MetaImage header announces a size of " + std::to_string(sizes[k]));
        if (k < 3)
            dims[k] = static_cast<unsigned long>(sizes[k]);
        else if (sizes[k] > 1)
            header.fail("the data have " + std::to_string(sizes.size()) +
                        " dimensions; only three can be read");
    }
    const std::string channels = header.text("ElementNumberOfChannels", "1");
    if (channels != "1") header.fail("has " + channels + " values per voxel; only images of one can be read");
}

HxFileType readType(const Header& header)
{
    const std::string name = header.text("ElementType");
    const auto* found = std::find_if(std::begin(kElementTypes), std::end(kElementTypes),
                                     [&](const ElementType& t) { return name == t.name; });
    if (found == std::end(kElementTypes)) header.fail("the element type \"" + name + "\" cannot be read");
    return found->type;
}

HxVoxelSource sourceOf(const Header& header)
{
    HxVoxelSource source;
    source.header = header.path;
    source.isBigEndian = header.flag("BinaryDataByteOrderMSB") || header.flag("ElementByteOrderMSB");
    if (header.text("BinaryData", "True") == "False")
        source.encoding = HxVoxelSource::Encoding::text;
    else if (header.flag("CompressedData"))
        source.encoding = HxVoxelSource::Encoding::deflated;

    const std::string place = header.text("ElementDataFile");
    std::istringstream words(place);
    std::string pattern;
    long long first = 0;
    long long last = 0;
    long long step = 1;
    if (place == "LOCAL" || place == "Local" || place == "local") {
        source.files = {header.path};
        source.offset = header.end;
        return source;
    }
    if (!header.listed.empty())
        source.files = header.listed;
    else if (place.find('%') != std::string::npos && words >> pattern >> first >> last) {
        words >> step;
        source.files = HxVoxelSource::numberedFiles(header.path, pattern, first, last, step);
    } else if (!place.empty())
        source.files = {place};
    else
        header.fail("the MetaImage header names no data file");

    const std::vector<long long> skip = header.numbers("HeaderSize");
    if (!skip.empty()) source.byteSkip = std::max(-1LL, skip[0]);
    return source;
}

std::string headerText(const unsigned long* dims, HxFileType type, const HxVolumeGeometry& geometry,
                       const std::string& dataFile)
{
    std::string text = "ObjectType = Image\nNDims = 3\nBinaryData = True\nBinaryDataByteOrderMSB = False\n"
                       "CompressedData = False\nTransformMatrix =";
    for (int k = 0; k < 3; ++k) { // one axis after the other
        double unit[3];
        geometry.getAxis(k, unit);
        for (double x : unit) text += " " + hxNumberText(x);
    }
    text += "\nOffset =";
    for (double x : geometry.origin) text += " " + hxNumberText(x);
    text += "\nCenterOfRotation = 0 0 0\nElementSpacing =";
    for (double x : geometry.spacing) text += " " + hxNumberText(x);
    text += "\nDimSize =";
    for (int k = 0; k < 3; ++k) text += " " + std::to_string(dims[k]);
    const auto* found = std::find_if(std::begin(kElementTypes), std::end(kElementTypes),
                                     [type](const ElementType& t) { return t.type == type; });
    return text + "\nElementType = " + found->name + "\nElementDataFile = " + dataFile + "\n";
}

} // namespace

HxVolume HxMetaImageFile::read(const std::string& path)
{
    const Header header(path);
    unsigned long dims[3] = {1, 1, 1};
    readSizes(header, dims);
    const HxFileType type = readType(header);
    const HxVoxelSource source = sourceOf(header);
    source.check({dims[0], dims[1], dims[2]}, type);
    const HxItkFile library(path, HxFileKind::meta);
    HxVolume volume(path, dims, type);
    volume.geometry = library.geometry();
    source.read(volume.data(), volume.count(), type);
    return volume;
}

std::string HxMetaImageFile::dataFileOf(const std::string& path)
{
    try {
        const HxVoxelSource source = sourceOf(Header(path));
        return source.files.size() == 1 && source.files[0] != path ? source.files[0] : "";
    } catch (const HxFileError&) {
        return ""; // any other file, or none
    }
}

void HxMetaImageFile::write(HxAtomicFile& file, HxAtomicFile* dataFile, const unsigned long* dims,
                            HxFileType type, const void* voxels, const HxVolumeGeometry& geometry)
{
    const std::string place =
        dataFile ? std::filesystem::path(dataFile->targetName()).filename().string() : std::string("LOCAL");
    file.write(headerText(dims, type, geometry, place));
    (dataFile ? *dataFile : file).write(voxels, dims[0] * dims[1] * dims[2] * hxSizeOf(type));
}
