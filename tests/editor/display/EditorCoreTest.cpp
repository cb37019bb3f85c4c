// The core's model of orientations, viewers, zoom and materials.

#include "TestEditor.h"

#include "hx/HxMessage.h"
#include "tools/GiCrossHairTool.h"

#include <gtest/gtest.h>

#include <random>

namespace {

TestEditor* withVoxelSize(TestEditor* editor, float size)
{
    float box[6];
    for (int a = 0; a < 3; ++a) {
        box[2 * a] = 0;
        box[2 * a + 1] = size * static_cast<float>(editor->dims[a] - 1);
    }
    editor->lattice()->coords()->setBoundingBox(box);
    editor->gi.setVolumeByte(editor->dims, 0, editor->labels(), editor->lattice());
    return editor;
}

} // namespace

TEST(EditorCore, ZoomAtStartFollowsTheSliceInX_Y)
{
    const struct
    {
        unsigned long x, y;
        float zoom;
    } rows[] = {{300, 300, 1}, {257, 257, 1}, {300, 256, 2}, {300, 200, 2},
                {129, 129, 2}, {300, 100, 3}, {100, 1000, 3}};
    for (const auto& row : rows) {
        TestEditor editor(row.x, row.y, 1);
        EXPECT_EQ(editor.gi.viewers[2]->getZoomFactor(), row.zoom) << row.x << " x " << row.y;
    }
}

TEST(EditorCore, ZoomStepsAndTheirTexts)
{
    TestEditor editor(4, 4, 4);
    const struct
    {
        float from, in, out;
        const char* text;
    } rows[] = {{0.25f, 0.5f, 0.125f, "1:4 "},
                {0.5f, 1, 0.25f, "1:2 "},
                {1, 2, 0.5f, "1:1 "},
                {2, 3, 1, "2:1 "},
                {3, 4, 2, "3:1 "},
                {4, 6, 3, "4:1 "},
                {6, 9, 4, "6:1 "},
                {9, 14, 6, "9:1 "}};
    for (const auto& row : rows) {
        editor.gi.setZoomFactor(row.from);
        EXPECT_STREQ(editor.gi.getZoomFactorText(), row.text);
        editor.gi.zoomIn();
        EXPECT_EQ(editor.gi.viewers[0]->getZoomFactor(), row.in) << row.from;
        editor.gi.setZoomFactor(row.from);
        editor.gi.zoomOut();
        EXPECT_EQ(editor.gi.viewers[1]->getZoomFactor(), row.out) << row.from;
    }
    editor.gi.setZoomMode(false);
    editor.gi.setZoomFactor(5);
    EXPECT_EQ(editor.gi.viewers[2]->getZoomFactor(), 5);
    EXPECT_NE(editor.gi.viewers[0]->getZoomFactor(), 5);
}

TEST(EditorCore, DigitsFollowVoxelSizeAndScale)
{
    TestEditor editor(5, 5, 5);
    const struct
    {
        float voxel;
        int digits;
    } rows[] = {{0.001f, 3}, {0.5f, 1}, {0.05f, 2}, {0, 1}, {-0.02f, 2}, {100, 1}};
    for (const auto& row : rows)
        EXPECT_EQ(withVoxelSize(&editor, row.voxel)->gi.coordinateDigits, row.digits) << row.voxel;

    HxParamBundle bundle;
    const struct
    {
        float scale;
        int digits;
    } scales[] = {{1, 0}, {0.5f, 0}, {0.1f, 2}, {0.01f, 4}, {1e-9f, 4}, {50, 0}, {-1, 0}, {0, 4}};
    for (const auto& row : scales) {
        bundle.set("DataWindowScale", row.scale);
        bundle.set("DataWindowBias", -1024.0f);
        editor.gi.setRescaleInterceptSlope(&bundle);
        EXPECT_EQ(editor.gi.dataDigits, row.digits) << row.scale;
        EXPECT_EQ(editor.gi.dataWindowBias, -1024);
    }
    editor.gi.setRescaleInterceptSlope(nullptr);
    EXPECT_EQ(editor.gi.dataWindowScale, 1);
    EXPECT_EQ(editor.gi.dataWindowBias, 0);
}

TEST(EditorCore, MarkColorsReplaceWhatMaterialsChose)
{
    TestEditor editor(2, 2, 2);
    editor.addMaterials(130);
    const float red[3] = {1, 0, 0};
    editor.gi.materials->bundle(127)->setColor(red);
    editor.gi.materials->bundle(5)->setColor(red);
    editor.gi.setVolumeByte(editor.dims, 2, editor.labels(), editor.lattice());
    const auto color = [&](int i) {
        const unsigned char* c = editor.gi.materialColors[i];
        return std::array<int, 3>{c[0], c[1], c[2]};
    };
    EXPECT_EQ(color(5), (std::array<int, 3>{255, 0, 0}));
    EXPECT_EQ(color(127), (std::array<int, 3>{255, 255, 0}));
    EXPECT_EQ(color(129), (std::array<int, 3>{0, 255, 255}));
    EXPECT_EQ(color(255), (std::array<int, 3>{255, 255, 255}));
    EXPECT_EQ(color(200), (std::array<int, 3>{0, 255, 0})) << "no material has this label";
}

TEST(EditorCore, PixelsVoxelsAndSlicesOfAllOrientations)
{
    TestEditor editor(4, 5, 6);
    std::mt19937 random(2);
    for (unsigned long i = 0; i < editor.size(); ++i)
        editor.labels()[i] = static_cast<unsigned char>(random());
    for (int o = 0; o < 3; ++o) {
        GiViewer* viewer = editor.gi.activate(o);
        EXPECT_EQ(editor.gi.getNumSlices(-1), static_cast<int>(editor.dims[o]));
        EXPECT_EQ(viewer->getSlice(), static_cast<int>(editor.dims[o] - 1) / 2);
        viewer->setSlice(-5, false);
        EXPECT_EQ(editor.gi.getCurrentSlice(), 0);
        viewer->setSlice(10000, false);
        EXPECT_EQ(editor.gi.getCurrentSlice(), static_cast<int>(editor.dims[o]) - 1);
        viewer->setSlice(1, false);

        unsigned char* data;
        int xStride, yStride;
        editor.gi.getCurrentLabelSlice(data, xStride, yStride);
        const GiSelection2D* slice = viewer->getSelection();
        for (int y = 0; y < static_cast<int>(slice->height); ++y)
            for (int x = 0; x < static_cast<int>(slice->width); ++x) {
                const McVec3i p = editor.gi.getPoint3D(x, y, nullptr);
                EXPECT_EQ(p[o], 1);
                EXPECT_EQ(data + x * xStride + y * yStride, editor.labels() + p.x + 4 * (p.y + 5 * p.z));
                editor.gi.selection->set(p.x, p.y, p.z);
                EXPECT_TRUE(slice->isSet(x, y));
            }
    }
    EXPECT_EQ(editor.gi.getNumSlices(7), 4) << "any other orientation counts as 0";
}

TEST(EditorCore, ProjectedBoxesAreTheCommonPixelsOfBothSlices)
{
    TestEditor editor(6, 7, 8);
    std::mt19937 random(8);
    const auto upTo = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int round = 0; round < 300; ++round) {
        GiViewer *source = editor.gi.viewers[upTo(3)], *target = editor.gi.viewers[upTo(3)];
        source->setSlice(upTo(8), false);
        if (target != source) target->setSlice(upTo(8), false);
        const int w = static_cast<int>(source->getSelection()->width),
                  h = static_cast<int>(source->getSelection()->height);
        McBox2i box(upTo(w), upTo(h), 0, 0);
        box.xmax = box.xmin + upTo(w - box.xmin);
        box.ymax = box.ymin + upTo(h - box.ymin);

        editor.gi.selection->clear();
        for (int y = box.ymin; y <= box.ymax; ++y)
            for (int x = box.xmin; x <= box.xmax; ++x) source->getSelection()->set(x, y);
        McBox2i expected, result;
        target->getSelection()->computeBoundingBox(expected);
        editor.gi.projectBox(source, target, box, result);
        EXPECT_EQ(result.xmin, expected.xmin);
        EXPECT_EQ(result.ymin, expected.ymin);
        EXPECT_EQ(result.xmax, expected.xmax);
        EXPECT_EQ(result.ymax, expected.ymax);
    }
}

TEST(EditorCore, LocateGoesToTheThickestSliceAndTheLowestOnATie)
{
    std::vector<std::string> console;
    HxMessage::getTheMsg()->setSink([&](const char* text) { console.push_back(text); });
    TestEditor editor(5, 5, 5);
    const auto at = [&](int x, int y, int z) -> unsigned char& {
        return editor.labels()[x + 5 * (y + 5 * z)];
    };
    at(1, 3, 2) = at(4, 3, 2) = at(4, 0, 1) = 7;
    editor.gi.locateTissue(7);
    EXPECT_EQ(editor.gi.viewers[0]->getSlice(), 4);
    EXPECT_EQ(editor.gi.viewers[1]->getSlice(), 3);
    EXPECT_EQ(editor.gi.viewers[2]->getSlice(), 2);
    at(1, 0, 1) = 7;
    editor.gi.locateTissue(7);
    EXPECT_EQ(editor.gi.viewers[0]->getSlice(), 1);
    EXPECT_EQ(editor.gi.viewers[1]->getSlice(), 0);
    EXPECT_EQ(editor.gi.viewers[2]->getSlice(), 1);
    EXPECT_TRUE(console.empty());
    editor.gi.locateTissue(8);
    EXPECT_EQ(console, (std::vector<std::string>{"No voxel with this tissue found"}));
    EXPECT_EQ(editor.gi.viewers[0]->getSlice(), 1);
    HxMessage::getTheMsg()->setSink({});
}

TEST(EditorCore, SelectingAMaterialInSliceAndVolume)
{
    TestEditor editor(9, 5, 4);
    std::mt19937 random(6);
    for (unsigned long i = 0; i < editor.size(); ++i) editor.labels()[i] = random() % 3;
    editor.gi.selectTissue(1, 2, 1);
    for (unsigned long i = 0; i < editor.size(); ++i)
        EXPECT_EQ(editor.gi.selection->isSet(i), editor.labels()[i] == 1);
    EXPECT_EQ(editor.gi.touches.back(), (TestGi::Touch{1, 0, -1, -1, 0, 0}));
    editor.gi.activate(1)->setSlice(3, false);
    EXPECT_EQ(editor.gi.tissueSelected(1), 1);
    EXPECT_EQ(editor.gi.tissueSelected(2), 0);
    editor.gi.selectTissue(2, 0, 0);
    editor.gi.selectTissue(1, 1, 0);
    for (unsigned long i = 0; i < editor.size(); ++i) {
        const bool inSlice = i / 9 % 5 == 3;
        EXPECT_EQ(editor.gi.selection->isSet(i), editor.labels()[i] == (inSlice ? 2 : 1));
    }
    editor.gi.labelLattice = nullptr;
    editor.gi.touches.clear();
    editor.gi.selectTissue(0, 2, 1);
    EXPECT_TRUE(editor.gi.touches.empty()) << "without labels nothing happens";
}

TEST(EditorCore, CrossHairAndViewersFollowEachOther)
{
    TestEditor editor(6, 6, 6);
    editor.gi.viewers[1]->setSlice(4, true);
    EXPECT_EQ(editor.gi.crossHair->getPosition().y, 4);
    editor.gi.crossHair->setPosition(McVec3i(5, 0, 1));
    editor.gi.crossHair->valueChanged();
    EXPECT_EQ(editor.gi.viewers[0]->getSlice(), 5);
    EXPECT_EQ(editor.gi.viewers[1]->getSlice(), 0);
    EXPECT_EQ(editor.gi.viewers[2]->getSlice(), 1);
    EXPECT_EQ(editor.gi.crossHair->getPosition(), McVec3i(5, 0, 1));

    TestEditor single(6, 6, 6, 1);
    single.gi.crossHair->setPosition(McVec3i(5, 0, 1));
    single.gi.crossHair->valueChanged();
    EXPECT_EQ(single.gi.viewers[0]->getSlice(), 2) << "a single viewer does not follow";
}

TEST(EditorCore, ToolsAreToldOfSelectionAndEndWithTheirViewers)
{
    TestEditor editor(3, 3, 3);
    auto* tool = new RecordingTool(&editor.gi);
    tool->ref();
    const int index = editor.gi.tools.append(tool);
    editor.gi.initTools();
    editor.gi.setTool(index);
    editor.gi.set3dMode(true);
    editor.gi.set3dMode(true);
    editor.gi.setZoomMode(false);
    editor.gi.setTool(-1);
    EXPECT_EQ(tool->calls, (std::vector<std::string>{"init", "select", "notify 4", "notify 5", "deselect",
                                                     "deselect", "deselect"}));
    EXPECT_EQ(editor.gi.currentTool, nullptr);
    editor.gi.setTool(editor.gi.tools.append(nullptr)); // an entry without tool
    EXPECT_EQ(editor.gi.currentTool, nullptr);
    EXPECT_EQ(editor.gi.cursorUpdates, 2);
    editor.gi.setTool(77);
    EXPECT_EQ(editor.gi.cursorUpdates, 2) << "an index out of range only ends the active tool";
}
