// How big a slice is on screen, which slice is shown, and what the editor asks of its viewers.

#include "editor/display/DrawnEditor.h"

#include "hx/HxSettingsMgr.h"
#include "mc/McElementType.h"
#include "mc/McEvent.h"
#include "mc/McMemoryException.h"
#include "tools/GiCrossHairTool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using testing::ElementsAre;

namespace {

struct SizeCase
{
    const char* what;
    float zoom;
    int dims[3];
    float extent[3];
    int matched;
    McVec2i sizes[3];
};

TEST(ZoomedSizes, followThePhysicalProportions)
{
    const SizeCase cases[] = {
        {"long z", 1, {100, 100, 100}, {100, 100, 200}, 1, {{100, 200}, {100, 200}, {100, 100}}},
        {"cube", 2, {256, 256, 256}, {1, 1, 1}, 1, {{512, 512}, {512, 512}, {512, 512}}},
        {"kept: a line of voxels is a dot", 4, {1, 1, 50}, {0, 0, 49}, 1, {{1, 1}, {1, 1}, {1, 1}}},
        {"one voxel", 4, {1, 1, 1}, {0, 0, 0}, 1, {{1, 1}, {1, 1}, {1, 1}}},
        {"most voxels along y", 1, {50, 80, 20}, {100, 80, 40}, 1, {{80, 40}, {100, 40}, {100, 80}}},
        {"the same, each view for itself",
         1,
         {50, 80, 20},
         {100, 80, 40},
         0,
         {{80, 40}, {50, 20}, {100, 80}}},
        {"most along z, unmatched", 2, {10, 20, 40}, {10, 40, 40}, 0, {{80, 80}, {20, 80}, {20, 80}}},
        {"unmatched without width", 1, {1, 40, 30}, {0, 40, 60}, 0, {{40, 60}, {1, 30}, {1, 40}}},
        {"dropped pixels", 0.25f, {10, 10, 2}, {10, 10, 1}, 1, {{3, 1}, {3, 1}, {3, 3}}},
        {"no extent at all", 1, {3, 3, 3}, {0, 0, 0}, 1, {{1, 1}, {3, 1}, {3, 1}}},
    };
    for (const SizeCase& c : cases) {
        const float box[6] = {5, 5 + c.extent[0], 0, c.extent[1], -1, c.extent[2] - 1};
        McVec2i sizes[3];
        GiViewer::computeZoomedSizes(c.zoom, c.dims, box, c.matched, sizes);
        for (int o = 0; o < 3; ++o) EXPECT_EQ(sizes[o], c.sizes[o]) << c.what << ", orientation " << o;
    }
}

TEST(Replication, isEvenOrFollowsTheSlicePositions)
{
    int even[5];
    GiViewer::computeReplicUniform(5, 12, even);
    EXPECT_THAT(even, ElementsAre(2, 2, 3, 2, 3));
    int dropped[4];
    GiViewer::computeReplicUniform(4, 2, dropped);
    EXPECT_THAT(dropped, ElementsAre(0, 1, 0, 1));
    const float z[] = {0, 1, 3};
    int stacked[3];
    GiViewer::computeReplicStacked(3, 6, z, stacked);
    EXPECT_THAT(stacked, ElementsAre(1, 3, 2));
    GiViewer::computeReplicStacked(1, 6, z, stacked);
    EXPECT_EQ(stacked[0], 6);
    GiViewer::computeReplicStacked(2, 6, z, stacked);
    EXPECT_THAT(std::vector<int>(stacked, stacked + 2), ElementsAre(3, 3));
    const float falling[] = {3, 1, 0};
    GiViewer::computeReplicStacked(3, 6, falling, stacked);
    EXPECT_THAT(stacked, ElementsAre(2, 3, 1));
    const float repeated[] = {0, 0, 2};
    GiViewer::computeReplicStacked(3, 4, repeated, stacked);
    EXPECT_THAT(stacked, ElementsAre(0, 2, 2)) << "the first of two slices at one place has no room";
    const float nowhere[] = {7, 7, 7};
    GiViewer::computeReplicStacked(3, 6, nowhere, stacked);
    EXPECT_THAT(stacked, ElementsAre(2, 2, 2));
    const float unknown[] = {0, 1, std::numeric_limits<float>::quiet_NaN()};
    GiViewer::computeReplicStacked(3, 6, unknown, stacked);
    EXPECT_THAT(stacked, ElementsAre(2, 2, 2));
}

class SliceViewer : public testing::Test
{
protected:
    SliceViewer() : editor(6, 5, 4)
    {
        for (unsigned long i = 0; i < editor.size(); ++i) image.push_back(static_cast<short>(i));
        editor.gi.primType = 1;
        editor.gi.setVolume(editor.dims, McTypedPointer(image.data(), kMcShort), editor.lattice());
    }

    DrawnEditor editor;
    std::vector<short> image;
};

TEST_F(SliceViewer, limitsSlicesAndTellsTheEditorOnRequest)
{
    GiViewer& viewer = editor.viewer(2);
    EXPECT_EQ(viewer.getSlice(), 1) << "setVolume shows the middle";
    viewer.setSlice(-5, false);
    EXPECT_EQ(viewer.getSlice(), 0);
    viewer.setSlice(10000, false);
    EXPECT_EQ(viewer.getSlice(), 3);
    EXPECT_EQ(editor.buffer(2).originalSize, McVec2i(6, 5));
    EXPECT_EQ(viewer.getSelection()->offset, 90u);

    const GiCrossHairTool& crossHair = *editor.gi.crossHair;
    const McVec3i before = crossHair.getPosition();
    viewer.setSlice(2, false);
    EXPECT_EQ(crossHair.getPosition(), before);
    ASSERT_NE(before.z, 3);
    viewer.setSlice(3, true);
    EXPECT_EQ(crossHair.getPosition(), McVec3i(before.x, before.y, 3));
}

/// A buffer that finds no memory for a slice while it is told so.
class PoorBuffer : public GiMemoryFrameBuffer
{
public:
    void resize(const McVec2i& size, const int* columns, const int* rows) override
    {
        if (refuses) throw McMemoryException(1);
        GiMemoryFrameBuffer::resize(size, columns, rows);
    }
    bool refuses = false;
};

TEST_F(SliceViewer, withoutMemoryForThePictureEditsStayInTheSlice)
{
    PoorBuffer buffer;
    GiViewer& viewer = editor.viewer(2);
    viewer.setFrameBuffer(&buffer);
    viewer.setSlice(0, false);
    buffer.refuses = true;
    EXPECT_THROW(viewer.setOrientation(0), McMemoryException);
    EXPECT_THROW(viewer.setSlice(5, false), McMemoryException);
    const GiSelection2D& selection = *viewer.getSelection();
    EXPECT_EQ(selection.width, 5u);
    EXPECT_EQ(selection.height, 4u);
    editor.gi.selectTissue(0, kSelectReplace, 0);
    for (unsigned long i = 0; i < editor.size(); ++i)
        ASSERT_EQ(editor.gi.selection->isSet(i), i % 6 == 5u) << "just the slice X = 5: " << i;
    viewer.getLabelImage()->replaceBySelection(viewer.getSelection(), 3);
    for (unsigned long i = 0; i < editor.size(); ++i) ASSERT_EQ(editor.labels()[i], i % 6 == 5 ? 3 : 0);
    viewer.setFrameBuffer(nullptr);
}

TEST_F(SliceViewer, aWindowThatIsTooLargeLeavesTheOldOne)
{
    GiMemoryFrameBuffer& buffer = editor.buffer(2);
    buffer.setWindowSize(McVec2i(20, 10));
    editor.viewer(2).setZoomFactor(100000000);
    const McVec2i sides = buffer.memSize;
    const auto picture = pictureOf(buffer);
    EXPECT_THROW(buffer.setWindowSize(McVec2i(1 << 30, 1 << 30)), McMemoryException);
    EXPECT_EQ(buffer.windowSize(), McVec2i(20, 10));
    EXPECT_EQ(buffer.memSize, sides);
    EXPECT_EQ(pictureOf(buffer), picture);
    editor.viewer(2).setZoomFactor(3);
    EXPECT_EQ(buffer.memSize, McVec2i(18, 10)) << "the next slice fills the old window";
}

TEST_F(SliceViewer, flipsWithTheVolumeAxes)
{
    const bool expected[3][8][2] = {// by orientation and flip bits: horizontal, vertical
                                    {{0, 1}, {0, 1}, {1, 1}, {1, 1}, {0, 0}, {0, 0}, {1, 0}, {1, 0}},
                                    {{0, 1}, {1, 1}, {0, 1}, {1, 1}, {0, 0}, {1, 0}, {0, 0}, {1, 0}},
                                    {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {0, 0}, {1, 0}, {0, 1}, {1, 1}}};
    for (int o = 0; o < 3; ++o)
        for (int bits = 0; bits < 8; ++bits) {
            editor.viewer(o).setFlip(bits & 1, bits & 2, bits & 4);
            EXPECT_EQ(editor.buffer(o).flipX, expected[o][bits][0]) << o << " " << bits;
            EXPECT_EQ(editor.buffer(o).flipY, expected[o][bits][1]) << o << " " << bits;
        }
}

TEST_F(SliceViewer, drawsNothingWithoutLabels)
{
    editor.gi.labelLattice = nullptr;
    editor.viewer(0).setSlice(1, true);
    EXPECT_EQ(editor.viewer(0).getGreyImage()->packed, nullptr);
    editor.buffer(0).clear();
    editor.viewer(0).redraw();
    for (const unsigned int pixel : pictureOf(editor.buffer(0))) ASSERT_EQ(pixel, 0x808080u);
}

TEST_F(SliceViewer, fillsItsWindowAndKeepsTheMiddle)
{
    GiMemoryFrameBuffer& buffer = editor.buffer(2);
    buffer.setWindowSize(McVec2i(20, 10));
    editor.viewer(2).setZoomFactor(1);
    EXPECT_EQ(buffer.memSize, McVec2i(6, 5));
    editor.viewer(2).setZoomFactor(10);
    EXPECT_EQ(buffer.memSize, McVec2i(20, 10));
    EXPECT_EQ(buffer.originalCoordsX[10], 3) << "the middle column stays in the middle";
    buffer.setOffset(McVec2i(-7, 1000));
    EXPECT_EQ(buffer.offset, McVec2i(0, buffer.zoomedSize.y - 10));
    buffer.setWindowSize(McVec2i(500, 400));
    EXPECT_EQ(buffer.memSize, buffer.zoomedSize);
    EXPECT_EQ(buffer.offset, McVec2i(0, 0));
}

TEST_F(SliceViewer, stacksSpreadTheRowsOfTheirSlices)
{
    auto* coords = new HxLatticeCoords(HxLatticeCoords::kStacked, editor.dims);
    const McHandle<HxLabelField3> stack((new HxLabelLattice3(coords))->create());
    const float z[] = {0, 1, 2, 6};
    coords->setZPositions(z);
    const float box[6] = {0, 6, 0, 5, 0, 6};
    coords->setBoundingBox(box);
    editor.gi.setVolume(editor.dims, McTypedPointer(image.data(), kMcShort), stack->labelLattice());
    editor.viewer(1).setZoomFactor(4);
    editor.viewer(0).setZoomFactor(4);
    editor.viewer(2).setZoomFactor(4);
    const auto columns = [&](int o) { return listed(editor.buffer(o).replicX); };
    const auto rows = [&](int o) { return listed(editor.buffer(o).replicY); };
    // 6 voxels along X of 4 pixels each cover a length of 6, and so do the slices.
    EXPECT_THAT(rows(0), ElementsAre(2, 4, 10, 8));
    EXPECT_THAT(rows(1), ElementsAre(2, 4, 10, 8));
    EXPECT_THAT(rows(2), ElementsAre(4, 4, 4, 4, 4)) << "the rows of a slice are even";
    EXPECT_THAT(columns(0), ElementsAre(4, 4, 4, 4, 4));
    EXPECT_THAT(columns(1), ElementsAre(4, 4, 4, 4, 4, 4));
    EXPECT_THAT(columns(2), ElementsAre(4, 4, 4, 4, 4, 4));
}

TEST_F(SliceViewer, masksTheCurrentSliceByTheWindow)
{
    Gi& gi = editor.gi;
    McBitfield mask(3);
    mask.set(1);
    EXPECT_EQ(gi.getMask(&editor.buffer(1), mask), 0);
    EXPECT_EQ(mask.numBits(), 3u) << "left alone while masking is off";
    for (int v = 0; v < 3; ++v) {
        editor.viewer(v).setMaskingEnabled(true);
        editor.viewer(v).setMaskingWindow(20, 100, true);
        editor.viewer(v).setSlice(2, false);
        mask.resize(0);
        mask.resize(30);
        mask.set(0);
        ASSERT_EQ(gi.getMask(&editor.buffer(v), mask), 1);
        const int w = editor.buffer(v).originalSize.x, h = editor.buffer(v).originalSize.y;
        ASSERT_EQ(mask.numBits(), static_cast<unsigned long>(w * h));
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const McVec3i p = gi.getPoint3D(x, y, &editor.viewer(v));
                const int value = p.x + 6 * (p.y + 5 * p.z);
                ASSERT_EQ(mask.isSet(static_cast<unsigned long>(y * w + x)), value >= 20 && value <= 100);
            }
    }
}

TEST_F(SliceViewer, zoomingStopsAtOnePixelAndAtADot)
{
    Gi& gi = editor.gi;
    for (int v = 0; v < 3; ++v) editor.buffer(v).setWindowSize(McVec2i(8, 8));
    gi.setZoomFactor(6);
    gi.zoomIn();
    EXPECT_EQ(gi.viewers[0]->getZoomFactor(), 9);
    gi.zoomIn();
    EXPECT_EQ(gi.viewers[0]->getZoomFactor(), 9) << "a data pixel fills the window";
    for (int i = 0; i < 20; ++i) gi.zoomOut();
    // 9, 6, 4, 3, 2, 1, and then halves until 6 voxels are one pixel.
    EXPECT_EQ(gi.viewers[0]->getZoomFactor(), 0.125f);
    EXPECT_LT(editor.buffer(2).zoomedSize.x, 2);
    gi.zoomOut();
    EXPECT_EQ(gi.viewers[0]->getZoomFactor(), 0.125f);
}

TEST(ThinSlice, zoomingInEndsAtTheLargestFactor)
{
    DrawnEditor editor(6, 5, 1);
    editor.gi.setVolumeByte(editor.dims, 6, editor.labels(), editor.lattice());
    editor.setVoxelSize(1, 1, 0);
    editor.gi.activate(0);
    for (int i = 0; i < 60; ++i) editor.gi.zoomIn();
    EXPECT_EQ(editor.viewer(0).getZoomFactor(), 1024);
    EXPECT_EQ(editor.buffer(0).zoomedSize.y, 1);
}

TEST_F(SliceViewer, redrawsTheProjectionOfAChangeInEachViewer)
{
    class Pasted : public GiShape
    {
    public:
        void render(GiFrameBuffer*, const McBox2i& box) override { boxes.push_back(box); }
        std::vector<McBox2i> boxes;
    };
    Gi& gi = editor.gi;
    gi.setZoomFactor(3);
    gi.viewers[0]->setSlice(4, false); // X = 4, beyond the box
    gi.viewers[1]->setSlice(2, false); // Y = 2
    gi.viewers[2]->setSlice(3, false); // Z = 3
    McHandle<Pasted> shapes[3];
    for (int v = 0; v < 3; ++v) {
        shapes[v] = new Pasted;
        editor.buffer(v).addShape(shapes[v]);
    }
    gi.redraw(McBox2i(1, 2, 3, 9), gi.viewers[2]);
    EXPECT_TRUE(shapes[0]->boxes.empty());
    EXPECT_THAT(shapes[1]->boxes, ElementsAre(McBox2i(3, 9, 11, 11)));
    EXPECT_THAT(shapes[2]->boxes, ElementsAre(McBox2i(3, 6, 11, 14))) << "rows beyond the slice end with it";
    editor.gi.activate(2);
    gi.redraw(McBox2i(1, 2, 3, 9), nullptr);
    EXPECT_TRUE(shapes[0]->boxes.empty());
    EXPECT_EQ(shapes[1]->boxes.size(), 2u) << "without a source the current viewer is meant";
    EXPECT_EQ(shapes[2]->boxes.size(), 2u);
    TestGi empty(0);
    empty.Gi::redraw(McBox2i(1, 2, 3, 9), nullptr);
}

TEST_F(SliceViewer, subtractingRepaintsAPixelBeyondTheSelection)
{
    Gi& gi = editor.gi;
    gi.selectionDrawStyle = 0;
    gi.setZoomFactor(2);
    for (unsigned long i = 30; i < 60; ++i) editor.labels()[i] = i % 6 < 4 ? 1 : 2;
    gi.viewers[2]->setSlice(1, true);
    for (int x = 1; x < 4; ++x) gi.viewers[2]->getSelection()->set(x, 2);
    gi.viewers[2]->getSelection()->computeSelectionBox();
    gi.viewers[2]->redraw();
    gi.subtractSelection(1, 0);
    EXPECT_EQ(editor.labels()[30 + 2 * 6 + 2], 2);
    const auto repainted = pictureOf(editor.buffer(2));
    gi.viewers[2]->redraw();
    EXPECT_EQ(repainted, pictureOf(editor.buffer(2)));
}

TEST_F(SliceViewer, takesTheBlendWeightFromThePreferences)
{
    HxPreferences preferences;
    preferences.selectionAlpha = 17;
    preferences.selectionDrawStyle = 3;
    HxSettingsMgr::getInstance()->setPreferences(preferences, false);
    editor.gi.readSelectionDrawStyle();
    HxSettingsMgr::getInstance()->setPreferences(HxPreferences(), false);
    EXPECT_EQ(editor.buffer(1).selectionAlpha, 17);
    EXPECT_EQ(editor.gi.selectionDrawStyle, 3);
}

TEST_F(SliceViewer, theKeyDChangesDrawStyles)
{
    Gi& gi = editor.gi;
    const auto press = [&](int shift, int x, int y) {
        McKeyboardEvent event;
        event.key = 'd';
        event.shift = shift;
        event.x = x;
        event.y = y;
        return gi.viewers[2]->getLabelImage()->handleEvent(&editor.buffer(2), &event);
    };
    gi.drawStyle2D[7] = 0;
    EXPECT_EQ(press(0, 0, 0), 1);
    EXPECT_EQ(gi.drawStyle2D[1], 2);
    EXPECT_EQ(gi.drawStyle2D[7], 0) << "hidden materials stay hidden";
    gi.drawStyle2D[1] = 4;
    press(0, 0, 0);
    EXPECT_EQ(gi.drawStyle2D[1], 1);
    EXPECT_EQ(gi.drawStyle2D[200], 1);

    gi.setZoomFactor(2);
    gi.viewers[2]->setSlice(0, false);
    editor.labels()[6 + 3] = 7; // pixel (3, 1)
    EXPECT_EQ(press(1, 7, 3), 1);
    EXPECT_EQ(gi.drawStyle2D[7], 1);
    gi.drawStyle2D[7] = 4;
    press(1, 7, 3);
    EXPECT_EQ(gi.drawStyle2D[7], 0);
    EXPECT_EQ(press(1, -1, 3), 1) << "taken, without effect";
    EXPECT_EQ(gi.drawStyle2D[0], 0);
    McKeyboardEvent release;
    release.key = 'd';
    release.released = 1;
    EXPECT_EQ(gi.viewers[2]->getLabelImage()->handleEvent(&editor.buffer(2), &release), 0);
}

} // namespace
