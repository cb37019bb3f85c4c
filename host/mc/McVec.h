#pragma once

#include <cmath>

/// A pair of coordinates. All operations work component by component; a new vector is zero.
template <class T>
class McVec2
{
public:
    T x{}, y{};

    constexpr McVec2() = default;
    constexpr McVec2(T first, T second) : x(first), y(second) {}
    template <class U>
    explicit constexpr McVec2(const McVec2<U>& v) : x(static_cast<T>(v.x)), y(static_cast<T>(v.y))
    {
    }

    constexpr T& operator[](int i) { return i == 0 ? x : y; }
    constexpr const T& operator[](int i) const { return i == 0 ? x : y; }

    constexpr McVec2& operator+=(const McVec2& v) { return *this = *this + v; }
    constexpr McVec2& operator-=(const McVec2& v) { return *this = *this - v; }
    constexpr McVec2& operator*=(T s) { return *this = *this * s; }
    constexpr McVec2& operator/=(T s) { return *this = *this / s; }

    friend constexpr McVec2 operator+(const McVec2& a, const McVec2& b)
    {
        return {T(a.x + b.x), T(a.y + b.y)};
    }
    friend constexpr McVec2 operator-(const McVec2& a, const McVec2& b)
    {
        return {T(a.x - b.x), T(a.y - b.y)};
    }
    friend constexpr McVec2 operator*(const McVec2& a, const McVec2& b)
    {
        return {T(a.x * b.x), T(a.y * b.y)};
    }
    friend constexpr McVec2 operator/(const McVec2& a, const McVec2& b)
    {
        return {T(a.x / b.x), T(a.y / b.y)};
    }
    friend constexpr McVec2 operator*(const McVec2& a, T s) { return {T(a.x * s), T(a.y * s)}; }
    friend constexpr McVec2 operator*(T s, const McVec2& a) { return a * s; }
    friend constexpr McVec2 operator/(const McVec2& a, T s) { return {T(a.x / s), T(a.y / s)}; }
    friend constexpr McVec2 operator-(const McVec2& a) { return {T(-a.x), T(-a.y)}; }
    friend constexpr bool operator==(const McVec2& a, const McVec2& b) = default;

    constexpr T dot(const McVec2& v) const { return x * v.x + y * v.y; }
    /// Euclidean length; double for whole numbers.
    auto length() const { return std::sqrt(dot(*this)); }
};

/// Three coordinates, as McVec2.
template <class T>
class McVec3
{
public:
    T x{}, y{}, z{};

    constexpr McVec3() = default;
    constexpr McVec3(T first, T second, T third) : x(first), y(second), z(third) {}
    template <class U>
    explicit constexpr McVec3(const McVec3<U>& v)
        : x(static_cast<T>(v.x)), y(static_cast<T>(v.y)), z(static_cast<T>(v.z))
    {
    }

    constexpr T& operator[](int i) { return i == 0 ? x : i == 1 ? y : z; }
    constexpr const T& operator[](int i) const { return i == 0 ? x : i == 1 ? y : z; }

    constexpr McVec3& operator+=(const McVec3& v) { return *this = *this + v; }
    constexpr McVec3& operator-=(const McVec3& v) { return *this = *this - v; }
    constexpr McVec3& operator*=(T s) { return *this = *this * s; }
    constexpr McVec3& operator/=(T s) { return *this = *this / s; }

    friend constexpr McVec3 operator+(const McVec3& a, const McVec3& b)
    {
        return {T(a.x + b.x), T(a.y + b.y), T(a.z + b.z)};
    }
    friend constexpr McVec3 operator-(const McVec3& a, const McVec3& b)
    {
        return {T(a.x - b.x), T(a.y - b.y), T(a.z - b.z)};
    }
    friend constexpr McVec3 operator*(const McVec3& a, const McVec3& b)
    {
        return {T(a.x * b.x), T(a.y * b.y), T(a.z * b.z)};
    }
    friend constexpr McVec3 operator/(const McVec3& a, const McVec3& b)
    {
        return {T(a.x / b.x), T(a.y / b.y), T(a.z / b.z)};
    }
    friend constexpr McVec3 operator*(const McVec3& a, T s) { return {T(a.x * s), T(a.y * s), T(a.z * s)}; }
    friend constexpr McVec3 operator*(T s, const McVec3& a) { return a * s; }
    friend constexpr McVec3 operator/(const McVec3& a, T s) { return {T(a.x / s), T(a.y / s), T(a.z / s)}; }
    friend constexpr McVec3 operator-(const McVec3& a) { return {T(-a.x), T(-a.y), T(-a.z)}; }
    friend constexpr bool operator==(const McVec3& a, const McVec3& b) = default;

    constexpr T dot(const McVec3& v) const { return x * v.x + y * v.y + z * v.z; }
    constexpr McVec3 cross(const McVec3& v) const
    {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    /// Euclidean length; double for whole numbers.
    auto length() const { return std::sqrt(dot(*this)); }
};

using McVec2i = McVec2<int>;
using McVec2f = McVec2<float>;
using McVec3i = McVec3<int>;
using McVec3f = McVec3<float>;
using McVec3d = McVec3<double>;
