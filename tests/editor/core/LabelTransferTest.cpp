#include "RandomVolume.h"
#include "core/GiLabelTransfer.h"
#include "core/GiLabelWords.h"

#include <gtest/gtest.h>

#include <array>

namespace {

const unsigned long kSizes[][3] = {{67, 13, 9}, {64, 8, 8}, {31, 7, 5},  {5, 3, 2},
                                   {130, 1, 3}, {1, 1, 1},  {256, 16, 5}};

struct LabelTransfer : testing::TestWithParam<int>
{
    template <class Check>
    void forEachVolume(const Check& check)
    {
        unsigned int seed = 0;
        for (const auto& size : kSizes) {
            for (int run = 0; run < 6; ++run) {
                RandomVolume v(size[0], size[1], size[2], ++seed);
                v.drawLabels(run % 2 ? 3 : 200, 1 + 10 * run);
                McBitfield bits;
                v.drawSelection(bits);
                if (run == 5) bits.unsetAll();
                if (run == 4) bits.unsetAll(), bits.toggleAll();
                SCOPED_TRACE("volume " + std::to_string(seed));
                check(v, bits);
                if (HasFatalFailure()) return;
            }
        }
    }
    const int threads = GetParam();
};

TEST_P(LabelTransfer, AddSparesLockedLabels)
{
    forEachVolume([&](RandomVolume& v, const McBitfield& bits) {
        for (const int locks : {0, 1, 40, 255}) {
            std::array<int, 256> locked{};
            for (int i = 0; i < locks; ++i) locked[static_cast<std::size_t>(v.below(256))] = 1;
            std::vector<unsigned char> expected = v.labels;
            for (unsigned long i = 0; i < v.count(); ++i)
                if (bits.isSet(i) && !locked[expected[i]]) expected[i] = 9;
            giAddVoxels(bits, v.labels.data(), v.count(), 9, locked.data(), threads);
            ASSERT_EQ(v.labels, expected) << locks << " locks";
        }
    });
}

TEST_P(LabelTransfer, MoveChangesOneLabelOnly)
{
    forEachVolume([&](RandomVolume& v, const McBitfield& bits) {
        std::vector<unsigned char> expected = v.labels;
        for (unsigned long i = 0; i < v.count(); ++i)
            if (bits.isSet(i) && expected[i] == 1) expected[i] = 250;
        giMoveVoxels(bits, v.labels.data(), v.count(), 1, 250, threads);
        ASSERT_EQ(v.labels, expected);
    });
}

TEST_P(LabelTransfer, SelectByLabel)
{
    forEachVolume([&](RandomVolume& v, const McBitfield& bits) {
        const int tissue = v.labels[0];
        for (int mode = 0; mode < 4; ++mode) {
            McBitfield result = bits;
            std::vector<bool> expected = asVector(bits);
            for (unsigned long i = 0; i < v.count(); ++i) {
                if (mode == 2) expected[i] = false;
                if (v.labels[i] == tissue) expected[i] = mode == 0 || mode == 2;
            }
            giSelectTissue(result, v.labels.data(), v.count(), tissue, mode, threads);
            ASSERT_EQ(asVector(result), expected) << "mode " << mode;
            result.toggleAll();
            result.toggleAll();
            ASSERT_EQ(asVector(result), expected) << "padding bits were set";
        }
    });
}

TEST_P(LabelTransfer, TargetIsTheMostFrequentNeighbour)
{
    const auto best = [](const std::array<unsigned long, 256>& counts, int tissue) {
        int found = 0;
        unsigned long most = 0;
        for (int label = 0; label < 256; ++label)
            if (label != tissue && counts[static_cast<std::size_t>(label)] > most)
                most = counts[static_cast<std::size_t>(found = label)];
        return most ? found : -1;
    };
    forEachVolume([&](RandomVolume& v, const McBitfield& bits) {
        for (const int tissue : {0, 1, 2, 199}) {
            std::array<unsigned long, 256> counts{};
            for (unsigned long i = 0; i < v.count(); ++i)
                if (bits.isSet(i))
                    v.forEachNeighbour(i, [&](unsigned long j) { counts[v.labels[j]] += !bits.isSet(j); });
            int expected = best(counts, tissue);
            if (expected < 0) {
                for (unsigned long i = 0; i < v.count(); ++i) counts[v.labels[i]] += bits.isSet(i);
                expected = best(counts, tissue);
            }
            ASSERT_EQ(giChooseTarget3D(bits, v.labels.data(), v.dims, tissue, threads),
                      std::max(expected, 0));
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Threads, LabelTransfer, testing::Values(1, 2, 3));

TEST(LabelTransferWords, AreTheSameWithoutVectorInstructions)
{
    for (unsigned int seed = 1; seed < 40; ++seed) {
        RandomVolume v(32, 31, 2, seed);
        v.drawLabels(250, 3);
        McBitfield bits;
        v.drawSelection(bits);
        const unsigned long first = seed % 3, end = bits.numWords() - seed % 5;
        GiLabelSet changeable;
        for (int label = 0; label < 256; ++label)
            if (seed % 4 == 0 || (seed % 4 == 1 && label == 77) || (seed % 4 > 1 && v.below(2)))
                changeable.insert(label);
        std::vector<unsigned char> plain = v.labels;
        giWriteWordsPlain(bits.words(), first, end, plain.data(), changeable, 7);
        giWriteWords(bits.words(), first, end, v.labels.data(), changeable, 7);
        ASSERT_EQ(v.labels, plain);
        for (int mode = 0; mode < 3; ++mode) {
            McBitfield plainBits = bits;
            giMatchWordsPlain(plainBits.words(), first, end, plain.data(), 7, mode);
            giMatchWords(bits.words(), first, end, plain.data(), 7, mode);
            ASSERT_EQ(bits, plainBits) << "mode " << mode;
        }
    }
}

TEST(LabelTransferTarget, TheLowestLabelWinsATie)
{
    // One row: 3 3 [1 1] 2 2, and the same counts for 2 and 3.
    std::vector<unsigned char> labels{3, 3, 1, 1, 2, 2};
    const unsigned long dims[3] = {6, 1, 1};
    McBitfield bits(6);
    bits.set(2);
    bits.set(3);
    EXPECT_EQ(giChooseTarget3D(bits, labels.data(), dims, 1, 1), 2);
    labels[4] = 1;
    EXPECT_EQ(giChooseTarget3D(bits, labels.data(), dims, 1, 1), 3);
    EXPECT_EQ(giChooseTarget3D(bits, labels.data(), dims, 3, 1), 1);
}

TEST(LabelTransferPieces, AreTheFillsOfAllSelectedVoxelsOfTheMaterial)
{
    for (unsigned int seed = 1; seed < 30; ++seed) {
        RandomVolume v(seed % 2 ? 70 : 33, 12, 10, seed);
        v.drawLabels(3, 2);
        McBitfield selection(v.count());
        for (int i = 0; i < 40; ++i)
            selection.set(static_cast<unsigned long>(v.below(static_cast<int>(v.count()))));
        std::vector<bool> expected(v.count());
        for (unsigned long i = 0; i < v.count(); ++i) {
            if (!selection.isSet(i) || expected[i]) continue;
            const std::vector<bool> piece = v.region(i, [&](unsigned long j) { return v.labels[j] == 2; });
            for (unsigned long j = 0; j < v.count(); ++j) expected[j] = expected[j] || piece[j];
        }
        McBitfield region(v.count());
        region.toggleAll(); // what it held before does not count
        giMarkPieces(selection, v.labels.data(), v.dims, 2, region);
        ASSERT_EQ(asVector(region), expected) << "volume " << seed;
    }
}

} // namespace
