#include "tools/IScissors.h"

#include <algorithm>

namespace {

// By step, in the order of the search.
constexpr int kStepX[] = {1, 1, 0, -1, -1, -1, 0, 1}, kStepY[] = {0, 1, 1, 1, 0, -1, -1, -1};

} // namespace

int IScissors::isValid(int x, int y)
{
    if (x < 1 || y < 1 || x >= width - 1 || y >= height - 1) return 0;
    const int index = y * width + x;
    if (index == seedIndex) return 0;
    if (soFar[index] >= 0) reallyCompute(index);
    return back[index] != kNoWay;
}

int IScissors::next(int& x, int& y)
{
    const int index = y * width + x;
    if (!isInside(index)) return 0;
    if (soFar[index] >= 0) reallyCompute(index);
    const int before = predecessor(index);
    if (before < 0 || before == seedIndex) return 0;
    // A step leads to one of the next rows, or stays in its own: no need to divide.
    const int step = index - before, down = (step > 1) - (step < -1);
    x -= step - down * width;
    y -= down;
    return 1;
}

/// The pixel before this one on its path; -1: none is known. Of the seed it is the seed, or after a restart a
/// pixel of the path before.
int IScissors::predecessor(int index) const
{
    return back[index] == kNoWay ? -1 : index - stepTo[back[index]];
}

void IScissors::getPath(int x, int y, McDArray<McVec2i>& path)
{
    int count = 0;
    if (isValid(x, y)) {
        constexpr int kFirstPath = 256;
        for (int i = y * width + x; i != seedIndex; ++count) {
            if (count == path.size()) path.resize(std::max(2 * count, kFirstPath));
            path[count] = McVec2i(x, y);
            const int step = back[i];
            i -= stepTo[step];
            x -= kStepX[step];
            y -= kStepY[step];
        }
    }
    path.resize(count);
}

void IScissors::markPath(int x, int y, int& oldX, int& oldY, int& forkX, int& forkY)
{
    oldX = forkX = x;
    oldY = forkY = y;
    const int end = y * width + x, oldEnd = lastIndex;
    if (!isInside(end)) return;

    if (soFar[end] >= 0) reallyCompute(end);
    bool passesOldEnd = false;
    int fork = -1;
    for (int i = end; i >= 0 && i != seedIndex; i = predecessor(i)) {
        if (fork < 0 && marks[i] > 0) fork = i;
        if (i == oldEnd) passesOldEnd = true;
        if (marks[i] < 255) ++marks[i];
    }
    const int joint = passesOldEnd ? oldEnd : clearMarks(oldEnd, fork);

    oldX = oldEnd % width;
    oldY = oldEnd / width;
    forkX = joint % width;
    forkY = joint / width;
    lastIndex = end;
}

/// Along the path of `index` to the fork or the seed; returns where it stops.
int IScissors::clearMarks(int index, int fork)
{
    while (index != seedIndex && index != fork) {
        marks[index] = 0;
        // A restart has forgotten the way from the old end, and the search need not have come back to it.
        if (back[index] == kNoWay) reallyCompute(index);
        const int before = predecessor(index);
        if (before < 0) break;
        index = before;
    }
    return index;
}

int IScissors::getPoint(int minMarks, int& x, int& y) const
{
    if (!marks || width * height == 0) return 0;
    int index = lastIndex;
    while (index != seedIndex && marks[index] < minMarks && back[index] != kNoWay) index = predecessor(index);
    x = index % width;
    y = index / width;
    return index != seedIndex && marks[index] >= minMarks;
}
