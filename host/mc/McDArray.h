#pragma once

#include "mc/McMemory.h"
#include "mc/McMemoryException.h"

#include <algorithm>
#include <cassert>
#include <initializer_list>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <vector>

/// Growing array. Elements may be arrays, handles or strings themselves.
///
/// Growing moves the elements, so pointers into the array last until the next call that adds some. The
/// capacity then becomes the larger of the need and 1.5 times the size. Indices are not checked.
/// All calls that grow throw McMemoryException when memory runs out, and leave the array as it was.
template <class T>
class McDArray
{
    static_assert(!std::is_same_v<T, bool>, "Elements must be addressable: use McBitfield or unsigned char.");

public:
    McDArray() = default;
    explicit McDArray(int size) { resize(size); }
    McDArray(std::initializer_list<T> list)
    {
        guarded(int(list.size()), [&] { elements.assign(list); });
    }
    McDArray(const McDArray& other)
    {
        guarded(other.size(), [&] { elements = other.elements; });
    }
    McDArray(McDArray&& other) noexcept = default;
    McDArray& operator=(const McDArray& other)
    {
        guarded(other.size(), [&] { elements = other.elements; });
        return *this;
    }
    McDArray& operator=(McDArray&& other) noexcept = default;

    int size() const { return int(elements.size()); }
    bool isEmpty() const { return elements.empty(); }
    int capacity() const { return int(elements.capacity()); }

    T& operator[](int i) { return elements[i]; }
    const T& operator[](int i) const { return elements[i]; }
    T* data() { return elements.data(); }
    const T* data() const { return elements.data(); }
    T& last() { return elements.back(); }
    const T& last() const { return elements.back(); }

    T* begin() { return data(); }
    T* end() { return data() + size(); }
    const T* begin() const { return data(); }
    const T* end() const { return data() + size(); }

    /// New elements are value-initialised: numbers and pointers are 0.
    void resize(int n)
    {
        assert(n >= 0);
        grow(n);
        guarded(n, [&] { elements.resize(n); });
    }

    /// Returns the index of the new element.
    int append(const T& value)
    {
        // The value may be an element of this very array, which growing moves.
        T copy(value);
        grow(long(size()) + 1);
        elements.push_back(std::move(copy));
        return size() - 1;
    }
    void append(const McDArray& other)
    {
        const int n = other.size();
        grow(long(size()) + n);
        for (int i = 0; i < n; i++) elements.push_back(other.elements[i]);
    }
    void push(const T& value) { append(value); }
    /// Takes the last element off; the array must not be empty.
    T pop()
    {
        T value(std::move(elements.back()));
        elements.pop_back();
        return value;
    }

    /// Makes room for n value-initialised elements before index `at`.
    void insert(int at, int n)
    {
        const int old = size();
        resize(old + n);
        std::rotate(begin() + at, begin() + old, end());
    }
    void remove(int at, int n = 1) { elements.erase(elements.begin() + at, elements.begin() + at + n); }
    void clear() { elements.clear(); }

    friend bool operator==(const McDArray& a, const McDArray& b) { return a.elements == b.elements; }

private:
    std::vector<T> elements;

    void grow(long need)
    {
        if (need <= long(elements.capacity())) return;
        const long wanted = std::max(need, long(elements.size()) * 3 / 2);
        guarded(wanted, [&] { elements.reserve(wanted); });
    }

    template <class Step>
    static void guarded(long count, Step step)
    {
        if (mcByteCount(count, sizeof(T)) > kMcAddressSpace)
            throw McMemoryException(mcByteCount(count, sizeof(T)));
        try {
            step();
        } catch (const std::bad_alloc&) {
            throw McMemoryException(mcByteCount(count, sizeof(T)));
        } catch (const std::length_error&) {
            throw McMemoryException(mcByteCount(count, sizeof(T)));
        }
    }
};
