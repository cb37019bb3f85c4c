// The threshold tool: what it selects, and what goes with a call.

#include "editor/tools/ToolImage.h"

#include "hx/HxMessage.h"
#include "tools/GiThreshold.h"
#include "tools/giSelectWindow.h"

#include <QCheckBox>
#include <QPushButton>
#include <QTest>

namespace {

/// A threshold tool with its panel.
class Threshold
{
public:
    explicit Threshold(DrawnEditor& editor) : tool(*editor.gi.tools[GiThreshold::kIndex])
    {
        QWidget* panel = tool.getWidget(nullptr);
        allSlices = panel->findChild<QCheckBox*>("wAllSlicesCheckBox");
        materialOnly = panel->findChild<QCheckBox*>("wCurrentMaterialCheckBox");
        button = panel->findChild<QPushButton*>("wSelectButton");
    }
    void select() { button->click(); }

    GiTool& tool;
    QCheckBox *allSlices, *materialOnly;
    QPushButton* button;
};

void setWindow(TestGi& gi, float min, float max)
{
    gi.toolDataWindow[0] = min;
    gi.toolDataWindow[1] = max;
}

template <class T>
class ThresholdOnImage : public testing::Test
{
};
TYPED_TEST_SUITE(ThresholdOnImage, ToolImageTypes);

TYPED_TEST(ThresholdOnImage, selectsWhatTheWindowHolds)
{
    constexpr bool isKnownType = !std::is_same_v<TypeParam, unsigned int>;
    std::mt19937 random(3);
    DrawnEditor editor(67, 31, 13); // neither rows nor the volume fill whole words
    const ToolImage<TypeParam> image(editor, random);
    for (unsigned long i = 0; i < editor.size(); ++i)
        editor.labels()[i] = static_cast<unsigned char>(random() % 3);
    Threshold threshold(editor);
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        const int o = trial % 3;
        GiViewer& viewer = *editor.gi.activate(o);
        viewer.setMaskingEnabled(true);
        viewer.setSlice(static_cast<int>(random() % 13), false);
        threshold.tool.select();
        const bool all = trial & 4, byMaterial = trial & 8;
        threshold.allSlices->setChecked(all);
        threshold.materialOnly->setChecked(byMaterial);
        editor.gi.currentTissue = trial & 16 ? 0 : 2;
        float window[2];
        ToolImage<TypeParam>::chooseWindow(random, window);
        setWindow(editor.gi, window[0], window[1]);
        for (unsigned long i = 0; i < editor.size(); ++i)
            if (random() & 1) editor.gi.selection->set(i);

        std::vector<bool> expected;
        const unsigned long x = editor.dims[0], y = editor.dims[1];
        for (unsigned long i = 0; i < editor.size(); ++i) {
            const unsigned long at[3] = {i % x, i / x % y, i / (x * y)};
            const bool concerned = all || at[o] == static_cast<unsigned long>(viewer.getSlice());
            const bool inside =
                image.accepts(i, window) && (!byMaterial || editor.labels()[i] == editor.gi.currentTissue);
            expected.push_back(concerned && isKnownType ? inside : editor.gi.selection->isSet(i));
        }
        threshold.select();
        for (unsigned long i = 0; i < editor.size(); ++i)
            ASSERT_EQ(editor.gi.selection->isSet(i), expected[i]) << "voxel " << i << ", orientation " << o;
    }
}

TEST(ThresholdWindow, manyThreadsShareNoWord)
{
    std::mt19937 random(5);
    std::vector<short> values(40000 + 17);
    for (short& v : values) v = static_cast<short>(random() % 5);
    McBitfield many(values.size());
    const float window[2] = {1, 3};
    giSelectWindow(1, values.data(), window, nullptr, -1, many, 7); // the code of short
    for (unsigned long i = 0; i < values.size(); ++i)
        ASSERT_EQ(many.isSet(i), values[i] >= 1 && values[i] <= 3) << i;
}

class ThresholdTool : public testing::Test
{
protected:
    ThresholdTool() : editor(6, 5, 4), threshold(editor)
    {
        editor.gi.setVolumeByte(editor.dims, 6, image.data(), editor.lattice());
        for (std::size_t i = 0; i < image.size(); ++i) image[i] = static_cast<unsigned char>(i % 4);
        editor.viewer(2).setMaskingEnabled(true);
        setWindow(editor.gi, 2, 2);
        editor.gi.clearUndo(1);
        editor.gi.touches.clear();
    }
    ~ThresholdTool() override { HxMessage::setDialogHandler({}); }

    long count()
    {
        long n = 0;
        for (unsigned long i = 0; i < editor.size(); ++i) n += editor.gi.selection->isSet(i);
        return n;
    }

    DrawnEditor editor;
    std::vector<unsigned char> image = std::vector<unsigned char>(120);
    Threshold threshold;
};

TEST_F(ThresholdTool, asksForMasking)
{
    std::vector<std::string> messages;
    HxMessage::setDialogHandler([&](const HxDialogRequest& request) {
        messages.push_back(request.text);
        return 0;
    });
    editor.viewer(2).setMaskingEnabled(false);
    threshold.select();
    EXPECT_EQ(messages,
              std::vector<std::string>{"You have to enable masking before using the threshold tool!"});
    EXPECT_EQ(editor.gi.undoActions.size(), 0);
    EXPECT_TRUE(editor.gi.touches.empty());
}

TEST_F(ThresholdTool, aSliceAfterAVolumeStandsAloneAndFurtherSlicesJoinIt)
{
    EXPECT_TRUE(threshold.allSlices->isChecked());
    threshold.select();
    EXPECT_EQ(count(), 30);
    threshold.allSlices->click();
    editor.viewer(2).setSlice(0, false);
    threshold.select();
    EXPECT_EQ(count(), 7) << "what the volume had selected in other slices is gone";
    editor.viewer(2).setSlice(1, false);
    threshold.select();
    EXPECT_EQ(count(), 15);
    EXPECT_EQ(editor.gi.touches,
              (std::vector<TestGi::Touch>{{1, 0, 0, -1, 0, 0}, {1, 0, 2, 0, 0, 0}, {1, 0, 2, 1, 0, 0}}));
    EXPECT_EQ(editor.gi.undoActions.size(), 3);
    editor.gi.undo();
    editor.gi.undo();
    EXPECT_EQ(count(), 30) << "one step brings the whole volume back";
    threshold.allSlices->click();
    threshold.select();
    threshold.tool.select(); // chosen anew, it remembers no volume
    threshold.allSlices->click();
    threshold.select();
    EXPECT_EQ(count(), 30);
}

TEST(ThresholdChoice, masksWhileItIsActive)
{
    TestGi gi(2);
    for (const bool before : {false, true}) {
        gi.masking = before;
        gi.setTool(GiThreshold::kIndex);
        EXPECT_TRUE(gi.masking);
        gi.setTool(-1);
        EXPECT_EQ(gi.masking, before);
    }
}

} // namespace
