#include "io/HxAtomicFile.h"

#include "io/HxFileError.h"
#include "io/hxStopIfInterrupted.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

std::string folderOf(const std::string& path)
{
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

// Step by step, so that a link to a file that does not exist yet leads there, too.
std::string followLinks(const std::string& path)
{
    constexpr int kMostLinks = 40; // as the system itself
    std::filesystem::path at = path;
    for (int i = 0; i < kMostLinks; ++i) {
        std::error_code noLink;
        const std::filesystem::path next = std::filesystem::read_symlink(at, noLink);
        if (noLink) return at.string();
        at = at.parent_path() / next; // an absolute one stays itself
    }
    throw HxFileError(path, "is a link that leads back to itself");
}

} // namespace

HxAtomicFile::HxAtomicFile(const std::string& file, const std::string& suffix)
    : target(file), finalPath(followLinks(file))
{
    struct stat old;
    const bool exists = ::stat(finalPath.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode))
        throw HxFileError(target, "cannot be written, since it is no regular file");
    if (exists && ::access(finalPath.c_str(), W_OK) != 0) fail("be written", errno);

    // A short name of its own: the target's name may be as long as names can be.
    static std::atomic<unsigned> counter{0};
    do {
        temporary = folderOf(finalPath) + "/.vorel-" + std::to_string(::getpid()) + "-" +
                    std::to_string(counter++) + suffix;
        descriptor = ::open(temporary.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    } while (descriptor < 0 && errno == EEXIST);
    if (descriptor < 0) {
        const int error = errno;
        committed = true; // there is nothing to remove
        if (error == ENOENT) throw HxFileError(target, "the folder " + folderOf(target) + " does not exist");
        fail("be written", error);
    }
    if (exists && ::fchmod(descriptor, old.st_mode & 07777) != 0) {
        // The owner alone may keep the permissions; a file shared by its group gets the usual ones.
    }
}

HxAtomicFile::~HxAtomicFile()
{
    if (descriptor >= 0) ::close(descriptor);
    if (!committed) ::unlink(temporary.c_str());
}

void HxAtomicFile::write(const void* data, std::size_t bytes)
{
    const char* from = static_cast<const char*>(data);
    while (bytes > 0) {
        hxStopIfInterrupted(target);
        const ssize_t done = ::write(descriptor, from, std::min(bytes, kHxBytesPerPoll));
        if (done < 0 && errno == EINTR) continue;
        if (done < 0) fail("be written", errno);
        from += done;
        bytes -= static_cast<std::size_t>(done);
    }
}

void HxAtomicFile::commit()
{
    if (::fsync(descriptor) != 0) fail("be written", errno);
    const int closed = ::close(descriptor);
    descriptor = -1;
    if (closed != 0) fail("be written", errno);
    if (::rename(temporary.c_str(), finalPath.c_str()) != 0) fail("be replaced", errno);
    committed = true;

    // The new name itself must survive a power cut too; a file system without this is left as it is.
    const int folder = ::open(folderOf(finalPath).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return;
    ::fsync(folder);
    ::close(folder);
}

void HxAtomicFile::checkSpace(std::size_t bytes) const
{
    struct statvfs disk;
    if (::fstatvfs(descriptor, &disk) == 0 && disk.f_bavail * disk.f_frsize < bytes)
        fail("be written", ENOSPC);
}

void HxAtomicFile::fail(const char* action, int error) const
{
    throw HxFileError(target, std::string("cannot ") + action + ": " + std::strerror(error));
}
