#pragma once

#include "mc/McRawData3D.h"
#include "mc/McTypedPointer.h"

/// A view of a volume that knows its element type. Null data mean empty.
class McTypedData3D : public McRawData3D
{
public:
    McTypedData3D() = default;

    /// dims  three sides, copied
    void init(const unsigned long* dims, const McTypedPointer& elements);

    /// Element code of McElementType.h.
    int type() const { return code; }

private:
    int code = kMcUnsignedChar;
};
