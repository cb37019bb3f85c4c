// The magic wand's marks and limit lines on the screen, and its cursors.

#include "editor/tools/WandEditor.h"

namespace {

using MagicWandMarks = WandEditor;

TEST_F(MagicWandMarks, MarksAreDrawnInTheirColoursAndGoWithTheTool)
{
    editor.gi.clearSelection(true, false);
    const auto colourAt = [&](int i, int j) {
        const McVec2i p = at(i, j);
        const std::vector<unsigned int> picture = pictureOf(buffer());
        return picture[static_cast<std::size_t>((p.y - buffer().offset.y) * buffer().memSize.x + p.x -
                                                buffer().offset.x)];
    };
    const float blue[3] = {0, 0, 1};
    editor.lattice()->materials()->bundle(1)->setColor(blue);
    HxParamBundle* slice = parameters().bundle("Seeds", 1)->bundle("Slice0001", 1);
    slice->set("S0001x0001", 4, std::vector<int>{2, 1, 1, 0x002}.data());
    slice->set("S0003x0001", 4, std::vector<int>{2, 1, 1, 0x102}.data());
    slice->set("S0005x0001", 4, std::vector<int>{2, 1, 1, 0x202}.data());
    slice->set("S0007x0001", 4, std::vector<int>{2, 1, 1, 0x902}.data());
    wand.init();
    EXPECT_EQ(colourAt(1, 1), 0xFFFF00u) << "no material";
    EXPECT_EQ(colourAt(3, 1), 0x0000FFu);
    EXPECT_EQ(colourAt(5, 1), 0xFFFF00u) << "a material without a colour";
    EXPECT_EQ(colourAt(7, 1), 0xFFFF00u) << "no such material";
    press(1, 1);
    EXPECT_EQ(colourAt(1, 1), 0xFF4000u) << "active";
    key('h');
    EXPECT_NE(colourAt(3, 1), 0x0000FFu);
    McKeyboardEvent held;
    held.key = 'h';
    held.autoRepeat = 1;
    send(std::move(held));
    EXPECT_NE(colourAt(3, 1), 0x0000FFu) << "hidden once, however long the key is held";
    key('h', false);
    key('h');
    EXPECT_EQ(colourAt(3, 1), 0x0000FFu);
    editor.gi.setTool(-1);
    EXPECT_NE(colourAt(3, 1), 0x0000FFu);
}

TEST_F(MagicWandMarks, WhatIsDrawnInPartsEqualsAWholePicture)
{
    const auto expectWhole = [&](const char* when) {
        const std::vector<unsigned int> shown = pictureOf(buffer());
        editor.gi.redraw();
        EXPECT_TRUE(shown == pictureOf(buffer())) << when;
    };
    HxParamBundle* slice = parameters().bundle("Seeds", 1)->bundle("Slice0001", 1);
    const int values[4] = {2, 2, 2, 2};
    for (const char* name : {"S0004x0001", "S0006x0000", "S0007x0000"}) slice->set(name, 4, values);
    wand.init();
    buffer().setOffset(McVec2i(7, 3));
    key('l');
    press(2, 0);
    for (const int i : {2, 4, 6, 7}) {
        moveTo(i, i / 2 % kHeight);
        expectWhole("while a line is drawn");
    }
    release(7, 3);
    expectWhole("line drawn");
    key('h');
    expectWhole("seeds hidden");
    key('h');
    expectWhole("seeds shown: a line crosses some");
    press(6, 0);
    expectWhole("picked");
    editor.gi.storeSelection(1, 0, 1);
    expectWhole("kept");
    press(4, 1);
    editor.gi.subtractSelection(1, 0);
    expectWhole("subtracted");
}

TEST_F(MagicWandMarks, KeptHiddenOnesCatchClicks)
{
    click(6, 1);
    editor.gi.storeSelection(1, 0, 1);
    key('h');
    press(6, 1);
    EXPECT_EQ(wand.seeds.size(), 1);
    EXPECT_EQ(wand.seedIsStored, 1);
}

TEST_F(MagicWandMarks, Cursors)
{
    const auto shape = [&] { return wand.getToolCursor(); };
    const QCursor* const own = shape();
    setWindow(2, 2);
    click(6, 1);
    editor.gi.storeSelection(1, 0, 1);
    moveTo(5, 3, false);
    EXPECT_EQ(shape(), own);
    moveTo(6, 1, false);
    EXPECT_EQ(shape()->shape(), Qt::ArrowCursor) << "over a mark";
    editor.gi.masking = true;
    editor.gi.valueUnderPointer = 3;
    moveTo(5, 3, false);
    EXPECT_EQ(shape()->shape(), Qt::ArrowCursor) << "a click would be refused";
    editor.gi.valueUnderPointer = 2;
    moveTo(5, 3, false);
    EXPECT_EQ(shape(), own);
    editor.gi.masking = false;
    key('l');
    moveTo(5, 3, false);
    const QCursor* const pencil = shape();
    EXPECT_NE(pencil, own);
    drawLimit(2, 0, 2, 3);
    key('l');
    moveTo(2, 3, false);
    EXPECT_NE(shape(), pencil) << "over a line";
    moveTo(5, 3, false);
    EXPECT_EQ(shape(), pencil);
    wand.setLimitMode(false);
    EXPECT_EQ(shape(), own);
}

} // namespace
