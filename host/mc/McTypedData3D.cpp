#include "mc/McTypedData3D.h"

void McTypedData3D::init(const unsigned long* dims, const McTypedPointer& elements)
{
    McRawData3D::init(dims, elements.elementSize(), elements.data());
    code = elements.type();
}
