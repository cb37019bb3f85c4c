#include "mc/McDistanceMap.h"

#include "mc/McDArray.h"
#include "mc/McSimd.h"

#include <algorithm>

namespace {

constexpr int kCentre = 13;

struct Step
{
    int dx, dy, dz;
    float weight;
};

struct Grid
{
    long nx, ny, nz;
    const unsigned char* mask;

    long row(long y, long z) const { return nx * (y + ny * z); }
};

McDArray<Step> stepsOf(const float* half)
{
    McDArray<Step> steps;
    for (int i = 0; i < McDistanceMap::kMaskSize; i++)
        if (half[i] >= 0 && i != kCentre) steps.append({i % 3 - 1, i / 3 % 3 - 1, i / 9 - 1, half[i]});
    return steps;
}

MC_TARGET_CLONES
void lowerRow(float* row, const float* from, float weight, long n)
{
    for (long x = 0; x < n; x++) {
        const float v = weight + from[x];
        row[x] = v < row[x] ? v : row[x];
    }
}

void lowerRowWithin(const unsigned char* mask, float* row, const unsigned char* fromMask, const float* from,
                    float weight, long n)
{
    for (long x = 0; x < n; x++)
        if (mask[x] && fromMask[x]) row[x] = std::min(row[x], weight + from[x]);
}

// Rows that this sweep has finished: all of their values are final, so the order along the row is free.
void takeFromOtherRow(float* field, const Grid& g, long y, long z, const Step& s)
{
    const long y2 = y + s.dy;
    const long z2 = z + s.dz;
    if (y2 < 0 || y2 >= g.ny || z2 < 0 || z2 >= g.nz) return;
    const long x0 = s.dx < 0 ? 1 : 0;
    const long x1 = s.dx > 0 ? g.nx - 1 : g.nx;
    const long to = g.row(y, z) + x0;
    const long from = g.row(y2, z2) + x0 + s.dx;
    if (x1 <= x0) return;
    if (g.mask)
        lowerRowWithin(g.mask + to, field + to, g.mask + from, field + from, s.weight, x1 - x0);
    else
        lowerRow(field + to, field + from, s.weight, x1 - x0);
}

// The neighbour in the row itself: each value rests on the one before, in the direction of the sweep.
void takeFromOwnRow(float* field, const Grid& g, long y, long z, const Step& s)
{
    const long direction = -s.dx;
    const long begin = g.row(y, z) + (direction > 0 ? 0 : g.nx - 1);
    for (long i = 1; i < g.nx; i++) {
        const long at = begin + i * direction;
        const long before = at - direction;
        if (g.mask && !(g.mask[at] && g.mask[before])) continue;
        field[at] = std::min(field[at], s.weight + field[before]);
    }
}

void lowerByRow(float* field, const Grid& g, long y, long z, const McDArray<Step>& steps)
{
    for (const Step& s : steps)
        if (s.dy != 0 || s.dz != 0) takeFromOtherRow(field, g, y, z, s);
    for (const Step& s : steps)
        if (s.dy == 0 && s.dz == 0) takeFromOwnRow(field, g, y, z, s);
}

// Brackets the busy phase; a null watcher sees nothing.
class Watch
{
public:
    Watch(McProgressInterface* watcher, long sliceCount) : progress(watcher), total(2 * sliceCount)
    {
        if (progress) progress->begin("Propagating pass 1/2 ...");
    }
    ~Watch()
    {
        if (progress) progress->end();
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    void secondPass()
    {
        if (progress) progress->setText("Propagating pass 2/2 ...");
    }
    // False if the user wants to stop.
    bool sliceDone()
    {
        if (!progress) return true;
        progress->setProgress(double(++done) / double(total));
        return !progress->interrupted();
    }

private:
    McProgressInterface* progress;
    long total;
    long done = 0;
};

bool sweep(float* field, const Grid& g, const McDArray<Step>& steps, bool upward, Watch& watch)
{
    for (long i = 0; i < g.nz; i++) {
        const long z = upward ? i : g.nz - 1 - i;
        for (long j = 0; j < g.ny; j++) lowerByRow(field, g, upward ? j : g.ny - 1 - j, z, steps);
        if (!watch.sliceDone()) return false;
    }
    return true;
}

} // namespace

bool McDistanceMap::propagateBSFieldChamferFast(float* field, const int* dims, const float* chamferMask,
                                                const unsigned char* mask, McProgressInterface* progress)
{
    const Grid grid{dims[0], dims[1], dims[2], mask};
    float half[kMaskSize];
    Watch watch(progress, grid.nz);
    prepareChamferPropagationMask(chamferMask, 0, half);
    if (!sweep(field, grid, stepsOf(half), true, watch)) return false;
    watch.secondPass();
    prepareChamferPropagationMask(chamferMask, 1, half);
    return sweep(field, grid, stepsOf(half), false, watch);
}

void McDistanceMap::prepareChamferPropagationMask(const float* chamferMask, int sweep, float* out)
{
    for (int i = 0; i < kMaskSize; i++) {
        const bool isUsed = sweep == 0 ? i <= kCentre : i >= kCentre;
        out[i] = isUsed ? chamferMask[i] : -1;
    }
}

void McDistanceMap::chamferMaskOfPlane(const float* plane, float* out)
{
    std::fill_n(out, kMaskSize, -1.0f);
    std::copy_n(plane, 9, out + 9);
}
