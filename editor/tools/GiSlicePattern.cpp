#include "tools/GiSlicePattern.h"

#include "core/GiBitRows.h"
#include "mc/McMemoryException.h"

#include <QImage>
#include <QList>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using Bits = std::vector<unsigned int>;

McBox2i frameOf(const GiSelection2D& slice)
{
    return McBox2i(0, 0, static_cast<int>(slice.width) - 1, static_cast<int>(slice.height) - 1);
}

unsigned long bitOf(const GiSelection2D& slice, int x, int y)
{
    return static_cast<unsigned long>(y) * slice.yStride + static_cast<unsigned long>(x) * slice.xStride +
           slice.offset;
}

bool isSet(const Bits& bits, unsigned long i)
{
    return bits[i / 32] >> (i % 32) & 1;
}

/// Reads n pixels of a row into the lowest bits.
void readRow(const GiSelection2D& slice, int x, int y, unsigned long n, Bits& row)
{
    row.assign((n + 31) / 32, 0);
    const unsigned long first = bitOf(slice, x, y);
    if (slice.xStride == 1) {
        giCopyBits(row.data(), 0, slice.bits->words(), first, n);
        return;
    }
    for (unsigned long i = 0; i < n; ++i)
        if (slice.bits->isSet(first + i * slice.xStride)) row[i / 32] |= 1u << (i % 32);
}

/// Writes n pixels of a row, selected or not, from bit `from` on.
void writeRow(GiSelection2D& slice, int x, int y, unsigned long n, const Bits& row, unsigned long from)
{
    const unsigned long first = bitOf(slice, x, y);
    if (slice.xStride == 1) {
        giCopyBits(slice.bits->words(), first, row.data(), from, n);
        return;
    }
    for (unsigned long i = 0; i < n; ++i) {
        if (isSet(row, from + i))
            slice.bits->set(first + i * slice.xStride);
        else
            slice.bits->unset(first + i * slice.xStride);
    }
}

QImage blank(int width, int height, QImage::Format format)
{
    QImage image(width, height, format);
    if (image.isNull())
        throw McMemoryException(static_cast<unsigned long>(width) * static_cast<unsigned long>(height) * 4);
    return image;
}

/// A grey byte per pixel: white where selected.
QImage greyPicture(const GiSelection2D& pixels)
{
    constexpr int kGreys = 256;
    QImage image =
        blank(static_cast<int>(pixels.width), static_cast<int>(pixels.height), QImage::Format_Indexed8);
    QList<QRgb> greys;
    for (int i = 0; i < kGreys; ++i) greys.append(qRgb(i, i, i));
    image.setColorTable(greys);
    Bits row;
    for (int y = 0; y < image.height(); ++y) {
        readRow(pixels, 0, y, pixels.width, row);
        uchar* line = image.scanLine(y);
        for (unsigned long x = 0; x < pixels.width; ++x) line[x] = isSet(row, x) ? kGreys - 1 : 0;
    }
    return image;
}

/// Side of the square that holds a pattern in every position.
/// reach  the longest way across it
int squareSide(double reach)
{
    return static_cast<int>(reach + 4) & ~3; // whole words of memory
}

/// Turns a picture about the middle of a black square.
/// place  of the picture's corner, seen from the middle
QImage paintRotated(const QImage& picture, const McVec2i& place, float degrees, int side)
{
    QImage square = blank(side, side, QImage::Format_RGB32);
    square.fill(Qt::black);
    QPainter painter(&square);
    painter.translate(side / 2, side / 2);
    painter.rotate(static_cast<double>(degrees));
    painter.translate(place.x, place.y);
    painter.drawImage(0, 0, picture);
    return square;
}

/// Selects the pixels that are not black, and unselects the others. Returns the part that lies in the slice.
/// corner  where the square's first pixel lies
McBox2i readBack(const QImage& square, const McVec2i& corner, GiSelection2D& slice)
{
    const McBox2i part =
        McBox2i(corner.x, corner.y, corner.x + square.width() - 1, corner.y + square.height() - 1)
            .intersected(frameOf(slice));
    if (part.isEmpty()) return {};
    Bits row;
    for (int y = part.ymin; y <= part.ymax; ++y) {
        const auto* line =
            reinterpret_cast<const QRgb*>(square.constScanLine(y - corner.y)) + (part.xmin - corner.x);
        row.assign(static_cast<std::size_t>((part.width() + 31) / 32), 0);
        for (int x = 0; x < part.width(); ++x)
            row[static_cast<std::size_t>(x / 32)] |= (qGreen(line[x]) != 0 ? 1u : 0u) << (x % 32);
        writeRow(slice, part.xmin, y, static_cast<unsigned long>(part.width()), row, 0);
    }
    return part;
}

double length(double x, double y)
{
    return std::sqrt(x * x + y * y);
}

} // namespace

GiSlicePattern::GiSlicePattern(const GiSelection2D& slice, const McBox2i& box) : source(box)
{
    pixels.resize(box.width(), box.height());
    Bits row;
    for (int y = 0; y < box.height(); ++y) {
        readRow(slice, box.xmin, box.ymin + y, pixels.width, row);
        writeRow(pixels, 0, y, pixels.width, row, 0);
    }
}

void GiSlicePattern::erase(GiSelection2D& slice, const McBox2i& box)
{
    const McBox2i part = box.intersected(frameOf(slice));
    if (part.isEmpty()) return;
    const auto n = static_cast<unsigned long>(part.width());
    const Bits none((n + 31) / 32);
    for (int y = part.ymin; y <= part.ymax; ++y) writeRow(slice, part.xmin, y, n, none, 0);
}

McBox2i GiSlicePattern::putMoved(GiSelection2D& slice, const McVec2i& offset) const
{
    const McBox2i target(source.xmin + offset.x, source.ymin + offset.y, source.xmax + offset.x,
                         source.ymax + offset.y);
    const McBox2i part = target.intersected(frameOf(slice));
    if (part.isEmpty()) return {};
    Bits row;
    for (int y = part.ymin; y <= part.ymax; ++y) {
        readRow(pixels, 0, y - target.ymin, pixels.width, row);
        writeRow(slice, part.xmin, y, static_cast<unsigned long>(part.width()), row,
                 static_cast<unsigned long>(part.xmin - target.xmin));
    }
    return part;
}

McBox2i GiSlicePattern::putRotated(GiSelection2D& slice, float degrees, const McBox2i& about) const
{
    if (source.isEmpty()) return {};
    const McVec2i pivot(about.xmin + about.width() / 2, about.ymin + about.height() / 2);
    // A pattern that reaches beyond the box needs a square around its corner that is farthest from the pivot.
    const double reach = source == about
                             ? length(about.width(), about.height())
                             : 2 * length(std::max(pivot.x - source.xmin, source.xmax + 1 - pivot.x),
                                          std::max(pivot.y - source.ymin, source.ymax + 1 - pivot.y));
    const int side = squareSide(reach);
    const QImage square =
        paintRotated(greyPicture(pixels), McVec2i(source.xmin, source.ymin) - pivot, degrees, side);
    return readBack(square, McVec2i(pivot.x - side / 2, pivot.y - side / 2), slice);
}
