#include "io/HxGzipWriter.h"

#include "io/HxAtomicFile.h"
#include "io/HxFileError.h"
#include "io/hxStopIfInterrupted.h"

#include <algorithm>

namespace {

// Packs label fields nearly as small as the default level 6, in half the time.
constexpr int kLevel = 4;

constexpr std::size_t kChunk = std::size_t(1) << 20;

} // namespace

HxGzipWriter::HxGzipWriter(HxAtomicFile& target) : file(target), packed(kChunk)
{
    constexpr int kGzipFormat = 15 + 16;
    constexpr int kMemoryLevel = 9;
    if (::deflateInit2(&stream, kLevel, Z_DEFLATED, kGzipFormat, kMemoryLevel, Z_DEFAULT_STRATEGY) != Z_OK)
        throw HxFileError(file.targetName(), "not enough memory to pack the voxels");
}

HxGzipWriter::~HxGzipWriter()
{
    ::deflateEnd(&stream);
}

void HxGzipWriter::write(const void* data, std::size_t bytes)
{
    const char* from = static_cast<const char*>(data);
    while (bytes > 0) {
        const std::size_t n = std::min(bytes, kChunk);
        hxStopIfInterrupted(file.targetName()); // much may be packed before there is anything to write
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(from));
        stream.avail_in = static_cast<uInt>(n);
        while (pack(Z_NO_FLUSH)) {
        }
        from += n;
        bytes -= n;
    }
}

void HxGzipWriter::finish()
{
    while (pack(Z_FINISH)) {
    }
}

// returns whether more output is waiting
bool HxGzipWriter::pack(int flush)
{
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(kChunk);
    ::deflate(&stream, flush);
    file.write(packed.data(), kChunk - stream.avail_out);
    return stream.avail_out == 0;
}
