#include "core/GiRowFill.h"

#include "core/GiBitRows.h"
#include "mc/McMemory.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <utility>

namespace {

constexpr std::uint64_t kAll = ~std::uint64_t{0};

std::uint64_t from(unsigned long bit)
{
    return kAll << (bit % 64);
}

std::uint64_t upTo(unsigned long bit)
{
    return kAll >> (63 - bit % 64);
}

} // namespace

GiRowFill::GiRowFill(const unsigned long* dims, McBitfield& marks, AcceptRow accept)
    : nx(static_cast<long>(dims[0])),
      ny(static_cast<long>(dims[1])),
      nz(static_cast<long>(dims[2])),
      rowWords((dims[0] + 63) / 64),
      visited(marks),
      acceptRow(std::move(accept))
{
    const unsigned long rows = dims[1] * dims[2];
    acceptedRow.resize(static_cast<int>(rowWords));
    words = static_cast<Word*>(mcAllocateZeroed(mcByteCount(rows * rowWords, sizeof(Word))));
    try {
        isBuilt = static_cast<unsigned char*>(mcAllocateZeroed(rows));
    } catch (...) {
        std::free(words);
        throw;
    }
}

GiRowFill::~GiRowFill()
{
    std::free(words);
    std::free(isBuilt);
}

void GiRowFill::buildRow(unsigned long row)
{
    acceptRow(row, acceptedRow.data());
    Word* built = words + row * rowWords;
    for (unsigned long i = 0; i < rowWords; ++i) {
        const std::uint64_t accepted = acceptedRow[static_cast<int>(i)];
        const unsigned long x = i * 64;
        const unsigned long n = std::min(64ul, static_cast<unsigned long>(nx) - x);
        built[i].accepted = accepted;
        built[i].open = accepted & ~giLoadBits(visited.words(), row * static_cast<unsigned long>(nx) + x, n);
    }
    isBuilt[row] = 1;
}

bool GiRowFill::hasOpen(long y, long z, int left, int right)
{
    const Word* row = wordsOf(static_cast<unsigned long>(z * ny + y));
    const int first = left / 64, last = right / 64;
    std::uint64_t open = row[first].open & from(static_cast<unsigned long>(left));
    for (int i = first; i < last; ++i) {
        if (open) return true;
        open = row[i + 1].open;
    }
    return (open & upTo(static_cast<unsigned long>(right))) != 0;
}

void GiRowFill::push(long z, long y, int left, int right)
{
    if (z < 0 || z >= nz || y < 0 || y >= ny) return;
    // What is closed now stays closed: leaving such a span out saves most of the stack's traffic.
    if (!hasOpen(y, z, left, right)) return;
    pending.push(Span{static_cast<int>(z), static_cast<int>(y), left, right});
}

unsigned long GiRowFill::fill(long x, long y, long z, long* bounds)
{
    const auto seed = static_cast<unsigned long>(x);
    const Word& word = wordsOf(static_cast<unsigned long>(z * ny + y))[seed / 64];
    if (!(word.accepted >> (seed % 64) & 1)) return 0;

    count = 0;
    pending.clear();
    const int at = static_cast<int>(x);
    push(z - 1, y, at, at);
    push(z + 1, y, at, at);
    push(z, y - 1, at, at);
    push(z, y + 1, at, at);
    push(z, y, at, at);
    while (pending.size() > 0) fillSpan(pending.pop(), bounds);
    return count;
}

void GiRowFill::fillSpan(const Span& span, long* bounds)
{
    Word* row = wordsOf(static_cast<unsigned long>(span.z * ny + span.y));
    const auto findOpen = [&](int x) {
        int i = x / 64;
        std::uint64_t open = row[i].open & from(static_cast<unsigned long>(x));
        while (open == 0 && i < span.right / 64) open = row[++i].open;
        return open ? i * 64 + std::countr_zero(open) : span.right + 1;
    };
    const auto runEnd = [&](int x) {
        auto i = static_cast<unsigned long>(x) / 64;
        std::uint64_t refused = ~row[i].accepted & from(static_cast<unsigned long>(x));
        while (refused == 0 && i + 1 < rowWords) refused = ~row[++i].accepted;
        return refused ? static_cast<int>(i * 64) + std::countr_zero(refused) : static_cast<int>(nx);
    };
    const auto runBegin = [&](int x) {
        auto i = static_cast<unsigned long>(x) / 64;
        std::uint64_t refused = ~row[i].accepted & upTo(static_cast<unsigned long>(x));
        while (refused == 0 && i > 0) refused = ~row[--i].accepted;
        return refused ? static_cast<int>(i * 64) + 64 - std::countl_zero(refused) : 0;
    };

    for (int x = findOpen(span.left); x <= span.right;) {
        // Only at the span's begin can an open run reach further to the left.
        const int left = x == span.left ? runBegin(x) : x;
        const int end = runEnd(x);
        markRun(row, span, left, end, bounds);
        if (end >= span.right) return;
        x = findOpen(end + 1);
    }
}

void GiRowFill::markRun(Word* row, const Span& span, int left, int end, long* bounds)
{
    const auto first = static_cast<unsigned long>(left);
    const auto last = static_cast<unsigned long>(end - 1);
    const auto base = static_cast<unsigned long>((span.z * ny + span.y) * nx);
    giSetBits(visited.words(), base + first, base + last + 1);
    for (unsigned long i = first / 64; i <= last / 64; ++i) {
        std::uint64_t run = kAll;
        if (i == first / 64) run &= from(first);
        if (i == last / 64) run &= upTo(last);
        row[i].open &= ~run;
    }
    push(span.z - 1l, span.y, left, end - 1);
    push(span.z + 1l, span.y, left, end - 1);
    push(span.z, span.y - 1l, left, end - 1);
    push(span.z, span.y + 1l, left, end - 1);

    const long low[3] = {left, span.y, span.z};
    const long high[3] = {end - 1l, span.y, span.z};
    for (int axis = 0; axis < 3; ++axis) {
        bounds[axis] = std::min(bounds[axis], low[axis]);
        bounds[axis + 3] = std::max(bounds[axis + 3], high[axis]);
    }
    count += static_cast<unsigned long>(end - left);
}
