#include "io/HxNiftiFile.h"

#include "io/HxAtomicFile.h"
#include "io/HxFileError.h"
#include "io/HxGzipWriter.h"
#include "io/HxItkFile.h"
#include "io/HxVoxelSource.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>

namespace {

// Layout of the header: nifti1.h of the NIfTI data format working group, 2003.
constexpr std::size_t kHeaderSize = 348;
constexpr std::size_t kDataStart = 352; // of a single file without extensions
constexpr std::size_t kDimAt = 40;
constexpr std::size_t kDatatypeAt = 70;
constexpr std::size_t kVoxOffsetAt = 108;
constexpr std::size_t kSlopeAt = 112;
constexpr std::size_t kInterceptAt = 116;
constexpr std::size_t kSformCodeAt = 254;
constexpr std::size_t kSrowAt = 280; // three rows of four floats
constexpr std::size_t kMagicAt = 344;
constexpr unsigned long kLongestSide = 32767;

struct Datatype
{
    int code;
    HxFileType type;
};

constexpr Datatype kDatatypes[] = {
    {2, HxFileType::uint8},     {4, HxFileType::int16},    {8, HxFileType::int32},
    {16, HxFileType::float32},  {64, HxFileType::float64}, {256, HxFileType::int8},
    {512, HxFileType::uint16},  {768, HxFileType::uint32}, {1024, HxFileType::int64},
    {1280, HxFileType::uint64},
};

struct Header
{
    unsigned long dims[3] = {1, 1, 1};
    HxFileType type = HxFileType::uint8;
    bool isBigEndian = false;
    bool isSingleFile = true;
    float dataOffset = 0;
    float slope = 0;
    float intercept = 0;
    int sformCode = 0;
    double sform[3][4] = {}; // from voxel indices to RAS

    bool isScaled() const
    {
        const bool isIdentity = slope == 1 && intercept == 0;
        return slope != 0 && std::isfinite(slope) && std::isfinite(intercept) && !isIdentity;
    }
};

Header parseHeader(const std::string& path)
{
    const std::string bytes = HxVoxelSource::firstBytes(path, kHeaderSize);
    if (bytes.size() < kHeaderSize) throw HxFileError(path, "the NIfTI header ends early");
    Header header;
    std::uint32_t size;
    std::memcpy(&size, bytes.data(), sizeof size);
    header.isBigEndian = size == __builtin_bswap32(kHeaderSize);
    if (size != kHeaderSize && !header.isBigEndian) throw HxFileError(path, "is no NIfTI-1 file");

    const auto shortAt = [&](std::size_t at) {
        std::uint16_t v;
        std::memcpy(&v, bytes.data() + at, sizeof v);
        return static_cast<std::int16_t>(header.isBigEndian ? __builtin_bswap16(v) : v);
    };
    const auto floatAt = [&](std::size_t at) {
        std::uint32_t v;
        std::memcpy(&v, bytes.data() + at, sizeof v);
        if (header.isBigEndian) v = __builtin_bswap32(v);
        float f;
        std::memcpy(&f, &v, sizeof f);
        return f;
    };
    const int numDims = shortAt(kDimAt);
    if (numDims < 1 || numDims > 7)
        throw HxFileError(path, "the NIfTI header announces " + std::to_string(numDims) + " dimensions");
    for (int k = 0; k < numDims; ++k) {
        const int n = shortAt(kDimAt + 2 * static_cast<std::size_t>(k + 1));
        if (n < 1) throw HxFileError(path, "the NIfTI header announces a size of " + std::to_string(n));
        if (k < 3)
            header.dims[k] = static_cast<unsigned long>(n);
        else if (n > 1)
            throw HxFileError(path, "has " + std::to_string(n) +
                                        " volumes or values per voxel; only one can be read");
    }
    const int code = shortAt(kDatatypeAt);
    const auto* found = std::find_if(std::begin(kDatatypes), std::end(kDatatypes),
                                     [code](const Datatype& d) { return d.code == code; });
    if (found == std::end(kDatatypes))
        throw HxFileError(path, "its NIfTI data type " + std::to_string(code) +
                                    " (color, complex or unknown) cannot be read");
    header.type = found->type;
    header.isSingleFile = bytes[kMagicAt + 1] == '+';
    header.dataOffset = floatAt(kVoxOffsetAt);
    header.slope = floatAt(kSlopeAt);
    header.intercept = floatAt(kInterceptAt);
    header.sformCode = shortAt(kSformCodeAt);
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 4; ++column)
            header.sform[row][column] = floatAt(kSrowAt + 4 * (4 * row + column));
    return header;
}

// RAS, the frame of NIfTI, is LPS with the first two axes turned round.
constexpr double kRasToLps[3] = {-1, -1, 1};

/// The geometry of the "sform" matrix. Returns false for a file without one, or with one that maps the
/// volume onto a plane.
bool sformGeometry(const Header& header, HxVolumeGeometry& geometry)
{
    if (header.sformCode <= 0) return false;
    HxVolumeGeometry found;
    double axes[3][3];
    for (int k = 0; k < 3; ++k) {
        for (int row = 0; row < 3; ++row) axes[k][row] = kRasToLps[row] * header.sform[row][k];
        found.spacing[k] = std::hypot(axes[k][0], axes[k][1], axes[k][2]);
        if (!(found.spacing[k] > 0) || !std::isfinite(found.spacing[k])) return false;
        for (double& component : axes[k]) component /= found.spacing[k];
        found.setAxis(k, axes[k]);
        found.origin[k] = kRasToLps[k] * header.sform[k][3];
        if (!std::isfinite(found.origin[k])) return false;
    }
    const double volume = axes[0][0] * (axes[1][1] * axes[2][2] - axes[1][2] * axes[2][1]) -
                          axes[0][1] * (axes[1][0] * axes[2][2] - axes[1][2] * axes[2][0]) +
                          axes[0][2] * (axes[1][0] * axes[2][1] - axes[1][1] * axes[2][0]);
    constexpr double kFlat = 1e-6;
    if (std::fabs(volume) < kFlat) return false;
    geometry = found;
    return true;
}

/// Puts the exact matrix into a header; the library's own is without the skew of the axes.
void setSform(std::string& header, const HxVolumeGeometry& geometry)
{
    float rows[3][4];
    for (int k = 0; k < 3; ++k) {
        double axis[3];
        geometry.getAxis(k, axis);
        for (int row = 0; row < 3; ++row)
            rows[row][k] = static_cast<float>(kRasToLps[row] * axis[row] * geometry.spacing[k]);
        rows[k][3] = static_cast<float>(kRasToLps[k] * geometry.origin[k]);
    }
    std::memcpy(header.data() + kSrowAt, rows, sizeof rows);
}

// The .img file of a .hdr file, packed or not.
std::string imageFile(const std::string& path)
{
    std::filesystem::path name = path;
    if (name.extension() == ".gz") name.replace_extension();
    for (const char* suffix : {".img", ".img.gz"}) {
        const std::filesystem::path image = std::filesystem::path(name).replace_extension(suffix);
        if (std::filesystem::exists(image)) return image.string();
    }
    throw HxFileError(path, "the .img file with its voxels does not exist");
}

HxVoxelSource sourceOf(const std::string& path, const Header& header)
{
    const long long least = header.isSingleFile ? kHeaderSize : 0;
    if (!(header.dataOffset >= 0 && header.dataOffset < 1e9F))
        throw HxFileError(path, "the NIfTI header gives no place of the voxels");
    const std::string file = header.isSingleFile ? path : imageFile(path);
    HxVoxelSource source;
    source.header = path;
    source.files = {header.isSingleFile ? path : std::filesystem::absolute(file).string()};
    source.isBigEndian = header.isBigEndian;
    source.byteSkip = std::max(least, static_cast<long long>(header.dataOffset));
    if (HxVoxelSource::isGzip(file)) source.encoding = HxVoxelSource::Encoding::deflated;
    return source;
}

template <class T>
void scaleAll(void* voxels, std::size_t count, double slope, double intercept)
{
    T* v = static_cast<T*>(voxels);
    for (std::size_t i = 0; i < count; ++i) v[i] = static_cast<T>(v[i] * slope + intercept);
}

void applyScaling(const std::string& path, HxVolume& volume, const Header& header)
{
    const bool isNarrow = hxSizeOf(volume.type) < 4 || volume.type == HxFileType::float32;
    volume.convert(path, isNarrow ? HxFileType::float32 : HxFileType::float64);
    if (isNarrow)
        scaleAll<float>(volume.data(), volume.count(), header.slope, header.intercept);
    else
        scaleAll<double>(volume.data(), volume.count(), header.slope, header.intercept);
}

// The library writes a file of one voxel with this geometry; its header then gets the true sizes.
std::string headerBytes(const std::string& target, const unsigned long* dims, HxFileType type,
                        const HxVolumeGeometry& geometry)
{
    const HxAtomicFile oneVoxel(target, ".nii"); // never committed, so it vanishes
    oneVoxel.checkSpace(kDataStart);
    const unsigned long one[3] = {1, 1, 1};
    const double zero = 0;
    HxItkFile::write(oneVoxel.path(), target, HxFileKind::nifti, one, type, &zero, geometry);
    std::string bytes = HxVoxelSource::firstBytes(oneVoxel.path(), kDataStart);
    if (bytes.size() < kDataStart) throw HxFileError(target, "the NIfTI header cannot be written");
    const std::int16_t sizes[8] = {3,
                                   static_cast<std::int16_t>(dims[0]),
                                   static_cast<std::int16_t>(dims[1]),
                                   static_cast<std::int16_t>(dims[2]),
                                   1,
                                   1,
                                   1,
                                   1};
    std::memcpy(bytes.data() + kDimAt, sizes, sizeof sizes);
    const float start = kDataStart;
    std::memcpy(bytes.data() + kVoxOffsetAt, &start, sizeof start);
    setSform(bytes, geometry);
    return bytes;
}

} // namespace

HxVolume HxNiftiFile::read(const std::string& path)
{
    const Header header = parseHeader(path);
    const HxVoxelSource source = sourceOf(path, header);
    source.check({header.dims[0], header.dims[1], header.dims[2]}, header.type);
    HxVolume volume(path, header.dims, header.type);
    // A file may have two matrices that differ. The sform is the one that programs of the field follow;
    // the library prefers the other.
    if (!sformGeometry(header, volume.geometry))
        volume.geometry = HxItkFile(path, HxFileKind::nifti).geometry();
    source.read(volume.data(), volume.count(), volume.type);
    if (header.isScaled()) applyScaling(path, volume, header);
    return volume;
}

void HxNiftiFile::write(HxAtomicFile& file, const unsigned long* dims, HxFileType type, const void* voxels,
                        const HxVolumeGeometry& geometry, bool gzip)
{
    for (int k = 0; k < 3; ++k)
        if (dims[k] > kLongestSide)
            throw HxFileError(file.targetName(), "NIfTI files hold at most 32767 voxels along an axis");
    const std::string header = headerBytes(file.targetName(), dims, type, geometry);
    const std::size_t bytes = dims[0] * dims[1] * dims[2] * hxSizeOf(type);
    if (gzip) {
        HxGzipWriter packed(file);
        packed.write(header.data(), header.size());
        packed.write(voxels, bytes);
        packed.finish();
    } else {
        file.write(header);
        file.write(voxels, bytes);
    }
}
