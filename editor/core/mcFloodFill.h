#pragma once

#include "core/GiBitRows.h"
#include "core/mcFloodFillWindow.h"
#include "mc/McBitfield.h"
#include "mc/McDArray.h"
#include "mc/McData2D.h"
#include "mc/McData3D.h"
#include "mc/McVec.h"

// Flood fills over anything that can be read by position.
//
// Data gives its size (mcFillSize below) and an element by data(x, y) or data(x, y, z). Checker
// tells by accepts(element, x, y) or accepts(element, x, y, z) whether the fill may enter it; the
// position lets a checker look into a second volume too.

/// Accepts an element that equals one value.
template <class T>
class McEqualityChecker
{
public:
    explicit McEqualityChecker(T wanted) : value(wanted) {}

    template <class Element>
    bool accepts(Element element, int, int) const
    {
        return static_cast<T>(element) == value;
    }
    template <class Element>
    bool accepts(Element element, int, int, int) const
    {
        return static_cast<T>(element) == value;
    }

    T value;
};

/// Stands for "no progress wanted". The fill never calls its progress argument.
class McFloodFill3DDefaultProgress
{
};

/// Width and height of 2D data.
template <class Data>
McVec2i mcFillSize2D(const Data& data)
{
    if constexpr (requires { data.width(); })
        return McVec2i(static_cast<int>(data.width()), static_cast<int>(data.height()));
    else
        return McVec2i(static_cast<int>(data.width), static_cast<int>(data.height));
}

/// The three sides of 3D data.
template <class Data>
McVec3i mcFillSize3D(const Data& data)
{
    if constexpr (requires { data.dims()[0]; })
        return McVec3i(static_cast<int>(data.dims()[0]), static_cast<int>(data.dims()[1]),
                       static_cast<int>(data.dims()[2]));
    else
        return McVec3i(static_cast<int>(data.dims[0]), static_cast<int>(data.dims[1]),
                       static_cast<int>(data.dims[2]));
}

/// Gives `visited` one bit per element. A field of the right size keeps its bits, so that several
/// fills can be gathered in one.
inline void mcSizeVisited(McBitfield& visited, unsigned long numBits)
{
    if (visited.numBits() == numBits) return;
    visited.resize(0); // fresh memory comes cleared
    visited.resize(numBits);
}

/// Marks the 4-connected region of accepted pixels around (x, y).
///
/// visited  bit y * width + x; sized and cleared if its size differs, otherwise kept: pixels that
///          are marked already stop the fill, except for the seed itself
/// box      null, or four ints for the region's xmin, ymin, xmax, ymax
/// returns  the number of pixels marked; 0 if the seed lies outside or is refused, and then the box
///          holds the seed's coordinates only
/// throws   McMemoryException
template <class Data, class Checker>
int mcFloodFill2D(Data& data, Checker& checker, int x, int y, McBitfield& visited, int* box)
{
    const McVec2i size = mcFillSize2D(data);
    const auto width = static_cast<unsigned long>(size.x);
    mcSizeVisited(visited, width * static_cast<unsigned long>(size.y));

    int localBox[4];
    if (!box) box = localBox;
    box[0] = box[2] = x;
    box[1] = box[3] = y;

    const auto isInside = [&](int px, int py) { return px >= 0 && py >= 0 && px < size.x && py < size.y; };
    const auto bitOf = [&](int px, int py) {
        return static_cast<unsigned long>(py) * width + static_cast<unsigned long>(px);
    };
    if (!isInside(x, y) || !checker.accepts(data(x, y), x, y)) return 0;

    // kept: the seed counts even if an earlier fill has marked it. Callers that gather fills test
    // the seed themselves.
    McDArray<McVec2i> pending;
    pending.push(McVec2i(x, y));
    visited.set(bitOf(x, y));
    int count = 1;

    const auto enter = [&](int px, int py) {
        if (!isInside(px, py) || visited.isSet(bitOf(px, py)) || !checker.accepts(data(px, py), px, py))
            return;
        visited.set(bitOf(px, py));
        pending.push(McVec2i(px, py));
        ++count;
    };
    while (pending.size() > 0) {
        const McVec2i p = pending.pop();
        if (p.x < box[0]) box[0] = p.x;
        if (p.x > box[2]) box[2] = p.x;
        if (p.y < box[1]) box[1] = p.y;
        if (p.y > box[3]) box[3] = p.y;
        enter(p.x - 1, p.y);
        enter(p.x + 1, p.y);
        enter(p.x, p.y - 1);
        enter(p.x, p.y + 1);
    }
    return count;
}

constexpr int kMaxFillSide = 32767; // of the 3D form: coordinates are kept in 16 bits

/// The state of one 3D span fill; use mcFloodFill3D.
template <class Data, class Checker>
class McSpanFill3D
{
public:
    /// bounds  xmin, ymin, zmin, xmax, ymax, zmax, set to the seed
    McSpanFill3D(const Data& source, Checker& test, McBitfield& marks, int* bounds)
        : data(source), checker(test), visited(marks), box(bounds), size(mcFillSize3D(source))
    {
    }

    bool accepts(int x, int y, int z) const { return checker.accepts(data(x, y, z), x, y, z); }
    bool isInside(int x, int y, int z) const
    {
        return x >= 0 && x < size.x && y >= 0 && y < size.y && z >= 0 && z < size.z;
    }

    unsigned long fillFrom(int x, int y, int z)
    {
        push(z - 1, y, x, x);
        push(z + 1, y, x, x);
        push(z, y - 1, x, x);
        push(z, y + 1, x, x);
        push(z, y, x, x);
        while (pending.size() > 0) fillEntry(pending.pop());
        return count;
    }

private:
    struct Entry
    {
        short z, y, left, right;
    };

    bool push(int z, int y, int left, int right)
    {
        if (z < 0 || z >= size.z || y < 0 || y >= size.y) return false;
        pending.push(Entry{static_cast<short>(z), static_cast<short>(y), static_cast<short>(left),
                           static_cast<short>(right)});
        return true;
    }

    void fillEntry(const Entry& e)
    {
        rowBase = (static_cast<unsigned long>(e.z) * static_cast<unsigned long>(size.y) +
                   static_cast<unsigned long>(e.y)) *
                  static_cast<unsigned long>(size.x);
        int x = e.left;
        if (isVisited(x)) {
            x = skipVisited(x, e.right);
        } else if (!accepts(x, e.y, e.z)) {
            ++x;
        } else {
            int left = x;
            while (left > 0 && accepts(left - 1, e.y, e.z)) --left;
            x = fillRun(left, x, e);
        }
        while (x <= e.right) {
            while (x <= e.right && !accepts(x, e.y, e.z)) ++x;
            if (x > e.right) return;
            x = isVisited(x) ? skipVisited(x, e.right) : fillRun(x, x, e);
        }
    }

    bool isVisited(int x) const { return visited.isSet(rowBase + static_cast<unsigned long>(x)); }
    int skipVisited(int x, int right) const
    {
        while (x <= right && isVisited(x)) ++x;
        return x;
    }

    // Marks the run that begins at `left` and holds x, and returns where to go on: the first
    // element behind the run is known to be refused.
    int fillRun(int left, int x, const Entry& e)
    {
        int end = x + 1;
        while (end < size.x && accepts(end, e.y, e.z)) ++end;
        giSetBits(visited.words(), rowBase + static_cast<unsigned long>(left),
                  rowBase + static_cast<unsigned long>(end));
        pushNeighbour(e.z - 1, e.y, left, end - 1, e);
        pushNeighbour(e.z + 1, e.y, left, end - 1, e);
        pushNeighbour(e.z, e.y - 1, left, end - 1, e);
        pushNeighbour(e.z, e.y + 1, left, end - 1, e);
        count += static_cast<unsigned long>(end - left);
        return end + 1;
    }

    // kept: the box grows when a neighbour is pushed, by the row that pushes it, and z only if y
    // was inside the box. With two neighbours or more both have their turn; with one, the row can
    // differ in one of them only; a volume of a single row has none, and there the box stays at
    // the seed.
    void pushNeighbour(int z, int y, int left, int right, const Entry& e)
    {
        if (!push(z, y, left, right)) return;
        if (e.y < box[1])
            box[1] = e.y;
        else if (e.y > box[4])
            box[4] = e.y;
        else if (e.z < box[2])
            box[2] = e.z;
        else if (e.z > box[5])
            box[5] = e.z;
        if (left < box[0]) box[0] = left;
        if (right > box[3]) box[3] = right;
    }

    const Data& data;
    Checker& checker;
    McBitfield& visited;
    int* box;
    const McVec3i size;
    McDArray<Entry> pending;
    unsigned long rowBase = 0;
    unsigned long count = 0;
};

/// Marks the 6-connected region of accepted voxels around (x, y, z), run by run.
///
/// visited  one bit per voxel, x fastest; sized and cleared if its size differs, otherwise kept
/// box      null, or six ints for the region's xmin, xmax, ymin, ymax, zmin, zmax
/// returns  the number of voxels filled; 0 if the seed lies outside or is refused, and then the box
///          holds the seed's coordinates only
/// throws   McMemoryException
///
/// The stack holds 16-bit coordinates: a volume with a side of 32768 or more is not filled (0);
/// mcFloodFillWindow has no such limit. Runs of accepted voxels are taken whole, without regard to `visited`:
/// fills gathered in one field should have disjoint acceptances or the same one.
template <class Data, class Checker, class Progress>
unsigned long mcFloodFill3D_Progress(const Data& data, Checker& checker, Progress&, int x, int y, int z,
                                     McBitfield& visited, int* box)
{
    const McVec3i size = mcFillSize3D(data);
    mcSizeVisited(visited, static_cast<unsigned long>(size.x) * static_cast<unsigned long>(size.y) *
                               static_cast<unsigned long>(size.z));

    int bounds[6] = {x, y, z, x, y, z};
    McSpanFill3D<Data, Checker> fill(data, checker, visited, bounds);
    unsigned long count = 0;
    const bool fitsStack = size.x <= kMaxFillSide && size.y <= kMaxFillSide && size.z <= kMaxFillSide;
    if (fitsStack && fill.isInside(x, y, z) && fill.accepts(x, y, z)) count = fill.fillFrom(x, y, z);
    if (box) {
        const int ordered[6] = {bounds[0], bounds[3], bounds[1], bounds[4], bounds[2], bounds[5]};
        for (int i = 0; i < 6; ++i) box[i] = ordered[i];
    }
    return count;
}

/// mcFloodFill3D_Progress without a progress.
template <class Data, class Checker>
unsigned long mcFloodFill3D(const Data& data, Checker& checker, int x, int y, int z, McBitfield& visited,
                            int* box)
{
    McFloodFill3DDefaultProgress progress;
    return mcFloodFill3D_Progress(data, checker, progress, x, y, z, visited, box);
}

/// The same for equal elements of an array, by the fast form. Sides are not limited here.
template <class T>
unsigned long mcFloodFill3D(const McData3D<T>& data, McEqualityChecker<T>& checker, int x, int y, int z,
                            McBitfield& visited, int* box)
{
    const McVec3i size = mcFillSize3D(data);
    const unsigned long dims[3] = {static_cast<unsigned long>(size.x), static_cast<unsigned long>(size.y),
                                   static_cast<unsigned long>(size.z)};
    const McFillWindow<T> window{data.data(), checker.value, checker.value, nullptr, -1};
    return mcFloodFillWindow(window, dims, x, y, z, visited, box);
}
