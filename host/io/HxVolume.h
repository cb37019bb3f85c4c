#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

/// Element types as files know them. The host's fields have fewer, see HxVolume::toHostType.
enum class HxFileType
{
    int8,
    uint8,
    int16,
    uint16,
    int32,
    uint32,
    int64,
    uint64,
    float32,
    float64
};

/// Bytes per element.
std::size_t hxSizeOf(HxFileType type);

/// "8-bit signed integers" and so on, for messages.
const char* hxNameOf(HxFileType type);

/// Host element code of a type; -1 for the types that no field has.
int hxHostCode(HxFileType type);

/// The type of a host element code. Only for the seven codes of image data.
HxFileType hxFileType(int hostCode);

/// The first of the host's types that holds all values of both.
HxFileType hxCommonType(HxFileType a, HxFileType b);

/// Calls action(T{}) with T the C++ element of the type.
template <class Action>
auto hxDispatch(HxFileType type, Action&& action)
{
    switch (type) {
    case HxFileType::int8:
        return action(static_cast<signed char>(0));
    case HxFileType::uint8:
        return action(static_cast<unsigned char>(0));
    case HxFileType::int16:
        return action(static_cast<short>(0));
    case HxFileType::uint16:
        return action(static_cast<unsigned short>(0));
    case HxFileType::int32:
        return action(0);
    case HxFileType::uint32:
        return action(0U);
    case HxFileType::int64:
        return action(0LL);
    case HxFileType::uint64:
        return action(0ULL);
    case HxFileType::float32:
        return action(0.0F);
    case HxFileType::float64:
        break;
    }
    return action(0.0);
}

/// Where the voxels of a file lie.
struct HxVolumeGeometry
{
    /// Distance of neighbouring voxel centres along i, j, k; above 0.
    double spacing[3] = {1, 1, 1};
    /// Position of the centre of voxel (0, 0, 0), in LPS.
    double origin[3] = {0, 0, 0};
    /// Unit vectors of the axes, as the columns of a matrix that is written row by row.
    double directions[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    /// Unequal slices: a position per slice along k, rising, the first equal to origin[2]; fields keep
    /// them in single precision;
    /// spacing[2] is their mean distance. Empty for equal slices.
    std::vector<double> zPositions;

    void setAxis(int axis, const double* unitVector);
    void getAxis(int axis, double* unitVector) const;
};

/// A volume on its way between a file and a field: one component, x fastest. Owns its voxels, which
/// are malloc'ed so that a field can take them over.
class HxVolume
{
public:
    HxVolume() = default;

    /// Room for a volume; the voxels are not initialised.
    ///
    /// file  named in the error
    /// throws HxFileError if the sizes are zero or too large, or memory is short
    HxVolume(const std::string& file, const unsigned long* dims, HxFileType type);

    unsigned long dims[3] = {0, 0, 0};
    HxFileType type = HxFileType::uint8;
    HxVolumeGeometry geometry;
    /// Text of the parameter tree that came with the file (hxParamTree), empty without.
    std::string parameterText;

    void* data() { return memory.get(); }
    const void* data() const { return memory.get(); }
    std::size_t count() const { return dims[0] * dims[1] * dims[2]; }
    std::size_t bytes() const { return count() * hxSizeOf(type); }

    /// Hands the voxels to the caller, who frees them.
    void* release() { return memory.release(); }

    /// Changes the voxels to one of the host's seven types without loss: 8-bit signed to 16 bits,
    /// 64 bits to the smallest of int, unsigned int and double that holds all values exactly.
    /// throws HxFileError if none does
    void toHostType(const std::string& file);

    /// Changes the voxels to labels, bytes, within the memory that they have.
    ///
    /// returns the largest label
    /// throws HxFileError, naming value and voxel, unless all values are whole numbers from 0 to 255
    int toLabels(const std::string& file);

    /// Changes the element type; the caller knows that all values fit.
    void convert(const std::string& file, HxFileType target);

    /// The voxel of an element index, as "(i, j, k)".
    std::string voxelName(std::size_t index) const;

private:
    struct Free
    {
        void operator()(void* p) const { std::free(p); }
    };

    std::unique_ptr<void, Free> memory;
};
