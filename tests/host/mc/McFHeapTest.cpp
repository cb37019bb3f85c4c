#include "mc/VoxelType.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <random>
#include <vector>

TEST(McFHeap, FollowsAMultimapThroughRandomEdits)
{
    std::mt19937 random(37);
    McFHeap<VoxelType> heap;
    std::deque<VoxelType> all(2000);
    std::multimap<float, VoxelType*> reference;
    std::vector<VoxelType*> outside;
    std::vector<VoxelType*> inside;
    for (VoxelType& s : all) outside.push_back(&s);

    const auto forget = [&](VoxelType* s) {
        const auto range = reference.equal_range(s->key);
        reference.erase(std::find_if(range.first, range.second, [&](auto& e) { return e.second == s; }));
        inside.erase(std::find(inside.begin(), inside.end(), s));
        outside.push_back(s);
    };
    const auto put = [&](VoxelType* s, float time) {
        s->key = time;
        heap.insert(s);
        reference.emplace(time, s);
        inside.push_back(s);
        outside.erase(std::find(outside.begin(), outside.end(), s));
    };

    for (int step = 0; step < 40000; step++) {
        // Phases that mostly fill alternate with phases that mostly drain.
        const bool filling = step / 3000 % 2 == 0;
        const unsigned choice = random() % 10;
        if (choice < (filling ? 5u : 2u) && !outside.empty()) {
            put(outside[random() % outside.size()], float(random() % 500));
        } else if (choice < 7 && !inside.empty()) {
            VoxelType* s = inside[random() % inside.size()];
            heap.deleteElem(s);
            forget(s);
            if (choice != 6) put(s, s->key / 2);
        } else if (VoxelType* s = heap.deleteMin()) {
            ASSERT_EQ(s->key, reference.begin()->first);
            forget(s);
        } else {
            ASSERT_TRUE(reference.empty());
        }
        ASSERT_EQ(heap.size(), int(reference.size()));
        ASSERT_EQ(heap.getMin() != nullptr, !reference.empty());
        ASSERT_EQ(heap.getMin() ? heap.getMin()->key : -1, reference.empty() ? -1 : reference.begin()->first);
    }
    for (float last = -1; VoxelType* s = heap.deleteMin(); last = s->key) ASSERT_LE(last, s->key);
    EXPECT_TRUE(heap.isEmpty());
}
