#include "hx/HxLabelField3.h"

#include "hx/HxBusyPass.h"
#include "hx/HxFileAccess.h"
#include "hx/HxMessage.h"
#include "hx/HxSettingsMgr.h"
#include "hx/HxStackedLabelField3.h"
#include "hx/HxUniformLabelField3.h"

#include <algorithm>

namespace {

int threadsFor(const HxLattice3& lattice)
{
    constexpr unsigned long kWorthSharing = 1 << 20; // bytes; waking other threads costs more below
    return lattice.numBytes() < kWorthSharing ? 1 : HxSettingsMgr::getInstance()->numThreads();
}

// Labels between two looks at an interruption: hundredths of a second, and long enough to share out.
constexpr long kBytesPerPoll = 1 << 26;

int runMaterials(HxLabelField3& field, const HxScriptCall& call)
{
    McDArray<McString> names;
    const HxParamBundle* materials = field.materials();
    for (int i = 0; i < materials->nBundles(); i++) names.append(McString(materials->bundle(i)->getName()));
    return call.result(names);
}

int runCount(HxLabelField3& field, const HxScriptCall& call)
{
    long label;
    if (!call.getIndex(2, 256, "label", label)) return TCL_ERROR;
    const unsigned char* labels = field.labelLattice()->getLabels();
    const long n = static_cast<long>(field.labelLattice()->numNodes());
    const int threads = threadsFor(*field.lattice());
    const HxBusyPass pass;
    long count = 0;
    for (long begin = 0; begin < n; begin += kBytesPerPoll) {
        if (pass.interrupted()) return call.error("interrupted");
        const long end = std::min(begin + kBytesPerPoll, n);
#pragma omp parallel for num_threads(threads) reduction(+ : count)
        for (long i = begin; i < end; i++) count += labels[i] == label;
    }
    return call.result(count);
}

const HxCommand<HxLabelField3> kCommands[] = {
    {"materials", "materials", "Lists the materials in the order of their labels.", 0, 0, runMaterials},
    {"count", "count LABEL", "Gives the number of voxels that have the label.", 1, 1, runCount},
};

/// Faces between a material and anything else, by the axis that they look along.
struct FaceCounts
{
    long x = 0, y = 0, z = 0;
};

/// Positions at which exactly one of two rows has the material.
long differences(const unsigned char* a, const unsigned char* b, unsigned long n, unsigned char material)
{
    long count = 0;
    for (unsigned long i = 0; i < n; i++) count += (a[i] == material) != (b[i] == material);
    return count;
}

long occurrences(const unsigned char* row, unsigned long n, unsigned char material)
{
    return std::count(row, row + n, material);
}

FaceCounts facesOfSlice(const unsigned char* labels, const unsigned long* dims, unsigned long k,
                        unsigned char material)
{
    const unsigned long nx = dims[0], ny = dims[1], nz = dims[2];
    const unsigned char* slice = labels + k * nx * ny;
    const unsigned char* lastRow = slice + (ny - 1) * nx;
    FaceCounts faces;
    for (unsigned long j = 0; j < ny; j++) {
        const unsigned char* row = slice + j * nx;
        faces.x +=
            differences(row, row + 1, nx - 1, material) + (row[0] == material) + (row[nx - 1] == material);
        if (j + 1 < ny) faces.y += differences(row, row + nx, nx, material);
    }
    faces.y += occurrences(slice, nx, material) + occurrences(lastRow, nx, material);
    if (k == 0) faces.z += occurrences(slice, nx * ny, material);
    faces.z += k + 1 < nz ? differences(slice, slice + nx * ny, nx * ny, material)
                          : occurrences(slice, nx * ny, material);
    return faces;
}

/// Voxel size for comparing face areas: an axis of one voxel without an extent takes the smallest
/// of the other sizes, so that its faces count as much as theirs.
McVec3f sizeForAreas(const HxLatticeCoords& coords)
{
    McVec3f size = coords.voxelSize();
    float smallest = 0;
    for (int axis = 0; axis < 3; axis++)
        if (size[axis] > 0 && (smallest == 0 || size[axis] < smallest)) smallest = size[axis];
    for (int axis = 0; axis < 3; axis++)
        if (!(size[axis] > 0)) size[axis] = smallest > 0 ? smallest : 1;
    return size;
}

} // namespace

HxLabelField3::HxLabelField3(HxLabelLattice3* lattice) : HxRegScalarField3(lattice) {}

McTypeId HxLabelField3::getClassTypeId()
{
    return hxClassType<HxLabelField3, HxRegScalarField3>("HxLabelField3");
}

HxLabelLattice3* HxLabelField3::labelLattice() const
{
    return static_cast<HxLabelLattice3*>(lattice());
}

float HxLabelField3::getSurfaceArea(int material)
{
    if (material < 0 || material > 255 || labelLattice()->numNodes() == 0) return 0;
    const unsigned long* dims = labelLattice()->dims();
    const unsigned char* labels = labelLattice()->getLabels();
    const auto label = static_cast<unsigned char>(material);
    const long nz = static_cast<long>(dims[2]);
    const int threads = threadsFor(*lattice());
    const long slicesPerPoll = std::max(kBytesPerPoll / static_cast<long>(dims[0] * dims[1]), 1l);
    const HxBusyPass pass;
    long x = 0, y = 0, z = 0;
    for (long begin = 0; begin < nz; begin += slicesPerPoll) {
        if (pass.interrupted()) return 0;
        const long end = std::min(begin + slicesPerPoll, nz);
#pragma omp parallel for num_threads(threads) reduction(+ : x, y, z)
        for (long k = begin; k < end; k++) {
            const FaceCounts faces = facesOfSlice(labels, dims, static_cast<unsigned long>(k), label);
            x += faces.x;
            y += faces.y;
            z += faces.z;
        }
    }
    const McVec3f size = sizeForAreas(*coords());
    return static_cast<float>(static_cast<double>(z) + static_cast<double>(x) * size.z / size.x +
                              static_cast<double>(y) * size.z / size.y);
}

bool HxLabelField3::writeVorelMeshBinary(const char* path)
{
    McString error;
    if (HxFileAccess::saveInOwnForm(this, path, error)) return true;
    HxMessage::getTheMsg()->printf("%s", error.c_str());
    return false;
}

McInterface* HxLabelField3::getInterface(McTypeId type)
{
    if (type == McTypeId::of<HxLabelLattice3>()) return labelLattice();
    if (type == McTypeId::of<HxLabelLattice>()) return labelLattice()->labelMarker();
    if (type == McTypeId::of<HxMutableLabelLattice>()) return labelLattice()->mutableMarker();
    return HxRegScalarField3::getInterface(type);
}

void HxLabelField3::memberAdded(HxObject* newcomer)
{
    if (newcomer == this)
        image.resolveInPool();
    else
        image.resolve(newcomer);
}

void HxLabelField3::memberRenamed(HxObject* member)
{
    image.renamed(member);
}

int HxLabelField3::parse(Tcl_Interp* interp, int wordCount, char** words)
{
    int code;
    if (hxRunCommand(kCommands, *this, HxScriptCall(interp, wordCount, words), code)) return code;
    return HxRegScalarField3::parse(interp, wordCount, words);
}

void HxLabelField3::commandHelp(McDArray<HxCommandHelp>& list) const
{
    HxRegScalarField3::commandHelp(list);
    hxAppendHelp(kCommands, list);
}

HxUniformLabelField3::HxUniformLabelField3(const unsigned long* dims)
    : HxUniformLabelField3(new HxLabelLattice3(new HxLatticeCoords(HxLatticeCoords::kUniform, dims)))
{
}

HxUniformLabelField3::HxUniformLabelField3(HxLabelLattice3* lattice) : HxLabelField3(lattice) {}

McTypeId HxUniformLabelField3::getClassTypeId()
{
    return hxClassType<HxUniformLabelField3, HxLabelField3>("HxUniformLabelField3");
}

HxStackedLabelField3::HxStackedLabelField3(const unsigned long* dims, const float* zPositions)
    : HxStackedLabelField3(new HxLabelLattice3(new HxLatticeCoords(HxLatticeCoords::kStacked, dims)))
{
    coords()->setZPositions(zPositions);
}

HxStackedLabelField3::HxStackedLabelField3(HxLabelLattice3* lattice) : HxLabelField3(lattice) {}

McTypeId HxStackedLabelField3::getClassTypeId()
{
    return hxClassType<HxStackedLabelField3, HxLabelField3>("HxStackedLabelField3");
}
