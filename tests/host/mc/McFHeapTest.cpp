#include "mc/McFHeap.h"
#include "mc/VoxelType.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <random>
#include <vector>

namespace {

class Step : public McFHeapNode
{
public:
    int cost = 0;
    friend bool operator<(const Step& a, const Step& b) { return a.cost < b.cost; }
};

} // namespace

TEST(McFHeap, FollowsAMultimapThroughRandomEdits)
{
    std::mt19937 random(37);
    McFHeap<Step> heap;
    std::deque<Step> all(2000);
    std::multimap<int, Step*> reference;
    std::vector<Step*> outside;
    std::vector<Step*> inside;
    for (Step& s : all) outside.push_back(&s);

    const auto forget = [&](Step* s) {
        const auto range = reference.equal_range(s->cost);
        reference.erase(std::find_if(range.first, range.second, [&](auto& e) { return e.second == s; }));
        inside.erase(std::find(inside.begin(), inside.end(), s));
        outside.push_back(s);
    };
    const auto put = [&](Step* s, int cost) {
        s->cost = cost;
        heap.insert(s);
        reference.emplace(cost, s);
        inside.push_back(s);
        outside.erase(std::find(outside.begin(), outside.end(), s));
    };

    for (int step = 0; step < 40000; step++) {
        // Phases that mostly fill alternate with phases that mostly drain.
        const bool filling = step / 3000 % 2 == 0;
        const unsigned choice = random() % 10;
        if (choice < (filling ? 5u : 2u) && !outside.empty()) {
            put(outside[random() % outside.size()], int(random() % 500));
        } else if (choice < 7 && !inside.empty()) {
            Step* s = inside[random() % inside.size()];
            heap.deleteElem(s);
            forget(s);
            if (choice != 6) put(s, s->cost / 2);
        } else if (Step* s = heap.deleteMin()) {
            ASSERT_EQ(s->cost, reference.begin()->first);
            forget(s);
        } else {
            ASSERT_TRUE(reference.empty());
        }
        ASSERT_EQ(heap.size(), int(reference.size()));
        ASSERT_EQ(heap.getMin() != nullptr, !reference.empty());
        ASSERT_EQ(heap.getMin() ? heap.getMin()->cost : -1,
                  reference.empty() ? -1 : reference.begin()->first);
    }
    for (int last = -1; Step* s = heap.deleteMin(); last = s->cost) ASSERT_LE(last, s->cost);
    EXPECT_TRUE(heap.isEmpty());
}

TEST(McFHeap, SortsVoxelsByArrivalTime)
{
    std::mt19937 random(41);
    std::uniform_real_distribution<float> time(0, 100);
    McFHeap<VoxelType> heap;
    std::vector<float> times;
    for (int i = 0; i < 5000; i++) {
        times.push_back(time(random));
        heap.insert(new VoxelType(i, 65535, 0, times.back()));
    }
    std::sort(times.begin(), times.end());
    for (float expected : times) {
        VoxelType* voxel = heap.deleteMin();
        ASSERT_EQ(voxel->key, expected);
        EXPECT_EQ(voxel->y, 65535);
        delete voxel;
    }
    EXPECT_EQ(heap.deleteMin(), nullptr);
}
