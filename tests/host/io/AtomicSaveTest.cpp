#include "FileTest.h"

#include "hx/HxWorkArea.h"

#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using testing::HasSubstr;

/// Lets files of this process grow to so many bytes only, as if the disk were full.
class SmallFiles
{
public:
    explicit SmallFiles(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &before);
        handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit now{bytes, before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &now);
    }
    ~SmallFiles()
    {
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }

private:
    rlimit before{};
    void (*handler)(int) = nullptr;
};

class AtomicSave : public FileTest
{
protected:
    std::size_t numFiles() const
    {
        std::size_t n = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(path(""))) ++n;
        return n;
    }
};

TEST_F(AtomicSave, AFailureLeavesTheOldFileAndNothingElse)
{
    const Field image = randomImage({64, 64, 16}, 1); // 128 KiB
    for (const char* name : {"a.nrrd", "a.nii", "a.nii.gz", "a.mha", "a.mhd", "a.tif", "a"}) {
        SCOPED_TRACE(name);
        const std::string file = store(name, "the old content");
        const std::size_t before = numFiles();
        {
            const SmallFiles limit(50000);
            EXPECT_FALSE(save(image, file));
        }
        // The voxels of this one go to a file of their own.
        const std::string culprit = file == path("a.mhd") ? path("a.raw") : file;
        EXPECT_THAT(error, testing::StartsWith(culprit + ": "));
        EXPECT_EQ(bytesOf(file), "the old content");
        EXPECT_EQ(numFiles(), before);
        EXPECT_STRNE(image->getFilename(), file.c_str());
        EXPECT_TRUE(save(image, file)) << error;
    }
    EXPECT_FALSE(save(image, path("no/such/folder/a.nrrd")));
    EXPECT_EQ(error,
              path("no/such/folder/a.nrrd") + ": the folder " + path("no/such/folder") + " does not exist.");
    std::filesystem::create_directories(path("is-a-folder.nrrd"));
    EXPECT_FALSE(save(image, path("is-a-folder.nrrd")));
    EXPECT_THAT(error, HasSubstr("is no regular file"));
    for (const char* foreign : {"a.png", "a.hdr.gz", "a.VTK", "a.mnc", "a.tar.gz"}) {
        EXPECT_FALSE(save(image, path(foreign))) << foreign;
        EXPECT_THAT(error, HasSubstr("this format cannot be written; the suffixes are .nrrd, "));
    }
    EXPECT_FALSE(save(image, path("a.seg.nrrd")));
    EXPECT_THAT(error, HasSubstr("an image is no segmentation"));
}

TEST_F(AtomicSave, AFullDiskIsNamedAsTheReason)
{
    const std::string disk = path("disk");
    std::filesystem::create_directories(disk);
    const std::string mount = "mount -t tmpfs -o size=64k tmpfs " + disk + " 2>/dev/null";
    if (::geteuid() != 0 || std::system(mount.c_str()) != 0)
        GTEST_SKIP() << "this account cannot mount a small disk";
    const Field image = randomImage({64, 64, 16}, 1);
    std::ofstream(disk + "/old.nrrd") << "old";
    for (const char* name : {"/old.nrrd", "/a.nii", "/a.nii.gz", "/a.mhd", "/a.tif"}) {
        EXPECT_FALSE(save(image, disk + name));
        EXPECT_THAT(error, HasSubstr("No space left on device")) << name;
    }
    EXPECT_EQ(bytesOf(disk + "/old.nrrd"), "old");
    EXPECT_EQ(
        1, std::distance(std::filesystem::directory_iterator(disk), std::filesystem::directory_iterator()));
    EXPECT_EQ(0, std::system(("umount " + disk).c_str()));
}

TEST_F(AtomicSave, KeepsPermissionsAndFollowsLinks)
{
    const Field image = randomImage({3, 2, 2}, 0);
    const std::string file = store("real/target.nrrd", "old");
    ::chmod(file.c_str(), 0640);
    std::filesystem::create_symlink("real/target.nrrd", path("link.nrrd"));
    ASSERT_TRUE(save(image, path("link.nrrd"))) << error;
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.nrrd")));
    struct stat info;
    ASSERT_EQ(0, ::stat(file.c_str(), &info));
    EXPECT_EQ(info.st_mode & 0777U, 0640U);
    expectSameVoxels(image, load(file));
    EXPECT_EQ(std::string(image->getFilename()), path("link.nrrd"));

    // A link to a file that does not exist yet, by way of another one.
    std::filesystem::create_symlink("real/other.nrrd", path("first.nrrd"));
    std::filesystem::create_symlink(path("first.nrrd"), path("second.nrrd"));
    ASSERT_TRUE(save(image, path("second.nrrd"))) << error;
    EXPECT_TRUE(std::filesystem::is_symlink(path("second.nrrd")));
    EXPECT_TRUE(std::filesystem::is_symlink(path("first.nrrd")));
    expectSameVoxels(image, load(path("real/other.nrrd")));
    std::filesystem::create_symlink("round.nrrd", path("round.nrrd"));
    EXPECT_FALSE(save(image, path("round.nrrd")));
    EXPECT_THAT(error, HasSubstr("is a link that leads back to itself"));
}

TEST_F(AtomicSave, AnInterruptionLeavesEverythingAsItWas)
{
    HxWorkArea& area = *HxWorkArea::getTheWorkArea();
    const Field image = randomImage({64, 64, 16}, 0);
    for (const char* name : {"a.nrrd", "a.nii", "a.nii.gz", "a.mha", "a.mhd"}) {
        SCOPED_TRACE(name);
        const std::string file = path(name);
        ASSERT_TRUE(save(randomImage({3, 2, 2}, 1), file)) << error;
        const std::string before = bytesOf(file);
        const std::size_t numBefore = numFiles();
        // The first test passes, so that a part of the new file exists.
        area.interruptAfter(2);
        EXPECT_FALSE(save(image, file));
        EXPECT_THAT(error, testing::EndsWith(": interrupted."));
        EXPECT_EQ(bytesOf(file), before);
        EXPECT_EQ(numFiles(), numBefore);
        EXPECT_TRUE(load(file)) << error;

        area.interruptAfter(1);
        EXPECT_FALSE(load(file));
        EXPECT_EQ(error, file + ": interrupted.");
        EXPECT_EQ(area.busyDepth(), 0);
        EXPECT_FALSE(area.interrupted()) << "the next operation starts afresh";
    }
}

TEST_F(AtomicSave, VoxelsBesideAHeaderNeverTakeThePlaceOfOthers)
{
    const std::string unrelated = store("scan.raw", "not ours");
    const Field first = randomImage({4, 3, 2}, 1);
    const Field second = randomImage({4, 3, 2}, 1);
    ASSERT_TRUE(save(first, path("scan.mhd"))) << error;
    EXPECT_EQ(bytesOf(unrelated), "not ours");
    expectSameVoxels(first, load(path("scan.mhd")));
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(save(second, path("scan.mhd"))) << error;
        expectSameVoxels(second, load(path("scan.mhd")));
        EXPECT_EQ(numFiles(), 3U) << "the voxels of the old header go";
    }
    EXPECT_EQ(bytesOf(unrelated), "not ours");

    // Voxels under another name belong to somebody else, whatever a header says of them.
    std::filesystem::rename(unrelated, path("shared.raw"));
    store("own.mhd", "ObjectType = Image\nNDims = 3\nDimSize = 4 2 1\nElementType = MET_UCHAR\n"
                     "ElementDataFile = shared.raw\n");
    ASSERT_TRUE(load(path("own.mhd"))) << error;
    ASSERT_TRUE(save(first, path("own.mhd"))) << error;
    EXPECT_EQ(bytesOf(path("shared.raw")), "not ours");
    EXPECT_TRUE(std::filesystem::exists(path("own.raw")));
}

} // namespace
