#include "io/HxVoxelSource.h"

#include "io/HxFileError.h"
#include "io/hxStopIfInterrupted.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

namespace {

static_assert(std::endian::native == std::endian::little, "voxels in memory are little-endian");

// A deflated stream grows by no more than this, so larger announcements are false.
constexpr std::size_t kDeflateFactor = 1032;

constexpr std::size_t kAtMost = std::size_t(1) << 30; // per call: fits the sizes of all the libraries

class Descriptor
{
public:
    explicit Descriptor(const std::string& file) : number(::open(file.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~Descriptor()
    {
        if (number >= 0) ::close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    operator int() const { return number; }

private:
    int number;
};

// Less than asked for only at the end of the file or after a failure of the disk.
std::size_t readFully(int file, void* out, std::size_t bytes)
{
    std::size_t done = 0;
    while (done < bytes) {
        const ssize_t n = ::read(file, static_cast<char*>(out) + done, std::min(kAtMost, bytes - done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    return done;
}

/// Unpacks gzip and zlib streams, also several gzip streams behind one another.
class Inflater
{
public:
    explicit Inflater(int descriptor) : file(descriptor), packed(std::size_t(1) << 18)
    {
        constexpr int kEitherFormat = 15 + 32;
        isGood = ::inflateInit2(&stream, kEitherFormat) == Z_OK;
    }
    ~Inflater() { ::inflateEnd(&stream); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    /// Fewer bytes than asked for at the end of the data, or where they are damaged.
    std::size_t read(char* out, std::size_t bytes)
    {
        std::size_t done = 0;
        while (done < bytes && isGood) {
            const std::size_t wanted = std::min(kAtMost, bytes - done);
            stream.next_out = reinterpret_cast<Bytef*>(out + done);
            stream.avail_out = static_cast<uInt>(wanted);
            step();
            done += wanted - stream.avail_out;
        }
        return done;
    }

    /// After the last byte: whether the checksum behind it was reached and fits.
    bool endsIntact()
    {
        char more;
        read(&more, 1); // bytes behind the voxels do no harm
        return isGood || hasEnded;
    }

    bool isDamaged() const { return wasDamaged; }

private:
    void step()
    {
        if (stream.avail_in == 0) {
            stream.next_in = packed.data();
            stream.avail_in = static_cast<uInt>(readFully(file, packed.data(), packed.size()));
        }
        if (hasEnded) { // another gzip stream, or padding
            const bool another =
                stream.avail_in > 1 && stream.next_in[0] == 0x1f && stream.next_in[1] == 0x8b;
            if (!another) {
                isGood = false;
                return;
            }
            ::inflateReset(&stream);
            hasEnded = false;
        }
        if (stream.avail_in == 0) {
            isGood = false;
            return;
        }
        const int state = ::inflate(&stream, Z_NO_FLUSH);
        hasEnded = state == Z_STREAM_END;
        if (state == Z_OK || hasEnded || state == Z_BUF_ERROR) return;
        isGood = false;
        wasDamaged = true;
    }

    int file;
    std::vector<unsigned char> packed;
    z_stream stream{};
    bool isGood = false;
    bool hasEnded = false;
    bool wasDamaged = false;
};

template <class Word>
void swapAll(void* data, std::size_t count)
{
    Word* words = static_cast<Word*>(data);
    for (std::size_t i = 0; i < count; ++i) {
        if constexpr (sizeof(Word) == 2) words[i] = __builtin_bswap16(words[i]);
        if constexpr (sizeof(Word) == 4) words[i] = __builtin_bswap32(words[i]);
        if constexpr (sizeof(Word) == 8) words[i] = __builtin_bswap64(words[i]);
    }
}

void swapBytes(void* data, std::size_t count, std::size_t size)
{
    if (size == 2) swapAll<std::uint16_t>(data, count);
    if (size == 4) swapAll<std::uint32_t>(data, count);
    if (size == 8) swapAll<std::uint64_t>(data, count);
}

template <class T>
std::from_chars_result parseNumber(const char* at, const char* end, T& out)
{
    if constexpr (sizeof(T) > 1) {
        return std::from_chars(at, end, out);
    } else { // bytes are numbers here, not characters
        int wide = 0;
        const auto result = std::from_chars(at, end, wide);
        out = static_cast<T>(wide);
        return result;
    }
}

// returns the number of elements that the text holds, at most `count`
template <class T>
std::size_t parseNumbers(const std::string& text, T* out, std::size_t count)
{
    const char* at = text.data();
    const char* end = at + text.size();
    for (std::size_t done = 0; done < count; ++done) {
        while (at < end && std::strchr(" \t\r\n,+", *at)) ++at;
        const auto [next, error] = parseNumber(at, end, out[done]);
        if (error != std::errc()) return done;
        at = next;
    }
    return count;
}

} // namespace

void HxVoxelSource::check(const std::vector<unsigned long>& sizes, HxFileType type) const
{
    constexpr long long kFarthest = 1LL << 60; // so that sums of places in a file stay small enough
    if (offset > kFarthest || byteSkip > kFarthest) fail("the header skips more bytes than any file holds");
    const std::size_t element = hxSizeOf(type);
    std::size_t total = element;
    for (unsigned long n : sizes)
        if (n == 0 || __builtin_mul_overflow(total, n, &total) || total > SIZE_MAX / 2)
            fail("the header announces no voxels, or more than any memory holds");
    // Files that split an element between them are left to no reader.
    if (total / element % files.size() != 0)
        fail("the voxels do not fill " + std::to_string(files.size()) + " data files evenly");
    const std::size_t needed = total / files.size();
    std::size_t least = needed;
    if (encoding == Encoding::deflated) least = needed / kDeflateFactor;
    if (encoding == Encoding::text) least = 2 * (needed / element) - 1;

    for (const std::string& name : files) {
        const std::string file = besideHeader(name);
        struct stat info;
        if (::stat(file.c_str(), &info) != 0 || !S_ISREG(info.st_mode))
            fail("the data file " + file + " does not exist");
        const long long skipped = offset + (encoding == Encoding::raw ? std::max(0LL, byteSkip) : 0);
        const std::size_t found =
            static_cast<std::size_t>(std::max(0LL, static_cast<long long>(info.st_size) - skipped));
        if (found < least) failForSize(needed, needed / element, found, file);
    }
}

void HxVoxelSource::failForSize(std::size_t bytes, std::size_t count, std::size_t found,
                                const std::string& file) const
{
    const std::string where = file == header ? "the file" : "the file " + file;
    const std::string announced =
        "the header announces " + std::to_string(encoding == Encoding::text ? count : bytes);
    const std::string held = std::to_string(found) + " bytes";
    switch (encoding) {
    case Encoding::raw:
        fail(announced + " bytes of voxels, but " + where + " holds only " + held);
    case Encoding::deflated:
        fail(announced + " bytes of voxels, more than the " + held + " of packed data in " + where +
             " can hold");
    case Encoding::text:
        break;
    }
    fail(announced + " voxels, more than the " + held + " of text in " + where + " can hold");
}

void HxVoxelSource::read(void* out, std::size_t count, HxFileType type) const
{
    const std::size_t part = count * hxSizeOf(type) / files.size();
    for (std::size_t i = 0; i < files.size(); ++i)
        readPart(besideHeader(files[i]), static_cast<char*>(out) + i * part, part, type);
    if (isBigEndian && encoding != Encoding::text) swapBytes(out, count, hxSizeOf(type));
}

void HxVoxelSource::readPart(const std::string& file, char* out, std::size_t bytes, HxFileType type) const
{
    const Descriptor in(file);
    if (in < 0) fail("the data file " + file + " cannot be opened: " + std::strerror(errno));
    off_t start = ::lseek(in, offset, SEEK_SET);
    char c = 0;
    for (long long lines = 0; lines < lineSkip && ::read(in, &c, 1) == 1; ++start) lines += c == '\n';

    // In blocks, between which the person can stop; fewer bytes than asked for where the data end.
    const auto readBlocks = [&](auto&& read) {
        std::size_t done = 0;
        for (std::size_t got = 1; done < bytes && got > 0; done += got) {
            hxStopIfInterrupted(header);
            got = read(out + done, std::min(kHxBytesPerPoll, bytes - done));
        }
        return done;
    };
    const auto needAll = [&](std::size_t found) {
        if (found < bytes)
            fail("the voxels end after " + std::to_string(found) + " of " + std::to_string(bytes) + " bytes");
    };
    if (encoding == Encoding::raw) {
        if (byteSkip < 0)
            ::lseek(in, -static_cast<off_t>(bytes), SEEK_END);
        else
            ::lseek(in, start + byteSkip, SEEK_SET);
        needAll(readBlocks([&](char* to, std::size_t n) { return readFully(in, to, n); }));
    } else if (encoding == Encoding::deflated) {
        Inflater packed(in);
        char skipped;
        for (long long i = 0; i < byteSkip && packed.read(&skipped, 1) == 1;) ++i;
        const std::size_t found = readBlocks([&](char* to, std::size_t n) { return packed.read(to, n); });
        if (packed.isDamaged()) fail("the packed voxels are damaged");
        needAll(found);
        if (!packed.endsIntact() || packed.isDamaged()) fail("the packed voxels are damaged");
    } else {
        hxStopIfInterrupted(header);
        const off_t end = ::lseek(in, 0, SEEK_END);
        ::lseek(in, start + std::max(0LL, byteSkip), SEEK_SET);
        std::string text(static_cast<std::size_t>(std::max<off_t>(0, end - start)), 0);
        text.resize(readFully(in, text.data(), text.size()));
        const std::size_t count = bytes / hxSizeOf(type);
        const std::size_t found = hxDispatch(type, [&](auto zero) {
            return parseNumbers(text, reinterpret_cast<decltype(zero)*>(out), count);
        });
        if (found < count)
            fail("the text of the voxels has " + std::to_string(found) + " of " + std::to_string(count) +
                 " numbers");
    }
}

std::vector<std::string> HxVoxelSource::numberedFiles(const std::string& header, const std::string& pattern,
                                                      long long first, long long last, long long step)
{
    constexpr long long kMost = 1000000;
    constexpr long long kLargest = 1LL << 60; // so that differences and steps stay small enough
    const auto isLarge = [](long long n) { return n < -kLargest || n > kLargest; };
    const auto percent = pattern.find('%');
    const auto d =
        percent == std::string::npos ? percent : pattern.find_first_not_of("0123456789", percent + 1);
    const bool isPattern = d != std::string::npos && pattern[d] == 'd' && d - percent < 5;
    if (!isPattern || isLarge(first) || isLarge(last) || isLarge(step) || step == 0 ||
        (last - first) / step < 0 || (last - first) / step > kMost)
        throw HxFileError(header, "the pattern \"" + pattern + "\" names no data files");

    const std::string format = pattern.substr(percent + 1, d - percent - 1);
    const std::size_t width = format.empty() ? 0 : std::stoul(format);
    std::vector<std::string> names;
    for (long long i = first; step > 0 ? i <= last : i >= last; i += step) {
        std::string digits = std::to_string(i);
        if (digits.size() < width) digits.insert(0, width - digits.size(), format[0] == '0' ? '0' : ' ');
        names.push_back(pattern.substr(0, percent) + digits + pattern.substr(d + 1));
    }
    return names;
}

bool HxVoxelSource::isGzip(const std::string& file)
{
    const Descriptor in(file);
    char magic[2];
    return in >= 0 && readFully(in, magic, 2) == 2 && magic[0] == '\x1f' && magic[1] == '\x8b';
}

std::string HxVoxelSource::firstBytes(const std::string& file, std::size_t count)
{
    const Descriptor in(file);
    if (in < 0) return "";
    std::string bytes(count, 0);
    bytes.resize(isGzip(file) ? Inflater(in).read(bytes.data(), count) : readFully(in, bytes.data(), count));
    return bytes;
}

std::string HxVoxelSource::besideHeader(const std::string& file) const
{
    if (file == header) return file;
    return (std::filesystem::path(header).parent_path() / file).string(); // an absolute name stays itself
}

void HxVoxelSource::fail(const std::string& reason) const
{
    throw HxFileError(header, reason);
}
