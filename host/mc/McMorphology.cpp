#include "mc/McMorphology.h"

#include "mc/McBitRows.h"
#include "mc/McSimd.h"
#include "mc/McThreads.h"

#include <algorithm>
#include <cassert>
#include <numeric>
#include <utility>

#include <omp.h>

// A slice is taken out of the field into words that begin with its first bit. Its rows follow each other
// without a gap, so the neighbours along y are the same bits a row further on, and zeros before and behind
// the slice stand for the neighbours that it lacks. Only along x a row would look into the next; masks stop
// that. A slice is worked on in strips of as many words as it takes until a row begins at the same bit again:
// all strips have the same masks, and what a strip needs besides the slices stays in the nearest cache.

namespace {

using Word = std::uint64_t;

constexpr long kLeastStrip = 256; // words; enough for the loops to run at full speed
constexpr long kCacheLine = 8;    // words

struct Volume
{
    long nx, ny, nz;
    // 0 dilates the bits, ~0 their complement: the erosion is the complement of that.
    Word flip;
    int axes;

    long sliceBits() const { return nx * ny; }
    long sliceWords() const { return (sliceBits() + 63) / 64; }
    /// Zeros on each side of a slice: a row, and what is left of a word.
    long guard() const { return nx / 64 + 2; }
    long bufferWords() const { return sliceWords() + 2 * guard(); }
    long stripWords() const
    {
        const long period = nx / std::gcd(64l, nx);
        return (kLeastStrip + period - 1) / period * period;
    }
    long strips() const { return (sliceWords() + stripWords() - 1) / stripWords(); }
    /// So many slices fill whole words, and can be written by different threads.
    long slicesPerBlock() const { return 64 / std::gcd(64l, sliceBits()); }
};

// Takes n words from bit `at` on. Returns whether a bit of the field, unflipped, is set among them.
MC_TARGET_CLONES
bool loadWords(const McBitfield::Word64* field, unsigned long at, long n, Word flip, Word used,
               Word* __restrict words)
{
    const McBitfield::Word64* w = field + at / 64;
    const int shift = int(at % 64);
    Word any = 0;
    for (long k = 0; k < n - 1; k++) {
        const Word word = w[k] >> shift | w[k + 1] << 1 << (63 - shift);
        any |= word;
        words[k] = word ^ flip;
    }
    const Word last = (w[n - 1] >> shift | w[n] << 1 << (63 - shift)) & used;
    words[n - 1] = (last ^ flip) & used;
    return (any | last) != 0;
}

// Puts n bits back at bit `at`; those around them stay.
MC_TARGET_CLONES
void storeBits(McBitfield::Word64* field, unsigned long at, long n, const Word* words)
{
    McBitfield::Word64* w = field + at / 64;
    const int shift = int(at % 64);
    const long whole = (shift + n) / 64; // words of the field before the one with the end
    const int rest = int((shift + n) % 64);
    const Word below = (Word(1) << shift) - 1;
    const Word upToEnd = (Word(1) << rest) - 1;
    if (whole == 0) {
        w[0] = (w[0] & (below | ~upToEnd)) | (words[0] << shift & upToEnd);
        return;
    }
    w[0] = (w[0] & below) | words[0] << shift;
    for (long k = 1; k < whole; k++) w[k] = words[k] << shift | words[k - 1] >> 1 >> (63 - shift);
    if (rest == 0) return;
    Word last = words[whole - 1] >> 1 >> (63 - shift);
    if (rest > shift) last |= words[whole] << shift;
    w[whole] = (w[whole] & ~upToEnd) | (last & upToEnd);
}

/// The slices around the one at hand. A direction that does not count is a slice of zeros.
struct Around
{
    const Word* centre;
    const Word* rows; // the centre again, for its neighbours along y
    const Word* before;
    const Word* behind;
};

// One strip of n words. The rows above and below lie a whole number of words away, or not.
MC_TARGET_CLONES
void dilateWords(const Around& a, const Word* hasLeft, const Word* hasRight, long nx, long n, Word flip,
                 McBitfield::Word64* __restrict out)
{
    const int shift = int(nx % 64), rest = 64 - shift;
    const Word* above = a.rows - nx / 64;
    const Word* below = a.rows + nx / 64;
    const Word* c = a.centre;
    const Word* before = a.before;
    const Word* behind = a.behind;
    if (shift == 0) {
        for (long k = 0; k < n; k++) {
            Word set = c[k] | before[k] | behind[k] | above[k] | below[k];
            set |= (c[k] << 1 | c[k - 1] >> 63) & hasLeft[k];
            set |= (c[k] >> 1 | c[k + 1] << 63) & hasRight[k];
            out[k] = set ^ flip;
        }
        return;
    }
    for (long k = 0; k < n; k++) {
        Word set = c[k] | before[k] | behind[k];
        set |= (c[k] << 1 | c[k - 1] >> 63) & hasLeft[k];
        set |= (c[k] >> 1 | c[k + 1] << 63) & hasRight[k];
        set |= above[k] << shift | above[k - 1] >> rest;
        set |= below[k] >> shift | below[k + 1] << rest;
        out[k] = set ^ flip;
    }
}

/// What all threads share: which bits of a strip have a neighbour to the left and to the right, and zeros.
struct Masks
{
    explicit Masks(const Volume& v)
        : hasLeft(int(v.stripWords())), hasRight(int(v.stripWords())), zeros(int(v.bufferWords()))
    {
        if (!(v.axes & McMorphology::kAlongX)) return;
        std::fill(hasLeft.begin(), hasLeft.end(), ~Word(0));
        std::fill(hasRight.begin(), hasRight.end(), ~Word(0));
        for (long first = 0; first < 64 * v.stripWords(); first += v.nx) {
            const long last = first + v.nx - 1;
            hasLeft[int(first / 64)] &= ~(Word(1) << (first % 64));
            hasRight[int(last / 64)] &= ~(Word(1) << (last % 64));
        }
    }

    McDArray<Word> hasLeft;
    McDArray<Word> hasRight;
    McDArray<Word> zeros;
};

/// One thread's way through a stack of slices, in place: each is written while the one behind it is read, so
/// that memory works while the words are combined.
class SliceStream
{
public:
    // scratch  scratchWords() zeros
    SliceStream(McBitfield& field, const Volume& volume, const Masks& shared, Word* scratch)
        : bits(field),
          v(volume),
          masks(shared),
          zeros(shared.zeros.data() + v.guard()),
          sliceWords(v.sliceWords()),
          stripWords(v.stripWords()),
          strips(v.strips())
    {
        for (Slice* slice : {&before, &centre, &behind, &halo}) {
            slice->words = scratch + v.guard();
            scratch += v.bufferWords();
            slice->hasBits = scratch + 1;
            scratch += v.strips() + 2;
        }
        out = scratch;
    }

    static long scratchWords(const Volume& v)
    {
        return 4 * (v.bufferWords() + v.strips() + 2) + v.stripWords();
    }

    // Reads the slices at both ends before other threads change them.
    void begin(long first, long end)
    {
        if (first >= end) return;
        if (first > 0) load(first - 1, before);
        load(first, centre);
        if (end < v.nz) load(end, halo);
    }

    void run(long first, long end)
    {
        for (long z = first; z < end; z++) {
            const bool reads = z + 1 < end;
            if (z + 1 == end) std::swap(behind, halo);
            behind.isThere = z + 1 < v.nz;
            for (long strip = 0; strip < strips; strip++) {
                if (reads) loadStrip(z + 1, strip, behind);
                if (matters(strip)) write(z, strip);
            }
            std::swap(before, centre);
            std::swap(centre, behind);
        }
    }

private:
    struct Slice
    {
        Word* words = nullptr;
        Word* hasBits = nullptr; // of the field, by strip; 0 beside the first and the last
        bool isThere = false;
    };

    void load(long z, Slice& slice) const
    {
        slice.isThere = true;
        for (long strip = 0; strip < strips; strip++) loadStrip(z, strip, slice);
    }

    void loadStrip(long z, long strip, Slice& slice) const
    {
        const long k = strip * stripWords;
        const long n = std::min(stripWords, sliceWords - k);
        const Word used = k + n < sliceWords ? ~Word(0) : mcLastWordMask(v.sliceBits());
        prefetch(z * v.sliceBits() + 64 * (k + n));
        slice.hasBits[strip] = loadWords(bits.words64(), (unsigned long)(z * v.sliceBits() + 64 * k), n,
                                         v.flip, used, slice.words + k);
    }

    // Asks for the next strip ahead of its time.
    void prefetch(long at) const
    {
        const long last = long(bits.numWords64());
        const long end = std::min(at / 64 + stripWords, last);
        for (long k = at / 64; k < end; k += kCacheLine) __builtin_prefetch(bits.words64() + k);
    }

    bool acrossSlices() const { return v.axes & McMorphology::kAlongZ; }

    const Word* neighbour(const Slice& slice) const
    {
        return acrossSlices() && slice.isThere ? slice.words : zeros;
    }

    // Nothing can be taken from an empty strip, and nothing grows into it from empty ones.
    bool matters(long strip) const
    {
        const Word* inSlice = centre.hasBits + strip;
        if (inSlice[0]) return true;
        if (v.flip) return false;
        if (inSlice[-1] || inSlice[1]) return true;
        return acrossSlices() &&
               ((before.isThere && before.hasBits[strip]) || (behind.isThere && behind.hasBits[strip]));
    }

    void write(long z, long strip)
    {
        const long k = strip * stripWords;
        const long n = std::min(stripWords, sliceWords - k);
        const Word* rows = v.axes & McMorphology::kAlongY ? centre.words : zeros;
        const auto at = (unsigned long)(z * v.sliceBits() + 64 * k);
        const bool fills = at % 64 == 0 && 64 * (k + n) <= v.sliceBits(); // whole words of the field
        dilateWords({centre.words + k, rows + k, neighbour(before) + k, neighbour(behind) + k},
                    masks.hasLeft.data(), masks.hasRight.data(), v.nx, n, v.flip,
                    fills ? bits.words64() + at / 64 : out);
        if (!fills) storeBits(bits.words64(), at, std::min(64 * n, v.sliceBits() - 64 * k), out);
    }

    McBitfield& bits;
    const Volume& v;
    const Masks& masks;
    const Word* zeros;
    const long sliceWords, stripWords, strips; // computed once
    Slice before, centre, behind;
    Slice halo; // the first slice behind the stack, as it was at the start
    Word* out;
};

void onePass(McBitfield& bits, const Volume& v)
{
    if (bits.numBits() == 0) return;
    const long blocks = (v.nz + v.slicesPerBlock() - 1) / v.slicesPerBlock();
    const int threads = int(std::min(long(mcNumThreadsFor(bits.numBits() / 8)), blocks));
    const long scratchWords = SliceStream::scratchWords(v);
    const Masks masks(v);
    McDArray<Word> scratch(int(threads * scratchWords));
#pragma omp parallel num_threads(threads)
    {
        const long team = omp_get_num_threads(), i = omp_get_thread_num();
        const long first = std::min(blocks * i / team * v.slicesPerBlock(), v.nz);
        const long end = std::min(blocks * (i + 1) / team * v.slicesPerBlock(), v.nz);
        SliceStream stream(bits, v, masks, scratch.data() + i * scratchWords);
        stream.begin(first, end);
#pragma omp barrier
        stream.run(first, end);
    }
}

void manyPasses(const McBitfield& bits, McBitfield& result, const Volume& v, int width)
{
    assert(&bits != &result);
    result = bits;
    for (int pass = 0; pass < width; pass++) onePass(result, v);
}

} // namespace

void McMorphology::erosion3D(const McBitfield& bits, McBitfield& result, const int* dims, int width)
{
    manyPasses(bits, result, {dims[0], dims[1], dims[2], ~Word(0), kAllAxes}, width);
}

void McMorphology::dilation3D(const McBitfield& bits, McBitfield& result, const int* dims, int width)
{
    manyPasses(bits, result, {dims[0], dims[1], dims[2], 0, kAllAxes}, width);
}

void McMorphology::erode(McBitfield& bits, const int* dims, int axes)
{
    onePass(bits, {dims[0], dims[1], dims[2], ~Word(0), axes});
}

void McMorphology::dilate(McBitfield& bits, const int* dims, int axes)
{
    onePass(bits, {dims[0], dims[1], dims[2], 0, axes});
}
