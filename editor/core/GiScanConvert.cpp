#include "core/GiScanConvert.h"

#include "mc/McBox.h"
#include "mc/McMemory.h"
#include "mc/McMemoryException.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

// An edge of the polygon while it crosses the centre line of the present row.
struct ActiveEdge
{
    double x;     // where the centre line crosses it
    double dx;    // change of x from row to row
    double lower; // y of its lower end
};

/// Sorts by x. From row to row the order hardly changes, unless many edges have come in behind the others.
void sortByX(std::vector<ActiveEdge>& edges, std::size_t added)
{
    constexpr std::size_t kFew = 16;
    const auto isBefore = [](const ActiveEdge& a, const ActiveEdge& b) { return a.x < b.x; };
    if (added > kFew) {
        std::sort(edges.begin(), edges.end(), isBefore);
        return;
    }
    for (std::size_t i = 1; i < edges.size(); ++i) {
        if (!isBefore(edges[i], edges[i - 1])) continue;
        const ActiveEdge edge = edges[i];
        std::size_t at = i;
        for (; at > 0 && isBefore(edge, edges[at - 1]); --at) edges[at] = edges[at - 1];
        edges[at] = edge;
    }
}

/// One scan over the rows of a polygon.
class PolygonScan
{
public:
    PolygonScan(int n, const McVec2f* polygon, const McBox2i& clip) : count(n), points(polygon), window(clip)
    {
        const auto [highest, lowest] = std::minmax_element(
            points, points + count, [](const McVec2f& a, const McVec2f& b) { return a.y < b.y; });
        // Limited before they become integers: vertices may lie anywhere.
        const double first = std::max<double>(window.ymin, firstRow(highest->y));
        const double last = std::min<double>(window.ymax, firstRow(lowest->y));
        if (first > last) return;
        top = static_cast<int>(first);
        bottom = static_cast<int>(last);
        listEdges();
    }

    /// Calls report(y, x0, x1) for each span inside the window.
    template <class Report>
    void run(const Report& report)
    {
        for (int y = top; y <= bottom; ++y) {
            const double line = y + 0.5;
            std::erase_if(active, [line](const ActiveEdge& e) { return e.lower <= line; });
            const std::size_t former = active.size();
            for (int i = startingIn[row(y)]; i >= 0; i = nextStarting[static_cast<std::size_t>(i)])
                insertEdge(i, line);
            sortByX(active, active.size() - former);
            for (std::size_t i = 0; i + 1 < active.size(); i += 2)
                reportSpan(active[i].x, active[i + 1].x, y, report);
            for (ActiveEdge& e : active) e.x += e.dx;
        }
    }

private:
    /// The first row whose centre line is not above y; a double, as it may be no integer.
    static double firstRow(float y) { return std::ceil(static_cast<double>(y) - 0.5); }
    std::size_t row(int y) const { return static_cast<std::size_t>(y - top); }

    // Edge i runs from vertex i to the next one round the polygon.
    const McVec2f& other(int edge) const { return points[edge + 1 < count ? edge + 1 : 0]; }
    const McVec2f& upperEnd(int edge) const
    {
        return points[edge].y < other(edge).y ? points[edge] : other(edge);
    }
    const McVec2f& lowerEnd(int edge) const
    {
        return points[edge].y < other(edge).y ? other(edge) : points[edge];
    }

    /// Lists each edge with the first row that it crosses; many cross none.
    void listEdges()
    {
        startingIn.assign(row(bottom) + 1, -1);
        nextStarting.resize(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            const double first = std::max<double>(top, firstRow(upperEnd(i).y));
            if (first > bottom || static_cast<double>(lowerEnd(i).y) <= first + 0.5) continue;
            int& head = startingIn[row(static_cast<int>(first))];
            nextStarting[static_cast<std::size_t>(i)] = head;
            head = i;
        }
    }

    void insertEdge(int edge, double line)
    {
        const McVec2f &upper = upperEnd(edge), &lower = lowerEnd(edge);
        const double dx = (static_cast<double>(lower.x) - static_cast<double>(upper.x)) /
                          (static_cast<double>(lower.y) - static_cast<double>(upper.y));
        active.push_back({dx * (line - static_cast<double>(upper.y)) + static_cast<double>(upper.x), dx,
                          static_cast<double>(lower.y)});
    }

    template <class Report>
    void reportSpan(double left, double right, int y, const Report& report) const
    {
        const double first = std::max<double>(window.xmin, std::ceil(left - 0.5));
        const double last = std::min<double>(window.xmax, std::floor(right - 0.5));
        if (first <= last) report(y, static_cast<int>(first), static_cast<int>(last));
    }

    const int count;
    const McVec2f* points;
    const McBox2i window;
    int top = 0, bottom = -1;      // rows to go through
    std::vector<int> startingIn;   // by row: an edge that begins there, or -1 ...
    std::vector<int> nextStarting; // ... by edge: another one of the same row, or -1
    std::vector<ActiveEdge> active;
};

bool allFinite(int n, const McVec2f* polygon)
{
    return std::all_of(polygon, polygon + n,
                       [](const McVec2f& p) { return std::isfinite(p.x) && std::isfinite(p.y); });
}

template <class Report>
void concave(int n, const McVec2f* polygon, const McBox2i& window, const Report& report)
{
    if (n < 1 || !allFinite(n, polygon)) return;
    try {
        PolygonScan(n, polygon, window).run(report);
    } catch (const std::bad_alloc&) {
        throw McMemoryException(static_cast<unsigned long>(n) * sizeof(ActiveEdge));
    }
}

} // namespace

GiScanConvert::GiScanConvert(int left, int top, int right, int bottom, int smooth)
    : spanCallback(pixelsOfSpan),
      spanUser(this),
      antiAlias(smooth),
      xmin(left),
      ymin(top),
      xmax(right),
      ymax(bottom)
{
    const auto bytes = static_cast<unsigned long>(std::max(0, xmax - xmin + 1));
    coverage = static_cast<unsigned char*>(mcAllocate(bytes));
    std::memset(coverage, 255, bytes);
}

GiScanConvert::~GiScanConvert()
{
    std::free(coverage);
}

void GiScanConvert::setSpanCB(SpanCallback callback, void* user)
{
    spanCallback = callback;
    spanUser = user;
}

void GiScanConvert::setPixelCB(PixelCallback callback, void* user)
{
    pixelCallback = callback;
    userData = user;
}

void GiScanConvert::setAntiAlias(int on)
{
    antiAlias = on;
}

void GiScanConvert::render(int n, const McVec2f* polygon)
{
    if (antiAlias || !spanCallback) return;
    concave(n, polygon, McBox2i(xmin, ymin, xmax, ymax),
            [this](int y, int x0, int x1) { spanCallback(spanUser, x0, x1, y, coverage); });
}

void GiScanConvert::pixelsOfSpan(void* converter, int x0, int x1, int y, unsigned char* coverage)
{
    const auto* self = static_cast<const GiScanConvert*>(converter);
    if (!self->pixelCallback) return;
    for (int x = x0; x <= x1; ++x) self->pixelCallback(self->userData, x, y, *coverage++);
}
