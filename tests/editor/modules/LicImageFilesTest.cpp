// Files of the raster of bytes: what is written, what comes back, and what broken files lead to.

#include "modules/LicImage.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <string>
#include <utility>

namespace {

class LicImageFiles : public testing::Test
{
protected:
    LicImageFiles()
    {
        folder = std::filesystem::path(testing::TempDir()) /
                 testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::create_directories(folder);
        path = folder / "image.pnm";
        image.setSize(7, 5, 1);
        image.createRandom(3);
    }
    ~LicImageFiles() override { std::filesystem::remove_all(folder); }

    std::string contents() const
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void store(const std::string& text) const { std::ofstream(path, std::ios::binary) << text; }
    static std::string bytesOf(const LicImage& pixels)
    {
        std::string bytes;
        for (int y = 0; y < pixels.height; ++y)
            bytes.append(reinterpret_cast<const char*>(pixels.row(y)),
                         static_cast<std::size_t>(pixels.width * pixels.channels));
        return bytes;
    }
    std::string readingFails()
    {
        const std::string before = bytesOf(image);
        testing::internal::CaptureStderr();
        EXPECT_FALSE(image.readPNM(path.c_str()));
        EXPECT_EQ(bytesOf(image), before) << "the image stays as it was";
        return testing::internal::GetCapturedStderr();
    }

    std::filesystem::path folder, path;
    LicImage image;
};

TEST_F(LicImageFiles, ComeBackAsTheyWere)
{
    struct Case
    {
        int width, height, channels, text;
    };
    for (const Case c :
         {Case{1, 1, 1, 0}, Case{1, 1, 1, 1}, Case{40, 23, 1, 0}, Case{40, 23, 1, 1}, Case{40, 23, 3, 0},
          Case{3, 50, 3, 0}, Case{0, 0, 1, 0}, Case{0, 7, 1, 1}, Case{7, 0, 3, 0}}) {
        image.setSize(c.width, c.height, c.channels);
        image.createRandom(7);
        ASSERT_TRUE(image.writePNM(path.c_str(), c.text));
        LicImage read;
        ASSERT_TRUE(read.readPNM(path.c_str()));
        EXPECT_EQ(read.channels, c.channels);
        EXPECT_EQ(read.width, c.width);
        EXPECT_EQ(read.height, c.height);
        EXPECT_EQ(bytesOf(read), bytesOf(image));
    }
}

TEST_F(LicImageFiles, HaveTheLastRowFirstAndSixteenValuesALine)
{
    struct Case
    {
        int width, height, channels, stride, text;
        const char* contents;
    };
    const Case cases[] = {
        {3, 2, 1, 4, 0, "P5\n3 2\n255\n\x05\x06\x07\x01\x02\x03"},
        {3, 2, 1, 4, 1, "P2\n3 2\n255\n005  006  007  001  002  003  "},
        {1, 18, 1, 1, 1,
         "P2\n1 18\n255\n018  017  016  015  014  013  012  011  010  009  008  007  006  005  004  003 \n"
         "002  001  "},
        {2, 1, 4, 8, 0, "P5\n2 1\n255\n\x01\x05"}, // four channels are gray by their first
    };
    unsigned char pixels[20];
    std::iota(pixels, pixels + 20, 1);
    for (const Case& c : cases) {
        const LicImage written(c.width, c.height, c.channels, c.stride, pixels);
        written.writePNM(path.c_str(), c.text);
        EXPECT_EQ(contents(), c.contents);
    }
}

TEST_F(LicImageFiles, ColorTextHoldsTheFirstChannelAlone)
{
    unsigned char pixels[] = {10, 20, 30, 40, 50, 60};
    const LicImage color(2, 1, 3, 6, pixels);
    color.writePNM(path.c_str(), 1);
    EXPECT_EQ(contents(), "P3\n2 1\n255\n010  040  ");
    EXPECT_NE(readingFails(), "") << "two of six values";
    store("P3\n2 1\n255\n10 20 30 40 50 60\n");
    EXPECT_TRUE(image.readPNM(path.c_str())) << "files of other programs are whole";
    EXPECT_EQ(bytesOf(image), bytesOf(color));
}

TEST_F(LicImageFiles, ComeFromOtherProgramsAndThroughPipes)
{
    const std::pair<const char*, const char*> cases[] = {
        {"P5\n3 2\n255\nabcdef", "defabc"}, // the last row comes first
        {"P2\n3 2\n255\n97 98 99\n100 101 102\n", "defabc"},
        {"P5\n2 1\n0\nab", "ab"}, // the largest value scales nothing
        {"P5\n2 1\n100\nab", "ab"},
        {"P2\n# one\n# two\n2 1\n# three\n255\n97 98", "ab"},
    };
    for (const auto& [text, bytes] : cases) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        ASSERT_EQ(write(ends[1], text, std::strlen(text)), static_cast<ssize_t>(std::strlen(text)));
        close(ends[1]);
        EXPECT_TRUE(image.readPNM(("/dev/fd/" + std::to_string(ends[0])).c_str())) << text;
        close(ends[0]);
        EXPECT_EQ(bytesOf(image), bytes) << text;
    }
}

TEST_F(LicImageFiles, BrokenOnesAreRefused)
{
    const std::string error = "LicImage: Error in PNM file " + path.string() + "\n";
    const char* const broken[] = {
        "",
        "P5",
        "P4\n1 1\n1\nx",
        "Q5\n1 1\n255\nx",
        "P5\n# no end",
        "P5\n3 x\n255\nabc",
        "P5\n2 2\n255\nabc",
        "P5\n-2 2\n255\nabcd",
        "P5\n2 1\n65535\nabcd",
        "P5\n999999999 999999999\n255\nabc",
        "P5\n9999999999 1\n255\nabc",
        "P2\n2 2\n255\n1 2 3",
        "P2\n2 1\n255\n1 256",
        "P2\n2 1\n255\n1 -1",
        "P2\n2 1\n255\n1 x  ",
        "P6\n1 1\n255\nab",
    };
    for (const char* text : broken) {
        store(text);
        EXPECT_EQ(readingFails(), error) << text;
    }
    path = folder;
    EXPECT_EQ(readingFails(), "LicImage: Error in PNM file " + folder.string() + "\n") << "a folder";
    path = folder / "absent";
    EXPECT_EQ(readingFails(), "LicImage: Can't open file " + path.string() + "\n");
}

TEST_F(LicImageFiles, CannotBeWrittenEverywhere)
{
    testing::internal::CaptureStderr();
    EXPECT_FALSE(image.writePNM(folder.c_str(), 0));
    image.writeHistogram(folder.c_str());
    EXPECT_FALSE(image.writePNM("/dev/full", 1));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "LicImage: Can't open file " + folder.string() + "\nLicImage: Can't write histogram " +
                  folder.string() + "\nLicImage: Can't write file /dev/full\n");
}

TEST_F(LicImageFiles, HistogramCountsBytes)
{
    unsigned char pixels[] = {5, 5, 200, 0, 9, 9};
    const LicImage two(2, 3, pixels);
    testing::internal::CaptureStdout();
    two.writeHistogram(path.c_str());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Mean = 38\n");
    std::string expected;
    for (int v = 0; v < 256; ++v)
        expected += std::to_string(v) + (v == 5 || v == 9 ? " 2\n" : v == 0 || v == 200 ? " 1\n" : " 0\n");
    EXPECT_EQ(contents(), expected);
}

} // namespace
