#include "FileTest.h"

#include "hx/HxOrientation.h"
#include "hx/HxStackedScalarField3.h"

#include <cmath>

namespace {

const int kCodes[] = {0, 1, 7, 2, 8, 3, 4};

class ImageRoundTrip : public FileTest
{
protected:
    // An oblique, left-handed frame, as after a flip of one axis.
    static void turn(const Field& field, double angle, double handedness)
    {
        HxOrientation orientation;
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double directions[9] = {c, -s, 0, s, c, 0, 0, 0, handedness};
        std::copy(directions, directions + 9, orientation.directions);
        for (int k = 0; k < 3; ++k) orientation.origin[k] = field->coords()->boundingBox()[2 * k];
        orientation.write(field->parameters);
    }
};

TEST_F(ImageRoundTrip, KeepsVoxelsBoxAndDirectionsOfAllTypesInAllFormats)
{
    const float box[6] = {-12.5F, -12.5F + 0.7F * 12, 3, 3 + 1.3F * 6, 100.25F, 100.25F + 2.5F * 4};
    for (const char* suffix : {".nrrd", "", ".intpol", ".mha", ".mhd", ".nii", ".nii.gz"})
        for (int code : kCodes)
            for (double handedness : {1.0, -1.0}) {
                SCOPED_TRACE(std::string(suffix) + " code " + std::to_string(code));
                const Field image = randomImage({13, 7, 5}, code);
                image->coords()->setBoundingBox(box);
                turn(image, 0.3, handedness);
                ASSERT_TRUE(save(image, path("image" + std::string(suffix)))) << error;
                const Field again = load(path("image" + std::string(suffix)));
                expectSameVoxels(image, again);
                // NIfTI keeps the place as single-precision numbers and the frame as a quaternion.
                const double tolerance = std::string(suffix).rfind(".ni", 0) == 0 ? 2e-5 : 1e-12;
                const std::vector<double> wanted = numbers(image, "Directions", 9);
                const std::vector<double> found = numbers(again, "Directions", 9);
                ASSERT_EQ(found.size(), 9U);
                for (std::size_t i = 0; i < 9; ++i) EXPECT_NEAR(found[i], wanted[i], tolerance);
                for (std::size_t i = 0; i < 6; ++i)
                    EXPECT_NEAR(boxOf(again)[i], box[i], tolerance == 1e-12 ? 0 : tolerance);
            }
    EXPECT_TRUE(console.empty()) << console.front();
}

TEST_F(ImageRoundTrip, GivesBackTheNumbersOfAForeignHeaderDigitByDigit)
{
    // Numbers that a box in single precision cannot hold, a slice thickness, and a flip to RAS.
    const std::string header =
        "NRRD0004\ntype: uint8\ndimension: 3\nspace: right-anterior-superior\nsizes: 3 2 1\n"
        "space directions: (0.123456789012345,0,0) (0,0,-0.7) (0,2.5,0)\n"
        "space origin: (-98.123456789012,0.1,1234.5678901)\nencoding: raw\n\n";
    const Field image = load(store("a.nrrd", header + "abcdef"));
    ASSERT_TRUE(image) << error;
    EXPECT_EQ(numbers(image, "Directions", 9), (std::vector<double>{-1, 0, 0, 0, 0, -1, 0, -1, 0}));
    ASSERT_TRUE(save(image, path("b.nrrd")));
    EXPECT_THAT(bytesOf(path("b.nrrd")),
                testing::HasSubstr("space directions: (-0.123456789012345,0,0) (0,0,-0.7) (0,-2.5,0)\n"));
    EXPECT_THAT(bytesOf(path("b.nrrd")),
                testing::HasSubstr("space origin: (98.123456789012,-0.1,1234.5678901)\n"));

    // Who moves the box means it.
    const float box[6] = {0, 1, 0, 1, 0, 5};
    image->coords()->setBoundingBox(box);
    ASSERT_TRUE(save(image, path("c.nrrd")));
    EXPECT_THAT(bytesOf(path("c.nrrd")),
                testing::HasSubstr("space directions: (-0.5,0,0) (0,0,-1) (0,-5,0)\n"));
    EXPECT_THAT(bytesOf(path("c.nrrd")), testing::HasSubstr("space origin: (0,0,0)\n"));
}

TEST_F(ImageRoundTrip, KeepsSlicePositionsAndParametersInNrrdAndTellsWhatOthersDrop)
{
    const unsigned long dims[3] = {5, 3, 4};
    const float z[4] = {-1.5F, 0.1F, 0.35F, 7};
    const Field image(new HxStackedScalarField3(dims, 1, z));
    image->parameters.set("DataWindow", 2, std::vector<float>{10, 200}.data());
    ASSERT_TRUE(save(image, path("stack.nrrd"))) << error;
    EXPECT_TRUE(console.empty());
    const Field again = load(path("stack.nrrd"));
    ASSERT_TRUE(again && again->coords()->zPositions()) << error;
    EXPECT_TRUE(std::equal(z, z + 4, again->coords()->zPositions()));
    EXPECT_NE(nullptr, dynamic_cast<HxStackedScalarField3*>(&*again));
    EXPECT_EQ(numbers(again, "DataWindow", 2), (std::vector<double>{10, 200}));

    ASSERT_TRUE(save(image, path("stack.nii"))) << error;
    ASSERT_EQ(console.size(), 1U);
    EXPECT_EQ(console[0],
              path("stack.nii") +
                  ": the file does not keep the parameters (DataWindow) and the positions of the slices.");
    EXPECT_NEAR(load(path("stack.nii"))->coords()->voxelSize().z, 8.5 / 3, 1e-5);
}

TEST_F(ImageRoundTrip, DirectionsThatAreNoFrameAreNotWritten)
{
    const double nan = std::nan("");
    const double bad[][9] = {{0, 0, 0, 0, 0, 0, 0, 0, 0},
                             {1, 0, 0, 0, 2, 0, 0, 0, 1},
                             {1, 1, 0, 0, 0, 0, 0, 0, 1},
                             {nan, 0, 0, 0, 1, 0, 0, 0, 1}};
    const double origin[3] = {1, 2, 3};
    for (const double* directions : bad) {
        const Field image = randomImage({3, 2, 2}, 0);
        image->parameters.set("Directions", 9, directions);
        image->parameters.set("Origin", 3, origin);
        for (const char* name : {"a.nrrd", "a.nii", "a.mha"}) {
            ASSERT_TRUE(save(image, path(name))) << error;
            const Field again = load(path(name));
            ASSERT_TRUE(again) << error;
            EXPECT_EQ(boxOf(again), boxOf(image));
        }
    }
}

TEST_F(ImageRoundTrip, KeepsThePlaceOfASingleSliceAmongUnequalOnes)
{
    const unsigned long dims[3] = {5, 3, 1};
    const float z = 5;
    const Field image(new HxStackedScalarField3(dims, 1, &z));
    const std::vector<float> box = boxOf(image);
    ASSERT_TRUE(save(image, path("one.nrrd"))) << error;
    const Field again = load(path("one.nrrd"));
    ASSERT_TRUE(dynamic_cast<HxStackedScalarField3*>(&*again)) << error;
    EXPECT_EQ(boxOf(again), box);
}

TEST_F(ImageRoundTrip, GivesBackThePairsOfOtherPrograms)
{
    const std::string foreign = "modality:=MR\nb-value 2:=a := b\nnote:=two\\nlines\\\\ and \\n\nempty:=\n";
    const std::string header =
        "NRRD0004\ntype: uint8\ndimension: 3\nsizes: 3 2 1\nencoding: raw\n" + foreign + "\n";
    const Field image = load(store("a.nrrd", header + "abcdef"));
    ASSERT_TRUE(image) << error;
    image->parameters.set("Subject", "seven");
    ASSERT_TRUE(save(image, path("b.nrrd"))) << error;
    EXPECT_THAT(bytesOf(path("b.nrrd")), testing::HasSubstr("\n" + foreign));
    const Field again = load(path("b.nrrd"));
    ASSERT_TRUE(again && save(again, path("c.nrrd"))) << error;
    EXPECT_EQ(bytesOf(path("c.nrrd")), bytesOf(path("b.nrrd")));

    // As labels it keeps both kinds, too.
    std::string small = bytesOf(path("b.nrrd"));
    small.replace(small.size() - 6, 6, std::string("\0\1\2\2\0\0", 6));
    const Field labels = load(store("small.nrrd", small), true);
    ASSERT_TRUE(labels && save(labels, path("labels.nrrd"))) << error;
    McString subject;
    EXPECT_TRUE(labels->parameters.findString("Subject", subject));
    EXPECT_THAT(bytesOf(path("labels.nrrd")), testing::HasSubstr("\n" + foreign));
}

TEST_F(ImageRoundTrip, WritesTiffStacksOfTheTypesThatTiffHolds)
{
    for (int code : {0, 1, 7, 3}) {
        const Field image = randomImage({13, 7, 5}, code);
        ASSERT_TRUE(save(image, path("image.tif"))) << error;
        expectSameVoxels(image, load(path("image.tif")));
    }
    for (int code : {2, 8, 4}) {
        EXPECT_FALSE(save(randomImage({3, 2, 2}, code), path("wide.tif")));
        EXPECT_THAT(error, testing::HasSubstr("wide.tif: TIFF files cannot hold"));
    }
    EXPECT_FALSE(std::filesystem::exists(path("wide.tif")));
}

} // namespace
