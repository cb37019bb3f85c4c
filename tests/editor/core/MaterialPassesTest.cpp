// Passes over the labels that the material list asks for, beside plain walks over the same volumes.

#include "RandomVolume.h"

#include "core/GiThickestSlices.h"
#include "core/giRemoveLabel.h"
#include "hx/HxSettingsMgr.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

struct Shape
{
    unsigned long dims[3];
    const char* shows;
};

// Slices of more than one block, rows of more than 255 in a column, and what has less of either.
const Shape kShapes[] = {{{131, 137, 3}, "blocks that slices do not fill"},
                         {{3, 600, 2}, "long columns"},
                         {{33, 5, 7}, "small"},
                         {{1, 1, 9}, "a line"}};

int labelAfter(int label, int removed, int replacement)
{
    return label == removed ? replacement : label - (label > removed);
}

} // namespace

TEST(MaterialPasses, ARemovedLabelGoesToAnotherAndHigherOnesMoveDown)
{
    const int pairs[][2] = {{0, 0}, {3, 0}, {2, 4}, {200, 199}, {255, 0}, {250, 254}};
    for (const Shape& shape : kShapes)
        for (const int numLabels : {6, 256})
            for (const auto& [removed, replacement] : pairs)
                for (const int threads : {1, 2, 3}) {
                    SCOPED_TRACE(std::string(shape.shows) + ", label " + std::to_string(removed));
                    RandomVolume volume(shape.dims[0], shape.dims[1], shape.dims[2], 5);
                    volume.drawLabels(numLabels, 2000);
                    std::vector<unsigned char> expected = volume.labels;
                    for (unsigned char& v : expected)
                        v = static_cast<unsigned char>(labelAfter(v, removed, replacement));
                    giRemoveLabel(volume.labels.data(), shape.dims[0] * shape.dims[1], shape.dims[2], removed,
                                  replacement, threads);
                    ASSERT_EQ(volume.labels, expected);
                }
    unsigned char none = 7;
    giRemoveLabel(&none, 0, 5, 3, 0, 2);
    giRemoveLabel(&none, 5, 0, 3, 0, 2);
    EXPECT_EQ(none, 7);
}

TEST(MaterialPasses, TheThickestSliceOfEachAxisHasMostVoxels)
{
    HxPreferences preferences = HxSettingsMgr::getInstance()->getPreferences();
    const HxPreferences former = preferences;
    for (const Shape& shape : kShapes)
        for (const int threads : {1, 3}) {
            SCOPED_TRACE(shape.shows);
            preferences.numThreads = threads;
            HxSettingsMgr::getInstance()->setPreferences(preferences, false);
            RandomVolume volume(shape.dims[0], shape.dims[1], shape.dims[2], 11);
            volume.drawLabels(2, 300); // half of all voxels: counts beyond a byte
            std::vector<unsigned int> counts[3];
            for (int axis = 0; axis < 3; ++axis) counts[axis].assign(shape.dims[axis], 0);
            for (unsigned long i = 0; i < volume.count(); ++i) {
                if (volume.labels[i] != 1) continue;
                ++counts[0][i % shape.dims[0]];
                ++counts[1][i / shape.dims[0] % shape.dims[1]];
                ++counts[2][i / shape.dims[0] / shape.dims[1]];
            }
            const GiThickestSlices best = giThickestSlices(volume.labels.data(), shape.dims, 1);
            ASSERT_TRUE(best.found);
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_EQ(best.slice[axis],
                          std::max_element(counts[axis].begin(), counts[axis].end()) - counts[axis].begin());
            for (const int absent : {2, 255, 256, -1})
                EXPECT_FALSE(giThickestSlices(volume.labels.data(), shape.dims, absent).found);
        }
    HxSettingsMgr::getInstance()->setPreferences(former, false);
}
