// Lasso: the outline over the 3D view. Every voxel is seen somewhere on the screen; along a row the places of
// voxels advance by one step, on the screen itself or, with a perspective camera, in front of it.

#include "core/Gi.h"
#include "core/GiBusy.h"
#include "core/GiSelection3D.h"
#include "hx/HxLattice3.h"
#include "hx/HxLatticeCoords.h"
#include "hx/HxMessage.h"
#include "mc/McElementType.h"
#include "tools/GiLasso.h"
#include "tools/GiLassoVoxel.h"
#include "tools/GiScreenOutline.h"

#include <cmath>
#include <utility>

namespace {

using Matrix = GiScreenOutline::Matrix;

constexpr float kLargestRest = 1e-6f; // of an entry that has to be 0

/// Keeps the outline ready for tests while it lives.
class SelectionTest
{
public:
    explicit SelectionTest(GiScreenOutline& tested) : outline(tested) { outline.startSelectionTest(); }
    ~SelectionTest() { stop(); }
    void stop()
    {
        if (std::exchange(isRunning, false)) outline.stopSelectionTest();
    }
    SelectionTest(const SelectionTest&) = delete;
    SelectionTest& operator=(const SelectionTest&) = delete;

private:
    GiScreenOutline& outline;
    bool isRunning = true;
};

McVec3f transformed(const McVec3f& p, const Matrix& m)
{
    float q[4];
    for (int i = 0; i < 4; ++i) q[i] = p.x * m[0][i] + p.y * m[1][i] + p.z * m[2][i] + m[3][i];
    return McVec3f(q[0] / q[3], q[1] / q[3], q[2] / q[3]);
}

/// The short form of the projection leaves out what a plain perspective camera does not have.
void warnOfUnusual(const Matrix& p)
{
    const float rests[] = {p[0][1], p[0][2], p[0][3], p[1][0], p[1][2], p[1][3], p[3][0], p[3][1], p[3][3]};
    for (const float rest : rests) {
        if (!(std::fabs(rest) > kLargestRest)) continue;
        HxMessage::getTheMsg()->printf("Warning: Inaccurate matrix");
        double d[16];
        for (int i = 0; i < 16; ++i) d[i] = static_cast<double>(p[i / 4][i % 4]);
        HxMessage::getTheMsg()->printf(" %g %g %g %g\n %g %g %g %g\n %g %g %g %g\n %g %g %g %g", d[0], d[1],
                                       d[2], d[3], d[4], d[5], d[6], d[7], d[8], d[9], d[10], d[11], d[12],
                                       d[13], d[14], d[15]);
        return;
    }
}

/// Where the voxels of a row are seen by a parallel camera.
struct ParallelRow
{
    const GiScreenOutline& outline;
    McVec2f at, step;

    void start(const HxLatticeCoords& coords, int j, int k)
    {
        at = outline.projectToScreen(coords.position(0, j, k));
        step = outline.projectToScreen(coords.position(1, j, k)) - at;
    }
    McVec2f screen() const { return at; }
    void advance() { at += step; }
};

/// The same by a perspective camera: the step is one in front of the camera, the division comes last.
///
/// kept: voxels behind the camera count where their mirror image is seen. Outlines are drawn around whole
/// objects, from outside; to look at each voxel's side would cost all of them something.
struct PerspectiveRow
{
    PerspectiveRow(const GiScreenOutline& outline, const HxLatticeCoords& coords)
    {
        outline.getMatrices(affine, projection);
        warnOfUnusual(projection);
        step = transformed(coords.position(1, 0, 0), affine) - transformed(coords.position(0, 0, 0), affine);
    }
    void start(const HxLatticeCoords& coords, int j, int k)
    {
        at = transformed(coords.position(0, j, k), affine);
    }
    McVec2f screen() const
    {
        const float w = projection[2][3] * at.z;
        return McVec2f((projection[0][0] * at.x / w + 1) / 2, (projection[1][1] * at.y / w + 1) / 2);
    }
    void advance() { at += step; }

    Matrix affine, projection;
    McVec3f at, step;
};

/// Visits all voxels, x fastest.
template <class Row>
void visitVoxels(Row row, const HxLatticeCoords& coords, const unsigned long* dims, long bytesPerRow,
                 GiLassoStruct& voxel, GiLassoCallback callback)
{
    const int nx = static_cast<int>(dims[0]), ny = static_cast<int>(dims[1]), nz = static_cast<int>(dims[2]);
    const auto* image = static_cast<const unsigned char*>(voxel.row);
    for (int k = 0; k < nz; ++k) {
        for (int j = 0; j < ny; ++j) {
            row.start(coords, j, k);
            voxel.row = image ? image + bytesPerRow * (j + long(ny) * k) : nullptr;
            for (voxel.x = 0; voxel.x < nx; ++voxel.x, ++voxel.index, row.advance()) {
                voxel.screen = row.screen();
                callback(voxel);
            }
        }
    }
}

} // namespace

void GiLasso::viewerSelect(GiScreenOutline& outline)
{
    if (!gi->imageLattice) return;
    SelectionTest test(outline);
    gi->saveUndoInformationForVolume(1, 0, nullptr); // selection, not labels
    const GiBusy busy("Selecting points...");

    const void* image = gi->imageSlices.data();
    const bool masks = gi->maskingEnabled() && image && gi->imageLattice->numDataVars() == 1;
    const GiLassoAction action =
        giLassoAction(insideOutMode == 1, outline.wasCtrlDown(), outline.wasShiftDown(), masks, gi->primType);
    if (action.clearsFirst) gi->selection->clear();

    GiLassoStruct voxel{0, 0, {}, gi->selection, &outline, image, 0, 0};
    if (masks) gi->getToolDataWindow(voxel.minValue, voxel.maxValue);
    const HxLatticeCoords& coords = *gi->imageLattice->coords();
    const unsigned long* dims = gi->selection->dims;
    const long bytesPerRow = static_cast<long>(dims[0]) * mcElementSize(gi->imageSlices.type());
    if (outline.hasPerspectiveCamera())
        visitVoxels(PerspectiveRow(outline, coords), coords, dims, bytesPerRow, voxel, action.callback);
    else
        visitVoxels(ParallelRow{outline, {}, {}}, coords, dims, bytesPerRow, voxel, action.callback);

    test.stop(); // listeners may draw over the view
    gi->touchData(1, 0, 0, -1, 0, 1);
    gi->updateSelectionBoxes();
    gi->redraw();
}
