#pragma once

/// Base of counted objects: whoever stores one takes one reference, best through a McHandle.
///
/// A new object has count 0. When the count returns to 0, notifyDelete() runs and the object is deleted.
/// Objects on the stack are legal as long as nobody counts them. A copy starts with a count of its own.
/// Main thread only.
class McHandable
{
public:
    McHandable() = default;
    McHandable(const McHandable&) {}
    McHandable& operator=(const McHandable&) { return *this; }
    virtual ~McHandable();

    /// Called once before the last reference's deletion, while the whole object still stands.
    virtual void notifyDelete();

    void ref() const { count++; }
    void unref() const;
    int refCount() const { return count; }

private:
    mutable int count = 0;
};
