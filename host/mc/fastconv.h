#pragma once

/// Prepares the kernel of fastconv(). One state for the whole program: call it on the main thread, before
/// any team of threads filters with it.
///
/// kernel      half a kernel: the centre, then kernelSize - 1 weights that hold for both sides
/// kernelSize  below 2: fastconv() copies
///
/// Weights are rounded to 1/65536, and limited to what no sum can overflow. If they add up to 1 within 0.001,
/// the centre takes up the rounding, so that a constant line stays exactly constant.
///
/// throws McMemoryException; the kernel prepared before then stays
void initPackedLuts(const float* kernel, int kernelSize);

/// Filters one line of bytes with the prepared kernel. Beyond its ends the line repeats its end samples.
/// Results are rounded and limited to 0..255.
///
/// stride  bytes from one sample to the next, in both arrays, which must not overlap
///
/// Takes no memory and throws nothing. Safe to call from many threads at once.
void fastconv(const unsigned char* in, int count, int stride, unsigned char* out);

/// Filters the columns of a raster, each as fastconv() does it alone, but by whole rows, which is several
/// times as fast.
///
/// width              bytes of a row
/// height             rows
/// stride, outStride  bytes from one row to the next; the arrays must not overlap
void fastconvColumns(const unsigned char* in, int width, int height, long stride, unsigned char* out,
                     long outStride);
