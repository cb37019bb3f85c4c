#include "tools/IScissors.h"

int IScissors::isValid(int x, int y)
{
    if (x < 1 || y < 1 || x >= width - 1 || y >= height - 1) return 0;
    const int index = y * width + x;
    if (index == seedIndex) return 0;
    return backOf(index) >= 0;
}

int IScissors::next(int& x, int& y)
{
    const int index = y * width + x;
    if (!isInside(index)) return 0;
    const int back = backOf(index);
    if (back < 0 || back == seedIndex) return 0;
    x = back % width;
    y = back / width;
    return 1;
}

int IScissors::backOf(int index)
{
    if (nodes[index].cost >= 0) reallyCompute(index);
    return nodes[index].back;
}

void IScissors::markPath(int x, int y, int& oldX, int& oldY, int& forkX, int& forkY)
{
    const int end = y * width + x, oldEnd = lastIndex;
    oldX = forkX = x;
    oldY = forkY = y;
    if (!isInside(end)) return;

    bool passesOldEnd = false;
    int fork = -1;
    backOf(end);
    for (int i = end; i >= 0 && i != seedIndex; i = nodes[i].back) {
        if (fork < 0 && marks[i] > 0) fork = i;
        if (i == oldEnd) passesOldEnd = true;
        if (marks[i] < 255) ++marks[i];
    }

    int joint = oldEnd;
    if (!passesOldEnd) joint = unmark(oldEnd, fork);
    oldX = oldEnd % width;
    oldY = oldEnd / width;
    forkX = joint % width;
    forkY = joint / width;
    lastIndex = end;
}

/// Takes the marks from the way that begins at `index`, and returns where it stops: at the fork, or at the
/// seed.
int IScissors::unmark(int index, int fork)
{
    while (index != seedIndex && index != fork) {
        marks[index] = 0;
        // A restart has forgotten the way from the old end, and the new search need not have come there.
        const int back = backOf(index);
        if (back < 0) break;
        index = back;
    }
    return index;
}

int IScissors::getPoint(int minMarks, int& x, int& y) const
{
    int index = lastIndex;
    while (index != seedIndex && nodes[index].back >= 0 && marks[index] < minMarks) index = nodes[index].back;
    if (width > 0) {
        x = index % width;
        y = index / width;
    }
    return index != seedIndex && marks[index] >= minMarks;
}
