#pragma once

#include <utility>

/// Holds one reference on a McHandable object, or none.
///
/// T may be incomplete where a handle is only declared; it must be complete where one is set or destroyed.
template <class T>
class McHandle
{
public:
    McHandle() = default;
    McHandle(T* object) : pointer(object) { take(); }
    McHandle(const McHandle& other) : pointer(other.pointer) { take(); }
    McHandle(McHandle&& other) noexcept : pointer(std::exchange(other.pointer, nullptr)) {}
    template <class U>
    McHandle(const McHandle<U>& other) : pointer(other.get())
    {
        take();
    }
    ~McHandle()
    {
        if (pointer) pointer->unref();
    }

    McHandle& operator=(McHandle other) noexcept
    {
        // The old object goes with `other`, after this handle has its new one: its end may look at us.
        std::swap(pointer, other.pointer);
        return *this;
    }

    T* get() const { return pointer; }
    T* operator->() const { return pointer; }
    T& operator*() const { return *pointer; }
    operator T*() const { return pointer; }

private:
    T* pointer = nullptr;

    void take()
    {
        if (pointer) pointer->ref();
    }
};
