#include "core/GiThickestSlices.h"

#include "core/GiBusy.h"
#include "mc/McDArray.h"

#include <algorithm>

namespace {

using Counts = McDArray<unsigned int>;

int firstLargest(const Counts& counts)
{
    return static_cast<int>(std::max_element(counts.begin(), counts.end()) - counts.begin());
}

} // namespace

GiThickestSlices giThickestSlices(const unsigned char* labels, const unsigned long* dims, int label)
{
    GiBusy busy;
    const int X = static_cast<int>(dims[0]), Y = static_cast<int>(dims[1]), Z = static_cast<int>(dims[2]);
    GiThickestSlices best;
    if (X == 0 || Y == 0 || Z == 0) return best;

    Counts nx(X), ny(Y), nz(Z);
    for (int z = 0; z < Z; ++z) {
        for (int y = 0; y < Y; ++y, labels += X) {
            unsigned int inRow = 0;
            for (int x = 0; x < X; ++x) {
                const unsigned int hit = labels[x] == label;
                nx[x] += hit;
                inRow += hit;
            }
            ny[y] += inRow;
            nz[z] += inRow;
        }
    }
    best.slice[0] = firstLargest(nx);
    best.slice[1] = firstLargest(ny);
    best.slice[2] = firstLargest(nz);
    best.found = nx[best.slice[0]] > 0;
    return best;
}
