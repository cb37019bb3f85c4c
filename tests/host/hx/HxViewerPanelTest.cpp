#include "hx/HxViewerBase.h"
#include "hx/HxViewerPanelBase.h"
#include "hx/HxViewerTool.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

class TestModal : public HxViewerModalTool
{
public:
    TestModal(const char* name, std::string& events, HxViewerBase* unsupported = nullptr)
        : HxViewerModalTool(name), log(events), refused(unsupported)
    {
    }

    bool supportsViewer(HxViewerBase* viewer) override { return viewer != refused; }
    void onActivate(HxViewerBase* viewer) override
    {
        log += std::string(getName()) + "@" + viewer->getName() + " ";
    }

private:
    std::string& log;
    HxViewerBase* refused;
};

class TestTrigger : public HxViewerTriggerTool
{
public:
    TestTrigger(const char* name, std::string& events) : HxViewerTriggerTool(name), log(events) {}

    void onTrigger(HxViewerBase* viewer) override
    {
        log += std::string(getName()) + "!" + viewer->getName() + " ";
    }

private:
    std::string& log;
};

class HxViewerPanelTest : public testing::Test
{
protected:
    static McHandle<HxViewerBase> newViewer(const char* name) { return new HxViewerBase(name); }

    std::string log;
    HxViewerPanelBase panel;
    McHandle<HxViewerBase> a = newViewer("a");
    McHandle<HxViewerBase> b = newViewer("b");
    McHandle<HxViewerBase> c = newViewer("c");
};

TEST_F(HxViewerPanelTest, TheActiveViewerMayComeBeforeItsRegistration)
{
    panel.setActiveViewer(c);
    panel.registerViewer(a);
    panel.registerViewer(b);
    panel.registerViewer(c);
    panel.registerViewer(a);
    EXPECT_EQ(panel.getActiveViewer(), c.get());
    EXPECT_EQ(panel.numViewers(), 3);
    EXPECT_EQ(panel.viewer(0), a.get());
    EXPECT_EQ(panel.viewer(3), nullptr);
    EXPECT_EQ(panel.viewer(-1), nullptr);
    panel.unregisterViewer(c);
    EXPECT_EQ(panel.getActiveViewer(), a.get()) << "falls back to the first that remains";
}

TEST_F(HxViewerPanelTest, DeletedViewersLeaveNoTrace)
{
    const McHandle<HxViewerTool> move = new TestModal("Translate", log);
    const McHandle<HxViewerTool> pan = new TestModal("Pan", log);
    panel.registerTool(move);
    panel.registerViewer(a);
    panel.setActiveViewer(b); // never registered
    b->setPanel(&panel);
    panel.setToolOverride(b, move, pan);
    b = nullptr;
    EXPECT_EQ(panel.getActiveViewer(), a.get());
    a = nullptr;
    EXPECT_EQ(panel.getActiveViewer(), nullptr);
    EXPECT_EQ(panel.numViewers(), 0);
    panel.pressTool(move);
    EXPECT_EQ(log, "");
}

TEST_F(HxViewerPanelTest, ADeletedPanelIsForgottenByItsViewers)
{
    auto short_lived = std::make_unique<HxViewerPanelBase>();
    short_lived->registerViewer(a);
    a->setPanel(short_lived.get());
    c->setPanel(short_lived.get());
    short_lived.reset();
    EXPECT_EQ(a->getPanelBase(), nullptr);
    EXPECT_EQ(c->getPanelBase(), nullptr);
}

TEST_F(HxViewerPanelTest, APressRunsTheReplacementOfTheActiveViewer)
{
    const McHandle<HxViewerTool> home = new TestTrigger("Home", log);
    const McHandle<HxViewerTool> reset = new TestTrigger("Reset", log);
    const McHandle<HxViewerTool> translate = new TestModal("Translate", log);
    const McHandle<TestModal> pan = new TestModal("Pan", log, b);
    panel.registerTool(home);
    panel.registerTool(translate);
    EXPECT_EQ(panel.findTool("Home"), home.get());
    EXPECT_EQ(panel.findTool("Pan"), nullptr);
    panel.pressTool(home); // no viewer yet
    for (const auto& viewer : {a, b, c}) panel.registerViewer(viewer);
    panel.setToolOverride(a, home, reset);
    panel.setToolOverride(a, translate, pan);

    panel.pressTool(home);
    panel.pressTool(translate);
    EXPECT_EQ(log, "Reset!a Pan@a ") << "one activation, on the active viewer";
    EXPECT_EQ(a->activeTool(), pan.get());
    EXPECT_EQ(b->activeTool(), nullptr) << "not supported there";
    EXPECT_EQ(c->activeTool(), pan.get());

    panel.setActiveViewer(c);
    panel.pressTool(home);
    panel.setToolOverride(a, home, nullptr);
    panel.setActiveViewer(a);
    panel.pressTool(home);
    EXPECT_EQ(log, "Reset!a Pan@a Home!c Home!a ");
}

} // namespace
