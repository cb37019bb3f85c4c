#pragma once

#include "mc/McBox.h"

#include <cstddef>

/// A raster of bytes: gray, or colors as three bytes side by side. It owns its memory, or wraps memory of the
/// caller, which must outlive it.
///
/// Rows lie in memory from row 0 on; row 0 is the lowest one of a picture, so files, which begin with the top
/// row, hold the rows in reverse.
///
/// Operations with a result image `out` write it there, in the size of this image; an image of another size
/// is given memory of its own for it. Without `out`, or with the image itself, they work in place. `out` may
/// own the memory that this image wraps.
///
/// Nothing throws. What cannot have its memory says so by its result, and is empty if it was to be resized.
/// Constructors, copies, colorToGray() and brighten() have no result to say so: they failed if `data` is null
/// while there should be pixels.
class LicImage
{
public:
    LicImage() = default;
    /// One byte per pixel. With null data the image owns its memory, which is not cleared, and has no gaps
    /// between rows.
    LicImage(int w, int h, unsigned char* pixels);
    /// rowBytes  from one row to the next
    LicImage(int w, int h, int rowBytes, unsigned char* pixels);
    LicImage(int w, int h, int bytesPerPixel, int rowBytes, unsigned char* pixels);
    /// A copy owns its pixels. What takes another's place wraps what that one wrapped.
    LicImage(const LicImage& other);
    LicImage(LicImage&& other) noexcept;
    LicImage& operator=(const LicImage& other);
    LicImage& operator=(LicImage&& other) noexcept;
    ~LicImage();

    /// Takes own memory for rows without gaps; what it holds is undefined. Negative sizes count as 0.
    /// returns false, and leaves an empty image, if there is not enough
    bool setSize(int w, int h, int bytesPerPixel);
    /// All pixels 0.
    void clear();

    /// The box of the pixels that equal `value`, or of all others if `equal` is 0. Only the first byte of a
    /// color counts.
    /// returns false if there is none; the box is then (width, height, -1, -1)
    bool subBox(int& x0, int& y0, int& x1, int& y1, int value, int equal) const;

    /// Noise, the same again for the same seed above 0; another seed goes on from the last noise.
    void createRandom(int seed);
    /// A gray image by 0.3, 0.59 and 0.11 of red, green and blue, cut to whole numbers. One of fewer channels
    /// is only copied. In place, the image takes new memory.
    void colorToGray(LicImage* out);
    /// Spreads the values from lo to hi over 0 to 255; the two must differ. Values beyond them are cut.
    void brighten(int lo, int hi, LicImage* out);

    /// Filters rows and columns with a kernel, as fastconv() does; colors channel by channel.
    /// kernel  the centre, then the weights of one side, `size` in all
    /// returns 0 if there is not enough memory, else 1
    /// Main thread only, as the prepared kernel is one for the whole program.
    int convolve(int size, const float* kernel, LicImage* out);
    /// The same for the pixels of a box, which beyond its ends repeats its outermost pixels. The rest of the
    /// image stays, or is 0 where `out` needed new memory. Nothing happens with an empty box.
    int boundedconvolve(int size, const float* kernel, const McBox2i& box, LicImage* out);
    /// Blurs with a Gaussian of standard deviation size / 2 that ends before 2 deviations; sizes below 2
    /// copy.
    int gaussBlur(int size, LicImage* out);

    /// Gives the 4-connected pixels that share the value of pixel (x, y) another value. Gray images only.
    ///
    /// box  null, or x-min, y-min, x-max, y-max, which are widened by the pixels
    /// out  is made a copy of the image, and filled in its place
    /// returns the number of pixels; 0 if the pixel lies outside or has the value already, or if there is not
    /// enough memory
    ///
    /// kept: at most 10000 spans wait to be visited, further ones are forgotten. A very ragged region can
    /// stay partly unfilled; the memory of a fill is bounded in return.
    int floodFill(int x, int y, int value, int* box, LicImage* out);

    /// Writes 256 lines, each a byte value and its count, and prints the mean of all bytes.
    void writeHistogram(const char* path) const;

    // PNM files: P5 and P2 of gray images, P6 and P3 of those with three channels; the second one is text.
    // A failure is told on the standard error stream.

    /// kept: as text, a color is written as its first channel alone, so that the file has too few values for
    /// readers, readPNM() included. Scripts that look at the values rely on one a pixel.
    /// returns false if the file could not be written
    bool writePNM(const char* path, int ascii) const;
    /// Reads values of up to 255; larger ones take two bytes in a file, and are refused. An image without
    /// pixels comes back as one. A file that is broken or ends early leaves the image as it was.
    /// returns false if nothing was read
    bool readPNM(const char* path);

    unsigned char* row(int y) { return data + static_cast<std::ptrdiff_t>(y) * stride; }
    const unsigned char* row(int y) const { return data + static_cast<std::ptrdiff_t>(y) * stride; }

    unsigned char* buffer = nullptr; // malloc'ed; null while the image wraps memory of the caller
    unsigned char* data = nullptr;   // first pixel of row 0
    int width = 0, height = 0;
    int channels = 1; // bytes per pixel
    int stride = 0;   // bytes per row

private:
    void swap(LicImage& other) noexcept;
    bool hasShapeOf(const LicImage& other) const;
    /// The pixels of an image of the same shape.
    void copyRows(const LicImage& other);
    /// Brings a finished result to its image: pixel by pixel if that has the size, else with its memory.
    void moveInto(LicImage& out);
    /// Gives a result image this image's size and returns it; null if there is not enough memory. The pixels
    /// of this image may be gone with its former memory.
    LicImage* prepared(LicImage* out);
};
