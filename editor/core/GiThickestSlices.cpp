#include "core/GiThickestSlices.h"

#include "core/GiBusy.h"
#include "hx/HxSettingsMgr.h"
#include "mc/McSimd.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int kFullByte = 255;

/// Voxels of the label by plane of each axis, as one thread has seen them.
struct Counts
{
    explicit Counts(const unsigned long* dims)
    {
        for (int axis = 0; axis < 3; ++axis) planes[axis].assign(dims[axis], 0);
    }
    void add(const Counts& other)
    {
        for (int axis = 0; axis < 3; ++axis)
            for (std::size_t i = 0; i < planes[axis].size(); ++i) planes[axis][i] += other.planes[axis][i];
    }

    std::vector<unsigned int> planes[3];
};

/// Adds one to the column of each hit, which therefore must be below 255, and returns the number of hits.
MC_TARGET_CLONES unsigned int countRow(const unsigned char* labels, unsigned long n, unsigned char label,
                                       unsigned char* columns)
{
    unsigned int inRow = 0;
    for (unsigned long x = 0; x < n; ++x) {
        const unsigned char hit = labels[x] == label;
        columns[x] = static_cast<unsigned char>(columns[x] + hit);
        inRow += hit;
    }
    return inRow;
}

MC_TARGET_CLONES void emptyInto(std::vector<unsigned char>& columns, std::vector<unsigned int>& counts)
{
    const std::size_t n = columns.size();
    unsigned char* const from = columns.data();
    unsigned int* const to = counts.data();
    for (std::size_t x = 0; x < n; ++x) {
        to[x] += from[x];
        from[x] = 0;
    }
}

void countSlice(const unsigned char* labels, const unsigned long* dims, unsigned long z, unsigned char label,
                std::vector<unsigned char>& columns, Counts& counts)
{
    const unsigned char* row = labels + dims[0] * dims[1] * z;
    for (unsigned long y = 0; y < dims[1]; ++y, row += dims[0]) {
        const unsigned int inRow = countRow(row, dims[0], label, columns.data());
        counts.planes[1][y] += inRow;
        counts.planes[2][z] += inRow;
        if ((y + 1) % kFullByte == 0) emptyInto(columns, counts.planes[0]);
    }
    emptyInto(columns, counts.planes[0]);
}

Counts countPlanes(const unsigned char* labels, const unsigned long* dims, unsigned char label, int threads)
{
    const auto slices = static_cast<long>(dims[2]);
    Counts all(dims);
#pragma omp parallel num_threads(threads)
    {
        Counts mine(dims);
        std::vector<unsigned char> columns(dims[0]);
#pragma omp for schedule(static)
        for (long z = 0; z < slices; ++z)
            countSlice(labels, dims, static_cast<unsigned long>(z), label, columns, mine);
#pragma omp critical(giThickestSlices)
        all.add(mine);
    }
    return all;
}

} // namespace

GiThickestSlices giThickestSlices(const unsigned char* labels, const unsigned long* dims, int label)
{
    const GiBusy busy;
    GiThickestSlices best;
    const bool isEmpty = dims[0] == 0 || dims[1] == 0 || dims[2] == 0;
    if (isEmpty || label < 0 || label > 255) return best;

    const int threads = std::max(1, HxSettingsMgr::getInstance()->numThreads());
    const Counts counts = countPlanes(labels, dims, static_cast<unsigned char>(label), threads);
    for (int axis = 0; axis < 3; ++axis) {
        const std::vector<unsigned int>& planes = counts.planes[axis];
        const auto largest = std::max_element(planes.begin(), planes.end()); // the first of equal ones
        best.slice[axis] = static_cast<int>(largest - planes.begin());
        best.found = *largest > 0;
    }
    return best;
}
