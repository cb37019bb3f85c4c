#include "tools/IScissors.h"

#include "mc/McMemory.h"
#include "mc/McMemoryException.h"
#include "mc/McRawData.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <type_traits>

IScissors::IScissors() = default;

IScissors::~IScissors()
{
    release();
}

void IScissors::init(int newWidth, int newHeight, unsigned char* newImage, CostType type)
{
    const bool isNewShape = width != newWidth || height != newHeight;
    if (static_cast<long>(newWidth) * newHeight != static_cast<long>(width) * height) release();
    costType = type == kFollowBright ? kImageAsCost : type;
    image = newImage;
    width = newWidth;
    height = newHeight;
    try {
        allocate();
    } catch (const McMemoryException&) {
        release();
        throw;
    }
    // Without a new start the search goes on in an image of the same shape only.
    if (isNewShape) forgetSearch();

    const auto count = static_cast<unsigned long>(width) * static_cast<unsigned long>(height);
    if (type == kFollowBright)
        McRawData::mapLinear(cost, image, count, -255.0, -1.0);
    else if (type == kImageAsCost)
        std::memcpy(cost, image, count);
    else
        std::memset(cost, kNotComputed, count);
}

void IScissors::allocate()
{
    if (static_cast<long>(width) * height > INT_MAX) throw McMemoryException(ULONG_MAX);
    const auto count = static_cast<unsigned long>(width) * static_cast<unsigned long>(height);
    const auto needPlane = [count](auto*& plane) {
        if (!plane) plane = static_cast<std::remove_reference_t<decltype(plane)>>(mcAllocate(count));
    };
    needPlane(marks);
    needPlane(cost);
    if (!nodes) nodes = static_cast<Node*>(mcAllocate(mcByteCount(count, sizeof(Node))));
    if (costType == kImageAsCost) return;
    needPlane(gradX);
    needPlane(gradY);
    needPlane(spare);
}

void IScissors::release()
{
    for (void* plane : {static_cast<void*>(cost), static_cast<void*>(gradX), static_cast<void*>(gradY),
                        static_cast<void*>(spare), static_cast<void*>(marks), static_cast<void*>(nodes)})
        std::free(plane);
    cost = spare = marks = nullptr;
    gradX = gradY = nullptr;
    nodes = nullptr;
    width = height = 0;
}

/// No pixel can be reached until the next start.
void IScissors::forgetSearch()
{
    const int count = width * height;
    std::fill_n(nodes, count, Node{&unqueued, nullptr, -1, -1});
    std::fill_n(marks, count, 0);
    std::fill_n(buckets, kBuckets, Bucket{});
    lastIndex = seedIndex = 0;
}

int IScissors::start(int x, int y)
{
    const int seed = y * width + x;
    if (!cost || !isInside(seed)) return 0;

    std::fill_n(marks, width * height, 0);
    std::fill_n(buckets, kBuckets, Bucket{});
    const Node excluded{&unqueued, nullptr, -1, -1}, unreached{&unqueued, nullptr, -1, 0};
    for (int row = 0; row < height; ++row) {
        Node* const line = nodes + static_cast<long>(row) * width;
        const bool isBorder = row == 0 || row == height - 1;
        std::fill_n(line, width, isBorder ? excluded : unreached);
        line[0] = line[width - 1] = excluded;
    }
    seedIndex = lastIndex = seed;
    currentCost = 0;
    insert(seed, seed, 0);
    return 1;
}

int IScissors::restart(int x, int y)
{
    const int seed = y * width + x;
    if (!cost || !isInside(seed)) return 0;

    const int back = nodes[seed].back, last = lastIndex;
    start(x, y);
    nodes[seed].back = back;
    lastIndex = last;
    return 1;
}
