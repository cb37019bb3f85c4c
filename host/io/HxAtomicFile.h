#pragma once

#include <cstddef>
#include <string>

/// A file that is written beside its target and takes the target's place only when it is complete, so
/// that an interrupted or failed save never harms the old file.
///
/// All operations throw HxFileError, which names the target. The destructor removes the temporary file
/// unless commit() has succeeded.
class HxAtomicFile
{
public:
    /// Reserves an empty temporary file in the target's folder. A target that is a symbolic link is
    /// replaced where the link points to; its permissions carry over.
    ///
    /// suffix  end of the temporary name, for writers that choose the format by it
    explicit HxAtomicFile(const std::string& target, const std::string& suffix = "");
    ~HxAtomicFile();
    HxAtomicFile(const HxAtomicFile&) = delete;
    HxAtomicFile& operator=(const HxAtomicFile&) = delete;

    /// The temporary file, for writers that open it by name.
    const std::string& path() const { return temporary; }
    const std::string& targetName() const { return target; }

    /// Appends bytes; an interruption is an error. Not for files that another writer opens by name.
    void write(const void* data, std::size_t bytes);
    void write(const std::string& text) { write(text.data(), text.size()); }

    /// Brings the bytes to the disk and renames.
    void commit();

    /// For writers that open the file by name and fail without the reason: makes sure beforehand that the
    /// disk has room.
    void checkSpace(std::size_t bytes) const;

private:
    [[noreturn]] void fail(const char* action, int error) const;

    std::string target;
    std::string finalPath; // the target with links followed
    std::string temporary;
    int descriptor = -1;
    bool committed = false;
};
