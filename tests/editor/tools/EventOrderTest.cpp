// Who sees an event of a frame buffer, and in which order.

#include "editor/display/DrawnEditor.h"
#include "editor/tools/ViewerEvents.h"

#include "tools/GiCrossHairTool.h"

#include <gtest/gtest.h>

namespace {

class Listener : public GiShape
{
public:
    Listener(std::string letter, std::string& list) : name(std::move(letter)), log(list) {}
    int handleEvent(GiFrameBuffer*, McEvent*) override
    {
        log += name;
        return takes;
    }
    bool isDragging() const override { return dragging; }

    int takes = 0;
    bool dragging = false;

private:
    std::string name;
    std::string& log;
};

class ListeningTool : public GiTool
{
public:
    ListeningTool(Gi* owner, std::string& list) : GiTool(owner), log(list) {}
    const char* getIconName() const override { return ""; }
    int handleEvent(GiFrameBuffer*, McEvent*) override
    {
        log += 't';
        return takes;
    }
    void eventTakenElsewhere(GiFrameBuffer*) override { log += "clear "; }
    void select() override { log += "select "; }
    void deselect(GiFrameBuffer* buffer) override { log += buffer ? "deselect " : "deselect-null "; }

    int takes = 1;

private:
    std::string& log;
};

class CursorGi : public TestGi
{
public:
    CursorGi() : TestGi(0) {}
    void updateCursor() override
    {
        if (log) *log += 'c';
    }
    std::string* log = nullptr;
};

class EventOrder : public testing::Test
{
protected:
    EventOrder() : field(new HxUniformLabelField3(dims))
    {
        viewer = new GiMemoryViewer("viewer", &gi);
        viewer->ref();
        viewer->setOrientation(2);
        gi.viewers.append(viewer);
        gi.materials = field->labelLattice()->materials();
        gi.imageLattice = field->labelLattice();
        gi.setVolumeByte(dims, 20, field->labelLattice()->getLabels(), field->labelLattice());
        gi.setZoomFactor(5);
        gi.viewers[0]->setSlice(3, true);
        buffer = viewer->getFrameBuffer();
        tool = new ListeningTool(&gi, log);
        tool->ref();
        gi.tools[1]->unref();
        gi.tools[1] = tool;
        a = new Listener("a", log);
        b = new Listener("b", log);
        buffer->addShape(a);
        buffer->addShape(gi.crossHair);
        gi.setTool(1);
        buffer->addShape(b);
        gi.crossHair->setPosition(McVec3i(10, 10, 3)); // lines at 52
        gi.log = &log;
        log.clear();
    }

    std::string send(McEvent&& event)
    {
        log.clear();
        result = buffer->handleEvent(&event);
        return log;
    }

    const unsigned long dims[3] = {20, 20, 8};
    McHandle<HxUniformLabelField3> field;
    std::string log;
    CursorGi gi;
    GiMemoryViewer* viewer;
    GiFrameBuffer* buffer;
    ListeningTool* tool;
    McHandle<Listener> a, b;
    int result = -1;
};

TEST_F(EventOrder, theActiveToolEndsTheWalkAndOthersDoNot)
{
    a->takes = 1;
    EXPECT_EQ(send(motionEvent(0, 30, 30)), "cat");
    EXPECT_EQ(result, 1);
    tool->takes = 0;
    b->takes = 1;
    EXPECT_EQ(send(motionEvent(0, 30, 30)), "catb");
    EXPECT_EQ(result, 0) << "what another shape takes is not reported";
}

TEST_F(EventOrder, handlersComeFirst)
{
    const auto handler = [](GiFrameBuffer*, McEvent* event, void* data) {
        *static_cast<std::string*>(data) += 'h';
        return event->x == 1 ? 1 : 0;
    };
    buffer->addEventHandler(handler, &log);
    EXPECT_EQ(send(motionEvent(0, 1, 30)), "h");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(send(motionEvent(0, 30, 30)), "hcat");
    buffer->removeEventHandler(handler);
    EXPECT_EQ(send(motionEvent(0, 1, 30)), "cat");
}

TEST_F(EventOrder, nothingHappensWithoutAnImage)
{
    gi.imageLattice = nullptr;
    EXPECT_EQ(send(motionEvent(0, 30, 30)), "");
    EXPECT_EQ(result, 0);
}

TEST_F(EventOrder, theMiddleButtonPans)
{
    EXPECT_EQ(send(buttonEvent(2, true, 30, 30)), "clear ");
    EXPECT_EQ(result, 1);
    EXPECT_EQ(send(motionEvent(2, 31, 30)), "clear ");
    EXPECT_EQ(send(buttonEvent(2, false, 31, 30)), "cat") << "its release is free for all";
}

TEST_F(EventOrder, draggingShapesComeBeforeTheCrossHair)
{
    gi.crossHair->setVisible(true);
    b->dragging = true;
    b->takes = 1;
    EXPECT_EQ(send(buttonEvent(1, true, 52, 20)), "b");
    EXPECT_EQ(result, 1);
    b->takes = 0;
    EXPECT_EQ(send(buttonEvent(1, true, 52, 20)), "bclear ") << "refused, and then the cross hair's";
}

TEST_F(EventOrder, theCrossHairComesBeforeTheToolForLeftPressesAndFreeMotion)
{
    gi.crossHair->setVisible(true);
    EXPECT_EQ(send(motionEvent(0, 52, 20)), "clear ");
    EXPECT_EQ(send(buttonEvent(1, true, 55, 20)), "clear ") << "3 pixels beside the line";
    EXPECT_EQ(send(buttonEvent(1, false, 55, 20)), "") << "now as a dragging shape";
    EXPECT_EQ(send(buttonEvent(1, true, 56, 20)), "cat") << "4 pixels beside it";
    EXPECT_EQ(send(buttonEvent(3, true, 52, 20)), "cat");
    EXPECT_EQ(send(motionEvent(3, 52, 20)), "cat");
}

TEST_F(EventOrder, changingTheToolMovesItInTheShapes)
{
    log.clear();
    gi.setTool(6);
    EXPECT_EQ(log, "deselect c");
    EXPECT_FALSE(buffer->hasShape(tool));
    EXPECT_TRUE(buffer->hasShape(gi.panTool));
    EXPECT_NE(viewer->activeTool(), nullptr);
    gi.setTool(-1);
    EXPECT_FALSE(buffer->hasShape(gi.panTool));
    EXPECT_EQ(log, "deselect c") << "no tool asks for no cursor";
}

} // namespace
