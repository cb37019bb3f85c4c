// The keys and the pointer's answers that belong to no tool: real events into the viewers' windows.

#include "editor/app/EditorSession.h"
#include "editor/app/WindowEvents.h"

#include "app/GiQToolbox.h"
#include "app/QxViewerPanel.h"
#include "display/GiFrameBuffer.h"
#include "hx/HxViewerPanelBase.h"

#include <QLabel>
#include <QMenuBar>
#include <QTemporaryDir>

#include <filesystem>
#include <functional>

namespace {

constexpr unsigned long kSlices = 13;

/// Three materials over an image; the XY viewer is current and stands on slice 6.
class EditorKeys : public EditorSession
{
protected:
    void SetUp() override
    {
        EditorSession::SetUp();
        const unsigned long dims[3] = {5, 4, kSlices};
        labels = addLabels("labels", dims);
        addMaterials(labels, 3);
        image = addImage("image", 0, dims);
        const float box[6] = {0, 5, 0, 4, 0, 13};
        labels->coords()->setBoundingBox(box);
        eval("segment labels image");
        gi()->activateViewer(gi()->viewers[2]);
        viewer = gi()->viewers[2];
        gi()->set3dMode(false);
        start();
    }
    /// Slice 6, with one selected voxel each in slices 1, 2, 6, 9 and 12 and nowhere else.
    void start()
    {
        gi()->selection->clear();
        for (const int k : {1, 2, 6, 9, 12}) select(2, 1, k);
        viewer->getFrameBuffer()->setBrowsing(false);
        viewer->setSlice(6, true);
        gi()->updateSelectionBoxes();
    }
    void select(int i, int j, int k) { gi()->selection->set(i, j, k); }
    bool isSelected(int i, int j, int k) { return gi()->selection->get(i, j, k); }
    Hand hand(Qt::KeyboardModifiers modifiers = {}) { return Hand(viewer->getWidget(), modifiers); }
    Hand shifted() { return hand(Qt::ShiftModifier); }
    Hand controlled() { return hand(Qt::ControlModifier); }
    bool isBrowsing() { return viewer->getFrameBuffer()->isBrowsing(); }
    int labelAt(int i, int j, int k) { return labels->labelLattice()->getLabels()[i + 5 * (j + 4 * k)]; }

    HxUniformLabelField3* labels = nullptr;
    HxUniformScalarField3* image = nullptr;
    GiViewer* viewer = nullptr;
};

TEST_F(EditorKeys, goThroughTheSlices)
{
    enum
    {
        kNoModifier = 0,
        kShift = Qt::ShiftModifier,
        kCtrl = Qt::ControlModifier,
        kBoth = kShift | kCtrl
    };
    struct Case
    {
        std::vector<int> keys;
        int modifiers, to;
        bool copies;
    };
    const std::vector<int> back = {Qt::Key_Left, Qt::Key_Up, Qt::Key_Tab, Qt::Key_Backspace};
    const std::vector<int> forth = {Qt::Key_Right, Qt::Key_Down, Qt::Key_Space};
    const Case cases[] = {
        {back, kNoModifier, 5, false},
        {back, kShift, 5, true},
        {back, kCtrl, 2, false},
        {back, kBoth, 1, false},
        {forth, kNoModifier, 7, false},
        {forth, kShift, 7, true},
        {forth, kCtrl, 9, false},
        {forth, kBoth, 12, false},
        {{Qt::Key_PageUp}, kNoModifier, 1, false},
        {{Qt::Key_PageUp}, kShift, 1, true},
        {{Qt::Key_PageUp}, kCtrl, 1, false},
        {{Qt::Key_PageUp}, kBoth, 1, true},
        {{Qt::Key_PageDown}, kNoModifier, 11, false},
        {{Qt::Key_PageDown}, kShift, 11, true},
        {{Qt::Key_PageDown}, kCtrl, 11, false},
        {{Qt::Key_PageDown}, kBoth, 11, true},
    };
    for (const Case& c : cases)
        for (const int key : c.keys) {
            SCOPED_TRACE(testing::Message() << "key " << key << " modifiers " << c.modifiers);
            for (const bool repeated : {false, true}) {
                start();
                select(4, 3, 6); // only in this slice
                Hand h = hand(Qt::KeyboardModifiers(c.modifiers));
                h.keyDown(key, key == Qt::Key_Space ? " " : "", repeated);
                EXPECT_EQ(viewer->getSlice(), c.to);
                EXPECT_EQ(isSelected(4, 3, c.to), c.copies);
                EXPECT_TRUE(isBrowsing());
                h.keyUp(key, key == Qt::Key_Space ? " " : "", true);
                EXPECT_TRUE(isBrowsing()) << "still held";
                h.keyUp(key, key == Qt::Key_Space ? " " : "");
                EXPECT_FALSE(isBrowsing());
            }
        }
}

TEST_F(EditorKeys, stopAtTheEndsOfTheVolume)
{
    viewer->setSlice(0, true);
    for (const int key : {Qt::Key_Left, Qt::Key_Up, Qt::Key_Tab, Qt::Key_Backspace}) {
        hand().keyDown(key);
        shifted().keyDown(key);
        controlled().keyDown(key);
        EXPECT_EQ(viewer->getSlice(), 0);
        EXPECT_FALSE(isBrowsing());
    }
    viewer->setSlice(12, true);
    hand().keyDown(Qt::Key_Right).keyDown(Qt::Key_Down).keyDown(Qt::Key_Space, " ");
    EXPECT_EQ(viewer->getSlice(), 12);
    EXPECT_FALSE(isBrowsing());

    viewer->setSlice(3, true);
    select(4, 3, 3);
    shifted().keyDown(Qt::Key_PageUp);
    EXPECT_EQ(viewer->getSlice(), 0);
    EXPECT_TRUE(isSelected(4, 3, 0)) << "the copy goes where the viewer goes";
    hand().keyDown(Qt::Key_PageUp);
    EXPECT_EQ(viewer->getSlice(), 0);
}

TEST_F(EditorKeys, scanForHiddenSelectionsWhenTheKeyComesUp)
{
    gi()->set3dMode(true);
    std::vector<int> scans;
    const auto listener =
        QObject::connect(gi(), &GiQ::hiddenSelectionDetected, [&](int d) { scans.push_back(d); });
    Hand h = hand();
    h.keyDown(Qt::Key_Right);
    for (int i = 0; i < 3; ++i) h.keyUp(Qt::Key_Right, {}, true).keyDown(Qt::Key_Right, {}, true);
    EXPECT_EQ(viewer->getSlice(), 10);
    EXPECT_TRUE(scans.empty());
    h.keyUp(Qt::Key_Right);
    EXPECT_EQ(scans, std::vector<int>{1});
    QObject::disconnect(listener);
}

TEST_F(EditorKeys, noViewerGoesOnBrowsingWhenTheKeyComesUpElsewhere)
{
    gi()->set3dMode(true);
    const struct
    {
        const char* name;
        std::function<void()> leave;
    } kWays[] = {
        {"another viewer became the active one",
         [this] {
             gi()->activateViewer(gi()->viewers[0]);
             Hand(gi()->viewers[0]->getWidget()).keyUp(Qt::Key_Right);
         }},
        {"the keys went to another window",
         [this] {
             QFocusEvent event(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
             QCoreApplication::sendEvent(viewer->getWidget(), &event);
         }},
        {"the data closed", [] { editor()->stopEditing(); }},
    };
    for (const auto& way : kWays) {
        start();
        gi()->activateViewer(viewer);
        hand().keyDown(Qt::Key_Right);
        ASSERT_TRUE(isBrowsing()) << way.name;
        way.leave();
        EXPECT_FALSE(isBrowsing()) << way.name;
    }
}

TEST_F(EditorKeys, firstAndLastSliceTakeTheSelectionAlong)
{
    hand().keyDown(Qt::Key_End);
    EXPECT_EQ(viewer->getSlice(), 12);
    EXPECT_FALSE(isBrowsing());
    hand().keyDown(Qt::Key_Home);
    EXPECT_EQ(viewer->getSlice(), 0);
    start();
    select(4, 3, 6);
    shifted().keyDown(Qt::Key_End);
    EXPECT_TRUE(isSelected(4, 3, 12));
    start();
    select(4, 3, 6);
    shifted().keyDown(Qt::Key_Home);
    EXPECT_TRUE(isSelected(4, 3, 0));
    hand().keyDown(Qt::Key_End, {}, true);
    EXPECT_EQ(viewer->getSlice(), 0) << "not while it is held";
}

TEST_F(EditorKeys, materialsUndoAndZoomRepeat)
{
    EXPECT_EQ(gi()->currentTissue, 2);
    hand().type('.');
    EXPECT_EQ(gi()->currentTissue, 2);
    Hand h = hand();
    for (const int expected : {1, 0, 0}) {
        h.keyDown(Qt::Key_Comma, ",", true);
        EXPECT_EQ(gi()->currentTissue, expected);
    }
    hand().type('.');
    EXPECT_EQ(gi()->currentTissue, 1);

    hand().type('c');
    hand().type('i');
    EXPECT_EQ(gi()->undoActions.size(), 2);
    hand().keyDown(Qt::Key_U, "u", true).keyDown(Qt::Key_U, "u", true);
    EXPECT_EQ(gi()->undoActions.size(), 0);
    EXPECT_TRUE(isSelected(2, 1, 6));

    gi()->setZoomFactor(4);
    hand().keyDown(Qt::Key_Z, "z", true);
    EXPECT_EQ(viewer->getZoomFactor(), 3);
    shifted().keyDown(Qt::Key_Z, "Z", true);
    EXPECT_EQ(viewer->getZoomFactor(), 4);
    controlled().type('z');
    EXPECT_EQ(viewer->getZoomFactor(), 4);
}

TEST_F(EditorKeys, transferTheSelectionOfTheSliceOrTheVolume)
{
    struct Case
    {
        char key;
        bool in3D;
        int before;                // label of all voxels
        int atSelected, elsewhere; // labels afterwards: (2, 1, 6), and (2, 1, 9) in another slice
    };
    const Case cases[] = {{'a', false, 0, 1, 0}, {'a', true, 0, 1, 1}, {'+', false, 0, 1, 0},
                          {'-', false, 1, 0, 1}, {'-', true, 1, 0, 0}, {'s', false, 1, 0, 1},
                          {'r', false, 0, 1, 0}, {'r', true, 0, 1, 1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(1, c.key) + (c.in3D ? " in 3D" : ""));
        std::fill_n(labels->labelLattice()->getLabels(), 20 * kSlices, static_cast<unsigned char>(0));
        for (const int k : {6, 9})
            labels->labelLattice()->getLabels()[2 + 5 * (1 + 4 * k)] = static_cast<unsigned char>(c.before);
        start();
        gi()->currentTissue = 1;
        gi()->set3dMode(c.in3D);
        hand().keyDown(0, QString(QLatin1Char(c.key)), true);
        EXPECT_EQ(labelAt(2, 1, 6), c.before) << "not while it is held";
        hand().type(c.key);
        EXPECT_EQ(labelAt(2, 1, 6), c.atSelected);
        EXPECT_EQ(labelAt(2, 1, 9), c.elsewhere);
        EXPECT_FALSE(isSelected(2, 1, 6));
    }
    gi()->set3dMode(false);
    start();
    shifted().keyDown(Qt::Key_A, "A");
    EXPECT_EQ(labelAt(2, 1, 6), 1);
    EXPECT_TRUE(isSelected(2, 1, 6)) << "Shift keeps the selection";
}

TEST_F(EditorKeys, changeTheSelection)
{
    hand().type('c');
    EXPECT_FALSE(isSelected(2, 1, 6));
    EXPECT_TRUE(isSelected(2, 1, 9));
    hand().type('i');
    EXPECT_TRUE(isSelected(2, 1, 6));
    EXPECT_FALSE(isSelected(0, 0, 5));
    hand().type('q');
    EXPECT_TRUE(gi()->mode3D);
    EXPECT_TRUE(gi()->getToolbox()->selectionIs3D());
    hand().type('c');
    EXPECT_EQ(gi()->selection->isSet(), 0);
    hand().type('q');
    EXPECT_FALSE(gi()->mode3D);

    for (int j = 0; j < 3; ++j)
        for (int i = 1; i < 4; ++i)
            if (i != 2 || j != 1) select(i, j, 6);
    gi()->updateSelectionBoxes();
    hand().type('f');
    EXPECT_TRUE(isSelected(2, 1, 6)) << "the hole is filled";
    hand().type('h'); // nothing in this build
}

TEST_F(EditorKeys, chooseToolsAndCrossHair)
{
    for (const char digit : {'1', '4'}) {
        hand().type(digit);
        EXPECT_EQ(gi()->currentTool, gi()->tools[digit - '0']);
    }
    shifted().type('1');
    controlled().type('1');
    EXPECT_EQ(gi()->currentTool, gi()->tools[4]);
    EXPECT_FALSE(gi()->crossHair->isVisible());
    hand().type('6');
    EXPECT_TRUE(gi()->crossHair->isVisible());
    hand().type('6');
    EXPECT_FALSE(gi()->crossHair->isVisible());
}

TEST_F(EditorKeys, embeddedEditorsHaveOneDigitLess)
{
    QWidget foreign;
    QMenuBar bar;
    McHandle<HxGiEditor> other(new HxGiEditor(&foreign, &bar));
    other->startEditing(labels, image);
    GiQ& otherGi = *other->getGi();
    ASSERT_NE(otherGi.getWidget(), nullptr);
    GiViewer* otherViewer = otherGi.getCurrentViewer();
    Hand h(otherViewer->getWidget());
    h.type('1');
    EXPECT_EQ(otherGi.currentTool, otherGi.tools[1]);
    h.type('4');
    EXPECT_EQ(otherGi.currentTool, otherGi.tools[5]);
    h.type('5');
    EXPECT_TRUE(otherGi.crossHair->isVisible());
    h.type('6');
    EXPECT_TRUE(otherGi.crossHair->isVisible());
    other->stopEditing();
}

TEST_F(EditorKeys, controlSSavesTheLabels)
{
    const QTemporaryDir folder;
    const std::string file = (folder.path() + "/labels.nrrd").toStdString();
    eval("labels save " + file);
    for (const char* text : {"s", "\x13"}) { // keyboards differ in what they say
        std::filesystem::remove(file);
        controlled().keyDown(Qt::Key_S, text);
        EXPECT_TRUE(std::filesystem::exists(file));
    }
    EXPECT_EQ(gi()->undoActions.size(), 0) << "nothing was subtracted";
}

TEST_F(EditorKeys, nothingHappensWithoutLabels)
{
    HxObjectPool::getThePool()->removeObject(labels);
    for (const char c : {'a', 's', 'r', 'c', 'i', 'f', 'u', 'z', '6', ',', '.'}) hand().type(c);
    hand().keyDown(Qt::Key_Left).keyUp(Qt::Key_Left).keyDown(Qt::Key_End).keyDown(Qt::Key_Return, "\r");
    hand().press(20, 20).moveTo(22, 22).release(22, 22).turn(120).leave();
    EXPECT_FALSE(gi()->crossHair->isVisible());
}

TEST_F(EditorKeys, thePointerTellsWhatIsUnderIt)
{
    static_cast<unsigned char*>(image->lattice()->dataPtr())[3 + 5 * (2 + 4 * 6)] = 77;
    labels->labelLattice()->getLabels()[3 + 5 * (2 + 4 * 6)] = 2;
    labels->labelLattice()->getLabels()[0 + 5 * (2 + 4 * 6)] = 200;
    const GiQToolbox& toolbox = *gi()->getToolbox();
    const auto value = [](const QLabel* label) {
        return label->text().section("</b>", 1).trimmed().toStdString();
    };
    eval("view 2 zoom 10; view 2 size 70 60");
    eval("view 2 event move 3 2");
    EXPECT_EQ(value(toolbox.infoIdx), "3 2 6");
    EXPECT_EQ(value(toolbox.infoMat), "M2");
    EXPECT_EQ(value(toolbox.infoGrey), "77");
    EXPECT_EQ(gi()->valueUnderPointer, 77);
    eval("view 2 event move 0 2");
    EXPECT_EQ(value(toolbox.infoMat), "UNDEFINED");
    eval("view 2 event move 5 2");
    EXPECT_EQ(value(toolbox.infoIdx), "") << "beside the slice";
    EXPECT_EQ(value(toolbox.infoMat), "");
}

TEST_F(EditorKeys, aClickMakesItsViewerTheActiveOne)
{
    for (const int i : {0, 1, 2}) {
        Hand(gi()->viewers[i]->getWidget()).press(30, 40, Qt::RightButton).release(30, 40, Qt::RightButton);
        EXPECT_EQ(gi()->viewerPanel->getActiveViewer(), gi()->viewers[i]);
        EXPECT_EQ(gi()->getCurrentViewer(), gi()->viewers[i]);
    }
}

TEST_F(EditorKeys, theLayoutIsOneViewerOrFour)
{
    const QxViewerPanel& panel = *gi()->getPanel();
    const int former = panel.layoutNumber();
    hand().type('v');
    hand().keyDown(Qt::Key_V, "v", true); // not while it is held
    EXPECT_EQ(panel.layoutNumber(), former == 1 ? 4 : 1);
    hand().type('v');
    EXPECT_EQ(panel.layoutNumber(), former);
}

TEST_F(EditorKeys, scriptsPlayTheSameEvents)
{
    eval("view 0 event key Right");
    EXPECT_EQ(gi()->getCurrentViewer(), gi()->viewers[0]) << "who types has clicked the viewer";
    EXPECT_EQ(eval("view 0 slice"), "3");
    eval("view 2 event key PageUp shift");
    EXPECT_EQ(eval("view 2 slice"), "1");
    eval("view 2 event key space ctrl; view 2 event key Tab shift");
    EXPECT_EQ(eval("view 2 slice"), "1");
    eval("view 2 event wheel 120; view 2 event wheel 120 shift");
    EXPECT_EQ(eval("view 2 slice"), "7");
    EXPECT_FALSE(isBrowsing());

    for (const char* wrong : {"", "push 1 1", "press 1", "press a 1", "press 1 1 up", "press 900 1", "key",
                              "key Strg", "key a left", "wheel x", "leave 1"})
        EXPECT_EQ(error(std::string("view 2 event ") + wrong).substr(0, 6), "view: ") << wrong;
}

} // namespace
