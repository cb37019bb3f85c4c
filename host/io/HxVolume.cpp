#include "io/HxVolume.h"

#include "io/HxFileError.h"
#include "mc/McMemory.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

namespace {

struct TypeInfo
{
    HxFileType type;
    int hostCode;
    const char* name;
};

constexpr TypeInfo kTypes[] = {
    {HxFileType::uint8, 0, "8-bit unsigned integers"},
    {HxFileType::int16, 1, "16-bit signed integers"},
    {HxFileType::int32, 2, "32-bit signed integers"},
    {HxFileType::float32, 3, "32-bit floating-point numbers"},
    {HxFileType::float64, 4, "64-bit floating-point numbers"},
    {HxFileType::uint16, 7, "16-bit unsigned integers"},
    {HxFileType::uint32, 8, "32-bit unsigned integers"},
    {HxFileType::int8, -1, "8-bit signed integers"},
    {HxFileType::int64, -1, "64-bit signed integers"},
    {HxFileType::uint64, -1, "64-bit unsigned integers"},
};

const TypeInfo& infoOf(HxFileType type)
{
    return *std::find_if(std::begin(kTypes), std::end(kTypes),
                         [type](const TypeInfo& t) { return t.type == type; });
}

template <class To, class From>
void convertAll(void* out, const void* in, std::size_t count)
{
    const From* from = static_cast<const From*>(in);
    To* to = static_cast<To*>(out);
    for (std::size_t i = 0; i < count; ++i) to[i] = static_cast<To>(from[i]);
}

// The smallest host type for 64-bit integers; `bad` is the index of a value that no type holds.
template <class T>
HxFileType typeForWideIntegers(const T* values, std::size_t count, std::size_t& bad)
{
    T low = 0;
    T high = 0;
    for (std::size_t i = 0; i < count; ++i) {
        low = std::min(low, values[i]);
        high = std::max(high, values[i]);
    }
    bad = count;
    if (std::cmp_greater_equal(low, INT32_MIN) && std::cmp_less_equal(high, INT32_MAX))
        return HxFileType::int32;
    if (low >= 0 && std::cmp_less_equal(high, UINT32_MAX)) return HxFileType::uint32;

    // Beyond 53 bits only some integers are doubles. Comparing as long double is exact for all 64 bits.
    const auto isExact = [](T v) {
        return static_cast<long double>(static_cast<double>(v)) == static_cast<long double>(v);
    };
    bad = static_cast<std::size_t>(std::find_if_not(values, values + count, isExact) - values);
    return HxFileType::float64;
}

template <class T>
bool isLabel(T v)
{
    if constexpr (std::is_floating_point_v<T>)
        return v >= 0 && v <= 255 && v == std::floor(v); // false for NaN
    else
        return std::cmp_greater_equal(v, 0) && std::cmp_less_equal(v, 255);
}

template <class T>
std::string textOf(T v)
{
    char text[64];
    if constexpr (std::is_floating_point_v<T>)
        std::snprintf(text, sizeof text, "%.9g", static_cast<double>(v));
    else if constexpr (std::is_signed_v<T>)
        std::snprintf(text, sizeof text, "%lld", static_cast<long long>(v));
    else
        std::snprintf(text, sizeof text, "%llu", static_cast<unsigned long long>(v));
    return text;
}

// Turns `count` values into bytes at the start of the same memory.
// returns the index of the first value that is no label, or count
template <class T>
std::size_t narrowToLabels(void* memory, std::size_t count, int& largest)
{
    constexpr std::size_t kBlock = 4096; // the labels of a block never reach the values of the next one
    unsigned char* bytes = static_cast<unsigned char*>(memory);
    const unsigned char* source = bytes;
    unsigned char labels[kBlock];
    T values[kBlock];
    unsigned char top = 0;
    for (std::size_t at = 0; at < count; at += kBlock) {
        const std::size_t n = std::min(kBlock, count - at);
        std::memcpy(values, source + at * sizeof(T), n * sizeof(T));
        bool good = true;
        for (std::size_t i = 0; i < n; ++i) good &= isLabel(values[i]);
        if (!good)
            return at + static_cast<std::size_t>(std::find_if_not(values, values + n, isLabel<T>) - values);
        for (std::size_t i = 0; i < n; ++i) {
            labels[i] = static_cast<unsigned char>(values[i]);
            top = std::max(top, labels[i]);
        }
        std::memcpy(bytes + at, labels, n);
    }
    largest = top;
    return count;
}

} // namespace

std::size_t hxSizeOf(HxFileType type)
{
    return hxDispatch(type, [](auto zero) { return sizeof zero; });
}

const char* hxNameOf(HxFileType type)
{
    return infoOf(type).name;
}

int hxHostCode(HxFileType type)
{
    return infoOf(type).hostCode;
}

HxFileType hxFileType(int hostCode)
{
    return std::find_if(std::begin(kTypes), std::end(kTypes),
                        [hostCode](const TypeInfo& t) { return t.hostCode == hostCode; })
        ->type;
}

HxFileType hxCommonType(HxFileType a, HxFileType b)
{
    const auto holds = [](HxFileType target, HxFileType source) {
        return hxDispatch(target, [&](auto t) {
            return hxDispatch(source, [&](auto s) {
                using T = std::numeric_limits<decltype(t)>;
                using S = std::numeric_limits<decltype(s)>;
                return T::is_signed >= S::is_signed && T::is_integer <= S::is_integer &&
                       T::digits >= S::digits;
            });
        });
    };
    for (HxFileType type : {HxFileType::uint8, HxFileType::int16, HxFileType::uint16, HxFileType::int32,
                            HxFileType::uint32, HxFileType::float32})
        if (holds(type, a) && holds(type, b)) return type;
    return HxFileType::float64;
}

void HxVolumeGeometry::setAxis(int axis, const double* unitVector)
{
    for (int row = 0; row < 3; ++row) directions[3 * row + axis] = unitVector[row];
}

void HxVolumeGeometry::getAxis(int axis, double* unitVector) const
{
    for (int row = 0; row < 3; ++row) unitVector[row] = directions[3 * row + axis];
}

HxVolume::HxVolume(const std::string& file, const unsigned long* size, HxFileType elementType)
    : type(elementType)
{
    std::size_t total = hxSizeOf(type);
    for (int axis = 0; axis < 3; ++axis) {
        dims[axis] = size[axis];
        if (size[axis] == 0) throw HxFileError(file, "the volume is empty");
        if (__builtin_mul_overflow(total, size[axis], &total) ||
            total > std::numeric_limits<std::size_t>::max() / 2)
            throw HxFileError(file, "the volume is larger than any memory");
    }
    memory.reset(std::malloc(total));
    if (!memory)
        throw HxFileError(file, "not enough memory for " + std::to_string(total) + " bytes of voxels");
    mcPreferLargePages(memory.get(), total);
}

void HxVolume::toHostType(const std::string& file)
{
    if (hxHostCode(type) >= 0) return;
    if (type == HxFileType::int8) return convert(file, HxFileType::int16);

    const auto narrow = [&](const auto* values) {
        std::size_t bad = 0;
        const HxFileType host = typeForWideIntegers(values, count(), bad);
        if (bad < count())
            throw HxFileError(file, "the 64-bit value " + textOf(values[bad]) + " at voxel " +
                                        voxelName(bad) + " fits no element type without loss");
        convert(file, host);
    };
    if (type == HxFileType::int64)
        narrow(static_cast<const long long*>(data()));
    else
        narrow(static_cast<const unsigned long long*>(data()));
}

void HxVolume::convert(const std::string& file, HxFileType target)
{
    if (target == type) return;
    HxVolume converted(file, dims, target);
    hxDispatch(type, [&](auto from) {
        hxDispatch(target, [&](auto to) {
            convertAll<decltype(to), decltype(from)>(converted.data(), data(), count());
        });
    });
    type = target;
    memory = std::move(converted.memory);
}

int HxVolume::toLabels(const std::string& file)
{
    int largest = 0;
    const std::size_t n = count();
    hxDispatch(type, [&](auto zero) {
        using T = decltype(zero);
        const std::size_t bad = narrowToLabels<T>(data(), n, largest);
        if (bad == n) return;
        T value;
        std::memcpy(&value, static_cast<const char*>(data()) + bad * sizeof(T), sizeof(T));
        throw HxFileError(file, "the value " + textOf(value) + " at voxel " + voxelName(bad) +
                                    " is no label; labels are whole numbers from 0 to 255");
    });
    if (hxSizeOf(type) > 1) {
        // Shrinking may fail only by keeping the larger block, which holds the labels as well.
        if (void* smaller = std::realloc(memory.get(), n)) {
            static_cast<void>(memory.release());
            memory.reset(smaller);
        }
    }
    type = HxFileType::uint8;
    return largest;
}

std::string HxVolume::voxelName(std::size_t index) const
{
    return "(" + std::to_string(index % dims[0]) + ", " + std::to_string(index / dims[0] % dims[1]) + ", " +
           std::to_string(index / dims[0] / dims[1]) + ")";
}
