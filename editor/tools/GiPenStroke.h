#pragma once

#include "mc/McBox.h"
#include "mc/McDArray.h"
#include "mc/McVec.h"

#include <vector>

class GiFrameBuffer;

/// A pen in screen pixels.
struct GiPen
{
    int width, height;
    bool isSquare; // else a disc
};

/// The pixels of a slice under a pen that is set down on one place after another: whatever comes next has to
/// look at each of them once, however closely the stamps of a stroke lie.
///
/// Of the columns and rows of the pen's box, and one more on each side, a stamp takes the pixels whose centre
/// on screen lies under the pen, and the one under its own centre in any case. Centres are rounded down for
/// the disc and exact for the square.
///
/// Along a row the centres rise, so what lies under the pen is a run. Its ends are looked up in two tables:
/// half the width of the disc by the distance of the row, and the first column by its place on screen.
class GiPenStroke
{
public:
    /// centres  zoomed coordinates that hold all stamps to come
    /// size     of the slice
    /// throws   McMemoryException
    GiPenStroke(const GiFrameBuffer& frameBuffer, const GiPen& pen, const McBox2i& centres, McVec2i size);

    void stamp(const McVec2i& centre);

    /// Holds all pixels under the stamps; empty if none can lie there.
    const McBox2i& reach() const { return box; }
    /// The columns of a row from the first to the last one under a stamp; false if there is none.
    bool rowRange(int row, int& first, int& last) const;
    /// Bit c - reach().xmin is set for each column c of the row under a stamp.
    const unsigned int* rowBits(int row) const { return bits.data() + wordsPerRow * (row - box.ymin); }

private:
    struct Ends
    {
        int first, last;
    };

    McBox2i stampBox(const McVec2i& centre) const;
    void prepareDisc(const McBox2i& centres);
    void stampDisc(const McVec2i& centre, const McBox2i& within);
    void stampSquare(const McVec2i& centre, const McBox2i& within);
    void mark(int row, int first, int last);
    int firstColumn(int x) const { return columnAt[x - columnOrigin]; }

    const GiFrameBuffer& buffer;
    const GiPen pen;
    const McVec2i slice;
    McBox2i box; // in data pixels
    int wordsPerRow = 0;
    McDArray<unsigned int> bits;
    std::vector<Ends> ends;            // by row; first > last: none yet
    std::vector<int> rowCentre;        // disc: zoomed, by row of the box
    std::vector<int> halfWidth;        // disc: largest horizontal distance, by the vertical one
    std::vector<int> columnAt;         // disc: first column of the box whose centre is not before ...
    int columnOrigin = 0;              // ... this zoomed coordinate plus the index
    std::vector<float> exactX, exactY; // square: centres by column and row of the box
};
