#pragma once

#include <cstdint>
#include <functional>
#include <vector>

class Gi;

/// What a tool asks of a pixel of one slice before it touches it: nothing, a value in a window, a certain
/// label, or both. Whole runs of a row are tested at once.
///
/// Keeps the addresses of image and labels; must not outlive them.
class GiPixelTests
{
public:
    GiPixelTests(const Gi& owner, int orientation, int slice);

    /// Accepts only values inside a window, both ends included, compared as GiValueWindow says. Asks for
    /// nothing if there is no image. To be called before requireLabel().
    void requireValue(const float* window);
    /// Accepts only this label; a number that is none refuses all. Asks for nothing without labels.
    void requireLabel(int label);

    bool acceptAll() const { return tests.empty(); }
    /// Tells for `n` pixels of a row, from `column` on, whether they are accepted: one bit each, the first
    /// one lowest; what stands beyond them means nothing. Valid until the next call.
    const unsigned int* accept(int column, int row, int n);

private:
    /// Sets the flags of what it refuses to 0; the test of values writes all flags.
    using Test = std::function<void(int column, int row, int n, unsigned char* flags)>;

    template <class T>
    void addValueTest(const T* elements, long xStride, long yStride, const float* window);

    const Gi& gi;
    const int orientation, slice;
    std::vector<Test> tests;
    std::vector<unsigned char> flags;
    std::vector<std::uint64_t> words;
    std::vector<unsigned int> bits;
};
