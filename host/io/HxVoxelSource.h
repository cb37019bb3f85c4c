#pragma once

#include "io/HxVolume.h"

#include <string>
#include <vector>

/// The packed voxels of a volume file: where they lie and how they are stored. A header fills it in.
///
/// Reads straight into the caller's memory and misses nothing: voxels that end early are an error, never
/// silence.
struct HxVoxelSource
{
    enum class Encoding
    {
        raw,
        deflated, ///< a gzip or zlib stream
        text      ///< decimal numbers
    };

    std::string header; ///< named in errors
    std::vector<std::string>
        files; ///< each holds the same number of bytes; relative names lie beside the header
    Encoding encoding = Encoding::raw;
    bool isBigEndian = false;
    long long offset = 0;   ///< of the stored data in each file
    long long lineSkip = 0; ///< lines of text after the offset
    /// Bytes after the lines, of the unpacked data if they are deflated; -1: the raw voxels are the end of
    /// the file.
    long long byteSkip = 0;

    /// Compares what a header announces with the sizes of the files, before any memory is taken.
    /// throws HxFileError if the voxels cannot all be there
    void check(const std::vector<unsigned long>& sizes, HxFileType type) const;

    /// Reads `count` elements in the byte order of the machine. throws HxFileError
    void read(void* out, std::size_t count, HxFileType type) const;

    /// The files that a printf-like pattern with one "%d" names.
    /// throws HxFileError if the pattern or the range makes no sense
    static std::vector<std::string> numberedFiles(const std::string& header, const std::string& pattern,
                                                  long long first, long long last, long long step);

    /// The first bytes of a file, unpacked if it is a gzip stream; fewer or none where it ends.
    static std::string firstBytes(const std::string& file, std::size_t count);

    static bool isGzip(const std::string& file);

private:
    std::string besideHeader(const std::string& file) const;
    void readPart(const std::string& file, char* out, std::size_t bytes, HxFileType type) const;
    [[noreturn]] void failForSize(std::size_t bytes, std::size_t count, std::size_t found,
                                  const std::string& file) const;
    [[noreturn]] void fail(const std::string& reason) const;
};
