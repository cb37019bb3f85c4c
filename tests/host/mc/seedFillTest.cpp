#include "mc/seedFill.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <queue>
#include <random>
#include <vector>

namespace {

struct Region
{
    int count = 0;
    int box[6] = {1 << 30, 1 << 30, 1 << 30, -1, -1, -1};
};

Region fillPlainly(std::vector<unsigned char>& labels, const int* d, const int* start, unsigned char value)
{
    Region region;
    for (int a = 0; a < 3; a++)
        if (start[a] < 0 || start[a] >= d[a]) return region;
    const unsigned char old = labels[start[0] + d[0] * (start[1] + d[1] * start[2])];
    if (old == value) return region;
    std::queue<std::vector<int>> pending;
    pending.push({start[0], start[1], start[2]});
    while (!pending.empty()) {
        const std::vector<int> p = pending.front();
        pending.pop();
        bool isInside = true;
        for (int a = 0; a < 3; a++) isInside = isInside && p[a] >= 0 && p[a] < d[a];
        if (!isInside) continue;
        unsigned char& label = labels[p[0] + d[0] * (p[1] + d[1] * p[2])];
        if (label != old) continue;
        label = value;
        region.count++;
        for (int a = 0; a < 3; a++) {
            region.box[a] = std::min(region.box[a], p[a]);
            region.box[a + 3] = std::max(region.box[a + 3], p[a]);
            for (int step : {-1, 1}) {
                std::vector<int> next = p;
                next[a] += step;
                pending.push(next);
            }
        }
    }
    return region;
}

} // namespace

TEST(SeedFill, OverwritesWhatAQueueOfVoxelsFinds)
{
    std::mt19937 random(67);
    for (int round = 0; round < 200; round++) {
        const int d[3] = {1 + int(random() % 14), 1 + int(random() % 14), 1 + int(random() % 9)};
        std::vector<unsigned char> labels(d[0] * d[1] * d[2]);
        const unsigned kinds = 1 + random() % 3;
        for (unsigned char& v : labels) v = static_cast<unsigned char>(random() % kinds);
        std::vector<unsigned char> expected = labels;
        int start[3];
        for (int a = 0; a < 3; a++) start[a] = int(random() % d[a]);
        if (round % 8 == 0) start[random() % 3] = round % 16 ? -1 : d[round / 16 % 3]; // mostly outside
        const unsigned char value = random() % 2 ? 255 : 1;
        const Region region = fillPlainly(expected, d, start, value);
        int box[6] = {1 << 30, 1 << 30, 1 << 30, -1, -1, -1};
        EXPECT_EQ(seedFill(start[0], start[1], start[2], d[0], d[1], d[2], labels.data(), value, box),
                  region.count);
        EXPECT_EQ(labels, expected);
        EXPECT_TRUE(std::equal(box, box + 6, region.box));
    }
}
