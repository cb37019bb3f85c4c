#include "core/Gi.h"

#include "hx/HxField3.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxLatticeCoords.h"
#include "hx/HxParamBundle.h"
#include "hx/HxRegScalarField3.h"
#include "hx/HxSettingsMgr.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int kHostByte = 0, kHostShort = 1, kHostInt = 2, kHostFloat = 3, kHostDouble = 4;
constexpr int kHostUnsignedShort = 7, kHostUnsignedInt = 8;

constexpr int kRealDigits = 4; // digits shown of a value of a float or double image

} // namespace

Gi::Gi()
{
    drawStyle2D[0] = lastDrawStyle2D[0] = 0; // the background is not drawn
    std::fill(drawStyle2D + 1, drawStyle2D + 256, 1);
    std::fill(lastDrawStyle2D + 1, lastDrawStyle2D + 256, 1);
    std::fill(visible3D, visible3D + 256, 0);
    std::memset(materialColors, 0, sizeof materialColors);
    selectionDrawStyle =
        static_cast<unsigned char>(HxSettingsMgr::getInstance()->getPreferences().selectionDrawStyle);
    selectionColor[0] = 255;
    selectionColor[1] = selectionColor[2] = 0;
    createTools();
    createFilters();
    std::fill(locked, locked + 256, 0);
    selection = new GiSelection3D;
    selection->ref();
}

Gi::~Gi()
{
    selection->unref();
    selection = nullptr;
}

void Gi::destroyMembers()
{
    clearUndo(1);
    destroyTools();
    destroyFilters();
    destroyViewers();
    projector = nullptr;
}

void Gi::setVolumeByte(const unsigned long* dims, int, unsigned char* data, HxLabelLattice3* lattice)
{
    bindVolume(0, dims, data, kHostByte, lattice);
}

void Gi::setVolumeShort(const unsigned long* dims, int, short* data, HxLabelLattice3* lattice)
{
    bindVolume(1, dims, data, kHostShort, lattice);
}

void Gi::setVolumeUnsignedShort(const unsigned long* dims, int, unsigned short* data,
                                HxLabelLattice3* lattice)
{
    bindVolume(2, dims, data, kHostUnsignedShort, lattice);
}

void Gi::setVolumeInt(const unsigned long* dims, int, int* data, HxLabelLattice3* lattice)
{
    bindVolume(3, dims, data, kHostInt, lattice);
}

void Gi::setVolumeUnsignedInt(const unsigned long* dims, int, unsigned int* data, HxLabelLattice3* lattice)
{
    bindVolume(4, dims, data, kHostUnsignedInt, lattice);
}

void Gi::setVolumeFloat(const unsigned long* dims, int, float* data, HxLabelLattice3* lattice)
{
    bindVolume(5, dims, data, kHostFloat, lattice);
    dataDigits = kRealDigits;
}

void Gi::setVolumeDouble(const unsigned long* dims, int, double* data, HxLabelLattice3* lattice)
{
    bindVolume(6, dims, data, kHostDouble, lattice);
    dataDigits = kRealDigits;
}

void Gi::bindVolume(int editorType, const unsigned long* dims, void* data, int hostType,
                    HxLabelLattice3* lattice)
{
    primType = editorType;
    setVolume(dims, McTypedPointer(data, hostType), lattice);
}

void Gi::computeCoordinateDigits()
{
    const float* box = labelLattice->coords()->boundingBox();
    const unsigned long* dims = labelLattice->dims();
    float largest = 0;
    for (int axis = 0; axis < 3; ++axis) {
        const float extent = box[2 * axis + 1] - box[2 * axis];
        const float voxel = dims[axis] > 1 ? extent / static_cast<float>(dims[axis] - 1) : extent;
        largest = std::max(largest, std::fabs(voxel));
    }
    const float exponent = std::log10(largest);
    // A volume without extent has no voxel size to show: minus infinity is no number of digits.
    const bool fine = exponent < -1 && std::isfinite(exponent);
    coordinateDigits = fine ? static_cast<int>(std::ceil(-exponent)) : 1;
}

int Gi::getNumSlices(int orientation)
{
    if (orientation < 0) orientation = getCurrentOrientation();
    int dims[3];
    labelSlices.getDims(dims, orientation);
    return dims[2];
}

void Gi::getLabelSlice(int orientation, int slice, unsigned char*& data, int& xStride, int& yStride) const
{
    labelSlices.accessSlice(orientation, slice, data, xStride, yStride);
}

void Gi::getCurrentLabelSlice(unsigned char*& data, int& xStride, int& yStride)
{
    getLabelSlice(getCurrentOrientation(), getCurrentSlice(), data, xStride, yStride);
}

void Gi::getDataWindow(float& min, float& max) const
{
    min = dataWindow[0];
    max = dataWindow[1];
}

void Gi::getToolDataWindow(float& min, float& max) const
{
    min = toolDataWindow[0];
    max = toolDataWindow[1];
}

void Gi::setRescaleInterceptSlope(const HxParamBundle* bundle)
{
    dataWindowScale = 1;
    dataWindowBias = 0;
    if (bundle) {
        bundle->findReal("DataWindowScale", 1, &dataWindowScale);
        bundle->findReal("DataWindowBias", 1, &dataWindowBias);
    }
    // kept: natural, not decimal, logarithm. It shows a digit more than the scale would need, which
    // is what people read neighbouring values apart by.
    const double digits = std::floor(std::log(1.0 / dataWindowScale));
    // A negative scale has no logarithm; it gets no digits rather than an undefined number.
    dataDigits = std::isnan(digits) ? 0 : static_cast<int>(std::clamp(digits, 0.0, 4.0));
}

void Gi::markLabelRangeStale()
{
    if (auto* field = dynamic_cast<HxField3*>(labelData)) field->touchMinMax(0, -1, 0);
}

void Gi::touchData(int, int, int, int, int, int) {}

void Gi::crossHairCBs(GiCrossHairTool* tool, void* gi)
{
    static_cast<Gi*>(gi)->crossHairCB(tool);
}
