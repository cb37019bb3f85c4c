// The growing curve of the blow tool: its speed, its steps beside the plain rules, and what holds of every
// curve.

#include "tools/McBlowRegion.h"
#include "tools/McBlowRegionExt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using Points = std::vector<McVec2f>;

Points pointsOf(const McBlowCurve& curve)
{
    return {curve.begin(), curve.end()};
}

McBlowCurve curveOf(const Points& points)
{
    McBlowCurve curve;
    for (const McVec2f& p : points) curve.append(p);
    return curve;
}

struct Slice
{
    Slice(int w, int h, const std::function<int(int, int)>& value)
        : width(w), height(h), pixels(static_cast<std::size_t>(w * h))
    {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                pixels[static_cast<std::size_t>(y * w + x)] = static_cast<unsigned char>(value(x, y));
    }

    const int width, height;
    std::vector<unsigned char> pixels;
};

Slice flatSlice(int width, int height)
{
    return Slice(width, height, [](int, int) { return 90; });
}

Slice discSlice(int size, double radius, int inside, int outside)
{
    return Slice(size, size, [=](int x, int y) {
        return std::hypot(x - size / 2, y - size / 2) < radius ? inside : outside;
    });
}

Slice noiseSlice(int width, int height, unsigned int range, std::mt19937& random)
{
    return Slice(width, height, [&](int, int) { return static_cast<int>(random() % range); });
}

/// Bars, discs and noise: curves fold around them and cross themselves.
Slice clutteredSlice(int size, std::mt19937& random)
{
    return Slice(size, size, [&, size](int x, int y) {
        const bool isDot = std::hypot(x % 17 - 8, y % 17 - 8) < 4;
        const bool isBar = x > size / 2 && y % 23 < 3;
        return 60 + (isDot ? 90 : 0) + (isBar ? 60 : 0) + static_cast<int>(random() % 7);
    });
}

/// The growth in its plain form: every rule by itself, every pair of edges looked at. Takes the speeds from
/// the part that is tested by itself.
class PlainGrowth
{
public:
    PlainGrowth(const McBlowRegion& region, int speedLimit)
        : planes(region), tolerance(speedLimit), steps{pointsOf(*region.curves[0])}
    {
    }

    void grow()
    {
        Points curve = steps.back();
        bool moved = false;
        for (int pass = 0; pass < 5; ++pass) {
            for (int i = 0; i < size(curve); ++i) moved |= movePoint(curve, i);
            insertPoints(curve);
            deletePoints(curve);
        }
        if (moved) {
            steps.push_back(curve);
            deleteIntersections(steps.back());
        } else if (McBlowRegion::growAndShrink || tolerance < 1) {
            hasEnded = true;
        } else {
            --tolerance;
        }
    }

    static void deleteIntersections(Points& curve)
    {
        for (int i = 0; i < size(curve); ++i)
            for (int j = i + 2; j < size(curve); ++j) {
                McVec2f c;
                if ((i == 0 && j == size(curve) - 1) || !cross(curve, i, j, &c)) continue;
                const auto first = curve.begin() + i + 1, end = curve.begin() + j + 1;
                if (2 * (j - i) >= size(curve)) {
                    Points loop(first, end);
                    loop.push_back(c);
                    curve = loop;
                } else {
                    *first = c;
                    curve.erase(first + 1, end);
                }
                i = 0; // kept: goes on at 1, so further crossings of the first edge stay after a cut
                break;
            }
    }

    const McBlowRegion& planes;
    int tolerance;
    std::vector<Points> steps;
    bool hasEnded = false;

private:
    static int size(const Points& curve) { return static_cast<int>(curve.size()); }
    static const McVec2f& at(const Points& curve, int i)
    {
        return curve[static_cast<std::size_t>(i) % curve.size()];
    }

    bool movePoint(Points& curve, int i) const
    {
        const McVec2f p = at(curve, i), f = at(curve, i + 1) - p, b = p - at(curve, i + size(curve) - 1);
        const McVec2f n = normalOf(f, b);
        float m = wayOf(p, n, curvatureOf(p, f, b));
        if (std::abs(m) > 0.6) m = (f.length() + b.length()) / 2;
        const McVec2f q = p + n * m;
        if (!(q.x >= 0 && q.x <= float(planes.width - 1) && q.y >= 0 && q.y <= float(planes.height - 1)))
            return false;
        curve[static_cast<std::size_t>(i)] = q;
        return std::abs(m) > 0.01;
    }

    static McVec2f normalOf(const McVec2f& f, const McVec2f& b)
    {
        const float lf = std::sqrt(f.x * f.x + f.y * f.y), lb = std::sqrt(b.x * b.x + b.y * b.y);
        const float x = f.y / lf + b.y / lb, y = -f.x / lf + -b.x / lb;
        const float l = std::sqrt(x * x + y * y);
        return McVec2f(x / l, y / l);
    }

    static float curvatureOf(const McVec2f& p, const McVec2f& f, const McVec2f& b)
    {
        if (f.length() < 1e-10f || b.length() < 1e-10f) return 100;
        const McVec2f next = p + f * (1.5f / f.length()), before = p - b * (1.5f / b.length());
        const McVec2f d = (next - before) / 3.0f, e = (next + before - p * 2.0f) / 2.25f;
        const float l = d.length();
        return l < 1e-10f ? 100 : (d.x * e.y - d.y * e.x) / (l * l * l);
    }

    float wayOf(const McVec2f& p, const McVec2f& n, float curvature) const
    {
        const int x = std::min(int(p.x + 0.5f), planes.width - 1);
        const int y = std::min(int(p.y + 0.5f), planes.height - 1);
        const int pixel = y * planes.width + x;
        const float dot = planes.gradientOfSpeed[pixel].dot(n);
        const float way = curvature > 4 ? 0 : (1 - curvature * 0.25f) * planes.getSpeed(p);
        if (McBlowRegion::growAndShrink) return dot > 0 ? -way : way;
        if (planes.speed[pixel] > tolerance * 0.01) return way;
        return dot < 0 ? way : 0;
    }

    static void insertPoints(Points& curve)
    {
        for (int i = 0; i < size(curve); ++i)
            if ((at(curve, i + 1) - at(curve, i)).length() > 3)
                curve.insert(curve.begin() + i + 1, (at(curve, i) + at(curve, i + 1)) * 0.5f);
    }

    static void deletePoints(Points& curve)
    {
        for (int i = 0; i < size(curve);) {
            if ((at(curve, i + 1) - at(curve, i)).length() >= 1) {
                ++i;
                continue;
            }
            curve[static_cast<std::size_t>(i)] = (at(curve, i) + at(curve, i + 1)) * 0.5f;
            curve.erase(curve.begin() + (i + 1) % size(curve));
        }
    }

    static bool cross(const Points& curve, int i, int j, McVec2f* point = nullptr)
    {
        const McVec2f a = at(curve, i), b = at(curve, i + 1), c = at(curve, j), d = at(curve, j + 1);
        // In exact numbers this follows from the rest; without it, rounding makes crossings of edges that lie
        // nearly in one line and apart.
        if (std::max(a.x, b.x) < std::min(c.x, d.x) || std::max(c.x, d.x) < std::min(a.x, b.x) ||
            std::max(a.y, b.y) < std::min(c.y, d.y) || std::max(c.y, d.y) < std::min(a.y, b.y))
            return false;
        const McVec2f u = b - a, v = d - c, w = c - a;
        const float det = u.x * v.y - u.y * v.x;
        if (det == 0) return false;
        const float s = (w.x * v.y - w.y * v.x) / det, t = (w.x * u.y - w.y * u.x) / det;
        if (point) *point = a + u * s;
        return s > 0 && s < 1 && t > 0 && t < 1;
    }
};

TEST(BlowSpeed, EqualsTheRule)
{
    std::mt19937 random(1);
    for (const auto& [w, h] : {std::pair(1, 1), {1, 9}, {9, 1}, {2, 2}, {3, 4}, {50, 31}}) {
        Slice slice = noiseSlice(w, h, 256, random);
        const McBlowRegion region(w, h, slice.pixels.data(), 0, 1); // a width of 1 blurs nothing
        const auto difference = [](const auto& plane, int n, int i, int stride, int position) {
            if (n == 1) return 0.0f;
            const int before = position > 0 ? 1 : 0, after = position < n - 1 ? 1 : 0;
            const float d = static_cast<float>(plane[i + after * stride] - plane[i - before * stride]);
            return before + after == 2 ? d * 0.5f : d;
        };
        for (int i = 0; i < w * h; ++i) {
            const float gx = difference(slice.pixels.data(), w, i, 1, i % w);
            const float gy = difference(slice.pixels.data(), h, i, w, i / w);
            ASSERT_EQ(region.absGradient[i], std::min(std::sqrt(gx * gx + gy * gy), 255.0f));
            ASSERT_EQ(region.speed[i], 1 / (region.absGradient[i] + 1));
            ASSERT_EQ(region.gradientOfSpeed[i], McVec2f(difference(region.speed, w, i, 1, i % w),
                                                         difference(region.speed, h, i, w, i / w)));
        }
    }
}

TEST(BlowSpeed, IsInterpolatedBetweenPixels)
{
    Slice slice = flatSlice(4, 3);
    McBlowRegion region(4, 3, slice.pixels.data(), 0, 1);
    for (int i = 0; i < 12; ++i) region.speed[i] = static_cast<float>(i * i);
    for (int y = 0; y <= 20; ++y)
        for (int x = 0; x <= 30; ++x) {
            const McVec2f p(static_cast<float>(x) / 10, static_cast<float>(y) / 10);
            double sum = 0;
            for (int i = 0; i < 12; ++i)
                sum += std::max(0.0f, 1 - std::abs(p.x - float(i % 4))) *
                       std::max(0.0f, 1 - std::abs(p.y - float(i / 4))) * region.speed[i];
            EXPECT_NEAR(region.getSpeed(p), sum, 1e-4) << p.x << " " << p.y;
        }
}

TEST(BlowCurve, HasNoCurvatureWithoutLength)
{
    const McBlowCurve line = curveOf({{0, 0}, {2, 0}, {4, 0}, {4, 0}, {2, 0}});
    for (const int i : {2, 3}) EXPECT_EQ(McCurveEdges(line, i).curvature(), 100) << "before and behind it";
    EXPECT_EQ(McCurveEdges(curveOf({{0, 0}, {2, 0}, {0, 0}, {-2, 0}}), 1).curvature(), 100) << "a turn back";
}

TEST(BlowCurve, WeighsBothEdgesOfAPointAlike)
{
    struct Case
    {
        const char* shows;
        McVec2f before, next; // the point itself is (7, 5)
        double angle;         // of the normal, in degrees
        double curvature;
    };
    const Case cases[] = {
        // Points at 1.5 pixels: d = (0.5, 0.5), e = (-2/3, 2/3).
        {"a right angle, edges of 1 and 3", {6, 5}, {7, 8}, -45, 2.0 / 3 / std::pow(0.5, 1.5)},
        {"the same, edges of 3 and 1", {4, 5}, {7, 6}, -45, 2.0 / 3 / std::pow(0.5, 1.5)},
        {"a right angle inward", {6, 5}, {7, 2}, -135, -2.0 / 3 / std::pow(0.5, 1.5)},
        // d = (0.8, 0.4), e = (-0.4, 0.8) * 4 / 3 / 2.
        {"an angle of 53 degrees", {6, 5}, {8.2f, 6.6f}, -90 + 26.565, 2.0 / 3 * 0.8 / std::pow(0.8, 1.5)},
        {"straight on, edges of 1 and 4", {7, 4}, {7, 9}, 0, 0},
    };
    for (const Case& c : cases) {
        const McCurveEdges edges(curveOf({c.before, {7, 5}, c.next}), 1);
        const double angle = c.angle * M_PI / 180;
        EXPECT_NEAR(edges.normal().x, std::cos(angle), 1e-4) << c.shows;
        EXPECT_NEAR(edges.normal().y, std::sin(angle), 1e-4) << c.shows;
        EXPECT_NEAR(edges.curvature(), c.curvature, 1e-4) << c.shows;
    }
}

TEST(BlowCurve, SurvivesWhatHasTooFewPoints)
{
    const Points none, one{{5, 5}}, close{{1, 1}, {1.1f, 1}, {1, 1.1f}};
    for (const Points& points : {none, one, close}) {
        McBlowCurve refined = curveOf(points), thinned = refined;
        mcInsertPoints(refined);
        mcDeletePoints(thinned);
        EXPECT_EQ(pointsOf(refined), points);
        EXPECT_TRUE(thinned.isEmpty()) << points.size();
    }
}

TEST(BlowCurve, LosesLoopsAsThePlainRuleSays)
{
    std::mt19937 random(7);
    std::normal_distribution<float> jitter;
    int cuts = 0;
    for (int trial = 0; trial < 600; ++trial) {
        const int n = 3 + static_cast<int>(random() % 150);
        const float noise = static_cast<float>(1 << random() % 6); // from ragged circles to knots
        Points points;
        for (int i = 0; i < n; ++i) {
            const double angle = i * 2 * M_PI / n;
            points.emplace_back(static_cast<float>(n * std::cos(angle)) / 3 + noise * jitter(random),
                                static_cast<float>(n * std::sin(angle)) / 3 + noise * jitter(random));
        }
        // Equal points, and edges that lie on each other.
        if (trial % 5 == 0) points[random() % points.size()] = points[random() % points.size()];
        McBlowCurve curve = curveOf(points);
        mcDeleteIntersections(curve);
        PlainGrowth::deleteIntersections(points);
        ASSERT_EQ(pointsOf(curve), points) << "trial " << trial;
        cuts += n - curve.size();
    }
    EXPECT_GT(cuts, 1000);
}

struct GrowthCase
{
    std::string name;
    Slice slice;
    int x, y, tolerance, growAndShrink, gaussWidth, steps;
};

std::vector<GrowthCase> growthCases()
{
    std::mt19937 random(2);
    std::vector<GrowthCase> cases;
    for (const int tolerance : {0, 15, 50}) {
        const std::string limit = ", limit " + std::to_string(tolerance);
        cases.push_back({"clutter" + limit, clutteredSlice(120, random), 50, 60, tolerance, 0, 2, 40});
        cases.push_back({"weak noise" + limit, noiseSlice(90, 70, 12, random), 30, 30, tolerance, 0, 1, 40});
        cases.push_back(
            {"strong noise" + limit, noiseSlice(60, 60, 256, random), 30, 30, tolerance, 0, 4, 60});
        cases.push_back({"disc" + limit, discSlice(80, 25, 200, 20), 41, 38, tolerance, 0, 4, 60});
        cases.push_back({"flat" + limit, flatSlice(60, 40), 0, 39, tolerance, 0, 4, 80});
    }
    cases.push_back({"clutter, both ways", clutteredSlice(120, random), 50, 60, 15, 1, 3, 30});
    cases.push_back({"disc, both ways", discSlice(80, 25, 200, 20), 40, 40, 15, 1, 4, 40});
    return cases;
}

TEST(BlowGrowth, EqualsThePlainRules)
{
    for (GrowthCase& c : growthCases()) {
        SCOPED_TRACE(c.name);
        McBlowRegion region(c.slice.width, c.slice.height, c.slice.pixels.data(), c.growAndShrink,
                            c.gaussWidth);
        region.init(c.x, c.y);
        region.tolerance = c.tolerance;
        PlainGrowth plain(region, c.tolerance);
        for (int t = 1; t <= c.steps && !plain.hasEnded; ++t) {
            plain.grow();
            region.growSteps(1);
            ASSERT_EQ(region.curves.size(), static_cast<int>(plain.steps.size())) << "try " << t;
            ASSERT_EQ(pointsOf(*region.curves.last()), plain.steps.back()) << "try " << t;
            ASSERT_EQ(region.tolerance, plain.tolerance);
        }
        EXPECT_EQ(plain.hasEnded, region.maxSteps == region.curves.size() - 1);
        for (int t = 0; t < region.curves.size(); ++t)
            EXPECT_EQ(region.getTimeStep(t), region.curves[t]) << "going back finds what was there";
        EXPECT_EQ(region.getTimeStep(-5), region.curves[0]);
    }
}

double areaOf(const McBlowCurve& curve)
{
    double area = 0;
    for (int i = 0; i < curve.size(); ++i) {
        const McVec2f &a = curve[i], &b = curve[(i + 1) % curve.size()];
        area += (double{a.x} * b.y - double{a.y} * b.x) / 2;
    }
    return area;
}

/// Grows until the curve rests for the first time, before the limit is lowered.
template <class Region>
void growToRest(Region& region)
{
    const int limit = region.tolerance;
    for (int t = 0; t < 500 && region.tolerance == limit; ++t) region.growSteps(1);
    ASSERT_LT(region.tolerance, limit);
}

TEST(BlowGrowth, FillsADiscAndStopsAtItsEdge)
{
    constexpr double kRadius = 30;
    Slice slice = discSlice(100, kRadius, 200, 20);
    for (const McVec2i start : {McVec2i(50, 50), McVec2i(35, 60)}) {
        McBlowRegion region(100, 100, slice.pixels.data(), 0, 4);
        region.init(start.x, start.y);
        growToRest(region);
        double area = 0;
        for (const McBlowCurve* curve : region.curves) {
            EXPECT_GE(areaOf(*curve), area - 1) << "it only grows, but for the joining of points";
            area = areaOf(*curve);
        }
        EXPECT_NEAR(area, M_PI * kRadius * kRadius, 150);
        for (const McVec2f& p : *region.curves.last())
            EXPECT_NEAR((p - McVec2f(50, 50)).length(), kRadius, 2) << p.x << " " << p.y;
        region.growSteps(2000);
        EXPECT_GT(areaOf(*region.curves.last()), 0.9 * 99 * 99) << "lowered, the limit lets it through";
    }
}

TEST(BlowGrowth, EndsAtTheBorderWhenItsToleranceHasRunOut)
{
    Slice slice = flatSlice(64, 48);
    McBlowRegion region(64, 48, slice.pixels.data(), 0, 4);
    region.init(1000, -1000);
    EXPECT_EQ(region.getTimeStep(0)->size(), 10);
    EXPECT_EQ((*region.getTimeStep(0))[0], McVec2f(63, 2)) << "a circle of radius 2 around (61, 2)";
    region.growSteps(5000);
    EXPECT_EQ(region.tolerance, 0);
    EXPECT_EQ(region.maxSteps, region.curves.size() - 1);
    EXPECT_EQ(region.getTimeStep(1 << 30), region.curves.last());
    EXPECT_GT(areaOf(*region.curves.last()), 61 * 45) << "within a pixel of the border, on the whole";
}

TEST(BlowGrowth, MakesNoMoreThanItsMostSteps)
{
    Slice slice = flatSlice(400, 400);
    McBlowRegion region(400, 400, slice.pixels.data(), 0, 1);
    EXPECT_EQ(region.getTimeStep(3), nullptr) << "before its start";
    region.init(200, 200);
    region.maxSteps = 7;
    const McBlowCurve* last = region.getTimeStep(100);
    EXPECT_EQ(last, region.curves.last());
    EXPECT_EQ(region.curves.size(), 8);
}

TEST(BlowGrowth, SurvivesSmallSlicesAndOddStarts)
{
    std::mt19937 random(3);
    for (const auto& [w, h] : {std::pair(1, 1), {1, 40}, {40, 1}, {3, 3}, {5, 5}, {2, 30}}) {
        Slice slice = noiseSlice(w, h, 200, random);
        for (const int mode : {0, 1}) {
            McBlowRegion region(w, h, slice.pixels.data(), mode, 4);
            region.init(0, h / 2);
            region.growSteps(100);
            McBlowRegionExt directed(w, h, slice.pixels.data(), 0, 4);
            directed.init(0, h / 2);
            directed.growSteps(20);
        }
    }
    Slice slice = flatSlice(20, 20);
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN(), kFar = 1e30f;
    for (const Points& start : {Points{}, Points{{3, 3}}, Points{{3, 3}, {9, 9}},
                                Points{{5, 5}, {5, 5}, {5, 5}}, Points{{kNaN, 2}, {-kFar, kFar}, {40, 3}}}) {
        McBlowRegion region(20, 20, slice.pixels.data(), 0, 1);
        const McBlowCurve curve = curveOf(start);
        region.init(&curve);
        for (int t = 0; t < 50; ++t)
            for (const McVec2f& p : *region.getTimeStep(t))
                EXPECT_TRUE(p.x >= 0 && p.x <= 19 && p.y >= 0 && p.y <= 19);
    }
}

TEST(BlowGrowthExt, KnowsDirections)
{
    struct Case
    {
        McVec2f normal;
        int plane;
        float weight;
    };
    const float s = std::sqrt(0.5f), c = std::cos(static_cast<float>(M_PI / 8)),
                d = std::sin(static_cast<float>(M_PI / 8));
    for (const Case& k :
         {Case{{1, 0}, 0, 1}, Case{{c, -d}, 0, 0.5f}, Case{{s, -s}, 1, 1}, Case{{0, -1}, 2, 1},
          Case{{-1, 0}, 4, 1}, Case{{0, 1}, 6, 1}, Case{{c, d}, 7, 0.5f}}) {
        int plane;
        float weight;
        McBlowRegionExt::normal2direction(k.normal, plane, weight);
        // A direction on a plane can as well be the end of the octant before.
        EXPECT_NEAR(static_cast<float>(plane) + 1 - weight, static_cast<float>(k.plane) + 1 - k.weight, 1e-5);
    }
}

TEST(BlowGrowthExt, IsHeldOnlyByEdgesThatRiseAhead)
{
    // Bright to the right of column 20.
    Slice slice(40, 40, [](int x, int) { return x < 20 ? 20 : 220; });
    const McBlowRegionExt region(40, 40, slice.pixels.data(), 0, 1);
    const McVec2f edge(20, 20);
    const auto speedTowards = [&](float x, float y) {
        int plane;
        float weight;
        McBlowRegionExt::normal2direction(McVec2f(x, y), plane, weight);
        return region.getSpeed(edge, plane, weight);
    };
    EXPECT_LT(speedTowards(1, 0), 0.02f);
    EXPECT_EQ(speedTowards(-1, 0), 1);
    EXPECT_NEAR(speedTowards(0, 1), 1, 1e-5);
    EXPECT_NEAR(speedTowards(0, -1), 1, 1e-5);
    EXPECT_LT(speedTowards(0.7f, 0.7f), 0.03f);
}

TEST(BlowGrowthExt, StopsInsideADarkDisc)
{
    Slice slice = discSlice(100, 30, 20, 200);
    McBlowRegionExt region(100, 100, slice.pixels.data(), 0, 4);
    region.init(45, 55);
    growToRest(region);
    EXPECT_GT(region.curves.size(), 5);
    for (const McVec2f& p : *region.curves.last()) EXPECT_NEAR((p - McVec2f(50, 50)).length(), 30, 3);

    McBlowRegionExt both(100, 100, slice.pixels.data(), 1, 2);
    both.init(50, 50);
    testing::internal::CaptureStderr();
    both.growSteps(1);
    std::string expected;
    for (int i = 0; i < 50; ++i) expected += "in growAndShrink\n"; // ten points, five passes
    EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
    EXPECT_EQ(both.maxSteps, 0);
    McBlowRegionExt::growAndShrink = 0;
}

} // namespace
