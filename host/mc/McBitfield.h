#pragma once

#include <cstdint>

/// Packed bits: bit i lies in 32-bit word i / 32 at position i mod 32, least significant first.
///
/// The same memory may be read as 64-bit words (this machine is little endian: bit i lies in word i / 64
/// at position i mod 64). It is aligned for that, and one more 64-bit word of zeros follows the last one,
/// so that 64 bits may be fetched from any bit position on (`load64`). Padding bits of the last word
/// are 0; code that writes whole words keeps them so. Const use from many threads at once is safe.
class McBitfield
{
public:
    /// A 64-bit word that may alias the 32-bit words.
    using Word64 = std::uint64_t __attribute__((may_alias));

    McBitfield() = default;
    /// All bits 0.
    explicit McBitfield(unsigned long n) { resize(n); }
    McBitfield(const McBitfield& other);
    McBitfield(McBitfield&& other) noexcept;
    ~McBitfield();
    McBitfield& operator=(const McBitfield& other);
    McBitfield& operator=(McBitfield&& other) noexcept;

    /// Makes room for n bits. A change of the number of words takes new memory, with all bits 0; otherwise
    /// the bits below n stay. resize(0) frees the memory.
    /// throws  McMemoryException; the field is then empty
    void resize(unsigned long n);

    unsigned long numBits() const { return bits; }
    unsigned long numWords() const { return (bits + 31) / 32; }
    unsigned long numWords64() const { return (bits + 63) / 64; }
    unsigned int* words() { return memory; }
    const unsigned int* words() const { return memory; }
    Word64* words64() { return reinterpret_cast<Word64*>(memory); }
    const Word64* words64() const { return reinterpret_cast<const Word64*>(memory); }

    /// Unchecked.
    bool isSet(unsigned long i) const { return memory[i / 32] >> (i % 32) & 1; }
    void set(unsigned long i) { memory[i / 32] |= 1u << (i % 32); }
    void unset(unsigned long i) { memory[i / 32] &= ~(1u << (i % 32)); }

    /// The 64 bits from bit i on; i must lie within the field. Bits beyond the end are 0.
    std::uint64_t load64(unsigned long i) const
    {
        const Word64* w = words64() + i / 64;
        // Two shifts, since a shift by 64 is not defined.
        return w[0] >> (i % 64) | w[1] << 1 << (63 - i % 64);
    }

    void unsetAll();
    void toggleAll();
    bool isAnyBitSet() const;

    friend bool operator==(const McBitfield& a, const McBitfield& b);

private:
    unsigned long bits = 0;
    unsigned int* memory = nullptr;

    unsigned long bytes() const { return numWords64() * 8; }
    void clearPadding();
};
