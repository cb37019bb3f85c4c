#include "io/HxTiffPages.h"

#include "io/HxFileError.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <set>
#include <vector>

namespace {

// Numbers of the format: TIFF, revision 6.0, Adobe, 1992, and the design of BigTIFF.
constexpr std::uint64_t kStripOffsets = 273;
constexpr std::uint64_t kStripByteCounts = 279;
constexpr std::uint64_t kTileOffsets = 324;
constexpr std::uint64_t kTileByteCounts = 325;

class TiffFile
{
public:
    explicit TiffFile(const std::string& file) : path(file), in(file, std::ios::binary | std::ios::ate)
    {
        size = static_cast<std::uint64_t>(std::max<std::streamoff>(0, in.tellg()));
        in.seekg(0);
        isBigEndian = in.get() == 'M';
        isBigTiff = number(2, 2) == 43;
    }

    void checkAllPages()
    {
        std::set<std::uint64_t> seen;
        std::uint64_t page = isBigTiff ? number(8, 8) : number(4, 4);
        if (page == 0) throw HxFileError(path, "the TIFF file has no pages");
        for (; page != 0; page = checkPage(page))
            if (!seen.insert(page).second)
                throw HxFileError(path, "the pages of the TIFF file run in a circle");
    }

private:
    std::uint64_t number(std::uint64_t at, unsigned bytes)
    {
        if (at > size || size - at < bytes) throw HxFileError(path, "the TIFF file ends early");
        unsigned char b[8];
        in.seekg(static_cast<std::streamoff>(at));
        in.read(reinterpret_cast<char*>(b), bytes);
        if (!in) throw HxFileError(path, "the TIFF file cannot be read");
        std::uint64_t v = 0;
        for (unsigned i = 0; i < bytes; ++i)
            v |= std::uint64_t(b[isBigEndian ? bytes - 1 - i : i]) << (8 * i);
        return v;
    }

    // returns the place of the next page, 0 after the last
    std::uint64_t checkPage(std::uint64_t page)
    {
        const unsigned wide = isBigTiff ? 8 : 4;
        const std::uint64_t count = number(page, isBigTiff ? 8 : 2);
        const std::uint64_t first = page + (isBigTiff ? 8 : 2);
        const unsigned entrySize = isBigTiff ? 20 : 12;
        if (count > size / entrySize) throw HxFileError(path, "the TIFF file ends early");
        std::vector<std::uint64_t> offsets;
        std::vector<std::uint64_t> lengths;
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t entry = first + i * entrySize;
            const std::uint64_t tag = number(entry, 2);
            if (tag == kStripOffsets || tag == kTileOffsets) offsets = values(entry);
            if (tag == kStripByteCounts || tag == kTileByteCounts) lengths = values(entry);
        }
        for (std::size_t i = 0; i < std::min(offsets.size(), lengths.size()); ++i)
            if (offsets[i] > size || size - offsets[i] < lengths[i])
                throw HxFileError(path, "the TIFF file ends early");
        return number(first + count * entrySize, wide);
    }

    // The numbers of an entry, which stand in it if they fit, else at a place that it gives.
    std::vector<std::uint64_t> values(std::uint64_t entry)
    {
        const unsigned wide = isBigTiff ? 8 : 4;
        const std::uint64_t type = number(entry + 2, 2);
        const unsigned bytes = type == 3 ? 2 : type == 16 ? 8 : 4;
        const std::uint64_t count = number(entry + 4, wide);
        const std::uint64_t field = entry + 4 + wide;
        if (count > size / bytes) throw HxFileError(path, "the TIFF file ends early");
        const std::uint64_t start = count * bytes <= wide ? field : number(field, wide);
        std::vector<std::uint64_t> all;
        for (std::uint64_t i = 0; i < count; ++i) all.push_back(number(start + i * bytes, bytes));
        return all;
    }

    std::string path;
    std::ifstream in;
    std::uint64_t size = 0;
    bool isBigEndian = false;
    bool isBigTiff = false;
};

} // namespace

void hxCheckTiffPages(const std::string& path)
{
    TiffFile(path).checkAllPages();
}
