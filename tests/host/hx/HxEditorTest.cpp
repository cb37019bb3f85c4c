#include "hx/HxEditor.h"
#include "hx/HxColormap.h"
#include "hx/HxLineSet.h"
#include "hx/HxLineSetInterface.h"
#include "hx/HxObjectPool.h"
#include "hx/HxSubApplication.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// Edits whatever its base finds acceptable, and writes down what happens to it.
class TestEditor : public HxEditor
{
public:
    TestEditor(McTypeId type, std::string& events) : HxEditor(type), log(events) {}
    ~TestEditor() override { log += "~"; }

    void startEditing(HxData* edited) override
    {
        EXPECT_EQ(data(), edited);
        log += std::string("+") + edited->getLabel();
    }

    void stopEditing() override
    {
        // The data must still be there: editors hold raw pointers into its memory until now.
        log += std::string("-") + data()->getLabel();
        detach();
    }

private:
    std::string& log;
};

class HxEditorTest : public testing::Test
{
protected:
    HxEditorTest()
    {
        first->setLabel("editorTestFirst");
        second->setLabel("editorTestSecond");
        HxObjectPool::getThePool()->addObject(first);
        HxObjectPool::getThePool()->addObject(second);
    }

    ~HxEditorTest() override { HxObjectPool::getThePool()->clear(); }

    TestEditor* newEditor() { return new TestEditor(McTypeId::of<HxLineSetInterface>(), log); }

    std::string log;
    McHandle<HxLineSet> first{new HxLineSet};
    McHandle<HxLineSet> second{new HxLineSet};
};

TEST_F(HxEditorTest, AttachingAsksTheInterfaceFirst)
{
    const McHandle<TestEditor> editor = newEditor();
    const McHandle<HxColormap> colormap = new HxColormap;
    EXPECT_FALSE(editor->attach(colormap));
    EXPECT_FALSE(editor->attach(nullptr));
    EXPECT_EQ(log, "");
    EXPECT_TRUE(editor->attach(first));
    EXPECT_TRUE(editor->attach(first)) << "again: nothing to do";
    EXPECT_FALSE(editor->attach(colormap)) << "a refusal leaves the old object attached";
    EXPECT_EQ(editor->data(), first.get());
    EXPECT_EQ(log, "+editorTestFirst");
    editor->detach();
}

TEST_F(HxEditorTest, TheHostHoldsAnAttachedEditorUntilItIsDetached)
{
    TestEditor* editor = newEditor();
    ASSERT_TRUE(editor->attach(first));
    EXPECT_EQ(HxEditor::editorOf(first), editor);
    editor->detach();
    EXPECT_EQ(log, "+editorTestFirst-editorTestFirst~");
    EXPECT_EQ(HxEditor::editorOf(first), nullptr);
}

TEST_F(HxEditorTest, AnObjectHasOneEditorAndAnEditorOneObject)
{
    const McHandle<TestEditor> editor = newEditor();
    TestEditor* other = newEditor();
    editor->attach(first);
    editor->attach(second);
    EXPECT_EQ(log, "+editorTestFirst-editorTestFirst+editorTestSecond");
    EXPECT_EQ(HxEditor::editorOf(first), nullptr);
    other->attach(second);
    EXPECT_EQ(log, "+editorTestFirst-editorTestFirst+editorTestSecond-editorTestSecond+editorTestSecond");
    EXPECT_EQ(editor->data(), nullptr);
    EXPECT_EQ(HxEditor::editorOf(second), other);
    other->detach();
}

TEST_F(HxEditorTest, RemovalFromThePoolDetaches)
{
    newEditor()->attach(first);
    HxLineSet* removed = first;
    first = nullptr; // the editor's and the pool's references remain
    HxObjectPool::getThePool()->removeObject(removed);
    EXPECT_EQ(log, "+editorTestFirst-editorTestFirst~");
    HxObjectPool::getThePool()->removeObject(second);
}

/// A mode that writes down its calls and what runs at that time.
class TestMode : public HxSubApplication
{
public:
    TestMode(const char* modeName, std::string& events) : log(events) { setLabel(modeName); }

    void onStart() override
    {
        log += std::string("+") + getLabel() + (running() == this ? "!" : "?");
        HxSubApplication::onStart();
    }

    void onStop() override
    {
        log += std::string("-") + getLabel() + (running() == this ? "!" : "?");
        HxSubApplication::onStop();
    }

private:
    std::string& log;
};

TEST(HxSubApplicationTest, OneModeRunsAtATimeAndRunsUntilItsOnStopHasReturned)
{
    std::string log;
    const McHandle<TestMode> a = new TestMode("modeTestA", log);
    const McHandle<TestMode> b = new TestMode("modeTestB", log);
    HxSubApplication::setSwitchHandler(
        [&log](HxSubApplication* mode) { log += std::string("(") + (mode ? mode->getLabel() : "") + ")"; });
    EXPECT_EQ(HxSubApplication::running(), nullptr);
    a->makeCurrent();
    a->makeCurrent();
    b->makeCurrent();
    HxSubApplication::leaveRunning();
    HxSubApplication::leaveRunning();
    EXPECT_EQ(HxSubApplication::running(), nullptr);
    EXPECT_EQ(log, "+modeTestA!(modeTestA)-modeTestA!()+modeTestB!(modeTestB)-modeTestB!()");

    {
        const McHandle<TestMode> c = new TestMode("modeTestC", log);
        c->makeCurrent();
    }
    EXPECT_EQ(HxSubApplication::running(), nullptr) << "a deleted mode does not dangle";
    HxSubApplication::setSwitchHandler({});
}

} // namespace
