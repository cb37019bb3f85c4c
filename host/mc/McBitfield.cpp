#include "mc/McBitfield.h"

#include "mc/McMemory.h"
#include "mc/McSimd.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace {

// Words that are looked at between two tests for a set bit: a few cache lines, so that an early bit ends
// the scan early and the loop within still runs in wide registers.
constexpr unsigned long kScanBlock = 256;

constexpr unsigned long kSpareBytes = 8;

MC_TARGET_CLONES
void toggleWords(McBitfield::Word64* w, unsigned long n)
{
    for (unsigned long i = 0; i < n; i++) w[i] = ~w[i];
}

MC_TARGET_CLONES
std::uint64_t unionOfWords(const McBitfield::Word64* w, unsigned long n)
{
    std::uint64_t any = 0;
    for (unsigned long i = 0; i < n; i++) any |= w[i];
    return any;
}

unsigned int* newWords(unsigned long bits, bool zeroed)
{
    // Rounding up must not wrap round for a count near the largest number.
    if (bits > std::numeric_limits<unsigned long>::max() - 63) bits -= 63;
    const unsigned long bytes = (bits + 63) / 64 * 8 + kSpareBytes;
    return static_cast<unsigned int*>(zeroed ? mcAllocateZeroed(bytes) : mcAllocate(bytes));
}

} // namespace

McBitfield::McBitfield(const McBitfield& other)
{
    *this = other;
}

McBitfield::McBitfield(McBitfield&& other) noexcept
    : bits(std::exchange(other.bits, 0)), memory(std::exchange(other.memory, nullptr))
{
}

McBitfield::~McBitfield()
{
    std::free(memory);
}

McBitfield& McBitfield::operator=(const McBitfield& other)
{
    if (this == &other) return *this;
    if (other.bits == 0) {
        resize(0);
        return *this;
    }
    if (!memory || numWords64() != other.numWords64()) {
        resize(0);
        memory = newWords(other.bits, false);
    }
    bits = other.bits;
    std::memcpy(memory, other.memory, bytes() + kSpareBytes);
    return *this;
}

McBitfield& McBitfield::operator=(McBitfield&& other) noexcept
{
    std::swap(bits, other.bits);
    std::swap(memory, other.memory);
    return *this;
}

void McBitfield::resize(unsigned long n)
{
    if (n != 0 && memory && (n + 31) / 32 == numWords()) {
        bits = n;
        clearPadding();
        return;
    }
    std::free(memory);
    memory = nullptr;
    bits = 0;
    if (n == 0) return;
    memory = newWords(n, true);
    bits = n;
}

void McBitfield::unsetAll()
{
    if (memory) std::memset(memory, 0, bytes());
}

void McBitfield::toggleAll()
{
    if (!memory) return;
    toggleWords(words64(), numWords64());
    clearPadding();
}

bool McBitfield::isAnyBitSet() const
{
    const unsigned long n = numWords64();
    for (unsigned long at = 0; at < n; at += kScanBlock)
        if (unionOfWords(words64() + at, n - at < kScanBlock ? n - at : kScanBlock)) return true;
    return false;
}

bool operator==(const McBitfield& a, const McBitfield& b)
{
    return a.bits == b.bits && (a.bits == 0 || std::memcmp(a.memory, b.memory, a.bytes()) == 0);
}

// Clears all bits of the last 64-bit word from the end of the field on.
void McBitfield::clearPadding()
{
    if (bits % 64) words64()[bits / 64] &= ~std::uint64_t(0) >> (64 - bits % 64);
}
