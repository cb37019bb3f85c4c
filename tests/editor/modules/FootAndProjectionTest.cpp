// The foot pedal's scale and peaks, and the planes that restrict a projection.

#include "modules/McFoot.h"
#include "modules/McRestrictedProjectedVolume.h"

#include "core/GiSelection2D.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <limits>
#include <random>
#include <vector>

namespace {

TEST(Foot, ScalesThePeriod)
{
    struct Case
    {
        float frequency;
        int value;
    };
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    McFoot foot;
    EXPECT_EQ(foot.getValue(), 0) << "1 Hz, before anything was measured";
    for (const Case c : {Case{320, 0}, Case{100, 0}, Case{0, 0}, Case{8000, 255}, Case{20000, 255},
                         Case{kNaN, 255}, Case{640, 133}}) {
        foot.frequency = c.frequency;
        EXPECT_EQ(foot.getValue(), c.value) << c.frequency;
    }
}

TEST(Foot, EndsItsChild)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0)
        while (true) pause();
    {
        McFoot foot;
        foot.childId = child;
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
}

/// The second channel of a recording; the first one is loud and must not count.
int periodOf(const std::vector<short>& second, int count)
{
    std::vector<short> samples;
    for (short s : second) {
        samples.push_back(32767);
        samples.push_back(s);
    }
    return McFoot().calcTime(samples.data(), count, 0);
}

TEST(Foot, MeasuresTheDistanceOfPeaks)
{
    struct Case
    {
        const char* shows;
        std::vector<short> samples; // with the one behind the end
        int period;
    };
    const Case cases[] = {
        {"silence", {0, 0, 0, 0}, 3},
        {"one peak", {0, 9, 0, 0}, 3},
        {"two peaks, 4 apart", {0, 9, 0, 0, 0, 9, 0, 0}, 2},
        {"a plateau peaks at its end", {0, 9, 9, 9, 0, 9, 0}, 1},
        {"a falling edge counts with each sample", {0, 9, 8, 7, 0, 0, 0, 0, 9, 0}, 1},
        {"a third of the largest is not above it", {0, 9, 0, 3, 0, 9, 0}, 2},
        {"negative samples only set the threshold", {0, -30, 0, 9, 0, 9, 0}, 6},
        {"the last climb sees the sample behind the end", {0, 9, 0, 0, 0, 0, 9, 9}, 3},
    };
    for (const Case& c : cases) {
        const int count = static_cast<int>(c.samples.size()) - 1;
        EXPECT_EQ(periodOf(c.samples, count), c.period) << c.shows;
    }
    EXPECT_EQ(periodOf({}, 0), 0);
    EXPECT_EQ(periodOf({}, -4), -4);
}

TEST(RestrictedProjection, KeepsThePixelsOfEachPlane)
{
    const int dims[3] = {5, 7, 4};
    const int widths[3] = {7, 5, 5}, heights[3] = {4, 4, 7};
    McRestrictedProjectedVolume volume(dims);
    std::mt19937 random(6);
    McBitfield field;
    field.resize(2000);
    for (unsigned long i = 0; i < 2000; ++i)
        if (random() % 2) field.set(i);
    struct Window
    {
        unsigned long offset, xStride, yStride;
    };
    // Windows into a volume: rows and columns that lie apart. None leaves anything to the next one.
    for (const Window w : {Window{3, 1, 7}, Window{37, 1, 101}, Window{5, 7, 35}, Window{0, 100, 1}})
        for (int plane = 0; plane < 3; ++plane) {
            const int width = widths[plane], height = heights[plane];
            GiSelection2D window;
            window.setBitfield(&field, width, height, w.offset, w.xStride, w.yStride);
            volume.setPlane(plane, &window);
            const McBitfield& bits = volume.planes[plane];
            ASSERT_EQ(bits.numBits(), static_cast<unsigned long>(width * height));
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    EXPECT_EQ(bits.isSet(static_cast<unsigned long>(y * width + x)), window.isSet(x, y));
        }
    GiSelection2D larger;
    larger.resize(50, 50);
    larger.invert();
    volume.setPlane(1, &larger);
    EXPECT_EQ(volume.planes[1].numBits(), 20u) << "a selection of another size stays within the plane";
    volume.setPlane(3, &larger);
    volume.init(dims);
    for (const McBitfield& plane : volume.planes) EXPECT_EQ(plane.numBits(), 0u);
}

} // namespace
