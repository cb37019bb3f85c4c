#include "editor/display/DrawnEditor.h"
#include "editor/tools/ViewerEvents.h"

#include "mc/McMemoryException.h"
#include "tools/GiCrossHair.h"
#include "tools/GiCrossHairTool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCursor>

using testing::ElementsAre;

namespace {

/// Three viewers at zoom 4 over 12 x 10 x 8 voxels, the cross hair at (5, 4, 3).
class CrossHairTool : public testing::Test
{
protected:
    CrossHairTool() : editor(12, 10, 8)
    {
        editor.gi.setVolumeByte(editor.dims, 12, editor.labels(), editor.lattice());
        editor.gi.setZoomFactor(4);
        tool().setVisible(true);
        for (int v = 0; v < 3; ++v) editor.buffer(v).addShape(&tool());
        const int at[3] = {5, 4, 3};
        for (int v = 0; v < 3; ++v) editor.viewer(v).setSlice(at[v], true);
        editor.gi.touches.clear();
    }

    GiCrossHairTool& tool() { return *editor.gi.crossHair; }
    int send(int v, McEvent&& event) { return tool().handleEvent(&editor.buffer(v), &event); }

    DrawnEditor editor;
};

TEST_F(CrossHairTool, aDragMovesTheSlicesOfTheOtherViewers)
{
    EXPECT_EQ(tool().getPosition(), McVec3i(5, 4, 3));
    EXPECT_EQ(send(2, buttonEvent(1, true, 22, 17)), 1); // both lines of the XY viewer
    EXPECT_TRUE(tool().isDragging());
    EXPECT_EQ(send(2, motionEvent(1, 33, 9)), 1);
    EXPECT_EQ(tool().getPosition(), McVec3i(8, 2, 3));
    EXPECT_EQ(editor.viewer(0).getSlice(), 8);
    EXPECT_EQ(editor.viewer(1).getSlice(), 2);
    EXPECT_TRUE(editor.buffer(2).isBrowsing());
    EXPECT_TRUE(editor.gi.touches.empty());
    send(2, buttonEvent(1, false, 33, 9));
    EXPECT_FALSE(tool().isDragging());
    EXPECT_FALSE(editor.buffer(2).isBrowsing());
    EXPECT_THAT(editor.gi.touches, ElementsAre(TestGi::Touch{1, 0, 0, 0, 0, 0}));
    send(2, buttonEvent(1, false, 33, 9));
    EXPECT_EQ(editor.gi.touches.size(), 1u) << "a release without a drag is no news";
}

TEST_F(CrossHairTool, aSingleLineMovesOneAxis)
{
    EXPECT_EQ(send(1, buttonEvent(1, true, 22, 30)), 1); // the vertical line of XZ
    send(1, motionEvent(1, 2, 2));
    EXPECT_EQ(tool().getPosition(), McVec3i(0, 4, 3));
    send(1, buttonEvent(1, false, 2, 20));
    EXPECT_EQ(send(0, buttonEvent(1, true, 33, 12)), 1); // the horizontal line of YZ
    send(0, motionEvent(1, 2, 1));
    EXPECT_EQ(tool().getPosition(), McVec3i(0, 4, 0));
}

TEST_F(CrossHairTool, ignoresWhatLiesOutsideOrWhileInvisible)
{
    EXPECT_EQ(send(2, buttonEvent(1, true, 22, -1)), 0);
    EXPECT_EQ(send(2, buttonEvent(1, true, 22, 40)), 0);
    EXPECT_EQ(send(2, motionEvent(0, 26, 22)), 0) << "4 pixels from either line";
    tool().setVisible(false);
    EXPECT_EQ(send(2, buttonEvent(1, true, 22, 10)), 0);
    EXPECT_FALSE(tool().isDragging());
}

TEST_F(CrossHairTool, eachVolumeAxisKeepsItsColour)
{
    const unsigned int vertical[3] = {0x00FF00, 0x0000FF, 0x0000FF};
    const unsigned int horizontal[3] = {0xFF0000, 0xFF0000, 0x00FF00};
    const McVec2i at[3] = {McVec2i(18, 14), McVec2i(22, 14), McVec2i(22, 18)};
    for (int v = 0; v < 3; ++v) {
        GiFrameBuffer& buffer = editor.buffer(v);
        editor.viewer(v).redraw();
        const auto pixels = pictureOf(buffer);
        const McVec2i n = buffer.memSize;
        const auto at2 = [&](int x, int y) {
            return pixels[static_cast<std::size_t>((buffer.flipY ? n.y - 1 - y : y) * n.x + x)];
        };
        EXPECT_EQ(at2(at[v].x, 0), vertical[v]);
        EXPECT_EQ(at2(at[v].x, n.y - 1), vertical[v]);
        EXPECT_EQ(at2(0, at[v].y), horizontal[v]);
        EXPECT_EQ(at2(at[v].x, at[v].y), horizontal[v]) << "the horizontal line comes last";
        EXPECT_EQ(std::count(pixels.begin(), pixels.end(), vertical[v]), n.y - 1);
    }
}

TEST_F(CrossHairTool, theCursorTellsWhatWouldBeDragged)
{
    class Pointed : public GiMemoryFrameBuffer
    {
    public:
        void setCursor(const QCursor& cursor) override { shape = cursor.shape(); }
        int shape = -1;
    };
    Pointed buffer;
    editor.viewer(2).setFrameBuffer(&buffer);
    editor.viewer(2).setZoomFactor(4);
    McMotionEvent at = motionEvent(0, 22, 5);
    EXPECT_EQ(tool().handleEvent(&buffer, &at), 1);
    EXPECT_EQ(buffer.shape, Qt::SizeHorCursor);
    at = motionEvent(0, 5, 18);
    tool().handleEvent(&buffer, &at);
    EXPECT_EQ(buffer.shape, Qt::SizeVerCursor);
    at = motionEvent(0, 20, 20);
    tool().handleEvent(&buffer, &at);
    EXPECT_EQ(buffer.shape, Qt::SizeAllCursor);
    editor.viewer(2).setFrameBuffer(nullptr);
}

TEST_F(CrossHairTool, viewersFollowAgainAfterOneFoundNoMemory)
{
    class PoorBuffer : public GiMemoryFrameBuffer
    {
    public:
        void resize(const McVec2i& size, const int* columns, const int* rows) override
        {
            if (refuses) throw McMemoryException(1);
            GiMemoryFrameBuffer::resize(size, columns, rows);
        }
        void paste() override
        {
            if (refuses) throw McMemoryException(1);
        }
        bool refuses = true;
    };
    PoorBuffer buffer;
    editor.viewer(0).setFrameBuffer(&buffer);
    tool().setPosition(McVec3i(7, 4, 3));
    EXPECT_THROW(tool().valueChanged(), McMemoryException);
    EXPECT_THROW(editor.viewer(2).setSlice(5, true), McMemoryException);
    buffer.refuses = false;
    editor.viewer(1).setSlice(6, true);
    EXPECT_EQ(tool().getPosition(), McVec3i(7, 6, 5));
    editor.viewer(0).setFrameBuffer(nullptr);
}

TEST(CrossHair, isDrawnAtTheFirstScreenPixel)
{
    DrawnEditor editor(4, 3, 2);
    editor.gi.setVolumeByte(editor.dims, 4, editor.labels(), editor.lattice());
    editor.gi.setZoomFactor(2);
    const McHandle<GiCrossHair> crossHair(new GiCrossHair);
    int calls = 0;
    crossHair->setValueChangedCallback([](GiCrossHair*, void* n) { ++*static_cast<int*>(n); }, &calls);
    crossHair->setPosition(McVec2i(2, 1));
    crossHair->setPosition(McVec2i(2, 1));
    EXPECT_EQ(calls, 1);
    crossHair->setColor(1, 0, 0, 255);
    crossHair->setColor(0, 255, 0, 0);
    editor.buffer(2).addShape(crossHair);
    editor.viewer(2).setDataWindow(0, 1, true); // black
    EXPECT_THAT(drawn(editor.buffer(2)),
                ElementsAre("....b...", "....b...", "rrrrrrrr", "....b...", "....b...", "....b..."));
}

} // namespace
