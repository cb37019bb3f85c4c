#include "editor/display/DrawnEditor.h"
#include "editor/tools/ViewerEvents.h"

#include "hx/HxViewerTool.h"
#include "tools/GiBrush.h"
#include "tools/GiPanTool.h"

#include <gtest/gtest.h>

#include <QCursor>

namespace {

/// A window of 30 x 20 over a slice of 100 x 80 screen pixels.
class PanTool : public testing::Test
{
protected:
    PanTool() : editor(10, 8, 6)
    {
        editor.gi.setVolumeByte(editor.dims, 10, editor.labels(), editor.lattice());
        editor.gi.setZoomFactor(10);
        buffer().setWindowSize(McVec2i(30, 20));
        buffer().setOffset(McVec2i(40, 40));
    }

    GiMemoryFrameBuffer& buffer() { return editor.buffer(2); }
    GiTool& tool() { return *editor.gi.panTool; }
    int send(McEvent&& event) { return tool().handleEvent(&buffer(), &event); }
    McVec2i move(int x, int y)
    {
        QCursor::setPos(x, y);
        EXPECT_EQ(send(motionEvent(2, 0, 0)), 1);
        return buffer().offset;
    }

    DrawnEditor editor;
};

TEST_F(PanTool, theSliceFollowsTheHand)
{
    QCursor::setPos(200, 200);
    EXPECT_EQ(send(motionEvent(0, 5, 5)), 0);
    EXPECT_EQ(send(buttonEvent(2, true, 5, 5)), 1);
    EXPECT_TRUE(tool().isDragging());
    EXPECT_EQ(move(205, 197), McVec2i(35, 43));
    EXPECT_EQ(move(190, 200), McVec2i(50, 40));
    EXPECT_EQ(move(400, 200), McVec2i(0, 40)) << "the border holds it";
    EXPECT_EQ(move(399, 200), McVec2i(1, 40)) << "and lets it go at once";
    EXPECT_EQ(send(buttonEvent(2, false, 5, 5)), 0);
    EXPECT_FALSE(tool().isDragging());
}

TEST_F(PanTool, followsTheHandInAFlippedViewerToo)
{
    editor.viewer(2).setFlip(1, 1, 0);
    QCursor::setPos(200, 200);
    send(buttonEvent(2, true, 5, 5));
    EXPECT_EQ(move(205, 197), McVec2i(45, 37));
}

TEST_F(PanTool, theMiddleButtonPansAgainAndAgainWithAnyTool)
{
    editor.gi.setTool(GiBrush::kIndex);
    const auto deliver = [&](McEvent&& event) { return buffer().handleEvent(&event); };
    for (int drag = 0; drag < 4; ++drag) {
        QCursor::setPos(200, 200);
        EXPECT_EQ(deliver(buttonEvent(2, true, 45, 45)), 1);
        QCursor::setPos(205, 200);
        EXPECT_EQ(deliver(motionEvent(2, 45, 45)), 1);
        deliver(buttonEvent(2, false, 45, 45));
        EXPECT_FALSE(tool().isDragging());
        EXPECT_EQ(buffer().offset, McVec2i(35 - 5 * drag, 40));
    }
}

TEST_F(PanTool, leavesOtherBuffersAlone)
{
    send(buttonEvent(2, true, 5, 5));
    McMotionEvent elsewhere = motionEvent(2, 0, 0);
    const McVec2i offset = editor.buffer(0).offset;
    EXPECT_EQ(tool().handleEvent(&editor.buffer(0), &elsewhere), 0);
    EXPECT_EQ(editor.buffer(0).offset, offset);
    EXPECT_FALSE(tool().isDragging());
}

TEST_F(PanTool, takesTheLeftButtonOnlyWhileItIsTheActiveTool)
{
    EXPECT_EQ(send(buttonEvent(1, true, 5, 5)), 0);
    auto* wrapper = tool().wrapper();
    EXPECT_STREQ(wrapper->getName(), "Translate");
    EXPECT_TRUE(wrapper->supportsViewer(&editor.viewer(2)));
    HxViewerBase other("3D");
    EXPECT_FALSE(wrapper->supportsViewer(&other));
    wrapper->onActivate(&editor.viewer(2));
    EXPECT_EQ(editor.gi.currentTool, &tool());
    EXPECT_EQ(send(buttonEvent(3, true, 5, 5)), 0);
    EXPECT_EQ(send(buttonEvent(1, true, 5, 5)), 1);
    EXPECT_EQ(tool().getToolCursor()->shape(), Qt::OpenHandCursor);
}

} // namespace
