#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <set>
#include <tuple>
#include <vector>

/// An image of one slice, for tracing.
struct TraceImage
{
    int width, height;
    std::vector<unsigned char> values;

    int count() const { return width * height; }
    bool isBorder(int i) const
    {
        const int x = i % width, y = i / width;
        return x == 0 || y == 0 || x == width - 1 || y == height - 1;
    }
    int at(int i) const { return values[static_cast<std::size_t>(i)]; }
};

/// The rules of tracing in their plain form: all of an image at once, by Dijkstra's algorithm over a sorted
/// set. Of equal costs the latest comes first, and an equal cost does not replace a predecessor.
class PlainScissors
{
public:
    PlainScissors(const TraceImage& source, int costType, int seed)
        : image(source),
          type(costType),
          back(static_cast<std::size_t>(source.count()), -1),
          best(back.size(), kUnreached),
          turn(back.size()),
          isDone(back.size())
    {
        for (int i = 0; i < image.count(); ++i) isDone[at(i)] = image.isBorder(i);
        isDone[at(seed)] = false;
        enqueue(seed, seed, 0);
        while (!queue.empty()) {
            const int index = std::get<2>(*queue.begin());
            queue.erase(queue.begin());
            last = index;
            isDone[at(index)] = true;
            relaxAround(index);
        }
    }

    /// By pixel; -1 where no path leads, the seed itself for the seed.
    const std::vector<int>& predecessors() const { return back; }

    int lastReached() const { return last; }

private:
    static constexpr int kUnreached = 1 << 30;
    static std::size_t at(int i) { return static_cast<std::size_t>(i); }

    void enqueue(int index, int from, int cost)
    {
        queue.erase({best[at(index)], turn[at(index)], index});
        best[at(index)] = cost;
        back[at(index)] = from;
        turn[at(index)] = --latest;
        queue.emplace(cost, latest, index);
    }

    void relaxAround(int from)
    {
        static constexpr int kSteps[8][2] = {{1, 0},  {1, 1},   {0, 1},  {-1, 1},
                                             {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
        for (const auto& [dx, dy] : kSteps) {
            const int x = from % image.width + dx, y = from / image.width + dy;
            if (x < 0 || y < 0 || x >= image.width || y >= image.height) continue;
            const int to = y * image.width + x;
            if (isDone[at(to)]) continue;
            const int cost = best[at(from)] + stepCost(from, to, dx, dy);
            if (cost < best[at(to)]) enqueue(to, from, cost);
        }
    }

    int stepCost(int from, int to, int dx, int dy) const
    {
        const bool isAxial = dx == 0 || dy == 0;
        if (type == 3) return (255 - image.at(from) + 255 - image.at(to)) / 2;
        if (type == 0) return (image.at(from) + image.at(to)) / 2;
        if (type == 99) {
            const int sum = angle(from, dx, dy) + angle(to, dx, dy);
            return isAxial ? sum * 182 / 256 : sum;
        }
        const int cost = 254 - std::min(254, static_cast<int>(std::hypot(slopeX(to), slopeY(to))));
        return isAxial ? cost * 182 / 256 : cost;
    }

    /// Between a step and the edge, in 127ths of a right angle.
    int angle(int i, int dx, int dy) const
    {
        const float gx = static_cast<float>(slopeX(i)), gy = static_cast<float>(slopeY(i));
        const float magnitude = std::hypot(gx, gy);
        const int ux = magnitude > 0 ? static_cast<int>(gx * 100 / magnitude) : 0,
                  uy = magnitude > 0 ? static_cast<int>(gy * 100 / magnitude) : 0;
        const int component = dy == 0 ? uy : dx == 0 ? ux : (dx == dy ? ux - uy : ux + uy) * 256 / 362;
        return static_cast<int>(std::acos(std::min(100, std::abs(component)) / 100.0) * 254 /
                                std::numbers::pi);
    }

    /// Across the border the image goes on in the next row, and outside of it as the pixel itself.
    int slope(int i, int step) const
    {
        const int after = i + step < image.count() ? image.at(i + step) : image.at(i);
        const int before = i >= step ? image.at(i - step) : image.at(i);
        return (after - before) / 2;
    }
    int slopeX(int i) const { return slope(i, 1); }
    int slopeY(int i) const { return slope(i, image.width); }

    const TraceImage& image;
    const int type;
    std::vector<int> back, best, turn;
    std::vector<bool> isDone;
    std::set<std::tuple<int, int, int>> queue; // cost, the latest first, pixel
    int latest = 0, last = 0;
};
