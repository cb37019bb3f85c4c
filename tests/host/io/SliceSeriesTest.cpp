#include "DicomFile.h"
#include "FileTest.h"

#include "io/HxNaturalOrder.h"

#include <QImage>
#include <algorithm>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<short> slice(int first)
{
    std::vector<short> v(6);
    for (int i = 0; i < 6; ++i) v[static_cast<std::size_t>(i)] = static_cast<short>(first + i);
    return v;
}

class SliceSeries : public FileTest
{
protected:
    // Names tell nothing about the order: slice i is stored under the i-th of these.
    std::vector<std::string> storeSeries(const std::vector<std::string>& positions, DicomFile dicom = {})
    {
        const char* const names[] = {"k", "b", "z", "a"};
        std::vector<std::string> files;
        for (std::size_t i = 0; i < positions.size(); ++i) {
            dicom.position = positions[i];
            dicom.number = 100 - static_cast<int>(i);
            files.push_back(
                store("dicom/" + std::string(names[i]), dicom.bytes(slice(10 * static_cast<int>(i)))));
        }
        return files;
    }

    static std::vector<short> firstVoxels(const Field& field)
    {
        std::vector<short> firsts;
        const auto all = voxels<short>(field);
        for (std::size_t i = 0; i < all.size(); i += 6) firsts.push_back(all[i]);
        return firsts;
    }
};

TEST_F(SliceSeries, DicomSortsByPositionAlongTheNormal)
{
    std::vector<std::string> files = storeSeries({"5\\6\\-1.5", "5\\6\\1", "5\\6\\3.5", "5\\6\\6.0"});
    store("dicom/.hidden", "x");
    store("dicom/notes.txt", "x");
    for (bool asFolder : {true, false}) {
        std::reverse(files.begin(), files.end());
        const Field field = asFolder ? load(path("dicom")) : load(files);
        ASSERT_TRUE(field) << error;
        EXPECT_THAT(firstVoxels(field), ElementsAre(0, 10, 20, 30));
        EXPECT_EQ(field->lattice()->primType(), 1);
        EXPECT_EQ(field->coords()->kind(), 1);
        EXPECT_THAT(boxOf(field), ElementsAre(5, 6.5F, 6, 6.5F, -1.5F, 6));
    }
    // A sagittal frame: the normal of rows along y and columns along -z is -x.
    const Field sagittal =
        load(storeSeries({"4\\0\\0", "2\\0\\0", "0\\0\\0"}, DicomFile{.orientation = "0\\1\\0\\0\\0\\-1"}));
    ASSERT_TRUE(sagittal) << error;
    EXPECT_THAT(firstVoxels(sagittal), ElementsAre(0, 10, 20));
    EXPECT_THAT(numbers(sagittal, "Directions", 9), ElementsAre(0, 0, -1, 1, 0, 0, 0, -1, 0));
    EXPECT_THAT(numbers(sagittal, "Origin", 3), ElementsAre(4, 0, 0));
}

TEST_F(SliceSeries, DicomWithUnequalGapsIsStacked)
{
    const Field field = load(storeSeries({"0\\0\\10", "0\\0\\12.5", "0\\0\\20", "0\\0\\15"}));
    ASSERT_TRUE(field) << error;
    ASSERT_TRUE(field->coords()->zPositions());
    EXPECT_THAT(std::vector<float>(field->coords()->zPositions(), field->coords()->zPositions() + 4),
                ElementsAre(10, 12.5F, 15, 20));
    EXPECT_THAT(firstVoxels(field), ElementsAre(0, 10, 30, 20));
    // Rounding of the scanner is no gap.
    EXPECT_EQ(load(storeSeries({"0\\0\\0", "0\\0\\0.334", "0\\0\\0.666", "0\\0\\1"}))->coords()->kind(), 1);
}

TEST_F(SliceSeries, DicomRescalesAndWidensToOneTypeForAllSlices)
{
    store("r/1",
          DicomFile{.position = "0\\0\\0", .slope = "2", .intercept = "-1024", .number = 1}.bytes(slice(0)));
    store("r/2",
          DicomFile{.position = "0\\0\\1", .slope = "0.5", .intercept = "0", .number = 2}.bytes(slice(1)));
    const Field field = load(path("r"));
    ASSERT_TRUE(field) << error;
    ASSERT_EQ(field->lattice()->primType(), 4);
    const auto all = voxels<double>(field);
    EXPECT_EQ(all[1], -1022);
    EXPECT_EQ(all[6], 0.5);
}

TEST_F(SliceSeries, DicomTellsOfSeveralSeriesOfDoubleAndOfMissingPositions)
{
    const auto files = storeSeries({"0\\0\\0", "0\\0\\1"});
    store("dicom/other", DicomFile{.series = "1.2.99"}.bytes(slice(0)));
    EXPECT_FALSE(load(path("dicom")));
    EXPECT_THAT(error, HasSubstr("dicom: holds 2 series, load the files of one: "));
    EXPECT_THAT(error, HasSubstr("\"Series 1.2.3.4\" with 2 slices of 3 x 2, from "));
    EXPECT_THAT(error, HasSubstr("\"Series 1.2.99\" with 1 slices"));

    EXPECT_FALSE(load(storeSeries({"0\\0\\0", "0\\0\\1", "0\\0\\0"})));
    EXPECT_THAT(error, HasSubstr("lies at the same position as"));

    EXPECT_TRUE(console.empty());
    const Field unplaced = load(storeSeries({"", "", ""}));
    ASSERT_TRUE(unplaced) << error;
    EXPECT_THAT(firstVoxels(unplaced), ElementsAre(20, 10, 0)) << "by instance number";
    EXPECT_THAT(console, ElementsAre(HasSubstr("the slices have no positions")));

    EXPECT_TRUE(load(storeSeries({"0\\0\\0", "0\\3\\1"})));
    EXPECT_THAT(console.back(), HasSubstr("tilted gantry"));
}

TEST_F(SliceSeries, PicturesStackInNaturalOrder)
{
    for (const char* format : {"png", "jpg"}) {
        const std::string name = std::string(format) + "/s";
        std::filesystem::create_directories(path(format));
        std::vector<std::string> files;
        for (int i : {10, 9, 1}) {
            QImage image(8, 8, QImage::Format_Grayscale8);
            image.fill(QColor(i, i, i));
            files.push_back(path(name + std::to_string(i) + "." + format));
            ASSERT_TRUE(image.save(QString::fromStdString(files.back())));
        }
        for (const Field& field : {load(path(format)), load(files)}) {
            ASSERT_TRUE(field) << error;
            const auto all = voxels<unsigned char>(field);
            ASSERT_EQ(all.size(), 192U);
            EXPECT_THAT((std::vector<int>{all[0], all[64], all[128]}), ElementsAre(1, 9, 10));
        }
    }
    EXPECT_FALSE(load(std::vector<std::string>{path("png/s1.png"), path("jpg/s9.jpg")}));
    EXPECT_THAT(error, HasSubstr("several files must be one series"));

    QImage wide(9, 8, QImage::Format_Grayscale8);
    wide.fill(0);
    wide.save(QString::fromStdString(path("png/s11.png")));
    EXPECT_FALSE(load(path("png")));
    EXPECT_THAT(error,
                HasSubstr("s11.png: has 9 x 8 pixels, but the other slices of its series have 8 x 8."));

    QImage colors(8, 8, QImage::Format_RGB32);
    colors.fill(Qt::red);
    colors.save(QString::fromStdString(path("red.png")));
    EXPECT_FALSE(load(path("red.png")));
    EXPECT_THAT(error, HasSubstr("red.png: has several values per pixel"));
}

TEST_F(SliceSeries, PicturesOfOneBitAreTheirGreyOrTheirIndices)
{
    // 5 x 2 pixels of the bits 10110 01001, once grey, where 1 is white, and once with white as entry 0.
    const char* const head = "89504e470d0a1a0a0000000d49484452000000050000000201";
    const char* const pixels = "0000000c49444154789c63d8c0e00100025c00f9976c49a60000000049454e44ae426082";
    for (const char* kind : {"00000000b8112bf0", "03000000aaa4841e00000006504c5445ffffff00000055c2d37e"}) {
        const QByteArray bytes = QByteArray::fromHex(QByteArray(head) + kind + pixels);
        const Field field = load(store("bits.png", bytes.toStdString()));
        ASSERT_TRUE(field) << error;
        EXPECT_THAT(voxels<unsigned char>(field), ElementsAre(1, 0, 1, 1, 0, 0, 1, 0, 0, 1)) << kind;
    }
}

TEST_F(SliceSeries, TiffSlicesAndFolders)
{
    std::filesystem::create_directories(path("tiff"));
    for (int i : {2, 12}) {
        const Field one = randomImage({3, 2, 1}, 7);
        static_cast<unsigned short*>(one->lattice()->dataPtr())[0] = static_cast<unsigned short>(i);
        ASSERT_TRUE(save(one, path("tiff/i" + std::to_string(i) + ".tif"))) << error;
    }
    const Field field = load(path("tiff"));
    ASSERT_TRUE(field) << error;
    EXPECT_EQ(voxels<unsigned short>(field)[0], 2);
    EXPECT_EQ(voxels<unsigned short>(field)[6], 12);

    std::filesystem::create_directories(path("empty"));
    EXPECT_FALSE(load(path("empty")));
    EXPECT_THAT(error, HasSubstr("empty: the folder holds no file that can be read."));
}

TEST(NaturalOrder, CountsAPersonsWay)
{
    std::vector<std::string> names{
        "s10", "s9", "s09", "a2b10", "a2b9", "s", "S1", "s9a", "s123456789012345678901"};
    std::sort(names.begin(), names.end(), hxNaturalLess);
    EXPECT_THAT(names,
                ElementsAre("S1", "a2b9", "a2b10", "s", "s09", "s9", "s9a", "s10", "s123456789012345678901"));
}

} // namespace
