#include "hx/HxLineSet.h"

#include <algorithm>

namespace {

int runLine(HxLineSet& set, const HxScriptCall& call)
{
    long line;
    if (!call.getIndex(2, set.numLines(), "line", line)) return TCL_ERROR;
    std::vector<float> coordinates;
    for (int place = 0; place < set.lineLength(static_cast<int>(line)); place++) {
        const McVec3f p = set.point(set.linePoint(static_cast<int>(line), place));
        coordinates.insert(coordinates.end(), {p.x, p.y, p.z});
    }
    return call.result(static_cast<int>(coordinates.size()), coordinates.data());
}

const HxCommand<HxLineSet> kCommands[] = {
    {"numLines", "numLines", "Gives the number of lines.", 0, 0,
     [](HxLineSet& set, const HxScriptCall& call) { return call.result(static_cast<long>(set.numLines())); }},
    {"line", "line I", "Gives the points of line I, counted from 0: x y z x y z and so on.", 1, 1, runLine},
};

} // namespace

McTypeId HxLineSetInterface::getClassTypeId()
{
    return McTypeId::declare<HxLineSetInterface, McInterface>("HxLineSetInterface");
}

float HxLineSetInterface::getAveragePointSpacing(int line) const
{
    const int n = lineLength(line);
    if (n < 2) return 0;
    double length = 0;
    for (int place = 1; place < n; place++)
        length += (point(linePoint(line, place)) - point(linePoint(line, place - 1))).length();
    return static_cast<float>(length / (n - 1));
}

HxLineSet::HxLineSet() = default;

void HxLineSet::initClass()
{
    getClassTypeId();
}

HxBase* HxLineSet::createInstance()
{
    return new HxLineSet;
}

McTypeId HxLineSet::getClassTypeId()
{
    return hxClassType<HxLineSet, HxData>("HxLineSet");
}

int HxLineSet::addPoint(const McVec3f& position)
{
    pointList.push_back(position);
    return numPoints() - 1;
}

int HxLineSet::addLine(int n, const int* points)
{
    if (n < 0 || std::any_of(points, points + n, [this](int p) { return p < 0 || p >= numPoints(); }))
        return -1;
    lineList.emplace_back(points, points + n);
    return numLines() - 1;
}

void HxLineSet::removeLine(int line)
{
    if (line >= 0 && line < numLines()) lineList.erase(lineList.begin() + line);
}

McInterface* HxLineSet::getInterface(McTypeId type)
{
    if (type == McTypeId::of<HxLineSetInterface>()) return this;
    return HxData::getInterface(type);
}

int HxLineSet::parse(Tcl_Interp* interp, int wordCount, char** words)
{
    int code;
    if (hxRunCommand(kCommands, *this, HxScriptCall(interp, wordCount, words), code)) return code;
    return HxData::parse(interp, wordCount, words);
}

void HxLineSet::commandHelp(McDArray<HxCommandHelp>& list) const
{
    HxData::commandHelp(list);
    hxAppendHelp(kCommands, list);
}
