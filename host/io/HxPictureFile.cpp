#include "io/HxPictureFile.h"

#include "io/HxFileError.h"
#include "io/HxQuietLibraries.h"
#include "io/HxVoxelSource.h"

#include <QImageReader>
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

// The reader's own limit would refuse large slices; a size that no memory holds fails by itself.
constexpr int kLimitMiB = 1 << 14;

void prepare(QImageReader& reader, const std::string& path)
{
    QImageReader::setAllocationLimit(kLimitMiB);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(false);
    reader.setFileName(QString::fromLocal8Bit(path.c_str()));
}

[[noreturn]] void fail(const std::string& path, const QImageReader& reader)
{
    throw HxFileError(path, "the picture cannot be read (" + reader.errorString().toStdString() + ")");
}

bool isIndexed(QImage::Format format)
{
    return format == QImage::Format_Indexed8 || format == QImage::Format_Mono ||
           format == QImage::Format_MonoLSB;
}

// The decoder turns one-bit grey of PNG files round, so that index 1 is black. Palettes keep their indices.
bool isTurnedRound(const std::string& path, HxFileKind kind)
{
    constexpr std::size_t kColorTypeAt = 25; // in the first chunk, which has a fixed place and layout
    if (kind != HxFileKind::png) return false;
    const std::string head = HxVoxelSource::firstBytes(path, kColorTypeAt + 1);
    return head.size() > kColorTypeAt && head[kColorTypeAt] == 0;
}

std::string lastBytes(const std::string& path, std::streamoff count)
{
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = in.tellg();
    const std::streamoff n = std::clamp<std::streamoff>(size, 0, count);
    std::string bytes(static_cast<std::size_t>(n), 0);
    in.seekg(size - n);
    in.read(bytes.data(), n);
    return bytes;
}

} // namespace

HxPictureFile::HxPictureFile(const std::string& path, HxFileKind kind) : HxSliceFile(path)
{
    const HxQuietLibraries quiet;
    QImageReader reader;
    prepare(reader, path);
    const QSize pixels = reader.size();
    const QImage::Format format = reader.imageFormat();
    if (!pixels.isValid() || pixels.isEmpty())
        throw HxFileError(path, std::string("the ") + hxNameOf(kind) + " header cannot be read");
    if (format != QImage::Format_Grayscale8 && format != QImage::Format_Grayscale16 && !isIndexed(format))
        throw HxFileError(path,
                          "has several values per pixel, such as colors; only images of one can be read");
    checkEnd(kind);
    isInverted = isTurnedRound(path, kind);
    size[0] = static_cast<unsigned long>(pixels.width());
    size[1] = static_cast<unsigned long>(pixels.height());
    elementType = format == QImage::Format_Grayscale16 ? HxFileType::uint16 : HxFileType::uint8;
}

HxVolume HxPictureFile::read() const
{
    const HxQuietLibraries quiet;
    QImageReader reader;
    prepare(reader, file);
    const QImage image = reader.read();
    if (image.isNull()) fail(file, reader);
    if (image.width() != static_cast<int>(size[0]) || image.height() != static_cast<int>(size[1]))
        throw HxFileError(file, "the header and the pixels contradict each other");
    HxVolume volume(file, size, elementType);
    auto* to = static_cast<unsigned char*>(volume.data());
    const std::size_t rowBytes = size[0] * hxSizeOf(elementType);
    for (int y = 0; y < image.height(); ++y, to += rowBytes) {
        if (image.depth() == 8 * static_cast<int>(hxSizeOf(elementType)))
            std::memcpy(to, image.constScanLine(y), rowBytes);
        else if (image.depth() == 1)
            for (int x = 0; x < image.width(); ++x)
                to[x] = static_cast<unsigned char>((image.pixelIndex(x, y) != 0) != isInverted);
        else
            throw HxFileError(file, "the header and the pixels contradict each other");
    }
    return volume;
}

// The decoders fill what is missing at the end with grey and say nothing.
void HxPictureFile::checkEnd(HxFileKind kind) const
{
    bool isWhole = true;
    if (kind == HxFileKind::png) isWhole = lastBytes(file, 4096).find("IEND") != std::string::npos;
    if (kind == HxFileKind::jpeg) isWhole = lastBytes(file, 4096).find("\xff\xd9") != std::string::npos;
    if (kind == HxFileKind::bmp) {
        const std::string head = HxVoxelSource::firstBytes(file, 6);
        std::uint32_t announced = 0;
        if (head.size() == 6) std::memcpy(&announced, head.data() + 2, sizeof announced);
        isWhole = head.size() == 6 && std::filesystem::file_size(file) >= announced;
    }
    if (!isWhole) throw HxFileError(file, std::string("the ") + hxNameOf(kind) + " file ends early");
}
