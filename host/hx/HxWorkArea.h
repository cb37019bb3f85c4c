#pragma once

#include "mc/McProgressInterface.h"

#include <chrono>
#include <string>

class QAbstractButton;

/// What shows the work area: a terminal line, or the main window.
class HxWorkAreaView
{
public:
    virtual ~HxWorkAreaView() = default;

    /// The outermost busy phase begins or ends; without text it is a mere wait cursor.
    virtual void showBusy(const char* text) = 0;
    virtual void showIdle() = 0;

    virtual void showText(const char* text) = 0;

    /// fraction from 0 to 1
    virtual void showProgress(double fraction) = 0;

    /// Repaints and takes in the stop button, nothing else. Returns true when the person wants to stop.
    virtual bool poll() = 0;

    /// The button below the tool panel and its neighbour, null where there are none.
    virtual QAbstractButton* mainButton() { return nullptr; }
    virtual QAbstractButton* neighbourButton() { return nullptr; }
};

/// Busy state, progress and interruption of long operations. Main thread only.
///
/// Busy brackets nest; only the outermost shows, and clears the interruption at both its ends. Once an
/// interruption test has answered true, all further tests of that phase do, so that every nested step stops.
class HxWorkArea : public McProgressInterface
{
public:
    static HxWorkArea* getTheWorkArea();

    /// A null text means a mere wait cursor.
    void busyOn(const char* text = nullptr);

    /// Does nothing when nothing is busy.
    void busyOff();

    int busyDepth() const;

    /// Closes the brackets that an operation left open beyond this depth.
    void restoreBusyDepth(int depth);

    void setText(const char* text) override;

    /// fraction from 0 to 1; values outside are limited.
    void setProgress(double fraction) override;

    /// Tells whether the running operation is to stop. Cheap: looks at the view at most every 50 ms.
    bool interrupted() override;

    void begin(const char* text) override { busyOn(text); }
    void end() override { busyOff(); }

    /// Asks the running busy phase to stop; nothing happens when none runs.
    void interrupt();

    /// The n-th interruption test from now on answers true; 0 takes the request back. For tests.
    void interruptAfter(int polls);

    /// Null without windows.
    QAbstractButton* mainButton() const;
    QAbstractButton* neighbourButton() const;

    /// Not owned; null takes it away. Only between busy phases.
    void setView(HxWorkAreaView* newView) { view = newView; }

    /// From now on Ctrl+C interrupts the running busy phase and the running script; a second one before
    /// they have ended, or the first when nothing runs, ends the process with code 130.
    static void catchSignals();

private:
    HxWorkArea() = default;

    HxWorkAreaView* view = nullptr;
    int pollsUntilInterrupt = 0;
    std::chrono::steady_clock::time_point nextPoll{};
};
