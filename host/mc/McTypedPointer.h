#pragma once

#include "mc/McElementType.h"

/// A pointer to elements whose type is known at run time only. It views; it never owns.
class McTypedPointer
{
public:
    /// Null, of unsigned char.
    McTypedPointer() = default;
    /// hostCode  an element code of McElementType.h
    McTypedPointer(void* elements, int hostCode) : memory(elements), code(hostCode) {}

    void* data() const { return memory; }
    int type() const { return code; }
    /// Bytes; 0 for an unknown code.
    int elementSize() const { return mcElementSize(code); }

private:
    void* memory = nullptr;
    int code = kMcUnsignedChar;
};
