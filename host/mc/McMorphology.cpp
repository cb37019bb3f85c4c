#include "mc/McMorphology.h"

#include "mc/McBitRows.h"
#include "mc/McSimd.h"
#include "mc/McThreads.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include <omp.h>

namespace {

struct Volume
{
    long nx, ny, nz;
    // 0 erodes the bits, ~0 their complement: the dilation is the complement of that.
    std::uint64_t flip;

    long rows() const { return ny * nz; }
    long wordsPerRow() const { return (nx + 63) / 64; }
};

inline void andBitRow(const McBitfield::Word64* field, unsigned long at, long n, std::uint64_t flip,
                      std::uint64_t* row)
{
    const McBitfield::Word64* w = field + at / 64;
    const int shift = int(at % 64);
    for (long k = 0; k < n; k++) row[k] &= (w[k] >> shift | w[k + 1] << 1 << (63 - shift)) ^ flip;
}

// out = row and its neighbours to the left and to the right. Beyond the ends all is set.
inline void andSidewaysNeighbours(const std::uint64_t* row, long n, std::uint64_t* out)
{
    for (long k = 0; k < n; k++) {
        const std::uint64_t before = k > 0 ? row[k - 1] : ~std::uint64_t(0);
        const std::uint64_t behind = k + 1 < n ? row[k + 1] : ~std::uint64_t(0);
        out[k] = row[k] & (row[k] << 1 | before >> 63) & (row[k] >> 1 | behind << 63);
    }
}

// Erodes one block of rows into words that are zero. `scratch` holds two rows.
MC_TARGET_CLONES
void erodeRows(const McBitfield::Word64* in, McBitfield::Word64* out, const Volume& v, long firstRow,
               long endRow, std::uint64_t* scratch)
{
    const long n = v.wordsPerRow();
    const std::uint64_t used = mcLastWordMask(v.nx);
    std::uint64_t* row = scratch;
    std::uint64_t* eroded = scratch + n;
    for (long r = firstRow; r < endRow; r++) {
        const unsigned long at = 1ul * r * v.nx;
        const long y = r % v.ny;
        const long z = r / v.ny;
        mcLoadBitRow(in, at, n, v.flip, row);
        row[n - 1] |= ~used;
        andSidewaysNeighbours(row, n, eroded);
        if (y > 0) andBitRow(in, at - v.nx, n, v.flip, eroded);
        if (y + 1 < v.ny) andBitRow(in, at + v.nx, n, v.flip, eroded);
        if (z > 0) andBitRow(in, at - v.nx * v.ny, n, v.flip, eroded);
        if (z + 1 < v.nz) andBitRow(in, at + v.nx * v.ny, n, v.flip, eroded);
        for (long k = 0; k < n; k++) eroded[k] ^= v.flip;
        eroded[n - 1] &= used;
        mcOrBitRow(out, at, v.nx, eroded);
    }
}

void onePass(const McBitfield& in, McBitfield& out, const Volume& v)
{
    const long blocks = (v.rows() + kMcRowsPerBlock - 1) / kMcRowsPerBlock;
    const int threads = mcNumThreadsFor(in.numBits() / 8);
    const long scratchSize = 2 * v.wordsPerRow();
    McDArray<std::uint64_t> scratch(int(threads * scratchSize));
    out.resize(in.numBits());
#pragma omp parallel for num_threads(threads) schedule(static)
    for (long b = 0; b < blocks; b++) {
        const unsigned long firstWord = 1ul * b * v.nx;
        const unsigned long endWord = std::min(firstWord + v.nx, out.numWords64());
        std::fill(out.words64() + firstWord, out.words64() + endWord, 0);
        const long firstRow = b * kMcRowsPerBlock;
        erodeRows(in.words64(), out.words64(), v, firstRow, std::min(firstRow + kMcRowsPerBlock, v.rows()),
                  scratch.data() + omp_get_thread_num() * scratchSize);
    }
}

void manyPasses(const McBitfield& bits, McBitfield& result, const Volume& v, int width)
{
    assert(&bits != &result);
    if (width < 1 || bits.numBits() == 0) {
        result = bits;
        return;
    }
    onePass(bits, result, v);
    McBitfield previous;
    for (int pass = 1; pass < width; pass++) {
        std::swap(previous, result);
        onePass(previous, result, v);
    }
}

} // namespace

void McMorphology::erosion3D(const McBitfield& bits, McBitfield& result, const int* dims, int width)
{
    manyPasses(bits, result, {dims[0], dims[1], dims[2], 0}, width);
}

void McMorphology::dilation3D(const McBitfield& bits, McBitfield& result, const int* dims, int width)
{
    manyPasses(bits, result, {dims[0], dims[1], dims[2], ~std::uint64_t(0)}, width);
}
