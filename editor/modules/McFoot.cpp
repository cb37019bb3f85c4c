#include "modules/McFoot.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>

namespace {

int largestMagnitude(const short* samples, int count)
{
    int largest = 0;
    for (int i = 0; i < count; ++i) largest = std::max(largest, std::abs(int{samples[2 * i + 1]}));
    return largest;
}

} // namespace

float McFoot::fmin = 320;
float McFoot::fmax = 8000;

McFoot::~McFoot()
{
    stop = 1;
    if (childId != 0) kill(childId, SIGKILL);
}

int McFoot::getValue() const
{
    const float v = (1 / frequency - 1 / fmin) * 256 / (1 / fmax - 1 / fmin);
    if (v < 0) return 0;
    return v <= 255 ? static_cast<int>(v) : 255;
}

int McFoot::calcTime(const short* samples, int count, int)
{
    if (count <= 0) return count;
    const auto sample = [samples](int i) { return samples[2 * i + 1]; };
    const int threshold = largestMagnitude(samples, count) / 3;
    int first = 0, last = 0, peaks = 0;
    for (int i = 0; i < count; ++i) {
        if (sample(i) <= threshold) continue;
        while (i < count && sample(i + 1) >= sample(i)) ++i;
        if (peaks++ == 0) first = i;
        last = i;
    }
    return peaks > 0 && first < last ? (last - first) / peaks : count;
}
