// The pair slider: which values its rules allow, and what mouse, keys and typing make of them.

#include "mc/McHistogram.h"
#include "qx/QxColormapFullRangeSlider.h"
#include "qx/QxFullSlider.h"
#include "qx/QxRangeField.h"
#include "qx/QxRangeTrack.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QSlider>
#include <QTest>

#include <cmath>
#include <functional>
#include <utility>
#include <vector>

namespace {

using Pair = std::pair<float, float>;
using Handle = QxRangeTrack::Handle;

class RangeSlider : public testing::Test
{
protected:
    void SetUp() override
    {
        slider.resize(320, 80);
        slider.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&slider));
        track = slider.findChild<QxRangeTrack*>("track");
        minField = slider.findChild<QxRangeField*>("minField");
        maxField = slider.findChild<QxRangeField*>("maxField");
        QObject::connect(&slider, &QxFullRangeSliderBase::valueChanged, &slider,
                         [this](float min, float max) { told.emplace_back(min, max); });
    }
    Pair values() const { return {slider.minValue(), slider.maxValue()}; }

    QPoint at(int x) const { return {x, track->height() / 2}; }
    /// Middle of the pixel of a value of the scale.
    int pixel(float value) const
    {
        const int left = 6, right = track->width() - 6;
        return qRound(left + (value - slider.displayMin()) / (slider.displayMax() - slider.displayMin()) *
                                 float(right - left));
    }
    void drag(int from, int to)
    {
        QTest::mousePress(track, Qt::LeftButton, {}, at(from));
        QTest::mouseMove(track, at((from + to) / 2));
        QTest::mouseMove(track, at(to));
        QTest::mouseRelease(track, Qt::LeftButton, {}, at(to));
    }
    void type(QxRangeField* field, const char* text)
    {
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Return);
    }

    QxColormapFullRangeSlider slider;
    QxRangeTrack* track = nullptr;
    QxRangeField* minField = nullptr;
    QxRangeField* maxField = nullptr;
    std::vector<Pair> told;
};

} // namespace

TEST_F(RangeSlider, KeepsItsValuesByTheRules)
{
    const struct
    {
        const char* name;
        bool discrete, limits;
        Pair wish, kept;
    } rows[] = {
        {"as they are", true, true, {10, 90}, {10, 90}},
        {"rounded", true, true, {10.4f, 89.5f}, {10, 90}},
        {"rounded below zero", true, false, {-2.5f, -1.5f}, {-2, -1}},
        {"reals", false, true, {0.25f, 0.5f}, {0.25f, 0.5f}},
        {"maximum follows", true, true, {60, 20}, {60, 60}},
        {"within the limits", true, true, {-50, 500}, {0, 100}},
        {"both beyond the limits", false, true, {200, 300}, {100, 100}},
        {"the scale is no limit", true, false, {-5000, 9000}, {-5000, 9000}},
        {"not a number", false, false, {std::nanf(""), 3}, {1, 3}},
    };
    for (const auto& row : rows) {
        QxFullRangeSliderBase one;
        one.setDiscrete(row.discrete);
        if (row.limits)
            one.setRange(0, 100);
        else
            one.setDisplayRange(0, 100, 1);
        one.setValue(1, 2);
        one.setValue(row.wish.first, row.wish.second);
        EXPECT_EQ(Pair(one.minValue(), one.maxValue()), row.kept) << row.name;
    }
}

TEST_F(RangeSlider, NewLimitsAndRoundingReachValuesThatAreThere)
{
    slider.setDiscrete(false);
    slider.setValue(20.5f, 200);
    told.clear();
    slider.setRange(50, 100);
    EXPECT_EQ(values(), Pair(50, 100));
    slider.setRange(0.4f, 30.6f);
    slider.setDisplayRange(-1000, 1000, 1); // keeps the limits
    slider.setValue(-5, 70);
    EXPECT_EQ(values(), Pair(0.4f, 30.6f));
    slider.setDiscrete(true);
    EXPECT_EQ(values(), Pair(1, 30)) << "whole numbers within the limits";
    slider.setValue(-5, 70);
    EXPECT_EQ(values(), Pair(1, 30));
    slider.setRange(30.2f, 30.7f);
    EXPECT_EQ(values(), Pair(30.2f, 30.2f)) << "where no whole number is, the limits count more";
    slider.setRange(0, 31);
    slider.setValue(0, 31);
    EXPECT_EQ(values(), Pair(0, 31));
    EXPECT_EQ(told.back(), values());

    told.clear();
    slider.setValue(0, 31); // nothing new
    slider.blockSignals(true);
    slider.setValue(3, 4);
    slider.blockSignals(false);
    slider.setValue(3, 4); // still nothing: who blocked the signal knows it
    EXPECT_TRUE(told.empty());
}

TEST_F(RangeSlider, HandlesAndBandAreDragged)
{
    slider.setRange(0, 100);
    slider.setValue(20, 60);
    told.clear();

    drag(pixel(20), pixel(40));
    EXPECT_EQ(values(), Pair(40, 60));
    drag(pixel(60), pixel(90));
    EXPECT_EQ(values(), Pair(40, 90));
    drag(pixel(65), pixel(50)); // the band keeps its width
    EXPECT_EQ(values(), Pair(25, 75));
    drag(pixel(50), pixel(100) + 500); // and stops with it at the end
    EXPECT_EQ(values(), Pair(50, 100));
    drag(pixel(50), pixel(100) + 500); // the lower handle does not pass the end
    EXPECT_EQ(values(), Pair(100, 100));
    EXPECT_GT(told.size(), 5u); // on the way, too

    slider.setValue(30, 40);
    drag(pixel(40), pixel(10)); // the upper one stops at the lower
    EXPECT_EQ(values(), Pair(30, 30));
    slider.setValue(30, 40);
    drag(pixel(30), pixel(70)); // the lower one takes the upper along
    EXPECT_EQ(values(), Pair(70, 70));
    slider.setValue(30, 40);
    QTest::mouseClick(track, Qt::LeftButton, {}, at(pixel(80))); // the nearest comes to the pointer
    QTest::mouseClick(track, Qt::LeftButton, {}, at(pixel(10)));
    EXPECT_EQ(values(), Pair(10, 80));
    QTest::mouseClick(track, Qt::LeftButton, {}, at(pixel(45))); // taken and put down
    QTest::mouseClick(track, Qt::RightButton, {}, at(pixel(95)));
    EXPECT_EQ(values(), Pair(10, 80));
}

TEST_F(RangeSlider, ATakenHandleDoesNotJumpAndAFarValueComesIntoTheScale)
{
    slider.setDiscrete(false);
    slider.setDisplayRange(0, 1, 1);
    slider.setValue(0.5f, 3); // the upper one shows at the end
    const int end = track->pixelOf(Handle::High);
    EXPECT_EQ(end, pixel(1));
    QTest::mousePress(track, Qt::LeftButton, {}, at(end + 4));
    EXPECT_EQ(values(), Pair(0.5f, 3)); // four pixels beside it are no move
    QTest::mouseMove(track, at(pixel(0.75f) + 4));
    QTest::mouseRelease(track, Qt::LeftButton, {}, at(pixel(0.75f) + 4));
    EXPECT_FLOAT_EQ(slider.minValue(), 0.5f);
    EXPECT_NEAR(slider.maxValue(), 0.75f, 0.01f);
}

TEST_F(RangeSlider, WithoutTrackingTheEndOfADragIsToldOnce)
{
    slider.setRange(0, 100);
    slider.setTracking(false);
    slider.setValue(20, 60);
    told.clear();

    drag(pixel(20), pixel(40));
    EXPECT_EQ(told, (std::vector<Pair>{{40, 60}}));
    drag(pixel(40), pixel(40)); // no move, no news
    QTest::mousePress(track, Qt::LeftButton, {}, at(pixel(40)));
    QTest::mouseMove(track, at(pixel(10)));
    EXPECT_EQ(values(), Pair(10, 60)); // shown, not told
    QTest::keyClick(track, Qt::Key_Escape);
    QTest::mouseMove(track, at(pixel(5)));
    QTest::mouseRelease(track, Qt::LeftButton, {}, at(pixel(5)));
    EXPECT_EQ(values(), Pair(40, 60));
    EXPECT_EQ(told.size(), 1u);

    QTest::mousePress(track, Qt::LeftButton, {}, at(pixel(40)));
    QTest::mouseMove(track, at(pixel(50)));
    slider.setEnabled(false); // its release will not come
    EXPECT_EQ(told.back(), Pair(50, 60));
    EXPECT_FALSE(track->isDragging());
}

TEST_F(RangeSlider, WhoPutsItsWorkOffIsToldOfTheEnd)
{
    slider.setRange(0, 100);
    slider.setValue(20, 60);
    int worked = 0;
    // Works at every second change, as one does for whom every step of a drag would be too slow.
    QObject::connect(&slider, &QxFullRangeSliderBase::valueChanged, &slider, [&] {
        worked += !slider.isTracking();
        slider.setTracking(!slider.isTracking());
    });
    for (int step = 1; step <= 4; ++step) {
        slider.setValue(20, 60 + float(step));
        EXPECT_EQ(worked, step) << "a single step is its own end";
    }
    type(minField, "30");
    EXPECT_EQ(worked, 5);
    track->setFocus();
    QTest::keyClick(track, Qt::Key_Left);
    EXPECT_EQ(worked, 6);

    slider.setValue(20, 60);
    worked = 0;
    told.clear();
    QTest::mousePress(track, Qt::LeftButton, {}, at(pixel(20)));
    QTest::mouseMove(track, at(pixel(40)));
    QTest::mouseMove(track, at(pixel(50)));
    EXPECT_EQ(worked, 0) << "the drag goes on";
    QTest::mouseRelease(track, Qt::LeftButton, {}, at(pixel(50)));
    EXPECT_EQ(worked, 1);
    EXPECT_EQ(told, (std::vector<Pair>{{40, 60}, {50, 60}}));
    drag(pixel(50), pixel(10)); // with the last step told already
    EXPECT_EQ(worked, 2);

    QTest::mousePress(track, Qt::LeftButton, {}, at(pixel(10)));
    QTest::mouseMove(track, at(pixel(30)));
    QTest::mouseRelease(track, Qt::LeftButton, {}, at(pixel(30)));
    EXPECT_EQ(worked, 3) << "one step, and it was told before";
    drag(pixel(30), pixel(30));
    EXPECT_EQ(worked, 3);
}

TEST_F(RangeSlider, KeysMoveTheHandleThatHasTheFocus)
{
    slider.setRange(0, 100);
    slider.setValue(20, 60);
    track->setFocus(Qt::TabFocusReason);
    const struct
    {
        int key;
        Pair after;
    } rows[] = {
        {Qt::Key_Right, {21, 60}}, {Qt::Key_PageDown, {11, 60}}, {Qt::Key_Home, {0, 60}},
        {Qt::Key_Left, {0, 60}},   {Qt::Key_Tab, {0, 60}},       {Qt::Key_Down, {0, 59}},
        {Qt::Key_PageUp, {0, 69}}, {Qt::Key_End, {0, 100}},      {Qt::Key_Up, {0, 100}},
    };
    for (const auto& row : rows) {
        QTest::keyClick(track, Qt::Key(row.key));
        EXPECT_EQ(values(), row.after) << row.key;
    }
    QTest::keyClick(track, Qt::Key_Tab); // the last handle: on to the fields
    EXPECT_FALSE(track->hasFocus());
    QTest::mouseClick(track, Qt::LeftButton, {}, at(pixel(50)));
    slider.setValue(40, 60);
    QTest::keyClick(track, Qt::Key_Right); // keys move what was held last
    EXPECT_EQ(values(), Pair(41, 61));

    // A step of 1 is of no use on a scale of 0.01.
    slider.setDiscrete(false);
    slider.setDisplayRange(0, 0.01f, 1);
    slider.setRange(0, 0.01f);
    slider.setValue(0.005f, 0.01f);
    QTest::mouseClick(track, Qt::LeftButton, {}, at(pixel(0.005f)));
    QTest::keyClick(track, Qt::Key_Right);
    EXPECT_NEAR(slider.minValue(), 0.0051f, 1e-6f);
}

TEST_F(RangeSlider, FieldsBesideTakeNoHeightOfTheirOwn)
{
    slider.resize(360, slider.sizeHint().height());
    const int below = slider.sizeHint().height();
    const QRect wide = track->geometry();
    for (const bool beside : {true, false, true}) {
        slider.setFieldsBeside(beside);
        slider.resize(360, slider.sizeHint().height());
        QCoreApplication::processEvents();
        EXPECT_EQ(track->width() == wide.width(), !beside);
        EXPECT_EQ(slider.sizeHint().height(), beside ? track->sizeHint().height() : below);
        for (const QWidget* field : {minField, maxField}) {
            EXPECT_FALSE(field->geometry().intersects(track->geometry()));
            EXPECT_TRUE(slider.rect().contains(field->geometry()));
        }
        EXPECT_LT(minField->x(), maxField->x());
    }
    type(minField, "30");
    EXPECT_EQ(slider.minValue(), 30);
    EXPECT_GT(track->width(), wide.width() / 2);
}

TEST_F(RangeSlider, FieldsTakeWhatIsTypedAndKeepDigitsThatTheyDoNotShow)
{
    slider.setRange(0, 100);
    slider.setValue(20, 60);
    type(minField, "30");
    type(maxField, "1e1"); // below the minimum: stops there
    EXPECT_EQ(values(), Pair(30, 30));
    EXPECT_EQ(maxField->text(), "30");
    type(minField, "250"); // beyond the limit
    EXPECT_EQ(values(), Pair(100, 100));
    EXPECT_EQ(minField->text(), "100");
    type(minField, "-"); // no number
    EXPECT_EQ(values(), Pair(100, 100));
    QTest::keyClicks(minField, "x");
    EXPECT_FALSE(minField->text().contains('x'));

    slider.setDiscrete(false);
    slider.setDisplayRange(-1, 1, 1);
    slider.setRange(-1e30f, 1e30f);
    const Pair precise(1.0f / 3, 1e20f);
    slider.setValue(precise.first, precise.second);
    told.clear();
    for (QxRangeField* field : {minField, maxField, minField}) {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_Return);
    }
    EXPECT_EQ(values(), precise);
    EXPECT_TRUE(told.empty());
}

TEST_F(RangeSlider, MouseTakesTheKeysForTheTimeOfADragOnly)
{
    slider.setRange(0, 100);
    slider.setValue(20, 60);
    const struct
    {
        const char* what;
        QWidget* before;
        std::function<void()> end;
    } rows[] = {
        {"released", maxField, [this] { QTest::mouseRelease(track, Qt::LeftButton, {}, at(pixel(30))); }},
        {"taken back", maxField, [this] { QTest::keyClick(track, Qt::Key_Escape); }},
        {"disabled", maxField, [this] { track->setEnabled(false); }},
        {"reached by keys", track, [this] { QTest::mouseRelease(track, Qt::LeftButton, {}, at(pixel(30))); }},
    };
    for (const auto& row : rows) {
        row.before->setFocus(Qt::TabFocusReason);
        QTest::mousePress(track, Qt::LeftButton, {}, at(pixel(20)));
        QTest::mouseMove(track, at(pixel(30)));
        EXPECT_EQ(slider.window()->focusWidget(), track) << row.what;
        row.end();
        EXPECT_EQ(slider.window()->focusWidget(), row.before) << row.what;
        track->setEnabled(true);
        QTest::mouseRelease(track, Qt::LeftButton, {}, at(pixel(30)));
    }
}

TEST_F(RangeSlider, WheelPassesByUnlessTheFieldHasTheFocus)
{
    slider.setRange(0, 100);
    slider.setValue(20, 60);
    const auto turn = [](QWidget* field) {
        QWheelEvent event(field->rect().center(), field->mapToGlobal(field->rect().center()), {}, {0, 120},
                          {}, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(field, &event);
    };
    track->setFocus();
    turn(minField);
    EXPECT_EQ(values(), Pair(20, 60));
    minField->setFocus();
    turn(minField);
    EXPECT_EQ(values(), Pair(21, 60));
}

TEST_F(RangeSlider, HistogramShowsSmallCountsBesideAPeakAndMarkerItsValue)
{
    // A thousand times as many zeros as ones: on a linear scale the ones would have no height.
    std::vector<unsigned char> voxels(100000, 0);
    for (int i = 0; i < 100; ++i) voxels[i] = 255;
    slider.setRange(0, 255);
    slider.setValue(0, 255);
    const auto color = [&](int x, int y) { return track->grab().toImage().pixelColor(x, y); };
    const int x = pixel(253), low = QFontMetrics(track->font()).height() * 8 / 5 - 2;
    const QColor empty = color(x, low);
    slider.setHistogram(McHistogram(McTypedPointer(voxels.data(), 0), voxels.size(), 120));
    EXPECT_NE(color(x, low), empty);
    EXPECT_EQ(color(x, 3), empty); // it is low, though
    slider.setHistogram(McHistogram());
    EXPECT_EQ(color(x, low), empty);

    const int middle = pixel(128);
    const QColor bare = color(middle, 5);
    slider.setMarker(128);
    EXPECT_NE(color(middle, 5), bare);
    slider.setMarker(1000); // off the scale
    EXPECT_EQ(color(middle, 5), bare);
    slider.setMarker(128);
    slider.clearMarker();
    EXPECT_EQ(color(middle, 5), bare);
}

TEST_F(RangeSlider, RampRunsBetweenTheHandlesInTheColorsOfTheMap)
{
    slider.setRange(0, 100);
    slider.setValue(40, 60);
    const int y = QFontMetrics(track->font()).height() * 8 / 5 + 4;
    const auto color = [&](float value) { return track->grab().toImage().pixelColor(pixel(value), y); };
    EXPECT_EQ(color(20), QColor(Qt::black));
    EXPECT_EQ(color(80), QColor(Qt::white));
    EXPECT_NEAR(color(50).red(), 127, 3);

    McHandle<HxColormap> map = new HxColormap;
    map->setTable({{1, 0, 0, 1}, {0, 0, 1, 1}});
    slider.setColormap(map);
    EXPECT_EQ(color(20), QColor(Qt::red));
    EXPECT_EQ(color(80), QColor(Qt::blue));
    EXPECT_NEAR(color(45).red(), 191, 6);

    QCoreApplication::processEvents();
    struct Paints : QObject
    {
        int count = 0;
        bool eventFilter(QObject*, QEvent* event) override
        {
            count += event->type() == QEvent::Paint;
            return false;
        }
    } paints;
    track->installEventFilter(&paints);
    map->setUnderflow({0, 1, 0, 1});
    QTest::qWait(0);
    EXPECT_GT(paints.count, 0); // nobody but the map has asked for it
    EXPECT_EQ(color(20), QColor(Qt::green));

    HxColormap* kept = map;
    map = nullptr; // the slider holds it
    EXPECT_EQ(slider.getColormap(), kept);
    slider.setColormap(nullptr);
    EXPECT_EQ(color(20), QColor(Qt::black));
}

TEST(FullSlider, StaysInItsRangeWhateverMovesIt)
{
    QxFullSlider slider("Time:");
    QSignalSpy changes(&slider, &QxFullSlider::valueChanged);
    slider.setMaxValue(50);
    slider.setValue(20);
    slider.setValue(20);
    EXPECT_EQ(changes.count(), 1);
    slider.setValue(70);
    EXPECT_EQ(slider.value(), 50);
    slider.setMaxValue(30);
    EXPECT_EQ(slider.value(), 30);

    auto* field = slider.findChild<QxRangeField*>("field");
    field->selectAll();
    QTest::keyClicks(field, "12.345678");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_FLOAT_EQ(slider.value(), 12.345678f);
    changes.clear();
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(changes.count(), 0);

    auto* bar = slider.findChild<QSlider*>("slider");
    bar->setValue(bar->maximum() / 2);
    EXPECT_FLOAT_EQ(slider.value(), 15);
    EXPECT_EQ(field->text(), "15");
}
