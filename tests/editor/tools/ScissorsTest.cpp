#include "PlainScissors.h"
#include "mc/McMemoryException.h"
#include "tools/IScissors.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <string>
#include <utility>

namespace {

using Pixel = std::pair<int, int>;

enum class Content
{
    flat,
    noise,
    blackAndWhite,
    ramp,
    disc
};

TraceImage makeImage(int width, int height, Content content, unsigned int seed)
{
    TraceImage image{width, height, std::vector<unsigned char>(static_cast<std::size_t>(width * height))};
    std::mt19937 random(seed);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int dx = x - width / 2, dy = y - height / 2;
            const unsigned int noise = random() % 256;
            const unsigned int value = content == Content::flat            ? 255
                                       : content == Content::noise         ? noise
                                       : content == Content::blackAndWhite ? noise % 2 * 255
                                       : content == Content::ramp ? static_cast<unsigned int>(x * 7 + y) % 256
                                       : dx * dx + dy * dy < width * height / 12 ? 200 - noise / 32
                                                                                 : 20 + noise / 32;
            image.values[static_cast<std::size_t>(y * width + x)] = static_cast<unsigned char>(value);
        }
    return image;
}

void prepare(IScissors& scissors, TraceImage& image, int type)
{
    scissors.init(image.width, image.height, image.values.data(), static_cast<IScissors::CostType>(type));
}

/// The way back from a pixel, itself included, without the seed.
std::vector<Pixel> pathFrom(IScissors& scissors, int x, int y)
{
    std::vector<Pixel> path{{x, y}};
    while (scissors.next(x, y)) path.emplace_back(x, y);
    return path;
}

struct Search
{
    const char* name;
    int width, height;
    Content content;
    int seedX, seedY;
};

const Search kSearches[] = {
    {"noise", 41, 33, Content::noise, 20, 15},
    {"flat: ties everywhere", 30, 31, Content::flat, 7, 21},
    {"steps of no cost and of the largest", 37, 29, Content::blackAndWhite, 1, 1},
    {"a ramp that wraps", 44, 25, Content::ramp, 42, 23},
    {"a disc", 40, 40, Content::disc, 20, 9},
    {"hundreds of pixels of one cost", 300, 250, Content::flat, 140, 120},
    {"several blocks in a row", 300, 40, Content::noise, 200, 20},
    {"seed in the first row", 21, 17, Content::noise, 9, 0},
    {"seed in the last column", 21, 17, Content::noise, 20, 8},
    {"seed in the first corner", 21, 17, Content::noise, 0, 0},
    {"seed in the last corner", 21, 17, Content::noise, 20, 16},
    {"one free pixel", 3, 3, Content::noise, 1, 1},
    {"one free pixel, seed beside it", 3, 3, Content::noise, 2, 1},
    {"one free row", 50, 3, Content::noise, 25, 1},
    {"a row", 19, 1, Content::noise, 9, 0},
    {"a column", 1, 19, Content::noise, 0, 9},
    {"two columns", 2, 19, Content::noise, 1, 9},
    {"a pixel", 1, 1, Content::noise, 0, 0},
};

TEST(Scissors, FindThePathsOfThePlainSearchInAnyOrderOfRequests)
{
    for (const int type : {0, 2, 3, 99, 1}) {
        IScissors scissors; // one for all: nothing may stay of the image before
        for (const Search& search : kSearches) {
            SCOPED_TRACE(search.name + std::string(", cost type ") + std::to_string(type));
            TraceImage image = makeImage(search.width, search.height, search.content, 7);
            const int seed = search.seedY * search.width + search.seedX;
            const std::vector<int> expected = PlainScissors(image, type, seed).predecessors();
            prepare(scissors, image, type);
            ASSERT_EQ(scissors.start(search.seedX, search.seedY), 1);

            std::vector<int> order(expected.size());
            std::iota(order.begin(), order.end(), 0);
            std::shuffle(order.begin(), order.end(), std::mt19937(3));
            for (const int i : order) {
                int x = i % search.width, y = i / search.width;
                const int back = expected[static_cast<std::size_t>(i)];
                ASSERT_EQ(scissors.isValid(x, y) != 0, !image.isBorder(i) && i != seed && back >= 0)
                    << x << " " << y;
                const bool moves = back >= 0 && back != seed;
                ASSERT_EQ(scissors.next(x, y) != 0, moves) << x << " " << y;
                ASSERT_EQ(y * search.width + x, moves ? back : i);
            }
        }
    }
}

/// A pointer that wanders over the free pixels.
class Wanderer
{
public:
    Wanderer(const TraceImage& image, unsigned int seed)
        : width(image.width), height(image.height), random(seed)
    {
        at = {width / 2, height / 2};
    }
    Pixel move(int reach)
    {
        const auto shift = [&](int v, int size) {
            const int step = static_cast<int>(random() % static_cast<unsigned int>(2 * reach + 1)) - reach;
            return std::clamp(v + step, 1, size - 2);
        };
        return at = {shift(at.first, width), shift(at.second, height)};
    }

private:
    const int width, height;
    std::mt19937 random;
    Pixel at;
};

TEST(Scissors, TheStretchesOfAMoveHoldAllPixelsThatChange)
{
    for (const int type : {2, 3, 99})
        for (const Content content : {Content::noise, Content::flat, Content::disc}) {
            TraceImage image = makeImage(60, 45, content, 5);
            IScissors scissors;
            prepare(scissors, image, type);
            scissors.start(11, 12);
            Wanderer pointer(image, 17);
            std::vector<Pixel> drawn{{11, 12}};
            for (int step = 0; step < 400; ++step) {
                const auto [x, y] = pointer.move(step % 50 ? 4 : 30);
                if (!scissors.isValid(x, y)) continue;
                int oldX, oldY, forkX, forkY;
                scissors.markPath(x, y, oldX, oldY, forkX, forkY);
                ASSERT_EQ(Pixel(oldX, oldY), drawn.front());

                std::vector<Pixel> now = pathFrom(scissors, x, y);
                McDArray<McVec2i> whole;
                scissors.getPath(x, y, whole);
                ASSERT_TRUE(std::equal(
                    whole.begin(), whole.end(), now.begin(), now.end(),
                    [](const McVec2i& a, const Pixel& b) { return a.x == b.first && a.y == b.second; }));
                now.emplace_back(11, 12);
                // From the fork on, and not before, the two are the same.
                const auto oldFork = std::find(drawn.begin(), drawn.end(), Pixel(forkX, forkY));
                const auto newFork = std::find(now.begin(), now.end(), Pixel(forkX, forkY));
                ASSERT_TRUE(std::equal(oldFork, drawn.end(), newFork, now.end()));
                ASSERT_TRUE(oldFork != drawn.end());
                ASSERT_TRUE(oldFork == drawn.begin() || newFork == now.begin() || oldFork[-1] != newFork[-1]);
                drawn = std::move(now);
            }
        }
}

TEST(Scissors, AnswerNothingBeforeTheStartAndAfterTheEnd)
{
    TraceImage image = makeImage(40, 9, Content::flat, 1);
    IScissors scissors;
    EXPECT_EQ(scissors.start(5, 4), 0) << "no image yet";
    EXPECT_EQ(scissors.currentCost, -1);
    prepare(scissors, image, 2);
    EXPECT_FALSE(scissors.isValid(5, 4)) << "not started yet";
    ASSERT_EQ(scissors.start(5, 4), 1);
    EXPECT_GE(scissors.currentCost, 0);
    McDArray<McVec2i> path(7);
    scissors.getPath(5, 4, path);
    EXPECT_EQ(path.size(), 0) << "the seed has no path";
    scissors.currentCost = -1;
    EXPECT_FALSE(scissors.isValid(35, 4)) << "an ended trace is not taken up again by a question";
    EXPECT_EQ(scissors.currentCost, -1);
}

TEST(Scissors, MarksTellHowLongAStretchHasStayed)
{
    TraceImage image = makeImage(300, 9, Content::flat, 1);
    IScissors scissors;
    prepare(scissors, image, 2);
    scissors.start(5, 4);
    int unused = 0, x = 0, y = 0;
    const auto moveTo = [&](int column) {
        ASSERT_TRUE(scissors.isValid(column, 4));
        scissors.markPath(column, 4, unused, unused, unused, unused);
    };
    EXPECT_EQ(scissors.getPoint(1, x, y), 0);
    EXPECT_EQ(Pixel(x, y), Pixel(5, 4));
    for (const int column : {10, 20, 30}) moveTo(column);
    for (const auto& [minMarks, nearest] : {Pixel(1, 30), Pixel(2, 20), Pixel(3, 10)}) {
        EXPECT_EQ(scissors.getPoint(minMarks, x, y), 1);
        EXPECT_EQ(Pixel(x, y), Pixel(nearest, 4));
    }
    EXPECT_EQ(scissors.getPoint(4, x, y), 0) << "none: it ends at the seed";
    EXPECT_EQ(Pixel(x, y), Pixel(5, 4));
    moveTo(15);
    EXPECT_EQ(scissors.getPoint(3, x, y), 1);
    EXPECT_EQ(x, 15) << "what the path left lost its marks, what it kept gained one";
    moveTo(30);
    EXPECT_EQ(scissors.getPoint(3, x, y), 1);
    EXPECT_EQ(x, 15);
    for (int i = 0; i < 300; ++i) moveTo(280);
    EXPECT_EQ(scissors.getPoint(255, x, y), 1) << "marks stop at 255";
    EXPECT_EQ(x, 280);
    EXPECT_EQ(scissors.getPoint(256, x, y), 0);
}

TEST(Scissors, ARestartGoesOnFromAPixelOfThePath)
{
    TraceImage image = makeImage(50, 30, Content::disc, 4);
    IScissors scissors;
    prepare(scissors, image, 2);
    scissors.start(5, 5);
    int unused = 0;
    ASSERT_TRUE(scissors.isValid(40, 20));
    scissors.markPath(40, 20, unused, unused, unused, unused);
    // Three pixels back from the end, as after a click.
    Pixel anchor{40, 20};
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(scissors.next(anchor.first, anchor.second));
    ASSERT_EQ(scissors.restart(anchor.first, anchor.second), 1);

    Pixel beforeAnchor = anchor;
    EXPECT_TRUE(scissors.next(beforeAnchor.first, beforeAnchor.second)) << "the way back is kept";
    EXPECT_FALSE(scissors.isValid(anchor.first, anchor.second));
    // Wherever the path goes first, it is known where the old one ended, and how that leads to the new seed.
    for (const Pixel& end : {Pixel(anchor.first - 1, anchor.second), Pixel(anchor.first - 6, anchor.second),
                             Pixel(40, 20), Pixel(45, 25)}) {
        SCOPED_TRACE(testing::PrintToString(end));
        ASSERT_EQ(scissors.restart(anchor.first, anchor.second), 1);
        ASSERT_TRUE(scissors.isValid(end.first, end.second));
        Pixel old, fork;
        scissors.markPath(end.first, end.second, old.first, old.second, fork.first, fork.second);
        EXPECT_EQ(old, Pixel(40, 20));
        const std::vector<Pixel> path = pathFrom(scissors, end.first, end.second);
        const bool passesOldEnd = std::find(path.begin(), path.end(), old) != path.end();
        EXPECT_EQ(fork, passesOldEnd ? old : anchor);
        int x = end.first, y = end.second;
        while (scissors.next(x, y)) ASSERT_NE(Pixel(x, y), anchor) << "a path stops before its seed";
        EXPECT_LE(std::max(std::abs(x - anchor.first), std::abs(y - anchor.second)), 1);
        scissors.markPath(40, 20, unused, unused, unused, unused);
    }
}

TEST(Scissors, AnImageOfAnotherShapeHasNoPathsBeforeItsStart)
{
    struct Change
    {
        const char* name;
        int width, height;
        bool keepsSearch;
    };
    for (const Change& change :
         {Change{"the same shape", 40, 30, true}, Change{"turned", 30, 40, false},
          Change{"larger", 60, 50, false}, Change{"tiny", 2, 2, false}, Change{"nothing", 0, 7, false}}) {
        SCOPED_TRACE(change.name);
        TraceImage first = makeImage(40, 30, Content::noise, 2);
        TraceImage second = makeImage(change.width, change.height, Content::noise, 3);
        IScissors scissors;
        prepare(scissors, first, 2);
        scissors.start(20, 15);
        int unused = 0;
        ASSERT_TRUE(scissors.isValid(25, 20));
        scissors.markPath(25, 20, unused, unused, unused, unused);
        prepare(scissors, second, 3);
        EXPECT_EQ(scissors.isValid(25, 20) != 0, change.keepsSearch);
        EXPECT_EQ(scissors.isValid(2, 2) != 0, change.keepsSearch);
        int x = 25, y = 20;
        EXPECT_EQ(scissors.next(x, y) != 0, change.keepsSearch);
        scissors.markPath(20, 15, unused, unused, unused, unused);
        scissors.getPoint(1, x, y);
        EXPECT_EQ(scissors.start(change.width, change.height), 0) << "behind the last pixel";
        EXPECT_EQ(scissors.restart(-1, 0), 0);
    }
}

TEST(Scissors, AnImageTooLargeLeavesNone)
{
    TraceImage image = makeImage(10, 10, Content::noise, 1);
    IScissors scissors;
    prepare(scissors, image, 2);
    EXPECT_THROW(scissors.init(1 << 20, 1 << 20, nullptr, IScissors::kFollowEdges), McMemoryException);
    EXPECT_EQ(scissors.start(5, 5), 0);
    EXPECT_FALSE(scissors.isValid(3, 3));
    prepare(scissors, image, 2);
    EXPECT_EQ(scissors.start(5, 5), 1);
    EXPECT_TRUE(scissors.isValid(3, 3));
}

} // namespace
