#pragma once

#include <QTimer>

#include <functional>

/// Runs what scripts have put off with `after` or `fileevent` while the Qt event loop runs, and notices that
/// somebody has asked the program to end: a script, the console, another process.
class HxTclEvents
{
public:
    /// end  called once, with the exit code
    explicit HxTclEvents(std::function<void(int code)> end);

    void stop() { timer.stop(); }

private:
    void run();

    std::function<void(int code)> onEnd;
    QTimer timer;
};
