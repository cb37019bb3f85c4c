#pragma once

#include <type_traits>

/// Codes of the element types of a lattice ("host codes").
///
/// Codes 5 and 6 are reserved; every code that is not named here means data that are no image.
inline constexpr int kMcUnsignedChar = 0;
inline constexpr int kMcShort = 1;
inline constexpr int kMcInt = 2;
inline constexpr int kMcFloat = 3;
inline constexpr int kMcDouble = 4;
inline constexpr int kMcUnsignedShort = 7;
inline constexpr int kMcUnsignedInt = 8;

/// True for the seven codes above.
bool mcIsElementCode(int code);

/// Bytes of one element; 0 for an unknown code.
int mcElementSize(int code);

/// Name of the element's C++ type, as "unsigned short"; "unknown" for an unknown code.
const char* mcElementName(int code);

/// The code of one of the seven element types, for use where the type is known.
template <class T>
constexpr int mcElementCode()
{
    if constexpr (std::is_same_v<T, unsigned char>)
        return kMcUnsignedChar;
    else if constexpr (std::is_same_v<T, short>)
        return kMcShort;
    else if constexpr (std::is_same_v<T, int>)
        return kMcInt;
    else if constexpr (std::is_same_v<T, float>)
        return kMcFloat;
    else if constexpr (std::is_same_v<T, double>)
        return kMcDouble;
    else if constexpr (std::is_same_v<T, unsigned short>)
        return kMcUnsignedShort;
    else {
        static_assert(std::is_same_v<T, unsigned int>, "Not an element type of a lattice.");
        return kMcUnsignedInt;
    }
}

/// Calls f with a null pointer of the element's type, so that a loop is written once for all types:
///
///     mcDispatch(code, [&](auto* tag) {
///         using T = std::remove_pointer_t<decltype(tag)>;
///         fill(static_cast<T*>(data), count);
///     });
///
/// returns false, without a call, for an unknown code
template <class F>
bool mcDispatch(int code, F&& f)
{
    switch (code) {
    case kMcUnsignedChar:
        f(static_cast<unsigned char*>(nullptr));
        return true;
    case kMcShort:
        f(static_cast<short*>(nullptr));
        return true;
    case kMcInt:
        f(static_cast<int*>(nullptr));
        return true;
    case kMcFloat:
        f(static_cast<float*>(nullptr));
        return true;
    case kMcDouble:
        f(static_cast<double*>(nullptr));
        return true;
    case kMcUnsignedShort:
        f(static_cast<unsigned short*>(nullptr));
        return true;
    case kMcUnsignedInt:
        f(static_cast<unsigned int*>(nullptr));
        return true;
    default:
        return false;
    }
}
