#include "tools/mcBlowCurve.h"

#include <cmath>
#include <utility>

namespace {

constexpr float kLongestEdge = 3, kShortestEdge = 1;
constexpr float kNeighborDistance = 1.5f;
constexpr float kNoLength = 1e-10f;
constexpr float kNoCurvature = 100;

McVec2f middle(const McVec2f& a, const McVec2f& b)
{
    return (a + b) * 0.5f;
}

} // namespace

McCurveEdges::McCurveEdges(const McBlowCurve& curve, int i)
    : point(curve[i]),
      forward(curve[i + 1 < curve.size() ? i + 1 : 0] - point),
      backward(point - curve[i > 0 ? i - 1 : curve.size() - 1]),
      forwardLength(forward.length()),
      backwardLength(backward.length())
{
}

McVec2f McCurveEdges::normal() const
{
    const McVec2f sum =
        McVec2f(forward.y, -forward.x) / forwardLength + McVec2f(backward.y, -backward.x) / backwardLength;
    return sum / sum.length();
}

float McCurveEdges::curvature() const
{
    if (forwardLength < kNoLength || backwardLength < kNoLength) return kNoCurvature;
    const McVec2f next = point + forward * (kNeighborDistance / forwardLength);
    const McVec2f before = point - backward * (kNeighborDistance / backwardLength);
    const McVec2f first = (next - before) / (2 * kNeighborDistance);
    const McVec2f second = (next + before - point * 2.0f) / (kNeighborDistance * kNeighborDistance);
    const float speed = first.length();
    if (speed < kNoLength) return kNoCurvature;
    return (first.x * second.y - first.y * second.x) / (speed * speed * speed);
}

void mcInsertPoints(McBlowCurve& curve)
{
    McBlowCurve refined;
    const int n = curve.size();
    for (int i = 0; i < n; ++i) {
        McVec2f from = curve[i];
        const McVec2f to = curve[i + 1 < n ? i + 1 : 0];
        refined.append(from);
        while ((to - from).length() > kLongestEdge) {
            from = middle(from, to);
            refined.append(from);
        }
    }
    curve = std::move(refined);
}

void mcDeletePoints(McBlowCurve& curve)
{
    if (curve.isEmpty()) return;
    int last = 0; // of the points that stay
    for (int next = 1; next < curve.size(); ++next) {
        if ((curve[next] - curve[last]).length() < kShortestEdge)
            curve[last] = middle(curve[last], curve[next]);
        else
            curve[++last] = curve[next];
    }
    curve.resize(last + 1);
    if ((curve[0] - curve[last]).length() < kShortestEdge) {
        curve[last] = middle(curve[last], curve[0]);
        curve.remove(0);
    }
}
