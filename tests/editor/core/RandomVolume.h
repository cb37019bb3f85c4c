#pragma once

#include "core/GiSelection3D.h"

#include <algorithm>
#include <random>
#include <vector>

/// A small volume of random content, drawn from a fixed seed.
struct RandomVolume
{
    RandomVolume(unsigned long x, unsigned long y, unsigned long z, unsigned int seed)
        : dims{x, y, z}, random(seed), labels(x * y * z)
    {
    }

    /// Runs of equal labels along x, of about `meanRun` voxels.
    RandomVolume& drawLabels(int numLabels, int meanRun)
    {
        for (std::size_t i = 0; i < labels.size(); ++i)
            labels[i] =
                i > 0 && below(meanRun) > 0 ? labels[i - 1] : static_cast<unsigned char>(below(numLabels));
        return *this;
    }

    /// Noise, with stretches of all and of no voxels in between, so that whole words occur.
    void drawSelection(McBitfield& bits)
    {
        bits.resize(labels.size());
        bits.unsetAll();
        int kind = 0;
        for (unsigned long i = 0; i < labels.size(); ++i) {
            if (i % 97 == 0) kind = below(4);
            if (kind == 0 || (kind == 1 && below(2))) bits.set(i);
        }
    }

    int below(int n) { return static_cast<int>(random() % static_cast<unsigned int>(n)); }
    unsigned long count() const { return labels.size(); }
    unsigned long index(int x, int y, int z) const
    {
        return (static_cast<unsigned long>(z) * dims[1] + static_cast<unsigned long>(y)) * dims[0] +
               static_cast<unsigned long>(x);
    }
    bool isInside(int x, int y, int z) const
    {
        return x >= 0 && y >= 0 && z >= 0 && x < static_cast<int>(dims[0]) && y < static_cast<int>(dims[1]) &&
               z < static_cast<int>(dims[2]);
    }

    /// Calls visit(neighbour) for each face neighbour inside the volume.
    template <class Visit>
    void forEachNeighbour(unsigned long i, const Visit& visit) const
    {
        const int x = static_cast<int>(i % dims[0]), y = static_cast<int>(i / dims[0] % dims[1]),
                  z = static_cast<int>(i / dims[0] / dims[1]);
        const int steps[6][3] = {{0, 0, -1}, {0, 0, 1}, {0, -1, 0}, {0, 1, 0}, {-1, 0, 0}, {1, 0, 0}};
        for (const auto& s : steps)
            if (isInside(x + s[0], y + s[1], z + s[2])) visit(index(x + s[0], y + s[1], z + s[2]));
    }

    /// The 6-connected region of accepted voxels around one, by a plain search.
    template <class Accepts>
    std::vector<bool> region(unsigned long seed, const Accepts& accepts) const
    {
        std::vector<bool> reached(labels.size());
        if (!accepts(seed)) return reached;
        std::vector<unsigned long> pending{seed};
        reached[seed] = true;
        while (!pending.empty()) {
            const unsigned long i = pending.back();
            pending.pop_back();
            forEachNeighbour(i, [&](unsigned long j) {
                if (reached[j] || !accepts(j)) return;
                reached[j] = true;
                pending.push_back(j);
            });
        }
        return reached;
    }

    unsigned long dims[3];
    std::mt19937 random;
    std::vector<unsigned char> labels;
};

inline std::vector<bool> asVector(const McBitfield& bits)
{
    std::vector<bool> values(bits.numBits());
    for (unsigned long i = 0; i < bits.numBits(); ++i) values[i] = bits.isSet(i);
    return values;
}
