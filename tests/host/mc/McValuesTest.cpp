#include "mc/McBox.h"
#include "mc/McClampCastToType.h"
#include "mc/McColor.h"
#include "mc/McEvent.h"
#include "mc/McFilename.h"
#include "mc/McTmpDir.h"
#include "mc/McVec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

TEST(McBox, EmptinessIsATestNotAState)
{
    for (const McBox2i& empty : {McBox2i(), McBox2i(1, 1, 0, 0), McBox2i(100000, 100000, -1, -1)}) {
        EXPECT_TRUE(empty.isEmpty());
        EXPECT_EQ(empty.width() * empty.height(), 0);
        McBox2i grown = empty;
        grown.extendBy(7, -3);
        EXPECT_EQ(grown, McBox2i(7, -3, 7, -3));
        grown.extendBy(empty);
        EXPECT_EQ(grown.width(), 1);
        EXPECT_TRUE(grown.intersected(empty).isEmpty());
    }
    EXPECT_EQ(McBox2i(0, 0, 9, 9).intersected(McBox2i(5, -4, 20, 3)), McBox2i(5, 0, 9, 3));
}

TEST(McBox, SixNumbersStandInPairsPerAxis)
{
    McBox3f box(1, 2, 3, 4, 5, 6);
    const float* six = box;
    EXPECT_EQ(six[1], box.xmax);
    EXPECT_EQ(six[4], box.zmin);
    box[5] = 8;
    EXPECT_EQ(box.zmax, 8);
    EXPECT_EQ(McBox3f(six), box);
    McBox3i block;
    EXPECT_TRUE(block.isEmpty());
    block.extendBy(3, 4, 5);
    block.extendBy(0, 9, 5);
    EXPECT_EQ(block, McBox3i(0, 3, 4, 9, 5, 5));
    EXPECT_TRUE(block.contains(3, 4, 5));
    EXPECT_FALSE(block.contains(3, 4, 6));
}

TEST(McVec, ComputesByComponent)
{
    McVec3f v = McVec3f(McVec3i(1, 2, 2)) * 2 + McVec3f(0, 0, 1);
    EXPECT_EQ(v, McVec3f(2, 4, 5));
    EXPECT_EQ(v / McVec3f(2, 4, 5), McVec3f(1, 1, 1));
    EXPECT_EQ(v[2], 5);
    EXPECT_FLOAT_EQ(McVec2f(3, 4).length(), 5);
    EXPECT_DOUBLE_EQ(McVec3i(1, 2, 2).length(), 3);
    EXPECT_EQ(McVec3d(1, 0, 0).cross(McVec3d(0, 1, 0)), McVec3d(0, 0, 1));
}

namespace {

/// The distance of 1976 in CIELAB, under daylight D65.
double cieDistance(const McColor& one, const McColor& other)
{
    const auto lab = [](const McColor& color) {
        const auto linear = [](double c) {
            return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        const auto root = [](double t) {
            return t > 216.0 / 24389 ? std::cbrt(t) : t * 841 / 108 + 4.0 / 29;
        };
        const double r = linear(color.r), g = linear(color.g), b = linear(color.b);
        const double x = root((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / 0.95047);
        const double y = root(0.2126729 * r + 0.7151522 * g + 0.0721750 * b);
        const double z = root((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / 1.08883);
        return McVec3d(116 * y - 16, 500 * (x - y), 200 * (y - z));
    };
    return (lab(one) - lab(other)).length();
}

} // namespace

TEST(McColor, NewColoursKeepTheirDistance)
{
    EXPECT_EQ(McColor::mostDifferentColorRGB({}), McColor(1, 0, 0));
    // Between black and white a strong colour is the farthest; black lies farthest from white, and back.
    EXPECT_EQ(McColor::mostDifferentColorRGB({McColor(1, 1, 1)}), McColor(0, 0, 0));
    EXPECT_EQ(McColor::mostDifferentColorRGB({McColor(0, 0, 0)}), McColor(1, 1, 1));
    // As many as a label field can have, from the colors that a picture has without them.
    McDArray<McColor> list{McColor(0, 0, 0), McColor(1, 1, 1)};
    for (int i = 0; i < 256; i++) {
        const McColor next = McColor::mostDifferentColorRGB(list);
        double nearest = 1e9;
        for (const McColor& other : list) nearest = std::min(nearest, cieDistance(next, other));
        // About 2 is a difference that is just noticed.
        EXPECT_GT(nearest, i < 12 ? 30 : i < 40 ? 15 : 2) << i;
        list.append(next);
    }
}

TEST(McClampCastToType, LimitsEachType)
{
    EXPECT_EQ(McClampCastToType<unsigned char>(-3.0), 0);
    EXPECT_EQ(McClampCastToType<unsigned char>(255.9), 255);
    EXPECT_EQ(McClampCastToType<short>(-1e9), -32768);
    EXPECT_EQ(McClampCastToType<short>(-2.7), -2);
    EXPECT_EQ(McClampCastToType<int>(4e9), std::numeric_limits<int>::max());
    EXPECT_EQ(McClampCastToType<unsigned int>(4e9), 4000000000u);
    EXPECT_EQ(McClampCastToType<int>(NAN), 0);
    EXPECT_EQ(McClampCastToType<float>(1e300), std::numeric_limits<float>::max());
    EXPECT_TRUE(std::isnan(McClampCastToType<double>(NAN)));
}

TEST(McFilename, TakesPathsApart)
{
    const struct
    {
        const char *path, *directory, *fileName, *baseName, *suffix;
    } table[] = {{"/data/brain.seg.nrrd", "/data", "brain.seg.nrrd", "brain.seg", "nrrd"},
                 {"plain", "", "plain", "plain", ""},
                 {"/top", "/", "top", "top", ""},
                 {"a.b/.hidden", "a.b", ".hidden", ".hidden", ""},
                 {"", "", "", "", ""}};
    for (const auto& row : table) {
        const McFilename name(row.path);
        EXPECT_STREQ(name.directory(), row.directory);
        EXPECT_STREQ(name.fileName(), row.fileName);
        EXPECT_STREQ(name.baseName(), row.baseName);
        EXPECT_STREQ(name.suffix(), row.suffix);
    }
    EXPECT_STREQ(McFilename("/data/", "x.nrrd"), "/data/x.nrrd");
    EXPECT_STREQ(McFilename("/data", "x.nrrd"), "/data/x.nrrd");
    EXPECT_STREQ(McFilename("", "x.nrrd"), "x.nrrd");
    EXPECT_STREQ(McFilename("/data", "/abs"), "/abs");
}

TEST(McTmpDir, OutlivesItsObjectAndLeavesWithItsContents)
{
    McString path;
    {
        McTmpDir first("intpolLabels", 0, 0), second("intpolLabels", 0, 0);
        ASSERT_TRUE(first.create(0775));
        ASSERT_TRUE(second.create(0700));
        EXPECT_FALSE(first.path() == second.path());
        path = first.path();
        EXPECT_EQ(int(std::filesystem::status(path.str()).permissions()), 0775);
        EXPECT_TRUE(second.remove());
        EXPECT_FALSE(std::filesystem::exists(second.path().str()));
    }
    ASSERT_TRUE(std::filesystem::is_directory(path.str()));
    std::filesystem::remove_all(path.str());

    McTmpDir filled("intpolLabels", 0, 0);
    EXPECT_TRUE(filled.remove()) << "nothing there yet";
    ASSERT_TRUE(filled.create(0775));
    path = filled.path();
    std::filesystem::create_directory(path.str() + "/sub");
    std::ofstream(path.str() + "/sub/file") << "x";
    EXPECT_TRUE(filled.remove());
    EXPECT_FALSE(std::filesystem::exists(path.str()));
    EXPECT_TRUE(filled.path().isEmpty());
    McTmpDir impossible("no/such/folder/", 0, 0);
    EXPECT_FALSE(impossible.create(0775));
}

TEST(McEvent, KindsAndButtonsAreTold)
{
    McMouseButtonEvent press;
    press.pressed = 1;
    press.button = 2;
    McEvent* event = &press;
    EXPECT_EQ(event->as<McButtonEvent>(), &press);
    EXPECT_EQ(event->as<McMotionEvent>(), nullptr);
    EXPECT_TRUE(McMouseButtonEvent::isButtonPressEvent(event, 2));
    EXPECT_FALSE(McMouseButtonEvent::isButtonPressEvent(event, 1));
    EXPECT_FALSE(McMouseButtonEvent::isButtonPressEvent(event, 0)) << "any button: releases only";
    EXPECT_FALSE(McMouseButtonEvent::isButtonReleaseEvent(event, 0));
    press.pressed = 0;
    EXPECT_TRUE(McMouseButtonEvent::isButtonReleaseEvent(event, 0));
    EXPECT_TRUE(McMouseButtonEvent::isButtonReleaseEvent(event, 2));
    EXPECT_FALSE(McMouseButtonEvent::isButtonReleaseEvent(event, 3));
    McMotionEvent motion;
    EXPECT_FALSE(McMouseButtonEvent::isButtonReleaseEvent(&motion, 0));
    EXPECT_FALSE(McMouseButtonEvent::isButtonPressEvent(nullptr, 1));
}
