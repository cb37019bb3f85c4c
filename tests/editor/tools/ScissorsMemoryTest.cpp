#include "editor/tools/Allocations.h"
#include "editor/tools/PlainScissors.h"
#include "tools/IScissors.h"

#include <gtest/gtest.h>

namespace {

TEST(Scissors, FollowTheMouseWithoutTakingMemory)
{
    if (!Allocations::areSeen()) GTEST_SKIP() << "a checking allocator";
    TraceImage image{100, 80, std::vector<unsigned char>(8000)};
    for (int i = 0; i < image.count(); ++i)
        image.values[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i * 37 % 251);
    for (const int type : {0, 2, 3, 99}) {
        IScissors scissors;
        const int before = Allocations::count();
        scissors.init(image.width, image.height, image.values.data(), static_cast<IScissors::CostType>(type));
        ASSERT_GT(Allocations::count(), before) << "allocations are not seen";
        const int prepared = Allocations::count();
        scissors.start(50, 40);
        for (int i = 0; i < image.count(); i += 7) {
            int x = i % image.width, y = i / image.width, oldX, oldY, forkX, forkY;
            if (!scissors.isValid(x, y)) continue;
            scissors.markPath(x, y, oldX, oldY, forkX, forkY);
            while (scissors.next(oldX, oldY)) {
            }
        }
        scissors.restart(20, 20);
        scissors.isValid(90, 70);
        scissors.init(image.height, image.width, image.values.data(), static_cast<IScissors::CostType>(type));
        EXPECT_EQ(Allocations::count(), prepared) << "cost type " << type;
    }
}

} // namespace
