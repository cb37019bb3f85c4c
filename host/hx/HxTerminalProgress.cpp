#include "hx/HxTerminalProgress.h"

#include <cstdio>

void HxTerminalProgress::showBusy(const char* text)
{
    label = text ? text : "";
    percent = -1;
    draw();
}

void HxTerminalProgress::showIdle()
{
    label.clear();
    percent = -1;
    draw();
}

void HxTerminalProgress::showText(const char* text)
{
    label = text;
    draw();
}

void HxTerminalProgress::showProgress(double fraction)
{
    const int now = static_cast<int>(fraction * 100);
    if (now == percent) return; // operations report far more often than a person can see
    percent = now;
    draw();
}

void HxTerminalProgress::draw()
{
    std::string line = label;
    if (percent >= 0) line.append(" ").append(std::to_string(percent)).append(" %");
    const std::size_t length = line.size();
    if (length == 0 && shownLength == 0) return;
    if (length < shownLength) line.append(shownLength - length, ' '); // wipes the rest of the longer line
    std::fprintf(stderr, "\r%s%s", line.c_str(), length == 0 ? "\r" : "");
    std::fflush(stderr);
    shownLength = length;
}
