// Raster of bytes: seed fill.

#include "modules/LicImage.h"

#include <algorithm>
#include <array>

namespace {

constexpr int kMostPending = 10000;

/// A filled span, and the direction (1 or -1) of the row beside it that has to be looked at.
struct Span
{
    int y, left, right, direction;
};

/// Fills whole spans of a row and remembers the rows beside them, as in Heckbert, "A Seed Fill Algorithm",
/// Graphics Gems, 1990.
class SeedFill
{
public:
    SeedFill(LicImage& filledImage, unsigned char old, unsigned char fresh, int* filledBox)
        : image(filledImage), oldValue(old), newValue(fresh), box(filledBox)
    {
    }

    int fill(int x, int y)
    {
        push({y, x, x, 1});
        push({y + 1, x, x, -1}); // the row of the seed itself
        while (numPending > 0) lookBeside(pending[static_cast<std::size_t>(--numPending)]);
        return filled;
    }

private:
    bool isOpen(int x, int y) const { return image.row(y)[x] == oldValue; }

    void push(const Span& span)
    {
        const int y = span.y + span.direction;
        if (numPending < kMostPending && y >= 0 && y < image.height)
            pending[static_cast<std::size_t>(numPending++)] = span;
    }

    void lookBeside(const Span span) // a copy: its place on the stack is free for the next one
    {
        const int y = span.y + span.direction;
        int x = span.left;
        if (isOpen(x, y)) {
            int start = x;
            while (start > 0 && isOpen(start - 1, y)) --start;
            if (start < x) push({y, start, x - 1, -span.direction});
            x = fillRun(start, y, span);
        }
        while (true) {
            while (x <= span.right && !isOpen(x, y)) ++x;
            if (x > span.right) return;
            x = fillRun(x, y, span);
        }
    }

    /// Fills to the right and returns the pixel after the run. What juts out beyond the span that led here
    /// has to be looked at from both sides.
    int fillRun(int start, int y, const Span& from)
    {
        int end = start;
        while (end < image.width && isOpen(end, y)) image.row(y)[end++] = newValue;
        filled += end - start;
        if (box) {
            box[0] = std::min(box[0], start);
            box[1] = std::min(box[1], y);
            box[2] = std::max(box[2], end - 1);
            box[3] = std::max(box[3], y);
        }
        push({y, start, end - 1, from.direction});
        if (end - 1 > from.right) push({y, from.right + 1, end - 1, -from.direction});
        return end;
    }

    LicImage& image;
    const unsigned char oldValue, newValue;
    int* const box;
    std::array<Span, kMostPending> pending;
    int numPending = 0;
    int filled = 0;
};

} // namespace

int LicImage::floodFill(int x, int y, int value, int* box, LicImage* out)
{
    if (out && out != this) {
        LicImage copy = *this;
        const int filled = copy.floodFill(x, y, value, box, nullptr);
        copy.moveInto(*out);
        return filled;
    }
    if (x < 0 || x >= width || y < 0 || y >= height || channels != 1) return 0;
    const unsigned char old = row(y)[x], fresh = static_cast<unsigned char>(value);
    if (old == fresh) return 0;
    return SeedFill(*this, old, fresh, box).fill(x, y);
}
