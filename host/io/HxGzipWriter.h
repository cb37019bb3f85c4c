#pragma once

#include <cstddef>
#include <vector>
#include <zlib.h>

class HxAtomicFile;

/// Packs bytes into a gzip stream at the end of a file. throws HxFileError
class HxGzipWriter
{
public:
    explicit HxGzipWriter(HxAtomicFile& file);
    ~HxGzipWriter();
    HxGzipWriter(const HxGzipWriter&) = delete;
    HxGzipWriter& operator=(const HxGzipWriter&) = delete;

    void write(const void* data, std::size_t bytes);
    /// Ends the stream. Without this call it is incomplete.
    void finish();

private:
    bool pack(int flush);

    HxAtomicFile& file;
    z_stream stream{};
    std::vector<unsigned char> packed;
};
