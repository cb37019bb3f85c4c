#include "tools/mcBlowCurve.h"

#include "mc/McMemoryException.h"

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

namespace {

constexpr int kBlock = 16; // edges that are first looked at together

struct Box
{
    float xmin, ymin, xmax, ymax;

    static Box of(const McVec2f& a, const McVec2f& b)
    {
        return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
    }
    bool meets(const Box& b) const
    {
        return xmin <= b.xmax && b.xmin <= xmax && ymin <= b.ymax && b.ymin <= ymax;
    }
    void extendBy(const Box& b)
    {
        *this = {std::min(xmin, b.xmin), std::min(ymin, b.ymin), std::max(xmax, b.xmax),
                 std::max(ymax, b.ymax)};
    }
};

struct Edge
{
    McVec2f from, to;
    Box box;

    Edge(const McVec2f& a, const McVec2f& b) : from(a), to(b), box(Box::of(a, b)) {}

    /// Where it crosses another edge, with the ends of neither. In exact numbers edges that cross have boxes
    /// that meet; asked first, this keeps rounding from making crossings of edges that lie nearly in one line
    /// and apart.
    std::optional<McVec2f> crossing(const Edge& other) const
    {
        if (!box.meets(other.box)) return {};
        const McVec2f u = to - from, v = other.to - other.from, between = other.from - from;
        const float area = u.x * v.y - u.y * v.x;
        if (area == 0) return {}; // parallel
        const float s = (between.x * v.y - between.y * v.x) / area;
        const float t = (between.x * u.y - between.y * u.x) / area;
        if (!(s > 0 && s < 1 && t > 0 && t < 1)) return {};
        return from + u * s;
    }
};

/// A row of edges with boxes around blocks of them. Edges that follow each other lie close together, so a
/// look at the boxes tells most of them apart. Boxes may be too large: taking edges out leaves them as they
/// are.
class EdgeRow
{
public:
    int size() const { return static_cast<int>(edges.size()); }
    int numBlocks() const { return static_cast<int>(blocks.size()); }
    const Edge& operator[](int i) const { return edges[static_cast<std::size_t>(i)]; }
    const Box& blockBox(int block) const { return blocks[static_cast<std::size_t>(block)]; }

    void append(const Edge& edge)
    {
        const int block = size() / kBlock;
        edges.push_back(edge);
        if (block == numBlocks())
            blocks.push_back(edge.box);
        else
            blocks[static_cast<std::size_t>(block)].extendBy(edge.box);
    }
    void replace(int i, const Edge& edge)
    {
        edges[static_cast<std::size_t>(i)] = edge;
        blocks[static_cast<std::size_t>(i / kBlock)].extendBy(edge.box);
    }
    void truncate(int n)
    {
        if (n < size()) edges.erase(edges.begin() + n, edges.end());
    }

private:
    std::vector<Edge> edges;
    std::vector<Box> blocks;
};

/// Walks along the curve and cuts loops off. The edges lie in two rows: those that are `done` cross none that
/// follow, and the `rest`, from `front` on, is still to be looked at. A cut puts its two new edges at the
/// places of the last two that it replaces, so nothing moves.
class LoopCutter
{
public:
    explicit LoopCutter(const McBlowCurve& curve) { start(curve); }

    McBlowCurve run()
    {
        while (front < rest.size()) {
            const auto loop = findAtFront();
            if (loop)
                cut(*loop);
            else
                advance();
        }
        McBlowCurve curve;
        for (int i = 0; i < done.size(); ++i) curve.append(done[i].from);
        return curve;
    }

private:
    struct Loop
    {
        int first; // edge by its number along the curve: one that is done, or the front edge
        int last;  // edge of the rest
        McVec2f crossing;
    };

    void start(const McBlowCurve& curve)
    {
        done = rest = EdgeRow();
        front = 0;
        listedBlock = -1;
        for (int i = 0; i < curve.size(); ++i)
            rest.append(Edge(curve[i], curve[i + 1 < curve.size() ? i + 1 : 0]));
    }

    void advance() { done.append(rest[front++]); }

    /// The first edge behind the front one, but for its neighbors, that crosses it.
    std::optional<Loop> findAtFront()
    {
        listBlocks(front / kBlock);
        const Edge& edge = rest[front];
        const int end =
            done.size() == 0 ? rest.size() - 1 : rest.size(); // the last one is the first's neighbor
        for (const int block : blocks) {
            if (!rest.blockBox(block).meets(edge.box)) continue;
            const int blockEnd = std::min((block + 1) * kBlock, end);
            for (int j = std::max(front + 2, block * kBlock); j < blockEnd; ++j)
                if (const auto point = edge.crossing(rest[j])) return Loop{done.size(), j, *point};
        }
        return {};
    }

    /// Blocks of the rest that can cross the edges of this one, itself included.
    void listBlocks(int block)
    {
        if (block == listedBlock) return;
        listedBlock = block;
        blocks.clear();
        for (int other = block; other < rest.numBlocks(); ++other)
            if (rest.blockBox(block).meets(rest.blockBox(other))) blocks.push_back(other);
    }

    /// The first edge that is done, but for the first of all, that crosses one of the two new ones.
    std::optional<Loop> findInDone() const
    {
        for (int k = 1; k < done.size(); ++k) {
            const bool isNeighbor = k == done.size() - 1;
            for (int j = isNeighbor ? front + 1 : front; j <= front + 1; ++j)
                if (const auto point = done[k].crossing(rest[j])) return Loop{k, j, *point};
        }
        return {};
    }

    void cut(const Loop& found)
    {
        std::optional<Loop> loop = found;
        while (loop) {
            const int points = done.size() + rest.size() - front;
            const int between = done.size() + loop->last - front - loop->first;
            if (2 * between >= points) return keepLoop(*loop);
            replaceLoop(*loop);
            // Goes on with the second edge.
            if (done.size() == 0) return advance();
            loop = findInDone();
        }
    }

    const Edge& edgeAt(int i) const { return i < done.size() ? done[i] : rest[front + i - done.size()]; }

    /// The loop has the most points, so it becomes the curve.
    void keepLoop(const Loop& loop)
    {
        McBlowCurve curve;
        const int last = done.size() + loop.last - front;
        for (int i = loop.first + 1; i <= last; ++i) curve.append(edgeAt(i).from);
        curve.append(loop.crossing);
        start(curve);
        advance(); // goes on with the second edge
    }

    /// The first edge of the loop now ends at the crossing, and its last one begins there.
    void replaceLoop(const Loop& loop)
    {
        const McVec2f from = edgeAt(loop.first).from;
        done.truncate(loop.first);
        rest.replace(loop.last, Edge(loop.crossing, rest[loop.last].to));
        front = loop.last - 1;
        rest.replace(front, Edge(from, loop.crossing));
        listedBlock = -1;
    }

    EdgeRow done, rest;
    int front = 0;
    std::vector<int> blocks; // of the rest, that the edges of `listedBlock` can cross
    int listedBlock = -1;
};

} // namespace

void mcDeleteIntersections(McBlowCurve& curve)
{
    try {
        curve = LoopCutter(curve).run();
    } catch (const std::bad_alloc&) {
        throw McMemoryException(static_cast<unsigned long>(curve.size()) * sizeof(Edge));
    }
}
