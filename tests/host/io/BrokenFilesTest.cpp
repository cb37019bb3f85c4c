// Files that are cut short, damaged, foreign or absurd: one clear sentence each, and nothing else.

#include "DicomFile.h"
#include "FileTest.h"

#include <QImage>
#include <unistd.h>

namespace {

using testing::HasSubstr;

class BrokenFiles : public FileTest
{
protected:
    std::string nrrd(const std::string& fields, const std::string& data = std::string(24, 'x'))
    {
        return store("bad.nrrd", "NRRD0004\n" + fields + "\n" + data);
    }

    void expectError(const std::string& file, const std::string& reason, bool asLabels = false)
    {
        SCOPED_TRACE(file + " " + reason);
        EXPECT_FALSE(load(file, asLabels));
        EXPECT_EQ(error.compare(0, file.size() + 2, file + ": "), 0) << error;
        EXPECT_THAT(error, HasSubstr(reason));
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
        EXPECT_EQ(error.back(), '.') << error;
        EXPECT_EQ(error.find("0x"), std::string::npos) << error;
    }

    std::string cut(const std::string& file, double part)
    {
        const std::string bytes = bytesOf(file);
        return store("cut-" + std::filesystem::path(file).filename().string(),
                     bytes.substr(0, static_cast<std::size_t>(static_cast<double>(bytes.size()) * part)));
    }
};

TEST_F(BrokenFiles, NrrdHeadersThatMakeNoSense)
{
    const std::string ok = "type: short\ndimension: 3\nsizes: 2 2 3\nendian: little\nencoding: raw\n";
    ASSERT_TRUE(load(nrrd(ok)));
    const auto with = [&](const std::string& from, const std::string& to) {
        std::string text = ok;
        return nrrd(text.replace(text.find(from), from.size(), to));
    };
    expectError(with("short", "block"), "the element type \"block\" is unknown");
    expectError(with("type: short\n", ""), "has no element type");
    expectError(with("sizes: 2 2 3\n", ""), "has no sizes");
    expectError(with("2 2 3", "2 2"), "gives 2 sizes for 3 dimensions");
    expectError(with("2 2 3", "2 0 3"), "announces a size of 0");
    expectError(with("2 2 3", "2 -2 3"), "announces a size of -2");
    expectError(with("2 2 3", "2 x 3"), "\"x\" is no number");
    expectError(with("dimension: 3", "dimension: 99"), "announces 99 dimensions");
    expectError(with("dimension: 3\nsizes: 2 2 3", "dimension: 4\nsizes: 2 2 3 2"),
                "have 2 components per voxel or time steps");
    expectError(with("dimension: 3\nsizes: 2 2 3", "dimension: 1\nsizes: 12"), "have 1 spatial dimensions");
    expectError(with("endian: little\n", ""), "does not tell the byte order");
    expectError(with("raw", "bzip2"), "the encoding \"bzip2\" cannot be read");
    expectError(with("raw", "gzip"), "damaged");
    expectError(with("encoding: raw\n", "encoding: raw\nnonsense\n"),
                "\"nonsense\" is no line of an NRRD header");
    expectError(with("encoding: raw\n", "encoding: raw\ndata file: none.raw\n"), "none.raw does not exist");
    expectError(with("2 2 3", "3 2 3"), "announces 36 bytes of voxels, but the file holds only 24");
    expectError(with("2 2 3", "2097152 2097152 2097152"), "more than any memory holds");
    expectError(with("2 2 3", "100000 100000 1000"), "announces 20000000000000 bytes");
    expectError(nrrd(ok + "space: left-posterior-superior\nspace directions: (1,0,0) (2,0,0) (0,0,1)\n"),
                "span no volume");
    expectError(nrrd(ok + "space directions: (1,0,0) (0,0,0) (0,0,1)\n"), "has no length");
    expectError(nrrd(ok + "space directions: (1,0,0) (0,nan,0) (0,0,1)\n"), "no finite numbers");
    expectError(store("bad.nrrd", "NRRD0004\n" + ok), "has no end");
    expectError(nrrd("type: uint8\ndimension: 2\nsizes: 2 2\nencoding: ascii\n", "1 2 3 four"),
                "3 of 4 numbers");
    expectError(nrrd(ok + "byte skip: 9223372036854775807\n"), "skips more bytes than any file holds");
    expectError(nrrd(ok + "data file: s%d.raw -9223372036854775807 9223372036854775807 1\n"),
                "names no data files");
    expectError(nrrd(ok + "data file: s%d.raw 1 8 1\n"), "do not fill 8 data files evenly");
    expectError(nrrd(ok + "Segment0_ID:=a\nSegment0_LabelValue:=300\n"), "Segment0_LabelValue is \"300\"");
    expectError(nrrd(ok + "Segment0_ID:=a\nSegment0_Layer:=7\n"), "Segment0_Layer is \"7\"");
}

TEST_F(BrokenFiles, FilesOfAnyFormatThatEndEarly)
{
    const Field image = randomImage({40, 30, 20}, 1);
    for (const char* name : {"a.nrrd", "a.nii", "a.nii.gz", "a.mha", "a.tif"})
        ASSERT_TRUE(save(image, path(name))) << error;
    QImage picture(200, 200, QImage::Format_Grayscale8);
    for (int i = 0; i < 40000; ++i) picture.bits()[i] = static_cast<unsigned char>(random());
    for (const char* name : {"a.png", "a.jpg", "a.bmp"})
        ASSERT_TRUE(picture.save(QString::fromStdString(path(name))));

    store("a.dcm", DicomFile{.rows = 50, .columns = 50}.bytes(std::vector<short>(2500, 7)));

    for (const char* name :
         {"a.nrrd", "a.nii", "a.nii.gz", "a.mha", "a.tif", "a.png", "a.jpg", "a.bmp", "a.dcm"})
        for (double part : {0.001, 0.02, 0.5, 0.999}) expectError(cut(path(name), part), "");
    EXPECT_EQ(HxObjectPool::getThePool()->size(), 0);
}

TEST_F(BrokenFiles, HeadersThatAnnounceMoreThanTheFileHolds)
{
    ASSERT_TRUE(save(randomImage({4, 3, 2}, 1), path("n.nii")));
    std::string nifti = bytesOf(path("n.nii"));
    const std::int16_t huge[3] = {32767, 32767, 32767};
    std::memcpy(nifti.data() + 42, huge, sizeof huge);
    expectError(store("huge.nii", nifti),
                "announces 70362301923326 bytes of voxels, but the file holds only 48");
    const std::int16_t negative = -5;
    std::memcpy(nifti.data() + 44, &negative, 2);
    expectError(store("negative.nii", nifti), "announces a size of -5");

    const std::string meta =
        "ObjectType = Image\nNDims = 3\nDimSize = 90000 90000 9000\nElementType = MET_SHORT\n";
    expectError(store("huge.mha", meta + "ElementDataFile = LOCAL\nabc"), "but the file holds only 3");
    expectError(store("packed.mha", meta + "CompressedData = True\nElementDataFile = LOCAL\nabc"),
                "more than the 3 bytes of packed data");
    expectError(store("none.mhd", meta + "ElementDataFile = no.raw\n"), "no.raw does not exist");
}

TEST_F(BrokenFiles, FilesOfNoKnownKind)
{
    expectError(path("missing.nrrd"), "does not exist");
    expectError(store("empty.nii", ""), "is empty");
    expectError(store("text.nrrd", "This is no image.\n"), "has no format that can be read");
    expectError(store("half.gz", "\x1f\x8b\x08"), "has no format that can be read");
    expectError("/dev/null", "is no regular file");
    expectError(store("picture.png", "\x89PNG\r\n\x1a\n" + std::string(100, 'x')), "PNG");
    expectError(store("scan.dcm", std::string(128, 0) + "DICM" + std::string(100, 'x')), "DICOM");
    expectError(store("photo.jpg", "\xff\xd8\xff\xe0" + std::string(100, 'x') + "\xff\xd9"), "JPEG");
    expectError(store("page.tif", std::string("II*\0", 4) + std::string(100, 'x')), "TIFF");
}

// Any byte may be wrong. Whatever comes of it, a load ends in a field or in one sentence.
TEST_F(BrokenFiles, RandomDamageNeverDoesMoreThanFail)
{
    const Field image = randomImage({7, 5, 3}, 1);
    image->parameters.set("Text", "some {text} here");
    for (const char* name : {"f.nrrd", "f.nii", "f.mha", "f.tif", "f.nii.gz"})
        ASSERT_TRUE(save(image, path(name))) << error;
    const unsigned long dims[3] = {7, 5, 3};
    const Field labels((new HxLabelLattice3(new HxLatticeCoords(1, dims)))->create());
    ASSERT_TRUE(save(labels, path("f.seg.nrrd")));
    QImage picture(20, 20, QImage::Format_Grayscale8);
    picture.fill(7);
    for (const char* name : {"f.png", "f.bmp", "f.jpg"})
        ASSERT_TRUE(picture.save(QString::fromStdString(path(name))));

    store("f.dcm", DicomFile().bytes(std::vector<short>(6, 7)));

    for (const char* name :
         {"f.nrrd", "f.nii", "f.mha", "f.tif", "f.nii.gz", "f.seg.nrrd", "f.png", "f.bmp", "f.jpg", "f.dcm"})
        for (int round = 0; round < 100; ++round) {
            std::string bytes = bytesOf(path(name));
            const std::size_t reach = round % 3 ? std::min<std::size_t>(bytes.size(), 400) : bytes.size();
            for (unsigned k = 0; k <= random() % 3; ++k)
                bytes[random() % reach] = static_cast<char>(random());
            const Field field = load(store(std::string("damaged-") + name, bytes));
            if (!field) {
                EXPECT_THAT(error, HasSubstr(std::string("damaged-") + name + ": ")) << "round " << round;
            }
        }
}

} // namespace
