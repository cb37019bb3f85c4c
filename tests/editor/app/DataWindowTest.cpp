// The sliders of the toolbox: where they start, what a drag changes, and masking.

#include "WindowSession.h"

#include "display/GiGreyImage.h"
#include "hx/HxColormap.h"
#include "qx/QxColormapFullRangeSlider.h"
#include "tools/GiMagicWand.h"
#include "tools/GiTool.h"

#include <QCheckBox>
#include <QLabel>
#include <QRadioButton>

class DataWindows : public WindowSession
{
protected:
    /// An image with these smallest and largest values.
    template <class T>
    HxUniformScalarField3* imageOf(const char* name, int hostType, T low, T high)
    {
        auto* field = addImage<T>(name, hostType);
        auto* values = static_cast<T*>(field->lattice()->dataPtr());
        std::fill(values, values + 60, low);
        values[17] = high;
        field->touchMinMax(0, -1, 0);
        return field;
    }
    void open(HxObject* image)
    {
        if (editor()) editor()->stopEditing(); // an image is taken as it enters the pool, still empty
        if (!HxObjectPool::getThePool()->find("labels")) addMaterials(addLabels("labels"), 4);
        eval(std::string("segment labels ") + image->getLabel());
    }
    static std::vector<float> dataSlider()
    {
        const auto* slider = toolbox().qxRangeSlider;
        return {slider->displayMin(), slider->displayMax(), slider->minValue(), slider->maxValue()};
    }
    static std::vector<float> toolSlider()
    {
        const auto* slider = toolbox().wMaskingWindowSlider;
        return {slider->displayMin(), slider->displayMax(), slider->minValue(), slider->maxValue()};
    }
    static std::vector<float> windowOf(int viewer)
    {
        std::vector<float> window(2);
        gi()->viewers[viewer]->getDataWindow(window[0], window[1]);
        return window;
    }
    using Floats = std::vector<float>;
};

TEST_F(DataWindows, StartFromTheRangeOfTheImage)
{
    open(imageOf<short>("image", 1, 0, 100));
    EXPECT_EQ(dataSlider(), (Floats{0, 100, 0, 100}));
    EXPECT_EQ(toolSlider(), (Floats{0, 100, 25, 100}));
    EXPECT_TRUE(toolbox().qxRangeSlider->isDiscrete());
    EXPECT_EQ(windowOf(0), (Floats{0, 100}));

    open(imageOf<float>("real", 3, -1, 1));
    EXPECT_EQ(toolSlider(), (Floats{-1, 1, -0.5f, 1}));
    EXPECT_FALSE(toolbox().wMaskingWindowSlider->isDiscrete());
}

TEST_F(DataWindows, AStoredWindowIsLimitedToTheRange)
{
    auto* image = imageOf<short>("image", 1, 20, 1000);
    const float stored[2] = {10, 5000};
    image->parameters.set("DataWindow", 2, stored);
    open(image);
    EXPECT_EQ(dataSlider(), (Floats{20, 1000, 20, 1000}));
    const float inside[2] = {30, 40};
    image->parameters.set("DataWindow", 2, inside);
    editor()->stopEditing();
    open(image);
    EXPECT_EQ(windowOf(1), (Floats{30, 40}));
}

TEST_F(DataWindows, LabelsAsImageAreShownUpToTheLastMaterial)
{
    HxUniformLabelField3* labels = addLabels("labels");
    addMaterials(labels, 5);
    labels->labelLattice()->getLabels()[3] = 4;
    labels->labelLattice()->getLabels()[4] = 3;
    labels->touchMinMax(0, -1, 0);
    open(labels);
    EXPECT_EQ(windowOf(2), (Floats{0, 4}));
}

TEST_F(DataWindows, OfWholeNumbersAreCutForTheTools)
{
    open(imageOf<short>("image", 1, 0, 100));
    gi()->setToolDataWindow(1.7f, 9.9f, true);
    EXPECT_EQ(eval("gi getToolDataWindow"), "1 9");
    EXPECT_EQ(toolSlider(), (Floats{0, 100, 1, 9}));
    open(imageOf<float>("real", 3, 0, 100));
    gi()->setToolDataWindow(1.75f, 9.5f, true);
    EXPECT_EQ(eval("gi getToolDataWindow"), "1.75 9.5");
}

TEST_F(DataWindows, ADragShowsInAllViewersOrInTheCurrentOne)
{
    open(imageOf<unsigned char>("image", 0, 0, 200));
    toolbox().qxRangeSlider->setValue(10, 150);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(windowOf(i), (Floats{10, 150})) << i;
    click(toolbox().currentZoomRadioButton);
    EXPECT_FALSE(gi()->zoomAllViewers);
    toolbox().qxRangeSlider->setValue(20, 100);
    EXPECT_EQ(windowOf(0), (Floats{10, 150}));
    EXPECT_EQ(windowOf(2), (Floats{20, 100})) << "the current one";
    gi()->setZoomMode(true);
    EXPECT_TRUE(toolbox().allZoomRadioButton->isChecked());
    eval("view 0 zoom 1");
    gi()->setZoomFactor(4);
    EXPECT_EQ(text(toolbox().zoomLabel->text()), "4:1 ");
}

TEST_F(DataWindows, MaskingFollowsItsTwoBoxes)
{
    open(imageOf<unsigned char>("image", 0, 0, 200));
    const auto state = [](int i) {
        const GiGreyImage* image = gi()->viewers[i]->getGreyImage();
        return std::pair(bool(image->maskingEnabled), bool(image->maskingOverlay));
    };
    EXPECT_TRUE(toolbox().wShowMaskingCheckBox->isChecked());
    EXPECT_FALSE(toolbox().wShowMaskingCheckBox->isEnabled());
    gi()->setToolDataWindowSliderTracking(false);
    click(toolbox().wEnableMaskingCheckBox);
    EXPECT_TRUE(gi()->maskingEnabled());
    EXPECT_TRUE(gi()->toolDataWindowSliderTracking());
    EXPECT_TRUE(toolbox().wShowMaskingCheckBox->isEnabled());
    for (int i = 0; i < 3; ++i) EXPECT_EQ(state(i), std::pair(true, true)) << i;
    click(toolbox().wShowMaskingCheckBox);
    EXPECT_EQ(state(1), std::pair(true, false));
    gi()->setEnableMask(Qt::PartiallyChecked);
    EXPECT_EQ(state(1), std::pair(true, false)) << "the state in between changes no viewer";
    gi()->setMaskingOverlay(true);
    gi()->setMaskingEnabled(false);
    EXPECT_EQ(state(1), std::pair(false, false));
    EXPECT_FALSE(toolbox().wShowMaskingCheckBox->isEnabled());

    toolbox().wMaskingWindowSlider->setValue(60, 90);
    EXPECT_EQ(gi()->viewers[0]->getMaskingWindow()[0], 60);
    EXPECT_EQ(gi()->viewers[0]->getMaskingWindow()[1], 90);
}

TEST_F(DataWindows, EveryStepOfTheWindowReachesARegionOfTheVolume)
{
    auto* image = imageOf<short>("image", 1, 0, 100);
    auto* values = static_cast<short*>(image->lattice()->dataPtr());
    for (int i = 0; i < 60; ++i) values[i] = i < 20 ? 10 : i < 40 ? 20 : 100; // one value in each slice
    open(image);
    gi()->setTool(GiMagicWand::kIndex);
    eval("gi setToolDataWindow 10 10");
    eval("view 2 slice 0");
    eval("tool 3 widget wAllSlicesCheckBox 1");
    eval("view 2 event move 1 1");
    eval("view 2 event press 1 1 left");
    eval("view 2 event release 1 1 left");
    EXPECT_EQ(numSelected(), 20u);
    struct Step
    {
        const char* window;
        unsigned long selected;
    };
    for (const Step& step : std::initializer_list<Step>{
             {"{10 20}", 40}, {"{10 10}", 20}, {"{10 100}", 60}, {"{10 19}", 20}, {"{10 20}", 40}}) {
        eval(std::string("toolbox widget wMaskingWindowSlider ") + step.window);
        EXPECT_EQ(numSelected(), step.selected) << step.window;
    }
    eval("tool 3 widget wAllSlicesCheckBox 0");
    gi()->setTool(0);
}

TEST_F(DataWindows, WithoutDataTheSlidersSpanABytesRange)
{
    open(imageOf<short>("image", 1, -500, 3000));
    const QImage full = toolbox().qxRangeSlider->grab().toImage();
    editor()->stopEditing();
    EXPECT_EQ(dataSlider(), (Floats{0, 255, 0, 255}));
    EXPECT_EQ(toolSlider(), (Floats{0, 255, 0, 255}));
    EXPECT_FALSE(gi()->canUndo());
    EXPECT_NE(toolbox().qxRangeSlider->grab().toImage(), full) << "the histogram has gone";
}

TEST_F(DataWindows, ATouchedColormapReachesTheViewers)
{
    open(imageOf<unsigned char>("image", 0, 0, 255));
    auto* map = new HxColormap;
    HxObjectPool::getThePool()->addObject(map);
    gi()->setColormap(map);
    const auto picture = [] { return panel().grab().toImage(); };
    const QImage grey = picture();
    map->setTable({{1, 0, 0, 1}, {1, 1, 0, 1}});
    EXPECT_NE(picture(), grey);
    gi()->setColormap(nullptr);
    EXPECT_EQ(picture(), grey);
}
