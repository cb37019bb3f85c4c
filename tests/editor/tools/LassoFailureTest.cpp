// The lasso when something is missing: memory, or a selection.

#include "editor/tools/Allocations.h"
#include "editor/tools/LassoFixture.h"

#include "hx/HxMessage.h"
#include "mc/McMemoryException.h"

#include <QSignalBlocker>

namespace {

constexpr std::size_t kLittle = 100;  // less than the bits of a slice, or than a list of an outline's rows
constexpr std::size_t kMedium = 1000; // less than the pixels of a slice

class LassoFailure : public Lasso
{
protected:
    void SetUp() override
    {
        if (!Allocations::areSeen()) GTEST_SKIP() << "a checking allocator";
    }
    template <class Event>
    void sendWithoutMemory(Event event)
    {
        const ShortOfMemory shortage(kLittle);
        EXPECT_THROW(buffer().handleEvent(&event), McMemoryException);
    }
    /// Pictures and boxes tell what is selected, and no outline is left on screen.
    void expectTidy()
    {
        EXPECT_EQ(orangePixels(), 0);
        EXPECT_FALSE(lasso->isDragging());
        const std::vector<unsigned int> left = pictureOf(buffer());
        editor.gi.updateSelectionBoxes();
        editor.gi.redraw();
        EXPECT_TRUE(pictureOf(buffer()) == left);
    }
    void dragBlock()
    {
        press(5, 1);
        drag(25, 1);
        drag(25, 28);
        drag(5, 28);
    }
    static constexpr long kBlock = 21 * 27;
};

TEST_F(LassoFailure, shapesAndOutlinesLeaveNoMarks)
{
    const auto release = buttonEvent(1, false, 102, 114);
    for (const char* shape : {"wFreehandButton", "wRectangleButton"}) {
        for (const bool masks : {true, false}) {
            SCOPED_TRACE(std::string(shape) + (masks ? ", masked" : ""));
            editor.gi.selection->clear();
            mark({20, 10, 30, 20});
            editor.gi.clearUndo(1);
            editor.gi.touches.clear();
            editor.viewer(2).setMaskingEnabled(masks);
            widget(shape)->click();
            dragBlock();
            EXPECT_GT(orangePixels(), 0);
            sendWithoutMemory(release);
            expectTidy();
            EXPECT_EQ(editor.gi.touches, (std::vector<TestGi::Touch>{{1, 0, 2, 3, 0, 0}}));
            EXPECT_EQ(count(), masks ? 121 : 0) << "the mask comes before the former selection goes";
            if (editor.gi.canUndo()) {
                editor.gi.undo();
                EXPECT_EQ(count(), 121);
            }
        }
    }
}

TEST_F(LassoFailure, withoutMemoryForUndoAnOutlineDoesNotBegin)
{
    sendWithoutMemory(buttonEvent(1, true, 22, 22));
    drag(9, 9);
    expectTidy();
    dragBlock();
    release(5, 28);
    EXPECT_EQ(count(), kBlock);
}

TEST_F(LassoFailure, withoutMemoryForUndoATraceGoesOn)
{
    image.assign(image.size(), 7);
    widget("wAutoTraceCheckBox")->click();
    for (const McVec2i& p : {McVec2i(8, 6), McVec2i(27, 6), McVec2i(27, 21), McVec2i(8, 21)}) {
        hover(p.x, p.y);
        press(p.x, p.y);
    }
    hover(8, 19); // so near that the outline has room for the rest: only undo takes memory
    const McBox2i outline = lasso->getBoundingBox();
    sendWithoutMemory(buttonEvent(3, true, 34, 78));
    EXPECT_TRUE(lasso->isDragging());
    EXPECT_EQ(lasso->getBoundingBox(), outline);
    EXPECT_EQ(editor.gi.undoActions.size(), 0);
    press(8, 19, {}, 3);
    expectTidy();
    EXPECT_GT(count(), 100);
}

TEST_F(LassoFailure, withoutMemoryForCostsThereIsNoTracing)
{
    auto* box = widget("wAutoTraceCheckBox");
    std::string told;
    HxMessage::getTheMsg()->setSink([&](const char* text) { told += text; });
    {
        // What the window system does for a click may need more.
        const QSignalBlocker quiet(box);
        box->setChecked(true);
    }
    {
        const ShortOfMemory shortage(kMedium);
        lasso->setAutoTrace(true);
    }
    HxMessage::getTheMsg()->setSink({});
    EXPECT_NE(told.find("Not enough memory"), std::string::npos) << told;
    EXPECT_FALSE(box->isChecked());
    EXPECT_FALSE(widget("wTraceEdgesCheckBox")->isEnabled());
    dragBlock();
    release(5, 28);
    EXPECT_EQ(count(), kBlock) << "by hand it works";
}

TEST_F(Lasso, withoutASelectionNothingIsSelectedAndNoMarkIsLeft)
{
    for (const char* shape : {"wFreehandButton", "wEllipseButton", "wRectangleButton"}) {
        SCOPED_TRACE(shape);
        widget(shape)->click();
        press(5, 5);
        drag(15, 5);
        drag(15, 15);
        EXPECT_GT(orangePixels(), 0);
        const McHandle<GiSelection2D> selection = buffer().selection;
        buffer().setSelection(nullptr, buffer().selectionLayers);
        release(15, 15);
        EXPECT_EQ(orangePixels(), 0);
        EXPECT_FALSE(lasso->isDragging());
        EXPECT_TRUE(editor.gi.touches.empty());
        buffer().setSelection(selection, buffer().selectionLayers);
        EXPECT_EQ(count(), 0);
    }
}

} // namespace
