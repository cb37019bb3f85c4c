#pragma once

class GiFrameBuffer;

/// Draws a frame buffer anew and writes its memory as an image file; the suffix tells the format.
/// kUnsupported: its pixels have no image format and nothing is written. kNotWritten: no file could be made.
enum class GiSnapshotResult
{
    kWritten,
    kUnsupported,
    kNotWritten
};

GiSnapshotResult giWriteSnapshot(GiFrameBuffer& frameBuffer, const char* fileName);
