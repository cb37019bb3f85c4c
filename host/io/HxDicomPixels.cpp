#include "io/HxDicomPixels.h"

#include "io/HxFileError.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

// Pixels of a volume begin sooner; before them lie names, dates and at most a preview.
constexpr std::size_t kReach = std::size_t(16) << 20;

// Tag (7FE0,0010) in little-endian order, and the end of a sequence of packed fragments.
constexpr char kPixelData[] = "\xe0\x7f\x10";
constexpr char kSequenceEnd[] = "\xfe\xff\xdd\xe0";
constexpr std::uint32_t kUndefinedLength = 0xffffffff;

std::string part(const std::string& path, std::uint64_t at, std::size_t count)
{
    std::ifstream in(path, std::ios::binary);
    in.seekg(static_cast<std::streamoff>(at));
    std::string bytes(count, 0);
    in.read(bytes.data(), static_cast<std::streamsize>(count));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

} // namespace

void hxCheckDicomPixels(const std::string& path)
{
    const std::uint64_t size = std::filesystem::file_size(path);
    const std::string head = part(path, 0, static_cast<std::size_t>(std::min<std::uint64_t>(size, kReach)));
    const std::string tag(kPixelData, 4);
    // A preview has pixels of its own, in a sequence before the image's.
    for (auto at = head.find(tag); at != std::string::npos; at = head.find(tag, at)) {
        const bool isExplicit = head.compare(at + 4, 2, "OW") == 0 || head.compare(at + 4, 2, "OB") == 0;
        const std::size_t lengthAt = at + (isExplicit ? 8 : 4);
        if (lengthAt + 4 > head.size()) throw HxFileError(path, "the DICOM file ends early");
        std::uint32_t length;
        std::memcpy(&length, head.data() + lengthAt, sizeof length);
        if (length == kUndefinedLength) {
            constexpr std::size_t kTail = 65536; // some elements may follow
            const std::string tail = part(path, size > kTail ? size - kTail : 0, kTail);
            if (tail.find(std::string(kSequenceEnd, 4)) != std::string::npos) return;
            throw HxFileError(path, "the DICOM file ends early");
        }
        if (lengthAt + 4 + length > size)
            throw HxFileError(path, "the DICOM file announces " + std::to_string(length) +
                                        " bytes of pixels, but holds only " +
                                        std::to_string(size - lengthAt - 4));
        at = lengthAt + 4 + length;
        if (at >= head.size()) return;
    }
}
