// Raster of bytes: PNM files and the histogram.

#include "modules/LicImage.h"

#include <sys/stat.h>

#include <array>
#include <cctype>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>

namespace {

constexpr int kValuesPerLine = 16;

struct Close
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

struct PnmHeader
{
    bool isText = false;
    int channels = 0, width = 0, height = 0;

    std::int64_t values() const { return std::int64_t{width} * height * channels; }
};

/// What a buffered write could not bring to the disk comes out at the end.
bool isWritten(File& file, const char* path)
{
    const bool failed = std::ferror(file.get()) != 0;
    if (std::fclose(file.release()) == 0 && !failed) return true;
    std::fprintf(stderr, "LicImage: Can't write file %s\n", path);
    return false;
}

/// Bytes that a file still has; those of a pipe cannot be told, and count as any number.
std::int64_t bytesLeft(std::FILE* file)
{
    struct stat status;
    if (fstat(fileno(file), &status) != 0) return 0;
    if (!S_ISREG(status.st_mode)) return std::numeric_limits<std::int64_t>::max();
    return status.st_size - std::ftell(file);
}

void skipLine(std::FILE* file)
{
    int c;
    do c = std::getc(file);
    while (c != '\n' && c != EOF);
}

/// The next number of a header, past lines that begin with #.
bool readNumber(std::FILE* file, int& number)
{
    int c;
    while ((c = std::getc(file)) == '#' || std::isspace(c))
        if (c == '#') skipLine(file);
    std::ungetc(c, file);
    return std::fscanf(file, "%9d", &number) == 1;
}

bool readHeader(std::FILE* file, PnmHeader& header)
{
    char magic[32];
    if (!std::fgets(magic, sizeof magic, file) || magic[0] != 'P') return false;
    switch (magic[1]) {
    case '2':
    case '5':
        header.channels = 1;
        break;
    case '3':
    case '6':
        header.channels = 3;
        break;
    default:
        return false;
    }
    header.isText = magic[1] == '2' || magic[1] == '3';
    int largest;
    if (!readNumber(file, header.width) || !readNumber(file, header.height) || !readNumber(file, largest))
        return false;
    std::getc(file); // one byte ends the header
    return header.width >= 0 && header.height >= 0 && largest < 256;
}

/// Before memory is taken: a header can announce anything.
bool canHoldPixels(std::FILE* file, const PnmHeader& header)
{
    const std::int64_t bytes = header.isText ? 2 * header.values() - 1 : header.values();
    return std::int64_t{header.width} * header.channels <= std::numeric_limits<int>::max() &&
           bytesLeft(file) >= bytes;
}

bool readTextRow(std::FILE* file, unsigned char* values, int n)
{
    for (int i = 0; i < n; ++i) {
        int value;
        if (std::fscanf(file, "%9d", &value) != 1 || value < 0 || value > 255) return false;
        values[i] = static_cast<unsigned char>(value);
    }
    return true;
}

bool readPixels(std::FILE* file, bool isText, LicImage& image)
{
    const auto n = static_cast<std::size_t>(image.stride);
    for (int y = image.height - 1; y >= 0; --y) {
        const bool isRead = isText ? readTextRow(file, image.row(y), image.stride)
                                   : std::fread(image.row(y), 1, n, file) == n;
        if (!isRead) return false;
    }
    return true;
}

void writeText(std::FILE* file, const LicImage& image)
{
    int written = 0;
    for (int y = image.height - 1; y >= 0; --y)
        for (int x = 0; x < image.width; ++x)
            std::fprintf(file, "%03d %c", image.row(y)[x * image.channels],
                         ++written % kValuesPerLine == 0 ? '\n' : ' ');
}

void writeBytes(std::FILE* file, const LicImage& image)
{
    const bool isAsInTheFile = image.channels == 1 || image.channels == 3;
    for (int y = image.height - 1; y >= 0; --y) {
        const unsigned char* pixels = image.row(y);
        const int n = image.width;
        if (isAsInTheFile) {
            std::fwrite(pixels, static_cast<std::size_t>(image.channels), static_cast<std::size_t>(n), file);
            continue;
        }
        // Other numbers of channels are gray images to a file: the first byte of each pixel.
        for (int x = 0; x < n; ++x) std::putc(pixels[x * image.channels], file);
    }
}

} // namespace

bool LicImage::writePNM(const char* path, int ascii) const
{
    File file(std::fopen(path, "wb"));
    if (!file) {
        std::fprintf(stderr, "LicImage: Can't open file %s\n", path);
        return false;
    }
    const int magic = (channels == 3 ? 6 : 5) - (ascii ? 3 : 0);
    std::fprintf(file.get(), "P%d\n%d %d\n255\n", magic, width, height);
    if (ascii)
        writeText(file.get(), *this);
    else
        writeBytes(file.get(), *this);
    return isWritten(file, path);
}

bool LicImage::readPNM(const char* path)
{
    const File file(std::fopen(path, "rb"));
    if (!file) {
        std::fprintf(stderr, "LicImage: Can't open file %s\n", path);
        return false;
    }
    PnmHeader header;
    LicImage image;
    if (!readHeader(file.get(), header) || !canHoldPixels(file.get(), header) ||
        !image.setSize(header.width, header.height, header.channels) ||
        !readPixels(file.get(), header.isText, image)) {
        std::fprintf(stderr, "LicImage: Error in PNM file %s\n", path);
        return false;
    }
    swap(image);
    return true;
}

void LicImage::writeHistogram(const char* path) const
{
    std::array<std::int64_t, 256> counts{};
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < width * channels; ++i) ++counts[row(y)[i]];
    std::int64_t sum = 0, n = 0;
    for (std::size_t value = 0; value < counts.size(); ++value) {
        sum += static_cast<std::int64_t>(value) * counts[value];
        n += counts[value];
    }
    File file(std::fopen(path, "w"));
    if (!file) {
        std::fprintf(stderr, "LicImage: Can't write histogram %s\n", path);
        return;
    }
    for (int value = 0; value < 256; ++value)
        std::fprintf(file.get(), "%d %" PRId64 "\n", value, counts[static_cast<std::size_t>(value)]);
    if (isWritten(file, path))
        std::printf("Mean = %g\n", n > 0 ? static_cast<double>(sum) / static_cast<double>(n) : 0.0);
}
