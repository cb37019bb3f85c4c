#pragma once

#include "hx/HxData.h"
#include "hx/HxLineSetInterface.h"

#include <vector>

/// Polylines: lines of point indices over one list of points, so that lines can share points.
class HxLineSet : public HxData, public HxLineSetInterface
{
    Q_OBJECT

public:
    HxLineSet();

    static void initClass();
    static HxBase* createInstance();
    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }

    /// Returns the index of the new point.
    int addPoint(const McVec3f& position);
    /// Returns the index of the new line, or -1 if an index is no point.
    int addLine(int n, const int* points);
    /// The points stay; later lines move down by one. Nothing happens for an index outside.
    void removeLine(int line);

    int numPoints() const { return static_cast<int>(pointList.size()); }
    int numLines() const override { return static_cast<int>(lineList.size()); }
    int lineLength(int line) const override { return static_cast<int>(lineList[line].size()); }
    int linePoint(int line, int place) const override { return lineList[line][place]; }
    McVec3f point(int i) const override { return pointList[i]; }

    HxLineSet* owner() const override { return const_cast<HxLineSet*>(this); }
    McInterface* getInterface(McTypeId type) override;
    int parse(Tcl_Interp* interp, int wordCount, char** words) override;
    void commandHelp(McDArray<HxCommandHelp>& list) const override;

protected:
    std::vector<McVec3f> pointList;
    std::vector<std::vector<int>> lineList;
};
