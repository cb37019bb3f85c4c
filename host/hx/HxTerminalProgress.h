#pragma once

#include "hx/HxWorkArea.h"

/// Shows the work area as one line on standard error, rewritten in place and wiped at the end.
///
/// Meant for a terminal; the caller decides whether standard error is one.
class HxTerminalProgress : public HxWorkAreaView
{
public:
    void showBusy(const char* text) override;
    void showIdle() override;
    void showText(const char* text) override;
    void showProgress(double fraction) override;
    bool poll() override { return false; }

private:
    void draw();

    std::string label;
    int percent = -1; // unknown
    std::size_t shownLength = 0;
};
