#include "hx/HxWorkArea.h"
#include "hx/HxTerminalProgress.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

/// Writes down what it is asked to show.
class RecordingView : public HxWorkAreaView
{
public:
    void showBusy(const char* text) override { log += std::string("+") + (text ? text : "(wait)"); }
    void showIdle() override { log += "-"; }
    void showText(const char* text) override { log += std::string("|") + text; }
    void showProgress(double fraction) override { log += "%" + std::to_string(int(fraction * 100 + 0.5)); }
    bool poll() override
    {
        ++polls;
        return stopPressed;
    }

    std::string log;
    int polls = 0;
    bool stopPressed = false;
};

class HxWorkAreaTest : public testing::Test
{
protected:
    HxWorkAreaTest() { area.setView(&view); }
    ~HxWorkAreaTest() override
    {
        area.restoreBusyDepth(0);
        area.interruptAfter(0);
        area.setView(nullptr);
    }

    static void pause() { std::this_thread::sleep_for(std::chrono::milliseconds(60)); }

    RecordingView view;
    HxWorkArea& area = *HxWorkArea::getTheWorkArea();
};

TEST_F(HxWorkAreaTest, OnlyTheOutermostBracketShows)
{
    area.setText("nobody listens");
    area.setProgress(0.5);
    area.busyOn("outer");
    area.busyOn();
    area.begin("inner");
    area.setProgress(0.25);
    area.setProgress(7);
    area.end();
    area.busyOff();
    EXPECT_EQ(area.busyDepth(), 1);
    EXPECT_EQ(view.log, "+outer|inner%25%100");
    area.busyOff();
    area.busyOff(); // one too many does no harm
    EXPECT_EQ(area.busyDepth(), 0);
    EXPECT_EQ(view.log, "+outer|inner%25%100-");
}

TEST_F(HxWorkAreaTest, TheNthTestInterruptsAndHoldsUntilTheOutermostEnd)
{
    area.interruptAfter(3);
    area.busyOn("work");
    EXPECT_FALSE(area.interrupted());
    EXPECT_FALSE(area.interrupted());
    area.busyOn("step");
    EXPECT_TRUE(area.interrupted());
    area.busyOff();
    EXPECT_TRUE(area.interrupted()) << "an inner bracket does not clear it";
    area.busyOff();
    area.busyOn("next");
    EXPECT_FALSE(area.interrupted());
}

TEST_F(HxWorkAreaTest, TheViewIsAskedSeldomAndItsStopHolds)
{
    area.busyOn("work");
    for (int i = 0; i < 100000; ++i) area.interrupted();
    EXPECT_LE(view.polls, 5) << "not at every test";
    view.stopPressed = true;
    pause();
    EXPECT_TRUE(area.interrupted());
    view.stopPressed = false;
    EXPECT_TRUE(area.interrupted());
    area.busyOff();
    area.interrupt();
    area.busyOn("next");
    EXPECT_FALSE(area.interrupted()) << "a request while nothing runs is no request";
}

using HxWorkAreaSignals = HxWorkAreaTest;

TEST_F(HxWorkAreaSignals, WhenIdleTheFirstCtrlCEndsTheProcess)
{
    EXPECT_EXIT(
        {
            HxWorkArea::catchSignals();
            raise(SIGINT);
            _exit(0);
        },
        testing::ExitedWithCode(130), "");
}

TEST_F(HxWorkAreaSignals, WhenBusyTheFirstInterruptsAndTheSecondEnds)
{
    EXPECT_EXIT(
        {
            HxWorkArea::catchSignals();
            area.busyOn("work");
            raise(SIGINT);
            if (!area.interrupted()) _exit(1);
            area.busyOff();
            area.busyOn("more work");
            if (area.interrupted()) _exit(2);
            raise(SIGINT);
            fprintf(stderr, "interrupted %d", area.interrupted() ? 1 : 0);
            raise(SIGINT);
            _exit(0);
        },
        testing::ExitedWithCode(130), "interrupted 1");
}

TEST(HxTerminalProgressTest, RewritesOneLineAndWipesIt)
{
    HxTerminalProgress line;
    testing::internal::CaptureStderr();
    line.showBusy("Loading");
    line.showProgress(0.104);
    line.showProgress(0.109); // the same percent draws nothing
    line.showText("Sum");
    line.showIdle();
    line.showIdle();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "\rLoading\rLoading 10 %\rSum 10 %    \r        \r");
}

} // namespace
