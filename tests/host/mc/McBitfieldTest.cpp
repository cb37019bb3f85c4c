#include "mc/McBitfield.h"
#include "mc/McBitRows.h"
#include "mc/McMemoryException.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

namespace {

McBitfield randomField(unsigned long n, std::mt19937& random)
{
    McBitfield field(n);
    for (unsigned long i = 0; i < n; i++)
        if (random() & 1) field.set(i);
    return field;
}

bool paddingIsClear(const McBitfield& field)
{
    if (!field.words()) return true;
    for (unsigned long i = field.numBits(); i < (field.numWords64() + 1) * 64; i++)
        if (field.words()[i / 32] >> (i % 32) & 1) return false;
    return true;
}

class McBitfieldOfSize : public testing::TestWithParam<unsigned long>
{
};

} // namespace

TEST_P(McBitfieldOfSize, TogglesEveryBitButThePadding)
{
    std::mt19937 random(3);
    const unsigned long n = GetParam();
    McBitfield field = randomField(n, random);
    const McBitfield before = field;
    field.toggleAll();
    for (unsigned long i = 0; i < n; i++) ASSERT_NE(field.isSet(i), before.isSet(i)) << i;
    EXPECT_TRUE(paddingIsClear(field));
    field.toggleAll();
    EXPECT_EQ(field, before);
}

TEST_P(McBitfieldOfSize, FindsASingleBitAndNoneInThePadding)
{
    const unsigned long n = GetParam();
    McBitfield field(n);
    EXPECT_FALSE(field.isAnyBitSet());
    for (unsigned long i = 0; i < n; i += i < 200 ? 1 : 997) {
        field.set(i);
        ASSERT_EQ(field.words()[i / 32], 1u << (i % 32));
        ASSERT_TRUE(field.isAnyBitSet()) << i;
        field.unset(i);
        ASSERT_FALSE(field.isAnyBitSet()) << i;
    }
}

TEST_P(McBitfieldOfSize, ShrinksWithinAWordWithoutStrayBits)
{
    const unsigned long n = GetParam();
    McBitfield field(n);
    field.toggleAll();
    field.resize(n - 1);
    EXPECT_TRUE(paddingIsClear(field));
    field.resize(n);
    EXPECT_TRUE(paddingIsClear(field));
    EXPECT_FALSE(field.isSet(n - 1));
}

INSTANTIATE_TEST_SUITE_P(WordBorders, McBitfieldOfSize,
                         testing::Values(1, 31, 32, 33, 63, 64, 65, 127, 128, 129, 16384, 100003));

TEST(McBitfield, ReportsAbsurdSizesAndIsEmptyThen)
{
    for (unsigned long bits : {std::numeric_limits<unsigned long>::max(), 1ul << 62}) {
        McBitfield field(100);
        try {
            field.resize(bits);
            FAIL() << "no exception";
        } catch (const McMemoryException& e) {
            EXPECT_GE(e.size(), bits / 8);
        }
        EXPECT_EQ(field.numBits(), 0u);
        field.resize(64);
        EXPECT_FALSE(field.isAnyBitSet());
    }
}

TEST(McBitfield, RowsMoveToWordsAndBack)
{
    std::mt19937 random(5);
    for (int round = 0; round < 300; round++) {
        const unsigned long n = 1 + random() % 500;
        const McBitfield field = randomField(n, random);
        const unsigned long at = random() % n;
        const long bits = 1 + long(random() % (n - at));
        std::vector<std::uint64_t> row((bits + 63) / 64);
        mcLoadBitRow(field.words64(), at, long(row.size()), 0, row.data());
        row.back() &= mcLastWordMask(bits);
        for (long i = 0; i < bits; i++) ASSERT_EQ(row[i / 64] >> (i % 64) & 1, field.isSet(at + i));
        EXPECT_EQ(field.load64(at) & (bits < 64 ? mcLastWordMask(bits) : ~0ul), row[0]);

        McBitfield copy(n);
        mcOrBitRow(copy.words64(), at, bits, row.data());
        for (unsigned long i = 0; i < n; i++)
            ASSERT_EQ(copy.isSet(i), i >= at && i < at + bits && field.isSet(i)) << i;
        ASSERT_TRUE(paddingIsClear(copy));
    }
}
