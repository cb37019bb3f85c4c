// What the user's hands lead to may run out of memory anywhere: each entry reports it and the program goes
// on.

#include "WindowEvents.h"
#include "WindowSession.h"

#include "app/GiQTissueList.h"
#include "display/GiFrameBuffer.h"
#include "display/GiShape.h"
#include "mc/McMemoryException.h"
#include "qx/QxColormapFullRangeSlider.h"
#include "tools/giGuarded.h"

#include <QCheckBox>
#include <QComboBox>
#include <QRadioButton>

#include <functional>
#include <stdexcept>

namespace {

/// A part of each picture for which there is never enough memory.
class Hungry : public GiShape
{
public:
    void render(GiFrameBuffer*, const McBox2i&) override
    {
        ++meals;
        throw McMemoryException(4711);
    }
    int meals = 0;
};

class GuardedEntries : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        HxUniformLabelField3* labels = addLabels("labels");
        addMaterials(labels, 3);
        addImage("image");
        addImage("other");
        eval("segment labels image");
        gi()->setCurrentTissue(1);
        for (int i = 0; i < 3; ++i) gi()->viewers[i]->getFrameBuffer()->addShape(hungry);
    }
    void TearDown() override
    {
        starve(false);
        WindowSession::TearDown();
    }
    void starve(bool on)
    {
        for (int i = 0; i < 3; ++i) {
            GiFrameBuffer* buffer = gi()->viewers[i]->getFrameBuffer();
            if (on && !buffer->hasShape(hungry)) buffer->addShape(hungry);
            if (!on && buffer->hasShape(hungry)) buffer->removeShape(hungry);
        }
    }
    static GiQTissueList* list() { return toolbox().tissueList; }
    static QWidget* cell(const char* name) { return list()->findChildren<QWidget*>(name).at(1); }

    const McHandle<Hungry> hungry = McHandle<Hungry>(new Hungry);
};

} // namespace

TEST_F(GuardedEntries, ReportWhatFailsAndTheProgramGoesOn)
{
    const struct
    {
        const char* name;
        std::function<void()> run;
    } kEntries[] = {
        {"menu", [] { entry(mainMenu("&Selection"), "Invert/All slices")->trigger(); }},
        {"orientation", [] { entry(mainMenu("&Segmentation"), "Orientation/Flip X")->trigger(); }},
        {"toolbox button", [] { click(toolbox().growButton); }},
        {"toolbox tool", [] { click(toolbox().findChild<QToolButton*>("tool1")); }},
        {"toolbox slider", [] { emit toolbox().qxRangeSlider->valueChanged(0, 1); }},
        {"combo box",
         [] { toolbox().wImageData->setCurrentIndex(1 - toolbox().wImageData->currentIndex()); }},
        {"list, key", [] { Hand(list()).type('c'); }},
        {"list, Shift and click", [] { click(list()->viewport(), Qt::ShiftModifier); }},
        {"list, check box", [] { click(cell("show2D")); }},
        {"list, select", [] { click(cell("selectMaterial")); }},
        {"key over a slice", [] { Hand(gi()->viewers[2]->getWidget()).type('i'); }},
    };
    for (const auto& e : kEntries) {
        console.clear();
        hungry->meals = 0;
        e.run();
        EXPECT_GT(hungry->meals, 0) << e.name << " drew nothing";
        ASSERT_FALSE(console.empty()) << e.name;
        EXPECT_EQ(console.front(), "Not enough memory (4711 bytes).") << e.name;
    }
    starve(false);
    console.clear();
    eval("gi clear 3d; gi toggleVoxel 1 1 1");
    click(toolbox().growButton);
    EXPECT_EQ(numSelected(), 7u);
    EXPECT_TRUE(console.empty());
    // Back to what the next test starts from.
    entry(mainMenu("&Segmentation"), "Orientation/Flip X")->trigger();
    click(cell("show2D"));
}

TEST_F(GuardedEntries, ExceptionsOfLibrariesEndThereToo)
{
    giGuarded(GiReport::kConsole, [] { throw std::runtime_error("lost"); });
    giGuarded(GiReport::kDialog, [] { throw McException("torn"); });
    EXPECT_EQ(console, (std::vector<std::string>{"lost", "torn"}));
}
