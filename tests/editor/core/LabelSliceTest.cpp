#include "core/GiLabelSlice.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

/// A slice drawn in digits (labels), with a selection drawn in '#'. The memory begins with one
/// more row, since a slice of a volume does not begin at its first byte either.
struct SliceTransfer : testing::Test
{
    void draw(const std::vector<std::string>& labels, const std::vector<std::string>& marks)
    {
        width = static_cast<int>(labels[0].size());
        memory.assign(static_cast<std::size_t>(width), 99);
        for (const std::string& row : labels)
            for (const char c : row) memory.push_back(static_cast<unsigned char>(c - '0'));
        selection.resize(width, static_cast<int>(labels.size()));
        selection.clear();
        for (std::size_t y = 0; y < marks.size(); ++y)
            for (std::size_t x = 0; x < marks[y].size(); ++x)
                if (marks[y][x] == '#') selection.set(static_cast<int>(x), static_cast<int>(y));
        slice.width = static_cast<unsigned long>(width);
        slice.height = labels.size();
        slice.xStride = 1;
        slice.yStride = slice.width;
        slice.memory = memory.data() + width;
        slice.locked = locked;
    }
    std::vector<std::string> labels() const
    {
        std::vector<std::string> rows;
        for (unsigned long i = 0; i < slice.width * slice.height; ++i) {
            if (i % slice.width == 0) rows.emplace_back();
            rows.back() += static_cast<char>('0' + slice.memory[i]);
        }
        return rows;
    }
    using Rows = std::vector<std::string>;

    int width = 0;
    std::vector<unsigned char> memory;
    int locked[256] = {};
    GiSelection2D selection;
    GiLabelSlice slice;
};

TEST_F(SliceTransfer, AddKeepsTheWeightsInStepAndSparesLockedLabels)
{
    draw({"0123"}, {"##.#"});
    locked[3] = 1;
    std::vector<unsigned char> p{5, 0, 7, 9}, q{6, 6, 6, 6};
    slice.prob = p.data();
    slice.addSelection(selection, 1);
    EXPECT_EQ(p, (std::vector<unsigned char>{5, 0, 7, 9})) << "one array alone is left alone";

    draw({"0123"}, {"##.#"});
    slice.prob2 = q.data();
    slice.addSelection(selection, 1);
    EXPECT_EQ(labels(), (Rows{"1123"}));
    EXPECT_EQ(p, (std::vector<unsigned char>{1, 1, 1, 9}));
    EXPECT_EQ(q, (std::vector<unsigned char>{0, 0, 0, 6}));

    // Already in the material with a weight of 1 or more, or unselected with 1 or less: no change.
    draw({"11"}, {"#."});
    p = {4, 1};
    q = {6, 6};
    slice.addSelection(selection, 1);
    EXPECT_EQ(p, (std::vector<unsigned char>{4, 1}));
    EXPECT_EQ(q, (std::vector<unsigned char>{6, 6}));
}

TEST_F(SliceTransfer, SubtractCountsOneColumnToTheLeft)
{
    // Around the selected pixel stand only 3s; one column to the left of each of its four
    // neighbours stand 5, its own 1, and two 4s.
    draw({"00000", "04300", "53130", "04300", "00000"}, {"", "", "..#"});
    slice.subtractSelection(selection, 1, {});
    EXPECT_EQ(labels()[2], "53430");
}

TEST_F(SliceTransfer, SubtractReadsBeforeTheRowForTheFirstColumn)
{
    // The pixel at (1, 1): left of its left neighbour is the end of the row above, a 7.
    draw({"227", "110", "220"}, {"...", "##.", "..."});
    locked[2] = 1;
    // Interior: (1, 1) alone. Right: the label 1 itself; up and down: 2 and 2, which wins and is locked.
    slice.subtractSelection(selection, 1, {});
    EXPECT_EQ(labels()[1], "110");
    draw({"117", "010", "110"}, {"...", ".#.", "..."});
    slice.subtractSelection(selection, 1, {});
    EXPECT_EQ(labels()[1], "070");
}

TEST_F(SliceTransfer, SubtractFallsBackToTheSelectionsOwnLabels)
{
    draw({"1122", "1133", "1122"}, {"####", "####", "####"});
    slice.subtractSelection(selection, 1, {});
    EXPECT_EQ(labels(), (Rows{"2222", "2233", "2222"}));
    draw({"111", "111"}, {"###", "###"}); // too thin for the count, and nothing but the material
    slice.subtractSelection(selection, 1, {});
    EXPECT_EQ(labels(), (Rows{"000", "000"}));
    draw({"111", "111"}, {"###", "###"});
    locked[0] = 1;
    slice.subtractSelection(selection, 1, {});
    EXPECT_EQ(labels(), (Rows{"111", "111"}));
}

TEST_F(SliceTransfer, ReleasedPixelsOfAViewLeaveTheSelectionItself)
{
    const auto release = [](GiSelection2D& working) { working.unset(0, 0); };
    draw({"111", "111"}, {"###", "###"});
    GiSelection2D view;
    view.setBitfield(&selection.localBits, 3, 2, 0, 1, 3);
    slice.subtractSelection(view, 1, release);
    EXPECT_EQ(labels(), (Rows{"100", "000"}));
    EXPECT_FALSE(selection.isSet(0, 0));

    draw({"111", "111"}, {"###", "###"}); // a private selection is copied
    slice.subtractSelection(selection, 1, release);
    EXPECT_EQ(labels(), (Rows{"100", "000"}));
    EXPECT_TRUE(selection.isSet(0, 0));
}

TEST_F(SliceTransfer, ReplaceTakesWholePiecesBack)
{
    draw({"0000000", "0110110", "0110110", "0000000"}, {"", "", "..##"});
    slice.replaceBySelection(selection, 1, {});
    EXPECT_EQ(labels(), (Rows{"0000000", "0000110", "0011110", "0000000"}));

    // Touching nothing of the material, it adds.
    draw({"0000", "0220", "0000", "1111"}, {"#", "", ""});
    slice.replaceBySelection(selection, 1, {});
    EXPECT_EQ(labels(), (Rows{"1000", "0220", "0000", "1111"}));
}

} // namespace
