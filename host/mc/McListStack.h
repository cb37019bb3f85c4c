#pragma once

#include "mc/McDArray.h"

/// Stack: last in, first out. push() throws McMemoryException.
template <class T>
class McListStack
{
public:
    void push(const T& value) { elements.push(value); }
    /// The stack must not be empty.
    T pop() { return elements.pop(); }
    bool isEmpty() const { return elements.isEmpty(); }

private:
    McDArray<T> elements;
};
