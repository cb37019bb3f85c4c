#include "mc/McMorphology.h"

#include "mc/McBitRows.h"
#include "mc/McData3D.h"
#include "mc/McThreads.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace {

using Word = std::uint64_t;

inline Word addWithCarry(Word a, Word b, bool& carry)
{
    Word sum = 0;
    const bool first = __builtin_add_overflow(a, b, &sum);
    const bool second = __builtin_add_overflow(sum, Word(carry), &sum);
    carry = first || second;
    return sum;
}

// Spreads bits downward through the runs of `open` within a word, by doubling steps.
inline Word fillDownward(Word bits, Word open)
{
    for (int step = 1; step < 64; step *= 2) {
        bits |= open & bits >> step;
        open &= open >> step;
    }
    return bits;
}

// Whole rows at a time: a row that is visited takes all runs of open voxels that its pending bits touch, and
// hands them on to its four neighbours. Rows begin with a word here, which the volume's rows need not.
class RowFlood
{
public:
    RowFlood(const McBitfield& field, Word complement, const int* dims)
        : source(field),
          flip(complement),
          nx(dims[0]),
          ny(dims[1]),
          nz(dims[2]),
          n((nx + 63) / 64),
          open(int(n), dims[1], dims[2]),
          pending(int(n), dims[1], dims[2]),
          filled(int(n), 1, 1),
          waiting(1ul * ny * nz)
    {
        loadOpenRows();
    }

    void addSeed(const McVec3i& seed)
    {
        if (seed.x < 0 || seed.x >= nx || seed.y < 0 || seed.y >= ny || seed.z < 0 || seed.z >= nz) return;
        const Word bit = Word(1) << (seed.x % 64);
        const long row = seed.y + ny * seed.z;
        Word& word = pending.data()[row * n + seed.x / 64];
        word |= open.data()[row * n + seed.x / 64] & bit;
        if (word & bit) enqueue(row);
    }

    // Sweeps up and down until no row waits. Most of what a row hands on goes to rows that the sweep is still
    // to meet, and gathers there, so that rows are visited far fewer times than in order of arrival.
    void run()
    {
        while (waitingCount > 0) {
            sweepUp();
            sweepDown();
        }
    }

    // Sets the voxels that were reached; call it once, at the end.
    void store(McBitfield& result)
    {
        forEachBlock([&](long firstRow, long endRow) { storeRows(result.words64(), firstRow, endRow); });
    }

    // Sets those that were not. `result` may be the source: it was read when this object was made.
    void storeUnreached(McBitfield& result) const
    {
        forEachBlock([&](long firstRow, long endRow) {
            for (long r = firstRow; r < endRow; r++)
                mcOrBitRow(result.words64(), 1ul * r * nx, nx, open.data() + r * n);
        });
    }

private:
    const McBitfield& source;
    const Word flip;
    const long nx, ny, nz;
    const long n; // words per row

    McData3D<Word> open;    // voxels that can still be reached
    McData3D<Word> pending; // open voxels that a neighbour has reached, not yet spread along their row
    McData3D<Word> filled;  // the runs taken from the row at hand ...
    long low = 0;           // ... which lie in these words
    long high = -1;
    McBitfield waiting; // rows with pending bits
    long waitingCount = 0;

    // Hands stacks of rows to the threads whose words no other stack touches.
    template <class Block>
    void forEachBlock(const Block& block) const
    {
        const long rows = ny * nz;
        const long blocks = (rows + kMcRowsPerBlock - 1) / kMcRowsPerBlock;
#pragma omp parallel for num_threads(mcNumThreadsFor(source.numBits() / 8)) schedule(static)
        for (long b = 0; b < blocks; b++) {
            const long firstRow = b * kMcRowsPerBlock;
            block(firstRow, std::min(firstRow + kMcRowsPerBlock, rows));
        }
    }

    void loadOpenRows()
    {
        const Word used = mcLastWordMask(nx);
        const long rows = ny * nz;
#pragma omp parallel for num_threads(mcNumThreadsFor(source.numBits() / 8)) schedule(static)
        for (long r = 0; r < rows; r++) {
            Word* row = open.data() + r * n;
            mcLoadBitRow(source.words64(), 1ul * r * nx, n, flip, row);
            row[n - 1] &= used;
        }
    }

    // What was open at the start and is not any more was reached. It takes the place of what was left.
    void storeRows(McBitfield::Word64* out, long firstRow, long endRow)
    {
        const Word used = mcLastWordMask(nx);
        for (long r = firstRow; r < endRow; r++) {
            const unsigned long at = 1ul * r * nx;
            const McBitfield::Word64* w = source.words64() + at / 64;
            const int shift = int(at % 64);
            Word* row = open.data() + r * n;
            for (long k = 0; k < n; k++)
                row[k] = ((w[k] >> shift | w[k + 1] << 1 << (63 - shift)) ^ flip) & ~row[k];
            row[n - 1] &= used;
            mcOrBitRow(out, at, nx, row);
        }
    }

    void enqueue(long row)
    {
        if (waiting.isSet(row)) return;
        waiting.set(row);
        waitingCount++;
    }

    void sweepUp()
    {
        const long words = long(waiting.numWords64());
        for (long w = 0; w < words; w++) {
            Word ahead = ~Word(0);
            while (const Word bits = waiting.words64()[w] & ahead) {
                const int i = std::countr_zero(bits);
                ahead = ~Word(1) << i;
                visit(w * 64 + i);
            }
        }
    }

    void sweepDown()
    {
        for (long w = long(waiting.numWords64()) - 1; w >= 0; w--) {
            Word ahead = ~Word(0);
            while (const Word bits = waiting.words64()[w] & ahead) {
                const int i = 63 - std::countl_zero(bits);
                ahead = (Word(1) << i) - 1;
                visit(w * 64 + i);
            }
        }
    }

    void visit(long row)
    {
        waiting.unset(row);
        waitingCount--;
        takeRuns(row);
        const long y = row % ny;
        const long z = row / ny;
        if (y > 0) handOn(row - 1);
        if (y + 1 < ny) handOn(row + 1);
        if (z > 0) handOn(row - ny);
        if (z + 1 < nz) handOn(row + ny);
    }

    // Moves the runs that pending bits touch from `open` to `filled`.
    void takeRuns(long row)
    {
        Word* runs = open.data() + row * n;
        Word* seeds = pending.data() + row * n;
        Word* out = filled.data();
        low = n;
        high = -1;
        bool carry = false;
        for (long k = 0; k < n; k++) {
            out[k] = 0;
            if (!seeds[k] && !carry) continue;
            // Adding a seed to its run turns the run's bits from there on to 0; the carry out of the word
            // begins the next one. Further seeds of the run stay 1, and are added by hand.
            const Word sum = addWithCarry(runs[k], seeds[k], carry);
            out[k] = (runs[k] & ~sum) | seeds[k];
            seeds[k] = 0;
            if (!out[k]) continue;
            low = std::min(low, k);
            high = k;
        }
        bool below = false;
        for (long k = high; k >= 0; k--) {
            const Word start = out[k] | (runs[k] & Word(below) << 63);
            if (!start) {
                if (k < low) break;
                below = false;
                continue;
            }
            out[k] = start == runs[k] ? start : fillDownward(start, runs[k]);
            runs[k] &= ~out[k];
            below = out[k] & 1;
            low = std::min(low, k);
        }
    }

    void handOn(long neighbour)
    {
        const Word* runs = open.data() + neighbour * n;
        Word* seeds = pending.data() + neighbour * n;
        const Word* from = filled.data();
        Word any = 0;
        for (long k = low; k <= high; k++) {
            const Word reached = from[k] & runs[k];
            any |= reached;
            seeds[k] |= reached;
        }
        if (any) enqueue(neighbour);
    }
};

} // namespace

void McMorphology::floodfill(const McBitfield& source, McBitfield& result, const McDArray<McVec3i>& seeds,
                             bool value, const int* dims)
{
    assert(&source != &result);
    result.resize(source.numBits());
    result.unsetAll();
    if (source.numBits() == 0) return;

    RowFlood flood(source, value ? Word(0) : ~Word(0), dims);
    for (const McVec3i& seed : seeds) flood.addSeed(seed);
    flood.run();
    flood.store(result);
}

void McMorphology::fillUnreached(McBitfield& bits, const McDArray<McVec3i>& seeds, const int* dims)
{
    if (bits.numBits() == 0) return;
    RowFlood flood(bits, ~Word(0), dims);
    for (const McVec3i& seed : seeds) flood.addSeed(seed);
    flood.run();
    flood.storeUnreached(bits);
}
