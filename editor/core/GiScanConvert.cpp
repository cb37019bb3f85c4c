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

// Edge i runs from vertex i to the next one round the polygon. While it crosses the centre line
// of the present row it is in the active table.
struct ActiveEdge
{
    int edge;
    double x;  // where the centre line crosses it
    double dx; // change of x from row to row
};

/// One scan over the rows of a polygon.
class PolygonScan
{
public:
    PolygonScan(int n, const McVec2f* polygon, const McBox2i& clip) : count(n), points(polygon), window(clip)
    {
        byHeight.resize(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) byHeight[static_cast<std::size_t>(i)] = i;
        std::stable_sort(byHeight.begin(), byHeight.end(),
                         [this](int a, int b) { return points[a].y < points[b].y; });
    }

    /// Calls report(y, x0, x1) for each span inside the window.
    template <class Report>
    void run(const Report& report)
    {
        // Limited before they become integers: vertices may lie anywhere.
        const double top = std::max<double>(window.ymin, std::ceil(points[byHeight.front()].y - 0.5));
        const double bottom = std::min<double>(window.ymax, std::floor(points[byHeight.back()].y - 0.5));
        if (top > bottom) return;
        for (int y = static_cast<int>(top); y <= static_cast<int>(bottom); ++y) {
            passVertices(y);
            std::sort(active.begin(), active.end(),
                      [](const ActiveEdge& a, const ActiveEdge& b) { return a.x < b.x; });
            for (std::size_t i = 0; i + 1 < active.size(); i += 2)
                reportSpan(active[i].x, active[i + 1].x, y, report);
            for (ActiveEdge& e : active) e.x += e.dx;
        }
    }

private:
    /// Takes in the vertices down to the centre line of row y: the edges at a vertex leave the
    /// table if they came from above, and enter it if they go on below the line.
    void passVertices(int y)
    {
        const double line = y + 0.5;
        for (; nextVertex < byHeight.size() && points[byHeight[nextVertex]].y <= line; ++nextVertex) {
            const int vertex = byHeight[nextVertex];
            const int previous = vertex > 0 ? vertex - 1 : count - 1;
            const int next = vertex + 1 < count ? vertex + 1 : 0;
            updateEdge(previous, points[previous].y, line);
            updateEdge(vertex, points[next].y, line);
        }
    }

    void updateEdge(int edge, double otherEnd, double line)
    {
        if (otherEnd <= line - 1)
            std::erase_if(active, [edge](const ActiveEdge& e) { return e.edge == edge; });
        else if (otherEnd > line)
            insertEdge(edge, line);
    }

    void insertEdge(int edge, double line)
    {
        const McVec2f& a = points[edge];
        const McVec2f& b = points[edge + 1 < count ? edge + 1 : 0];
        const McVec2f& upper = a.y < b.y ? a : b;
        const McVec2f& lower = a.y < b.y ? b : a;
        const double dx = (static_cast<double>(lower.x) - upper.x) / (static_cast<double>(lower.y) - upper.y);
        active.push_back({edge, dx * (line - upper.y) + upper.x, dx});
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
    std::vector<int> byHeight; // vertices from the top down
    std::size_t nextVertex = 0;
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
