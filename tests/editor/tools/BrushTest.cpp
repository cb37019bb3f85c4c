// The brush: which pixels it takes, what the mouse does with it, and what is drawn anew.

#include "editor/tools/ToolImage.h"
#include "editor/tools/ToolOnSlice.h"

#include "tools/GiBrush.h"
#include "tools/GiCrossHairTool.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QSlider>
#include <QSpinBox>

#include <cmath>

namespace {

/// The rule of the brush, pixel by pixel and stamp by stamp.
class PlainBrush
{
public:
    PlainBrush(const GiFrameBuffer& frameBuffer, int penSize) : buffer(frameBuffer), size(penSize) {}

    void stamp(const McVec2i& at, bool set)
    {
        const int half = size / 2, far = half - (2 * half + 1 > size ? 1 : 0);
        const int c0 = std::max(column(at.x - half) - 1, 0), r0 = std::max(row(at.y - half) - 1, 0);
        const int c1 = std::min(column(at.x + far) + 1, width() - 1);
        const int r1 = std::min(row(at.y + far) + 1, height() - 1);
        for (int r = r0; r <= r1; ++r)
            for (int c = c0; c <= c1; ++c)
                if (isUnder(c, r, at)) change(c, r, set);
        change(column(at.x), row(at.y), set);
    }

    void stroke(const McVec2i& from, const McVec2i& to, bool set)
    {
        const float dx = static_cast<float>(to.x - from.x), dy = static_cast<float>(to.y - from.y);
        const int n = static_cast<int>(std::hypot(dy, dx));
        for (int i = 0; i < n; ++i)
            stamp(McVec2i(from.x + (to.x - from.x) * i / n, from.y + (to.y - from.y) * i / n), set);
    }

    std::vector<bool> pixels;
    std::function<bool(int, int)> allows = [](int, int) { return true; };

private:
    int width() const { return buffer.originalSize.x; }
    int height() const { return buffer.originalSize.y; }
    static int entry(const McDArray<int>& table, int i) { return table[std::clamp(i, 0, table.size() - 1)]; }
    int column(int x) const { return entry(buffer.originalCoordsX, x - buffer.offset.x); }
    int row(int y) const { return entry(buffer.originalCoordsY, y - buffer.offset.y); }

    bool isUnder(int c, int r, const McVec2i& at) const
    {
        const int px = buffer.zoomedCoordsX[c], py = buffer.zoomedCoordsY[r];
        const int rx = buffer.replicX[c], ry = buffer.replicY[r];
        if (GiBrush::squareBrush) {
            const float w = static_cast<float>(size) * 0.5f;
            return std::fabs(static_cast<float>(px) + static_cast<float>(rx) * 0.5f -
                             static_cast<float>(at.x)) <= w &&
                   std::fabs(static_cast<float>(py) + static_cast<float>(ry) * 0.5f -
                             static_cast<float>(at.y)) <= w;
        }
        const int dx = px + rx / 2 - at.x, dy = py + ry / 2 - at.y;
        return static_cast<float>(dx * dx + dy * dy) <= static_cast<float>(size * size) * 0.25f;
    }

    void change(int c, int r, bool set)
    {
        if (allows(c, r)) pixels[static_cast<std::size_t>(r * width() + c)] = set;
    }

    const GiFrameBuffer& buffer;
    const int size;
};

GiBrush* activeBrush(DrawnEditor& editor)
{
    GiBrush::autoHide = true;
    GiBrush::squareBrush = false;
    editor.gi.setTool(GiBrush::kIndex);
    return dynamic_cast<GiBrush*>(editor.gi.tools[GiBrush::kIndex]);
}

template <class T>
class BrushOnImage : public testing::Test
{
};
TYPED_TEST_SUITE(BrushOnImage, ToolImageTypes);

TYPED_TEST(BrushOnImage, strokesEqualThePlainRule)
{
    std::mt19937 random(7);
    DrawnEditor editor(45, 37, 29);
    editor.setVoxelSize(1, 1.3f, 2.1f);
    const ToolImage<TypeParam> image(editor, random);
    for (unsigned long i = 0; i < editor.size(); ++i)
        editor.labels()[i] = static_cast<unsigned char>(random() % 3);
    GiBrush* brush = activeBrush(editor);
    brush->getWidget(nullptr);
    auto* materialBox = brush->getWidget(nullptr)->template findChild<QCheckBox*>("wCurrentMaterialCheckBox");

    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        const RandomView view = RandomView::show<TypeParam>(editor, random);
        const bool masks = view.masks, byMaterial = random() & 1;
        GiViewer& viewer = editor.viewer(view.orientation);
        GiMemoryFrameBuffer& buffer = editor.buffer(view.orientation);
        const int size = 1 + static_cast<int>(random() % (trial % 2 ? 8 : 60));
        brush->setBrushSize(size);
        GiBrush::squareBrush = random() & 1;
        materialBox->setChecked(byMaterial);
        editor.gi.currentTissue = random() % 10 ? 1 : 300; // no voxel can have that label

        PlainBrush plain(buffer, size);
        plain.pixels = pixelsOf(viewer);
        plain.allows = [&](int c, int r) {
            const McVec3i p = editor.gi.getPoint3D(c, r, &viewer);
            const unsigned long i =
                (static_cast<unsigned long>(p.z) * editor.dims[1] + static_cast<unsigned long>(p.y)) *
                    editor.dims[0] +
                static_cast<unsigned long>(p.x);
            return (!masks || image.accepts(i, view.window)) &&
                   (!byMaterial || editor.labels()[i] == editor.gi.currentTissue);
        };
        const auto place = [&] {
            return McVec2i(static_cast<int>(random() % static_cast<unsigned>(buffer.zoomedSize.x)),
                           static_cast<int>(random() % static_cast<unsigned>(buffer.zoomedSize.y)));
        };
        bool erases = random() & 1;
        McVec2i at = place();
        auto press = with(buttonEvent(1, true, at.x, at.y), {false, erases, false});
        buffer.handleEvent(&press);
        plain.stamp(at, !erases);
        for (int i = 0; i < 4; ++i) {
            const McVec2i former = at;
            at = i == 2 ? McVec2i(at.x + at.x % 2, at.y) : place(); // also less than a pixel
            at.x = std::min(at.x, buffer.zoomedSize.x - 1);
            if (i == 3) erases = !erases;
            auto move = with(motionEvent(1, at.x, at.y), {false, erases, false});
            buffer.handleEvent(&move);
            plain.stroke(former, at, !erases);
        }
        ASSERT_EQ(pixelsOf(viewer), plain.pixels)
            << "orientation " << view.orientation << ", zoom " << viewer.getZoomFactor() << ", size " << size
            << (GiBrush::squareBrush ? ", square" : ", disc") << (masks ? ", masked" : "")
            << (byMaterial ? ", by material" : "");
        brush->clear(&buffer);
    }
}

class Brush : public ToolOnSlice
{
protected:
    Brush() : ToolOnSlice(GiBrush::kIndex), brush(activeBrush(editor)) { brush->setBrushSize(1); }

    int press(int x, int y, bool alt = false, int button = 1)
    {
        return send(with(buttonEvent(button, true, x, y), {false, ctrl, alt}));
    }
    int release(int x, int y, bool alt = false)
    {
        return send(with(buttonEvent(1, false, x, y), {false, ctrl, alt}));
    }
    int drag(int x, int y, bool alt = false) { return send(with(motionEvent(1, x, y), {false, ctrl, alt})); }
    int hover(int x, int y) { return send(motionEvent(0, x, y)); }
    long whitePixels() { return pixelsOfColor(0xFFFFFF); }

    GiBrush* brush;
    bool ctrl = false;
};

TEST_F(Brush, aStrokeRunsFromThePressUpToItsLastPoint)
{
    press(2, 2);
    EXPECT_EQ(count(), 1);
    drag(40, 2); // the first column of pixel 10
    EXPECT_EQ(count(), 10) << "the last point is the next part's first";
    EXPECT_FALSE(isSet(10, 0));
    drag(40, 2);
    EXPECT_EQ(count(), 10) << "no step, no stamp";
    editor.gi.touches.clear();
    release(40, 2);
    EXPECT_EQ(editor.gi.touches, (std::vector<TestGi::Touch>{{1, 0, 2, 3, 0, 0}}));
    EXPECT_EQ(editor.gi.undoActions.size(), 1);
    EXPECT_EQ(editor.viewer(2).getSelection()->selectionBox, McBox2i(0, 0, 9, 0));
    editor.gi.undo();
    EXPECT_EQ(count(), 0);
}

TEST_F(Brush, aStrokeEndsAlsoOnALineOfTheCrossHair)
{
    GiCrossHairTool& crossHair = *editor.gi.crossHair;
    crossHair.setPosition(McVec3i(10, 20, editor.viewer(2).getSlice()));
    crossHair.setVisible(true);
    buffer().addShape(&crossHair);
    buffer().render(nullptr);
    press(2, 2);
    drag(42, 2); // pixel (10, 0)
    editor.gi.touches.clear();
    release(42, 2);
    EXPECT_EQ(editor.gi.touches.size(), 1u);
    EXPECT_FALSE(brush->isDragging());
    hover(43, 2);
    press(43, 2);
    EXPECT_TRUE(crossHair.isDragging()) << "a fresh press is the line's again";
}

TEST_F(Brush, otherViewersShowTheNewOutlinesOfItsNeighbours)
{
    editor.viewer(0).setSlice(5, false);
    editor.viewer(1).setSlice(5, false);
    editor.gi.invertSelection(1);
    ctrl = true;
    press(22, 22); // pixel (5, 5); send() compares the pictures
    drag(22, 60);
    release(22, 60);
}

TEST_F(Brush, aPolygonIsDrawnWhenTheButtonIsReleasedWithoutAlt)
{
    press(2, 2, true);
    release(2, 2, true);
    drag(22, 10, true);
    EXPECT_EQ(count(), 0) << "Alt keeps the pen up";
    EXPECT_TRUE(editor.gi.touches.empty());
    hover(30, 30);
    press(40, 2, true);
    release(40, 2, true);
    hover(44, 20);
    press(40, 40);
    EXPECT_EQ(count(), 0);
    release(40, 40);
    EXPECT_EQ(count(), 20) << "two sides; the third is open";
    EXPECT_TRUE(isSet(0, 0) && isSet(9, 0) && isSet(10, 0) && isSet(10, 9));
    EXPECT_FALSE(isSet(10, 10)) << "a side ends before its last point";
    EXPECT_EQ(editor.gi.undoActions.size(), 3) << "one step for each press";
    EXPECT_EQ(editor.gi.touches.size(), 1u);
    EXPECT_EQ(editor.viewer(2).getSelection()->selectionBox, McBox2i(0, 0, 10, 9));
}

TEST_F(Brush, leavingForgetsThePolygonAndAStrokeGoesOnFromWhereItComesBack)
{
    const std::vector<unsigned int> before = pictureOf(buffer());
    press(2, 2, true);
    hover(60, 60);
    send(McLeaveWindowEvent());
    EXPECT_EQ(pictureOf(buffer()), before);
    press(2, 2);
    drag(-1, 2);
    drag(42, 42);
    EXPECT_EQ(count(), 2) << "the press, and a stamp where the pointer has come back";
}

TEST_F(Brush, whateverAStrokePaintsIsAStepOfItsOwn)
{
    GiViewer& viewer = editor.viewer(2);
    const auto showAll = [&] {
        editor.gi.updateSelectionBoxes();
        editor.gi.redraw();
    };
    const auto selected = [&] { return std::pair(viewer.getSlice(), pixelsOf(viewer)); };
    const auto begin = [&] { press(22, 22), drag(40, 22); };
    const struct
    {
        const char* what;
        std::function<void()> begin, meanwhile;
        bool erases; // what is there then
    } kStrokes[] = {
        {"a press beside the image", [&] { press(-9, 22), drag(-5, 22); }, [] {}, true},
        {"emptied while outside", [&] { press(22, 22), drag(-5, 22); },
         [&] { editor.gi.clearSelection(0, true); }, false},
        {"another slice in mid-stroke", begin, [&] { viewer.setSlice(4, false); }, false},
        {"undo in mid-stroke", begin, [&] { editor.gi.undo(); }, true},
        {"an edit in mid-stroke", begin, [&] { editor.gi.invertSelection(0); }, false},
    };
    for (const auto& stroke : kStrokes) {
        SCOPED_TRACE(stroke.what);
        viewer.setSlice(3, false);
        editor.gi.clearSelection(1, true);
        editor.gi.invertSelection(0); // the user's step before
        showAll();
        stroke.begin();
        stroke.meanwhile();
        showAll();
        ctrl = stroke.erases;
        const auto before = selected();
        drag(60, 60);
        drag(62, 60);
        drag(100, 62);
        EXPECT_NE(selected(), before);
        release(100, 62);
        editor.gi.undo();
        EXPECT_EQ(selected(), before);
        ctrl = false;
    }
}

TEST_F(Brush, aButtonThatWentDownOnAnotherToolPaintsNothing)
{
    const int other = 3;
    const std::function<void()> kWays[] = {
        [&] { // pressed before the brush was there
            editor.gi.setTool(other);
            send(buttonEvent(1, true, 22, 22));
            editor.gi.setTool(GiBrush::kIndex);
        },
        [&] { // there and back in mid-stroke
            press(22, 22);
            editor.gi.setTool(other);
            editor.gi.setTool(GiBrush::kIndex);
        },
        [&] { // up where nobody saw it
            press(22, 22);
            hover(22, 22);
        },
    };
    for (const auto& hold : kWays) {
        hold();
        editor.gi.selection->clear();
        editor.gi.redraw();
        const int steps = editor.gi.undoActions.size();
        drag(30, 30);
        drag(60, 30);
        EXPECT_EQ(count(), 0);
        release(60, 30);
        EXPECT_EQ(editor.gi.undoActions.size(), steps);
        press(22, 22);
        drag(40, 22);
        EXPECT_GT(count(), 1) << "its own press paints";
        release(40, 22);
    }
}

TEST_F(Brush, theRightButtonFills)
{
    brush->setBrushSize(40);
    hover(80, 60);
    editor.viewer(2).getSelection()->set(5, 5);
    EXPECT_EQ(press(22, 22, false, 3), 1); // pixel (5, 5)
    EXPECT_EQ(count(), 1) << "a selected pixel has no open region around it";
    const long undoSteps = editor.gi.undoActions.size();
    press(42, 42, false, 3);
    EXPECT_EQ(count(), 40 * 30);
    EXPECT_EQ(editor.gi.undoActions.size(), undoSteps + 1);
}

TEST_F(Brush, theOutlineFollowsThePointerOfLargePensAndHidesWhilePainting)
{
    brush->setBrushSize(3);
    hover(60, 60);
    EXPECT_EQ(whitePixels(), 0);
    for (const bool square : {false, true}) {
        GiBrush::squareBrush = square;
        brush->setBrushSize(4);
        hover(62, 60);
        EXPECT_GT(whitePixels(), 0);
    }
    brush->setBrushSize(30);
    const std::vector<unsigned int> beside = pictureOf(editor.buffer(1));
    hover(80, 60);
    hover(110, 70);
    EXPECT_TRUE(pictureOf(editor.buffer(1)) == beside) << "no other viewer shows it";
    GiBrush::autoHide = false;
    drag(111, 70);
    EXPECT_GT(whitePixels(), 0);
    GiBrush::autoHide = true;
    drag(112, 70);
    EXPECT_EQ(whitePixels(), 0);
    hover(113, 70);
    auto pan = buttonEvent(2, true, 60, 60);
    buffer().handleEvent(&pan);
    EXPECT_EQ(whitePixels(), 0) << "it goes when the slice is panned";
    hover(113, 70);
    editor.gi.setTool(-1);
    EXPECT_EQ(whitePixels(), 0) << "and with the tool";
}

// kept: see GiBrush::createWidget.
TEST_F(Brush, aTypedSizeDoesNotMoveTheSliderThatCouldNotShowIt)
{
    QWidget* panel = brush->getWidget(nullptr);
    auto* slider = panel->findChild<QSlider*>("wSizeSlider");
    slider->setValue(100);
    EXPECT_EQ(brush->getBrushSize(), 100);
    panel->findChild<QSpinBox*>("wSizeSpinBox")->setValue(300);
    EXPECT_EQ(brush->getBrushSize(), 300);
    EXPECT_EQ(slider->value(), 100);
    GiBrush::squareBrush = true;
    panel->findChild<QAbstractButton*>("wCircleButton")->click();
    panel->findChild<QAbstractButton*>("wHideBrushCheckBox")->click();
    EXPECT_FALSE(GiBrush::squareBrush || GiBrush::autoHide);
}

TEST_F(Brush, theMorphologicalModeGrowsByTheBrightestNeighbour)
{
    image[40 * 30 * 3 + 40 * 10 + 11] = 90;  // right of the seed
    image[40 * 30 * 3 + 40 * 9 + 10] = 120;  // above it, not under a heavy part of the pen
    image[40 * 30 * 3 + 40 * 12 + 12] = 200; // no neighbour
    editor.viewer(2).setDataWindow(0, 255, true);
    editor.viewer(2).getSelection()->set(10, 10);
    std::vector<unsigned char> weights(5 * 5, 255);
    weights[1 * 5 + 2] = 128;
    brush->brushMask = weights.data();
    brush->imageWidth = 40;
    brush->imageHeight = 30;
    brush->setBrushSize(5);
    GiBrush::morphologicalMode = 1;
    brush->putBrush2(&buffer(), McVec2i(42, 42), 1, 1);
    EXPECT_EQ(count(), 1);
    brush->putBrush(&buffer(), McVec2i(42, 42), 1);
    EXPECT_EQ(count(), 2);
    EXPECT_TRUE(isSet(11, 10));
    brush->imageWidth = 39;
    brush->putBrush(&buffer(), McVec2i(42, 42), 1);
    EXPECT_EQ(count(), 2) << "a mask for another slice";
    GiBrush::morphologicalMode = 0;
}

} // namespace
