#include "BenchVolume.h"

#include "BenchProgram.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <fstream>
#include <random>

namespace {

constexpr unsigned long kBlob = 32; // voxels between the knots of the blobs

/// Random heights at the knots, smooth in between.
class Knots
{
public:
    explicit Knots(unsigned long size) : side(size / kBlob + 2), heights(side * side * side)
    {
        std::mt19937 random(7);
        for (float& height : heights) height = static_cast<float>(random() % 4000u);
    }

    float at(unsigned long x, unsigned long y, unsigned long z) const
    {
        const float u = part(x), v = part(y), w = part(z);
        const float* const h = &heights[(z / kBlob * side + y / kBlob) * side + x / kBlob];
        const auto row = [&](const float* p) { return p[0] + u * (p[1] - p[0]); };
        const auto plane = [&](const float* p) { return row(p) + v * (row(p + side) - row(p)); };
        return plane(h) + w * (plane(h + side * side) - plane(h));
    }

private:
    static float part(unsigned long i)
    {
        const float t = static_cast<float>(i % kBlob) / kBlob;
        return t * t * (3 - 2 * t);
    }

    unsigned long side;
    std::vector<float> heights;
};

} // namespace

BenchImage benchBlobs(unsigned long size)
{
    const Knots knots(size);
    BenchImage image(size * size * size);
#pragma omp parallel for
    for (unsigned long z = 0; z < size; ++z) {
        std::minstd_rand noise(static_cast<unsigned int>(z + 1));
        for (unsigned long y = 0; y < size; ++y)
            for (unsigned long x = 0; x < size; ++x)
                image[(z * size + y) * size + x] =
                    static_cast<unsigned short>(knots.at(x, y, z) + static_cast<float>(noise() % 40u));
    }
    return image;
}

BenchLabels benchLabels(const BenchImage& blobs)
{
    BenchLabels labels(blobs.size());
    for (std::size_t i = 0; i < blobs.size(); ++i)
        labels[i] = static_cast<unsigned char>(std::min(4, 1 + blobs[i] / 1000));
    return labels;
}

McBitfield benchBall(unsigned long size, double radius)
{
    McBitfield bits(size * size * size);
    const double centre = (static_cast<double>(size) - 1) / 2;
    for (unsigned long z = 0; z < size; ++z) {
        for (unsigned long y = 0; y < size; ++y) {
            const double v = static_cast<double>(y) - centre, w = static_cast<double>(z) - centre;
            const double left = radius * radius - v * v - w * w;
            if (left < 0) continue;
            const auto first = static_cast<unsigned long>(std::max(0.0, std::ceil(centre - std::sqrt(left))));
            const unsigned long end = size - first;
            for (unsigned long x = first; x < end; ++x) bits.set((z * size + y) * size + x);
        }
    }
    return bits;
}

McBitfield benchNoise(unsigned long size)
{
    McBitfield bits(size * size * size); // a multiple of 64: no padding
    std::mt19937_64 random(11);
    for (unsigned long i = 0; i < bits.numWords64(); ++i) bits.words64()[i] = random();
    return bits;
}

McBitfield benchSparse(unsigned long size)
{
    McBitfield bits(size * size * size);
    for (unsigned long i = 0; i < bits.numWords(); i += 1000) bits.set(i * 32 + i % 31);
    return bits;
}

unsigned long benchCount(const McBitfield& bits)
{
    unsigned long count = 0;
    for (unsigned long i = 0; i < bits.numWords64(); ++i)
        count += static_cast<unsigned long>(std::popcount(bits.words64()[i] | 0ull));
    return count;
}

void benchSave(const std::string& path, const void* data, unsigned long bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(static_cast<const char*>(data), static_cast<std::streamsize>(bytes));
    benchRequire(file.flush().good(), path + ": cannot be written.");
}

void benchLoad(const std::string& path, void* data, unsigned long bytes)
{
    std::ifstream file(path, std::ios::binary);
    file.read(static_cast<char*>(data), static_cast<std::streamsize>(bytes));
    benchRequire(file.good() && file.peek() == std::ifstream::traits_type::eof(),
                 path + ": does not hold " + std::to_string(bytes) + " bytes.");
}
