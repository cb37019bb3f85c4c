#pragma once

// Labels against words of a bit field: word i holds the bits of labels 32 * i to 32 * i + 31. The
// innermost loops of the volume transfer, with AVX2 where the processor has it.

/// A set of labels.
class GiLabelSet
{
public:
    void insert(int label) { rows[label & 15] |= 1u << (label >> 4); }
    bool contains(unsigned char label) const { return rows[label & 15] >> (label >> 4) & 1; }
    int size() const;
    /// The lowest label of a set that is not empty.
    int first() const;

    /// By the low half of the label; bit h of a row stands for the high half h. In this order two
    /// byte shuffles look up a whole vector of labels.
    unsigned int rows[16] = {};
};

/// Writes `value` into each label of the words [first, end) whose bit is set and which is in
/// `changeable`. Words without a bit cost one test for eight of them.
void giWriteWords(const unsigned int* words, unsigned long first, unsigned long end, unsigned char* labels,
                  const GiLabelSet& changeable, unsigned char value);

constexpr int kLabelsAdd = 0;
constexpr int kLabelsReplace = 2;

/// Turns the comparison with `value` into bits of the words [first, end): kLabelsReplace stores
/// them, kLabelsAdd adds them, any other mode takes them away.
void giMatchWords(unsigned int* words, unsigned long first, unsigned long end, const unsigned char* labels,
                  unsigned char value, int mode);

/// The same on processors without AVX2.
void giWriteWordsPlain(const unsigned int* words, unsigned long first, unsigned long end,
                       unsigned char* labels, const GiLabelSet& changeable, unsigned char value);
void giMatchWordsPlain(unsigned int* words, unsigned long first, unsigned long end,
                       const unsigned char* labels, unsigned char value, int mode);
