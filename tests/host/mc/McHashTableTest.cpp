#include "mc/McHashTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <tuple>
#include <vector>

TEST(McHashTable, FollowsAMap)
{
    std::mt19937 random(31);
    McHashTable<McVec3i, double> table(-1000000.0);
    std::map<std::tuple<int, int, int>, double> reference;
    double* first = &table[McVec3i(0, 0, 0)];
    reference[{0, 0, 0}] = -1000000.0;
    for (int step = 0; step < 20000; step++) {
        const McVec3i key(int(random() % 25) - 12, int(random() % 25) - 12, int(random() % 25) - 12);
        const std::tuple<int, int, int> plainKey{key.x, key.y, key.z};
        if (random() % 2) {
            const double* found = table.lookup(key);
            ASSERT_EQ(found != nullptr, reference.count(plainKey) == 1);
            ASSERT_EQ(found ? *found : 0, found ? reference[plainKey] : 0);
        } else {
            ASSERT_EQ(table[key], reference.count(plainKey) ? reference[plainKey] : -1000000.0);
            table[key] = reference[plainKey] = step;
        }
        ASSERT_EQ(table.size(), int(reference.size()));
    }
    EXPECT_EQ(first, table.lookup(McVec3i(0, 0, 0))) << "values keep their address while the table grows";

    table.removeAll();
    EXPECT_EQ(table.size(), 0);
    EXPECT_EQ(table.lookup(McVec3i(0, 0, 0)), nullptr);
    EXPECT_EQ(table[McVec3i(1, 2, 3)], -1000000.0);
}

TEST(McHashTable, SpreadsTheCornersOfABlockOverItsBuckets)
{
    // With a full table about 63 percent of the buckets are met by a random hash.
    const int kSide = 32;
    std::vector<bool> isMet(kSide * kSide * kSide);
    for (int z = 0; z < kSide; z++)
        for (int y = 0; y < kSide; y++)
            for (int x = 0; x < kSide; x++) isMet[mcHash(McVec3i(x, y, z)) % isMet.size()] = true;
    EXPECT_GT(std::count(isMet.begin(), isMet.end(), true), long(isMet.size() * 0.6));
}
