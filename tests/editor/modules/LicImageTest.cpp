// The raster of bytes: memory, pixels, filters and the seed fill.

#include "modules/LicImage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

Bytes bytesOf(const LicImage& image)
{
    Bytes bytes;
    for (int y = 0; y < image.height; ++y)
        bytes.insert(bytes.end(), image.row(y), image.row(y) + image.width * image.channels);
    return bytes;
}

LicImage noise(int width, int height, int channels, std::mt19937& random, int values = 256)
{
    LicImage image;
    image.setSize(width, height, channels);
    for (int i = 0; i < width * height * channels; ++i)
        image.data[i] = static_cast<unsigned char>(random() % static_cast<unsigned int>(values));
    return image;
}

/// Memory of a caller, with gaps between the rows that nobody may touch.
class Wrapped
{
public:
    Wrapped(const LicImage& source, int gap)
        : stride(source.stride + gap),
          memory(static_cast<std::size_t>(stride * source.height), 0xcc),
          image(source.width, source.height, source.channels, stride, memory.data())
    {
        for (int y = 0; y < source.height; ++y)
            std::copy_n(source.row(y), source.stride, memory.data() + y * stride);
    }
    bool areGapsIntact() const
    {
        const int used = image.width * image.channels;
        for (int i = 0; i < static_cast<int>(memory.size()); ++i)
            if (i % stride >= used && memory[static_cast<std::size_t>(i)] != 0xcc) return false;
        return true;
    }

    const int stride;
    Bytes memory;
    LicImage image;
};

TEST(LicImage, WrapsOrOwnsItsMemory)
{
    Bytes memory{1, 2, 3, 9, 4, 5, 6, 9};
    LicImage wrapped(3, 2, 4, memory.data());
    EXPECT_EQ(bytesOf(wrapped), (Bytes{1, 2, 3, 4, 5, 6}));
    const LicImage copy = wrapped;
    wrapped.clear();
    EXPECT_EQ(memory, (Bytes{0, 0, 0, 9, 0, 0, 0, 9})) << "the gaps are the caller's";
    EXPECT_EQ(bytesOf(copy), (Bytes{1, 2, 3, 4, 5, 6})) << "a copy is deep";
    EXPECT_EQ(copy.stride, 3);
    LicImage moved = std::move(wrapped);
    EXPECT_EQ(moved.data, memory.data()) << "what takes another's place wraps what that one wrapped";

    const LicImage own(3, 2, 2, 100, nullptr);
    EXPECT_NE(own.buffer, nullptr);
    EXPECT_EQ(own.stride, 6);
    LicImage huge;
    EXPECT_FALSE(huge.setSize(1 << 30, 1 << 30, 1 << 30));
    EXPECT_EQ(huge.width, 0);
}

/// What each operation with a result does to it.
struct Operation
{
    const char* name;
    void (*run)(LicImage& from, LicImage* out);
};

const Operation kOperations[] = {
    {"blur", [](LicImage& from, LicImage* out) { from.gaussBlur(4, out); }},
    {"copying blur", [](LicImage& from, LicImage* out) { from.gaussBlur(1, out); }},
    {"box filter",
     [](LicImage& from, LicImage* out) {
         const float kernel[] = {0.5f, 0.25f};
         from.boundedconvolve(2, kernel, McBox2i(0, 0, from.width - 1, from.height - 1), out);
     }},
    {"contrast", [](LicImage& from, LicImage* out) { from.brighten(10, 90, out); }},
    {"gray", [](LicImage& from, LicImage* out) { from.colorToGray(out); }},
    {"fill", [](LicImage& from, LicImage* out) { from.floodFill(1, 1, 7, nullptr, out); }},
};

TEST(LicImage, WritesResultsWhereTheyBelong)
{
    std::mt19937 random(9);
    for (const Operation& o : kOperations)
        for (const int channels : {1, 3}) {
            SCOPED_TRACE(std::string(o.name) + ", " + std::to_string(channels) + " channels");
            LicImage source = noise(17, 12, channels, random, 40), expected;
            o.run(source, &expected);
            ASSERT_EQ(expected.width, 17);
            ASSERT_EQ(expected.height, 12);

            Wrapped sameSize(noise(17, 12, expected.channels, random), 5);
            const unsigned char* const memory = sameSize.memory.data();
            o.run(source, &sameSize.image);
            EXPECT_EQ(sameSize.image.data, memory) << "a caller's memory of the right size is used";
            EXPECT_EQ(bytesOf(sameSize.image), bytesOf(expected));
            EXPECT_TRUE(sameSize.areGapsIntact());

            Wrapped smaller(noise(5, 5, 1, random), 3);
            const Bytes before = smaller.memory;
            o.run(source, &smaller.image);
            EXPECT_EQ(bytesOf(smaller.image), bytesOf(expected));
            EXPECT_EQ(smaller.memory, before) << "one of another size is left alone";

            LicImage inPlace = source, itself = source;
            o.run(inPlace, nullptr);
            EXPECT_EQ(bytesOf(inPlace), bytesOf(expected));
            o.run(itself, &itself);
            EXPECT_EQ(bytesOf(itself), bytesOf(expected));
            EXPECT_EQ(itself.channels, expected.channels);
        }
}

TEST(LicImage, ReadsRowsOfTheImageThatItReplaces)
{
    std::mt19937 random(10);
    for (const Operation& o : kOperations)
        for (const int channels : {1, 3}) {
            SCOPED_TRACE(std::string(o.name) + ", " + std::to_string(channels) + " channels");
            LicImage owner = noise(17, 12, channels, random, 40), expected;
            LicImage part(9, 6, channels, owner.stride, owner.row(3) + 2 * channels);
            LicImage copy = part;
            o.run(copy, &expected);
            o.run(part, &owner);
            EXPECT_EQ(owner.width, 9);
            EXPECT_EQ(bytesOf(owner), bytesOf(expected));
        }
    // A copy as large as the memory that goes with it may get that very memory.
    LicImage owner = noise(18, 6, 1, random);
    const LicImage part(9, 12, owner.data);
    const Bytes expected = bytesOf(part);
    owner = part;
    EXPECT_EQ(bytesOf(owner), expected);
}

TEST(LicImage, ResultsOfAnEmptyImageAreEmpty)
{
    for (const Operation& o : kOperations) {
        if (std::string(o.name) == "box filter") continue; // an empty box: nothing happens
        LicImage empty, out(4, 3, nullptr);
        empty.setSize(0, 6, 1);
        o.run(empty, &out);
        EXPECT_EQ(out.width, 0) << o.name;
        EXPECT_EQ(out.height, 6) << o.name;
    }
}

TEST(LicImage, FindsTheBoxOfAValue)
{
    LicImage image(5, 4, nullptr);
    image.clear();
    int box[4];
    EXPECT_FALSE(image.subBox(box[0], box[1], box[2], box[3], 7, 1));
    EXPECT_EQ((std::vector<int>{box, box + 4}), (std::vector<int>{5, 4, -1, -1}));
    image.row(1)[3] = image.row(2)[1] = 7;
    EXPECT_TRUE(image.subBox(box[0], box[1], box[2], box[3], 7, 1));
    EXPECT_EQ((std::vector<int>{box, box + 4}), (std::vector<int>{1, 1, 3, 2}));
    EXPECT_TRUE(image.subBox(box[0], box[1], box[2], box[3], 0, 0)) << "all that is not 0";
    EXPECT_EQ((std::vector<int>{box, box + 4}), (std::vector<int>{1, 1, 3, 2}));
}

TEST(LicImage, StretchesContrastInWholeNumbers)
{
    struct Case
    {
        int lo, hi;
    };
    LicImage ramp(256, 1, nullptr), result;
    for (int i = 0; i < 256; ++i) ramp.data[i] = static_cast<unsigned char>(i);
    for (const Case c : {Case{0, 255}, Case{50, 60}, Case{200, 100}, Case{-1000, 3}, Case{250, 70000}}) {
        ramp.brighten(c.lo, c.hi, &result);
        for (int p = 0; p < 256; ++p)
            EXPECT_EQ(result.data[p], std::clamp((p - c.lo) * 255 / (c.hi - c.lo), 0, 255)) << p;
    }
}

TEST(LicImage, TurnsColorsToGray)
{
    std::mt19937 random(1);
    for (const int channels : {3, 4}) {
        LicImage color = noise(7, 5, channels, random), gray;
        color.colorToGray(&gray);
        for (int i = 0; i < 35; ++i) {
            const unsigned char* c = color.data + i * channels;
            EXPECT_NEAR(gray.data[i], (30 * c[0] + 59 * c[1] + 11 * c[2]) / 100, 1);
            EXPECT_LE(gray.data[i], 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2]) << "cut, not rounded";
        }
    }
}

TEST(LicImage, RepeatsNoiseOfASeed)
{
    LicImage a(20, 10, nullptr), b(20, 10, nullptr);
    a.createRandom(5);
    b.createRandom(0);
    EXPECT_NE(bytesOf(a), bytesOf(b)) << "goes on from there";
    b.createRandom(5);
    EXPECT_EQ(bytesOf(a), bytesOf(b));
}

/// A Gaussian in two dimensions with doubles; beyond its border the image repeats its outermost pixels.
double blurredAt(const LicImage& image, int size, int x, int y, int channel)
{
    double sum = 0, weights = 0;
    for (int v = 1 - size; v < size; ++v)
        for (int u = 1 - size; u < size; ++u) {
            const double weight = std::exp(-2.0 * (u * u + v * v) / (size * size));
            const int column = std::clamp(x + u, 0, image.width - 1);
            weights += weight;
            sum +=
                weight * image.row(std::clamp(y + v, 0, image.height - 1))[column * image.channels + channel];
        }
    return sum / weights;
}

TEST(LicImage, BlursLikeAGaussian)
{
    std::mt19937 random(2);
    const std::pair<int, int> sizes[] = {{1, 1}, {1, 12}, {12, 1}, {2, 3}, {37, 21}, {70, 9}};
    for (const auto& [width, height] : sizes)
        for (const int channels : {1, 3})
            for (const int size : {1, 2, 4, 8, 13}) {
                LicImage image = noise(width, height, channels, random), result;
                ASSERT_EQ(image.gaussBlur(size, &result), 1);
                for (int y = 0; y < height; ++y)
                    for (int i = 0; i < width * channels; ++i)
                        // Rows and columns are each rounded to a byte.
                        ASSERT_NEAR(result.row(y)[i], blurredAt(image, size, i / channels, y, i % channels),
                                    1.1)
                            << width << " x " << height << ", size " << size;
            }
}

TEST(LicImage, BlurLeavesFlatImagesAlone)
{
    LicImage flat(30, 20, nullptr);
    for (const int value : {0, 1, 128, 255})
        for (int size = 0; size < 9; ++size) {
            std::fill_n(flat.data, 600, static_cast<unsigned char>(value));
            flat.gaussBlur(size, nullptr);
            EXPECT_EQ(bytesOf(flat), Bytes(600, static_cast<unsigned char>(value))) << size;
        }
}

TEST(LicImage, FiltersABoxAsAnImageOfItsOwn)
{
    std::mt19937 random(3);
    const float kernel[] = {0.4f, 0.2f, 0.1f};
    for (const int channels : {1, 3}) {
        LicImage image = noise(30, 20, channels, random);
        McBox2i box(4, 6, 19, 40); // reaches beyond the image
        LicImage part(16, 14, channels, image.stride, image.row(6) + 4 * channels);
        LicImage expected = image, filteredPart, result = image;
        part.convolve(3, kernel, &filteredPart);
        for (int y = 0; y < 14; ++y)
            std::copy_n(filteredPart.row(y), 16 * channels, expected.row(y + 6) + 4 * channels);
        EXPECT_EQ(image.boundedconvolve(3, kernel, box, &result), 1);
        EXPECT_EQ(bytesOf(result), bytesOf(expected));
        const LicImage before = result;
        image.boundedconvolve(3, kernel, McBox2i(), &result);
        EXPECT_EQ(bytesOf(result), bytesOf(before)) << "an empty box";

        LicImage fresh(2, 2, nullptr), aroundZero = image;
        aroundZero.clear();
        for (int y = 6; y < 20; ++y)
            std::copy_n(expected.row(y) + 4 * channels, 16 * channels, aroundZero.row(y) + 4 * channels);
        EXPECT_EQ(image.boundedconvolve(3, kernel, box, &fresh), 1);
        EXPECT_EQ(bytesOf(fresh), bytesOf(aroundZero)) << "new memory is 0 around the box";
    }
}

/// 4-connected, one pixel after another.
int filledPlainly(LicImage& image, int x, int y, unsigned char value, int* box)
{
    const unsigned char old = image.row(y)[x];
    std::vector<std::pair<int, int>> pending{{x, y}};
    int filled = 0;
    while (!pending.empty()) {
        const auto [px, py] = pending.back();
        pending.pop_back();
        if (px < 0 || py < 0 || px >= image.width || py >= image.height || image.row(py)[px] != old) continue;
        image.row(py)[px] = value;
        ++filled;
        box[0] = std::min(box[0], px);
        box[1] = std::min(box[1], py);
        box[2] = std::max(box[2], px);
        box[3] = std::max(box[3], py);
        for (const auto& [dx, dy] : {std::pair(1, 0), {-1, 0}, {0, 1}, {0, -1}})
            pending.emplace_back(px + dx, py + dy);
    }
    return filled;
}

TEST(LicImage, FillsConnectedPixels)
{
    std::mt19937 random(4);
    for (int trial = 0; trial < 400; ++trial) {
        SCOPED_TRACE(trial);
        const int width = 1 + static_cast<int>(random() % 40), height = 1 + static_cast<int>(random() % 40);
        LicImage image = noise(width, height, 1, random, 2), expected = image, result;
        const int x = std::uniform_int_distribution(0, width - 1)(random);
        const int y = std::uniform_int_distribution(0, height - 1)(random);

        int box[4] = {3, 100, -1, 2}, expectedBox[4] = {3, 100, -1, 2};
        const int count = filledPlainly(expected, x, y, 9, expectedBox);
        EXPECT_EQ(image.floodFill(x, y, 9, box, &result), count);
        EXPECT_EQ(bytesOf(result), bytesOf(expected));
        EXPECT_TRUE(std::equal(box, box + 4, expectedBox));
    }
}

TEST(LicImage, FillsNothingWhereThereIsNothingToFill)
{
    LicImage image(4, 3, nullptr), result;
    image.clear();
    int box[4] = {9, 9, -1, -1};
    for (const auto& [x, y] : {std::pair(-1, 0), {0, -1}, {4, 0}, {0, 3}})
        EXPECT_EQ(image.floodFill(x, y, 1, box, &result), 0);
    EXPECT_EQ(image.floodFill(1, 1, 256, box, nullptr), 0) << "0 as a byte, the value that is there";
    EXPECT_EQ(box[0], 9);
    EXPECT_EQ(bytesOf(result), bytesOf(image)) << "still a copy";
}

TEST(LicImage, FillForgetsSpansBeyondItsStack)
{
    // A comb: below each of the 15001 teeth of the second row one more pixel waits.
    LicImage comb(30001, 3, nullptr);
    comb.clear();
    for (int y = 1; y < 3; ++y)
        for (int x = 1; x < comb.width; x += 2) comb.row(y)[x] = 1;
    EXPECT_EQ(comb.floodFill(0, 0, 2, nullptr, nullptr), 30001 + 15001 + 10000);
}

} // namespace
