#include "PlainScissors.h"
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

} // namespace
