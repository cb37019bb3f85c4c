#include "mc/seedFill.h"

#include "mc/McDArray.h"

#include <algorithm>
#include <climits>

namespace {

struct Place
{
    int x, y, z;
};

class RegionFill
{
public:
    RegionFill(unsigned char* volume, int dimX, int dimY, int dimZ, unsigned char from, unsigned char to)
        : labels(volume), nx(dimX), ny(dimY), nz(dimZ), oldValue(from), newValue(to)
    {
    }

    int run(const Place& start, int* box)
    {
        int low[3] = {start.x, start.y, start.z};
        int high[3] = {start.x, start.y, start.z};
        long count = 0;
        pending.push(start);
        while (!pending.isEmpty()) {
            const Place p = pending.pop();
            // Several spans can have pushed this run; later visits find nothing.
            if (row(p.y, p.z)[p.x] != oldValue) continue;
            const int left = overwriteSpan(p);
            const int right = spanEnd;
            count += right - left + 1;
            const int first[3] = {left, p.y, p.z};
            const int last[3] = {right, p.y, p.z};
            for (int axis = 0; axis < 3; axis++) {
                low[axis] = std::min(low[axis], first[axis]);
                high[axis] = std::max(high[axis], last[axis]);
            }
            if (p.y > 0) pushRuns(left, right, p.y - 1, p.z);
            if (p.y + 1 < ny) pushRuns(left, right, p.y + 1, p.z);
            if (p.z > 0) pushRuns(left, right, p.y, p.z - 1);
            if (p.z + 1 < nz) pushRuns(left, right, p.y, p.z + 1);
        }
        std::copy_n(low, 3, box);
        std::copy_n(high, 3, box + 3);
        return static_cast<int>(std::min<long>(count, INT_MAX));
    }

private:
    unsigned char* labels;
    int nx, ny, nz;
    unsigned char oldValue, newValue;
    McDArray<Place> pending;
    int spanEnd = 0;

    unsigned char* row(int y, int z) { return labels + long(nx) * (y + long(ny) * z); }

    // Overwrites the run round a voxel; returns its first x and leaves its last one in spanEnd.
    int overwriteSpan(const Place& p)
    {
        unsigned char* values = row(p.y, p.z);
        int left = p.x;
        while (left > 0 && values[left - 1] == oldValue) left--;
        int right = p.x;
        while (right + 1 < nx && values[right + 1] == oldValue) right++;
        std::fill(values + left, values + right + 1, newValue);
        spanEnd = right;
        return left;
    }

    // Pushes one voxel of each run that touches the span [left, right] in a neighbouring row.
    void pushRuns(int left, int right, int y, int z)
    {
        const unsigned char* values = row(y, z);
        for (int x = left; x <= right; x++)
            if (values[x] == oldValue && (x == left || values[x - 1] != oldValue)) pending.push({x, y, z});
    }
};

} // namespace

int seedFill(int x, int y, int z, int dimX, int dimY, int dimZ, unsigned char* labels, unsigned char value,
             int* box)
{
    if (x < 0 || x >= dimX || y < 0 || y >= dimY || z < 0 || z >= dimZ) return 0;
    const unsigned char old = labels[x + long(dimX) * (y + long(dimY) * z)];
    if (old == value) return 0;
    return RegionFill(labels, dimX, dimY, dimZ, old, value).run({x, y, z}, box);
}
