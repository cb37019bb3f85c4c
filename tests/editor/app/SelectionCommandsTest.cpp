// Commands that change the selection as a whole, by all the ways that lead to them: menu, key, button,
// script.

#include "WindowEvents.h"
#include "WindowSession.h"

#include "filters/GiFilter.h"
#include "hx/HxPackage.h"

#include <QMenuBar>
#include <QRadioButton>

#include <functional>
#include <stdexcept>

namespace {

/// A box of 3 x 3 x 3 voxels in the middle of 7 x 7 x 7; the XY viewer is current and shows its middle.
class SelectionCommands : public WindowSession
{
protected:
    void open()
    {
        const unsigned long dims[3] = {7, 7, 7};
        addLabels("labels", dims);
        addImage("image", 0, dims);
        eval("segment labels image");
        gi()->activateViewer(gi()->viewers[2]);
        for (int o = 0; o < 3; ++o) gi()->viewers[o]->setSlice(3, true);
        drawBox();
    }
    static void drawBox()
    {
        selection().clear();
        for (int i = 0; i < 27; ++i) selection().set(2 + i % 3, 2 + i / 3 % 3, 2 + i / 9);
        gi()->updateSelectionBoxes();
    }
    static void trigger(const char* path) { entry(mainMenu("&Selection"), path)->trigger(); }
    /// Ctrl+] as a keyboard sends it.
    static void typeControlBracket()
    {
        Hand(gi()->viewers[2]->getWidget(), Qt::ControlModifier)
            .keyDown(Qt::Key_BracketRight, "\x1d")
            .keyUp(Qt::Key_BracketRight, "\x1d");
    }
};

struct Case
{
    const char* name;
    std::function<void()> run;
    unsigned long selected; // voxels afterwards
    McBox2i box;            // of the XY viewer's slice
};

} // namespace

TEST_F(SelectionCommands, GrowAndShrinkAsOneUndoStepThatIsAnnouncedOnce)
{
    open();
    const McBox2i grown(1, 1, 5, 5), kept(2, 2, 4, 4), shrunk(3, 3, 3, 3);
    const auto button = [](QToolButton* b, bool all) {
        (all ? toolbox().allSlicesRadioButton : toolbox().currentSliceRadioButton)->setChecked(true);
        click(b);
    };
    const Case cases[] = {
        {"grow slice", [] { trigger("&Grow/Current slice"); }, 27 + 12, grown},
        {"grow slices", [] { trigger("&Grow/All slices"); }, 27 + 36, grown},
        {"grow volume", [] { trigger("&Grow/Volume"); }, 27 + 54, grown},
        {"shrink slice", [] { trigger("&Shrink/Current slice"); }, 27 - 8, shrunk},
        {"shrink slices", [] { trigger("&Shrink/All slices"); }, 3, shrunk},
        {"shrink volume", [] { trigger("&Shrink/Volume"); }, 1, shrunk},
        {"grow by key", typeControlBracket, 27 + 12, grown},
        {"grow button, all", [&] { button(toolbox().growButton, true); }, 27 + 54, grown},
        {"grow button, slice", [&] { button(toolbox().growButton, false); }, 27 + 12, grown},
        {"shrink button, all", [&] { button(toolbox().shrinkButton, true); }, 1, shrunk},
        {"shrink button, slice", [&] { button(toolbox().shrinkButton, false); }, 27 - 8, shrunk},
        {"script, grow", [this] { eval("gi growSelection3D"); }, 27 + 54, grown},
        {"script, shrink", [this] { eval("gi shrinkSelection3D"); }, 1, shrunk},
        {"script, grow slices", [this] { eval("gi growSelectionAll2D"); }, 27 + 36, grown},
        {"script, shrink slices", [this] { eval("gi shrinkSelectionAll2D"); }, 3, shrunk},
        {"ellipse", [] { trigger("Make &ellipse"); }, 27 - 4, kept},
    };
    for (const Case& c : cases) {
        drawBox();
        gi()->clearUndo(1);
        int announced = 0;
        const auto heard = QObject::connect(gi(), &GiQ::selectionChanged, [&] { ++announced; });
        testing::internal::CaptureStderr();
        c.run();
        testing::internal::GetCapturedStderr();
        QObject::disconnect(heard);
        EXPECT_EQ(numSelected(), c.selected) << c.name;
        EXPECT_EQ(gi()->viewers[2]->getSelection()->selectionBox, c.box) << c.name;
        EXPECT_EQ(announced, 1) << c.name;
        eval("gi undo");
        EXPECT_EQ(numSelected(), 27u) << c.name;
        EXPECT_EQ(gi()->canUndo(), 0) << c.name;
    }
}

TEST_F(SelectionCommands, AllSlicesAreThoseOfTheCurrentOrientation)
{
    open();
    for (int o = 0; o < 3; ++o) {
        gi()->viewers[2]->setOrientation(o);
        drawBox();
        trigger("&Grow/All slices");
        EXPECT_EQ(numSelected(), 27u + 36);
        const int neighbour[3] = {o == 0 ? 1 : 3, o == 1 ? 1 : 3, o == 2 ? 1 : 3};
        EXPECT_FALSE(selection().get(neighbour[0], neighbour[1], neighbour[2])) << "across the slices";
    }
}

// kept: growing in the slice before there are voxels leaves no undo step; all others leave an empty one.
TEST_F(SelectionCommands, DoNothingWithoutVoxels)
{
    open();
    editor()->stopEditing();
    gi()->growSelection2D();
    EXPECT_EQ(gi()->canUndo(), 0);
    for (void (GiQ::*command)() : {&GiQ::growSelection3D, &GiQ::shrinkSelection2D, &GiQ::shrinkSelectionAll2D,
                                   &GiQ::selectionFillAll}) {
        gi()->clearUndo(1);
        (gi()->*command)();
        EXPECT_EQ(gi()->canUndo(), 1);
        gi()->undo();
    }
    gi()->selectionEllipse();
    EXPECT_FALSE(selection().isSet());
}

TEST_F(SelectionCommands, SlicesWithASelectionAreFoundAlongEachAxis)
{
    open();
    selection().clear();
    for (const int i : {1, 4, 5}) selection().set(i, i, i);
    for (int o = 0; o < 3; ++o) {
        const int expected[7][4] = {// first, previous, next, last of each slice; itself if there is none
                                    {0, 0, 1, 5}, {1, 1, 4, 5}, {1, 1, 4, 5}, {1, 1, 4, 5},
                                    {1, 1, 5, 5}, {1, 4, 5, 5}, {1, 5, 6, 6}};
        for (int s = 0; s < 7; ++s) {
            EXPECT_EQ(gi()->firstSliceWithSelection(s, o), expected[s][0]) << o << ", slice " << s;
            EXPECT_EQ(gi()->prevSliceWithSelection(s, o), expected[s][1]) << o << ", slice " << s;
            EXPECT_EQ(gi()->nextSliceWithSelection(s, o), expected[s][2]) << o << ", slice " << s;
            EXPECT_EQ(gi()->lastSliceWithSelection(s, o), expected[s][3]) << o << ", slice " << s;
        }
        // On slices that are not there: what lies on the side that is looked at, or nothing.
        EXPECT_EQ(gi()->firstSliceWithSelection(-3, o), -3);
        EXPECT_EQ(gi()->nextSliceWithSelection(-3, o), 1);
        EXPECT_EQ(gi()->lastSliceWithSelection(-3, o), 5);
        EXPECT_EQ(gi()->firstSliceWithSelection(9, o), 1);
        EXPECT_EQ(gi()->prevSliceWithSelection(9, o), 5);
        EXPECT_EQ(gi()->lastSliceWithSelection(9, o), 9);
    }
}

TEST_F(SelectionCommands, ADialogOfForeignCodeMayThrowWhatItLikes)
{
    class Broken : public GiFilter
    {
    public:
        explicit Broken(Gi* owner) : GiFilter(owner) { name = "Broken..."; }
        bool throwsNumber = false;

    protected:
        QWidget* createWidget(QWidget*) override
        {
            if (throwsNumber) throw 42;
            throw std::runtime_error("no dialog today.");
        }
    };
    open();
    const McHandle<Broken> broken(new Broken(gi()));
    gi()->pluginFilters.append(broken);
    QAction entry("Broken");
    entry.setData("Broken...");
    gi()->menuPluginFilter(&entry);
    EXPECT_EQ(console.back(), "The dialog of \"Broken...\" cannot be opened: no dialog today.");
    EXPECT_EQ(error("filter Broken widget x"),
              "filter: the dialog of \"Broken\" cannot be opened: no dialog today.");
    broken->throwsNumber = true;
    gi()->menuPluginFilter(&entry);
    EXPECT_EQ(console.back(), "The dialog of \"Broken...\" cannot be opened.");
    EXPECT_EQ(error("filter Broken widget x"), "filter: the dialog of \"Broken\" cannot be opened.");
    gi()->pluginFilters.remove(gi()->pluginFilters.size() - 1);
}

TEST_F(SelectionCommands, PluginFiltersAreInTheMenuAndTheLastOfANameOpens)
{
    const QString folder = QCoreApplication::applicationDirPath() + "/../lib/test_packages";
    HxPackage::addLibraryFolder(folder.toUtf8().constData());
    eval("namespace eval kelvane {set pluginFilterName {A B C}; set pluginLibs {test_plugins test_plugins "
         "test_plugins}; set pluginClasses {makeFirst makeFirst makeUnshowable}}");
    QWidget window;
    QMenuBar bar;
    {
        const McHandle<HxGiEditor> embedded(new HxGiEditor(&window, &bar));
        eval("namespace delete kelvane");
        GiQ* gi = embedded->getGi();
        ASSERT_EQ(gi->pluginFilters.size(), 3);
        QMenu* menu = menuOf(&bar, "&Segmentation");
        const QList<QAction*> actions = menu->actions();
        const qsizetype n = actions.size();
        EXPECT_TRUE(actions[n - 4]->isSeparator());
        EXPECT_EQ(text(actions[n - 3]->text()), "First");
        EXPECT_EQ(text(actions[n - 2]->text()), "First");
        emit menu->triggered(actions[n - 3]);
        EXPECT_EQ(gi->pluginFilters[0]->getWidget(nullptr, false), nullptr);
        QWidget* dialog = gi->pluginFilters[1]->getWidget(nullptr, false);
        ASSERT_TRUE(dialog);
        EXPECT_TRUE(dialog->isVisible());
        gi->onHide();
        EXPECT_TRUE(dialog->isVisible()) << "only dialogs of the built-in filters close with the mode";
        dialog->hide();
        emit menu->triggered(actions.first());
        EXPECT_FALSE(dialog->isVisible()) << "other entries fall through";

        emit menu->triggered(actions[n - 1]);
        EXPECT_EQ(gi->pluginFilters[2]->getWidget(nullptr, false), nullptr);
        ASSERT_FALSE(console.empty());
        EXPECT_EQ(console.back(), "The dialog of \"Unshowable\" cannot be opened: no dialog today.");
    }
}
