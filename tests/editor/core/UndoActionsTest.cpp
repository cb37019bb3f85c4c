#include "RandomVolume.h"
#include "core/GiModifyLabel.h"
#include "core/GiModifySelection.h"
#include "core/GiModifyVoxelGrid.h"
#include "core/GiMultiAction.h"
#include "core/GiRunLength.h"
#include "hx/HxSettingsMgr.h"
#include "mc/McHandle.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using Bytes = std::vector<unsigned char>;

/// The packet rules byte by byte.
Bytes encodedPlainly(const Bytes& b)
{
    Bytes out;
    const std::size_t n = b.size();
    for (std::size_t i = 0; i < n;) {
        if (i + 1 < n && b[i] == b[i + 1]) {
            std::size_t count = 1;
            while (count < 127 && i + count < n && b[i + count] == b[i]) ++count;
            out.push_back(static_cast<unsigned char>(count));
            out.push_back(b[i]);
            i += count;
            continue;
        }
        const std::size_t control = out.size();
        out.push_back(0);
        std::size_t count = 0;
        while (count < 127 && i < n && !(i + 2 < n && b[i] == b[i + 1] && b[i] == b[i + 2])) {
            out.push_back(b[i++]);
            ++count;
        }
        out[control] = static_cast<unsigned char>(count | 0x80);
    }
    out.push_back(0);
    return out;
}

Bytes encoded(const Bytes& b)
{
    unsigned char* stream = nullptr;
    const long length = giRunLengthEncode(b.data(), static_cast<long>(b.size()), stream);
    Bytes out(stream, stream + length);
    std::free(stream);
    return out;
}

TEST(RunLength, Packets)
{
    EXPECT_EQ(encoded({}), (Bytes{0}));
    EXPECT_EQ(encoded(Bytes(254, 8)), (Bytes{127, 8, 127, 8, 0}));
    EXPECT_EQ(encoded({1, 2, 2, 3}), (Bytes{0x84, 1, 2, 2, 3, 0}));
    EXPECT_EQ(encoded({1, 2, 3, 3, 3, 4}), (Bytes{0x82, 1, 2, 3, 3, 0x81, 4, 0}));
    EXPECT_EQ(encoded(Bytes(128, 8)), (Bytes{127, 8, 0x81, 8, 0}));
    EXPECT_EQ(encoded({5}), (Bytes{0x81, 5, 0}));
    EXPECT_EQ(encoded({1, 2, 2}), (Bytes{0x83, 1, 2, 2, 0}));
}

TEST(RunLength, EqualsThePlainRuleAndComesBack)
{
    for (unsigned int seed = 1; seed <= 4000; ++seed) {
        RandomVolume v(1 + seed * 37 % 4500, 1, 1, seed);
        v.drawLabels(2 + static_cast<int>(seed % 3) * 60,
                     1 + static_cast<int>(seed % 11) * static_cast<int>(seed % 41));
        const Bytes stream = encoded(v.labels);
        ASSERT_EQ(stream, encodedPlainly(v.labels)) << "seed " << seed;
        for (const bool fills : {false, true}) {
            Bytes back(v.count() + 1, 77);
            giRunLengthDecode(back.data(), stream.data(), fills ? static_cast<long>(v.count()) : 0);
            ASSERT_EQ(back.back(), 77) << "written beyond the end, seed " << seed;
            back.pop_back();
            ASSERT_EQ(back, v.labels) << "seed " << seed;
        }
    }
}

TEST(ModifyLabel, RestoresAVolumeWithAnyNumberOfThreads)
{
    RandomVolume v(61, 17, 7, 4);
    v.drawLabels(5, 20);
    const Bytes before = v.labels;
    McRawData3D view;
    view.init(v.dims, 1, v.labels.data());
    const HxPreferences old = HxSettingsMgr::getInstance()->getPreferences();
    for (const int threads : {0, 1, 2, 3, 20}) {
        HxPreferences preferences = old;
        preferences.numThreads = threads;
        HxSettingsMgr::getInstance()->setPreferences(preferences, false);
        McHandle<GiModifyLabel> action(new GiModifyLabel(nullptr));
        action->saveLabelVolume(view);
        long bytes = 0;
        for (std::size_t z = 0; z < 7; ++z)
            bytes += static_cast<long>(
                encodedPlainly(Bytes(before.begin() + z * 61 * 17, before.begin() + (z + 1) * 61 * 17))
                    .size());
        EXPECT_EQ(action->getMemSize(), bytes);
        v.drawLabels(200, 1);
        action->execute();
        EXPECT_EQ(v.labels, before) << threads << " threads";
    }
    HxSettingsMgr::getInstance()->setPreferences(old, false);
}

TEST(ModifyLabel, RestoresASliceOnly)
{
    RandomVolume v(9, 8, 7, 4);
    McRawData3D view;
    view.init(v.dims, 1, v.labels.data());
    for (int o = 0; o < 3; ++o) {
        v.drawLabels(9, 1);
        const Bytes before = v.labels;
        McRawData2D slice;
        view.getSlice(o, 3, slice, kMcViewSlice);
        McHandle<GiModifyLabel> action(new GiModifyLabel(nullptr));
        action->saveLabelSlice(slice);
        EXPECT_EQ(action->getMemSize(), static_cast<long>(v.count() / v.dims[o]));
        for (unsigned char& label : v.labels) label = static_cast<unsigned char>(label + 1);
        action->execute();
        for (unsigned long i = 0; i < v.count(); ++i) {
            const unsigned long at[3] = {i % 9, i / 9 % 8, i / 72};
            ASSERT_EQ(v.labels[i], before[i] + (at[o] != 3)) << "orientation " << o;
        }
    }
}

TEST(ModifySelection, RestoresRegionsAndTheWhole)
{
    RandomVolume v(45, 11, 6, 8);
    GiSelection3D selection;
    selection.resize(45, 11, 6);
    const McBox3i slices[] = {{5, 5, 0, 10, 0, 5}, {0, 44, 4, 4, 0, 5}, {0, 44, 0, 10, 2, 2}};
    const int numbers[] = {5, 4, 2};
    for (int o = 0; o < 4; ++o) {
        v.drawSelection(selection.bits);
        const McBitfield before = selection.bits;
        const McBox3i box = o < 3 ? slices[o] : McBox3i(3, 40, 2, 9, 1, 4);
        McHandle<GiModifySelection> action(new GiModifySelection(nullptr));
        if (o < 3)
            action->saveSlice(&selection, numbers[o], o);
        else
            action->saveRegion(&selection, box);
        selection.bits.toggleAll();
        action->execute();
        for (int i = 0; i < 45 * 11 * 6; ++i) {
            const int x = i % 45, y = i / 45 % 11, z = i / 45 / 11;
            ASSERT_EQ(selection.get(x, y, z),
                      before.isSet(static_cast<unsigned long>(i)) == box.contains(x, y, z));
        }
    }
    McHandle<GiModifySelection> action(new GiModifySelection(nullptr));
    action->saveRegion(&selection, McBox3i(2, 2, 3, 3, 4, 4));
    EXPECT_EQ(action->getMemSize(), 4) << "one bit takes a word";
    action->saveSlice(&selection, 0, 7);
    EXPECT_EQ(action->getMemSize(), 4) << "no such orientation";

    const McBitfield before = selection.bits;
    action->saveVolume(&selection);
    EXPECT_EQ(action->getMemSize(), static_cast<long>(before.numWords()) * 4);
    selection.bits.toggleAll();
    action->execute();
    EXPECT_EQ(selection.bits, before);
    EXPECT_EQ(action->getMemSize(), 0);
}

TEST(MultiAction, RunsItsMembersFromFirstToLast)
{
    Bytes grid{1, 1, 2, 2, 3, 3};
    const auto save = [&](int slice) {
        McHandle<GiModifyVoxelGrid> action(new GiModifyVoxelGrid(grid.data(), 2, 1));
        action->saveSlice(slice);
        action->saveSlice(2);
        return action;
    };
    McHandle<GiMultiAction> both(new GiMultiAction);
    both->append(save(1));
    grid = {9, 9, 8, 8, 7, 7};
    both->append(save(0));
    grid = {0, 0, 0, 0, 0, 0};
    EXPECT_EQ(both->getMemSize(), 8);
    both->execute();
    EXPECT_EQ(grid, (Bytes{9, 9, 2, 2, 7, 7})) << "the later state of slice 2 wins";
}

} // namespace
