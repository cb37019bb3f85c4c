#include "core/GiLabelWords.h"

#include <bit>
#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#define GI_HAS_AVX2 1
#include <immintrin.h>
#endif

namespace {

constexpr unsigned long kWord = 32;

/// How a label is found changeable.
enum class Test
{
    all, // every label is
    one, // one label is
    set
};

Test testFor(const GiLabelSet& set)
{
    const int size = set.size();
    return size == 256 ? Test::all : size == 1 ? Test::one : Test::set;
}

template <class Combine>
void matchPlain(unsigned int* words, unsigned long first, unsigned long end, const unsigned char* labels,
                unsigned char value, const Combine& combine)
{
    for (unsigned long i = first; i < end; ++i) {
        unsigned int equal = 0;
        for (unsigned long k = 0; k < kWord; ++k)
            equal |= static_cast<unsigned int>(labels[i * kWord + k] == value) << k;
        words[i] = combine(words[i], equal);
    }
}

#if defined(GI_HAS_AVX2)

#define GI_AVX2 __attribute__((target("avx2")))

bool hasAvx2()
{
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}

/// 255 in byte k where bit k of the word is set.
GI_AVX2 inline __m256i bytesOfBits(unsigned int word)
{
    const __m256i spread = _mm256_setr_epi8(0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, //
                                            2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3);
    const __m256i bit = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201ull));
    const __m256i bytes = _mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int>(word)), spread);
    return _mm256_cmpeq_epi8(_mm256_and_si256(bytes, bit), bit);
}

/// A label set as tables for byte shuffles.
struct ShuffleTables
{
    __m256i lowRows, highRows, bitOfHalf;
};

GI_AVX2 inline ShuffleTables tablesOf(const GiLabelSet& set)
{
    alignas(32) unsigned char low[32], high[32], bit[32];
    for (int i = 0; i < 32; ++i) {
        low[i] = static_cast<unsigned char>(set.rows[i % 16]);
        high[i] = static_cast<unsigned char>(set.rows[i % 16] >> 8);
        bit[i] = static_cast<unsigned char>(1 << (i % 8));
    }
    return {_mm256_load_si256(reinterpret_cast<const __m256i*>(low)),
            _mm256_load_si256(reinterpret_cast<const __m256i*>(high)),
            _mm256_load_si256(reinterpret_cast<const __m256i*>(bit))};
}

/// 255 where the label is in the set.
GI_AVX2 inline __m256i isMember(__m256i labels, const ShuffleTables& tables)
{
    // A shuffle gives 0 where the top bit of the index is set: so each of the two finds its rows for
    // its half of the labels, and nothing for the other half.
    const __m256i index = _mm256_and_si256(labels, _mm256_set1_epi8(static_cast<char>(0x8F)));
    const __m256i flipped = _mm256_xor_si256(index, _mm256_set1_epi8(static_cast<char>(0x80)));
    const __m256i row = _mm256_or_si256(_mm256_shuffle_epi8(tables.lowRows, index),
                                        _mm256_shuffle_epi8(tables.highRows, flipped));
    const __m256i high = _mm256_and_si256(_mm256_srli_epi16(labels, 4), _mm256_set1_epi8(0x0F));
    const __m256i bit = _mm256_shuffle_epi8(tables.bitOfHalf, high);
    return _mm256_cmpeq_epi8(_mm256_and_si256(row, bit), bit);
}

template <Test kTest>
GI_AVX2 inline void writeWord(unsigned int word, unsigned char* labels, __m256i wanted,
                              const ShuffleTables& tables, __m256i value)
{
    auto* const at = reinterpret_cast<__m256i*>(labels);
    if (word == 0) return;
    if (kTest == Test::all && word == ~0u) {
        _mm256_storeu_si256(at, value);
        return;
    }
    const __m256i old = _mm256_loadu_si256(at);
    __m256i change = bytesOfBits(word);
    if (kTest == Test::one) change = _mm256_and_si256(change, _mm256_cmpeq_epi8(old, wanted));
    if (kTest == Test::set) change = _mm256_and_si256(change, isMember(old, tables));
    // Lines that do not change are not written back.
    if (_mm256_testz_si256(change, change)) return;
    _mm256_storeu_si256(at, _mm256_blendv_epi8(old, value, change));
}

template <Test kTest>
GI_AVX2 void writeAvx2(const unsigned int* words, unsigned long first, unsigned long end,
                       unsigned char* labels, const GiLabelSet& changeable, unsigned char newLabel)
{
    const ShuffleTables tables = tablesOf(changeable);
    const __m256i wanted = _mm256_set1_epi8(static_cast<char>(changeable.first()));
    const __m256i value = _mm256_set1_epi8(static_cast<char>(newLabel));
    unsigned long i = first;
    for (; i + 8 <= end; i += 8) {
        const __m256i eight = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(words + i));
        if (_mm256_testz_si256(eight, eight)) continue;
        for (unsigned long k = i; k < i + 8; ++k)
            writeWord<kTest>(words[k], labels + k * kWord, wanted, tables, value);
    }
    for (; i < end; ++i) writeWord<kTest>(words[i], labels + i * kWord, wanted, tables, value);
}

GI_AVX2 inline unsigned int equalBits(const unsigned char* labels, __m256i value)
{
    const __m256i part = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(labels));
    return static_cast<unsigned int>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(part, value)));
}

GI_AVX2 void matchAvx2(unsigned int* words, unsigned long first, unsigned long end,
                       const unsigned char* labels, unsigned char value, int mode)
{
    const __m256i wanted = _mm256_set1_epi8(static_cast<char>(value));
    if (mode == kLabelsReplace)
        for (unsigned long i = first; i < end; ++i) words[i] = equalBits(labels + i * kWord, wanted);
    else if (mode == kLabelsAdd)
        for (unsigned long i = first; i < end; ++i) words[i] |= equalBits(labels + i * kWord, wanted);
    else
        for (unsigned long i = first; i < end; ++i) words[i] &= ~equalBits(labels + i * kWord, wanted);
}

#endif

} // namespace

int GiLabelSet::size() const
{
    int labels = 0;
    for (const unsigned int row : rows) labels += std::popcount(row);
    return labels;
}

int GiLabelSet::first() const
{
    int label = 0;
    while (label < 255 && !contains(static_cast<unsigned char>(label))) ++label;
    return label;
}

void giWriteWords(const unsigned int* words, unsigned long first, unsigned long end, unsigned char* labels,
                  const GiLabelSet& changeable, unsigned char value)
{
#if defined(GI_HAS_AVX2)
    if (hasAvx2()) {
        switch (testFor(changeable)) {
        case Test::all:
            return writeAvx2<Test::all>(words, first, end, labels, changeable, value);
        case Test::one:
            return writeAvx2<Test::one>(words, first, end, labels, changeable, value);
        case Test::set:
            return writeAvx2<Test::set>(words, first, end, labels, changeable, value);
        }
    }
#endif
    giWriteWordsPlain(words, first, end, labels, changeable, value);
}

void giMatchWords(unsigned int* words, unsigned long first, unsigned long end, const unsigned char* labels,
                  unsigned char value, int mode)
{
#if defined(GI_HAS_AVX2)
    if (hasAvx2()) return matchAvx2(words, first, end, labels, value, mode);
#endif
    giMatchWordsPlain(words, first, end, labels, value, mode);
}

void giWriteWordsPlain(const unsigned int* words, unsigned long first, unsigned long end,
                       unsigned char* labels, const GiLabelSet& changeable, unsigned char value)
{
    const bool all = testFor(changeable) == Test::all;
    for (unsigned long i = first; i < end; ++i) {
        unsigned int word = words[i];
        unsigned char* const at = labels + i * kWord;
        if (word == ~0u && all) {
            std::memset(at, value, kWord);
            continue;
        }
        for (; word; word &= word - 1) {
            unsigned char& label = at[std::countr_zero(word)];
            if (changeable.contains(label)) label = value;
        }
    }
}

void giMatchWordsPlain(unsigned int* words, unsigned long first, unsigned long end,
                       const unsigned char* labels, unsigned char value, int mode)
{
    using Bits = unsigned int;
    if (mode == kLabelsReplace)
        matchPlain(words, first, end, labels, value, [](Bits, Bits equal) { return equal; });
    else if (mode == kLabelsAdd)
        matchPlain(words, first, end, labels, value, [](Bits old, Bits equal) { return old | equal; });
    else
        matchPlain(words, first, end, labels, value, [](Bits old, Bits equal) { return old & ~equal; });
}
