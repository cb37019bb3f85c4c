#include "tools/IScissors.h"

#include "mc/McMemory.h"
#include "mc/McMemoryException.h"
#include "mc/McRawData.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

constexpr unsigned long kRowReadAhead = 4; // the search reads rows of three pixels by four
// Of two neighbours the one that is expanded first can put the other one into the queue, never the reverse,
// and only once: no more entries can be needed than there are pairs of neighbours, four for a pixel. What is
// never used of this room is never given memory by the system.
constexpr int kEntriesPerPixel = 4;

template <class T>
void allocateArray(T*& array, unsigned long count)
{
    if (array) return;
    const unsigned long bytes = mcByteCount(count, sizeof(T));
    array = static_cast<T*>(mcAllocate(bytes));
    mcPreferLargePages(array, bytes);
}

template <class T>
void freeArray(T*& array)
{
    std::free(array);
    array = nullptr;
}

} // namespace

IScissors::~IScissors()
{
    release();
}

void IScissors::init(int newWidth, int newHeight, unsigned char* newImage, CostType type)
{
    const bool isNewShape = width != newWidth || height != newHeight;
    if (static_cast<long>(width) * height != static_cast<long>(newWidth) * newHeight) release();
    width = newWidth;
    height = newHeight;
    costType = type == kFollowBright ? kImageAsCost : type;
    image = newImage;
    try {
        allocate();
    } catch (const McMemoryException&) {
        release();
        throw;
    }
    // Before the next start a search can go on in an image of the same shape only.
    if (isNewShape) excludeAll();

    const auto count = static_cast<unsigned long>(width * height);
    if (type == kFollowBright)
        McRawData::mapLinear(cost, image, count, -255.0, -1.0);
    else if (type == kImageAsCost)
        std::memcpy(cost, image, count);
    else
        std::memset(cost, kNotComputed, count);
}

void IScissors::allocate()
{
    // An index has to fit, and that of an entry too.
    if (static_cast<long>(width) * height > INT_MAX / kEntriesPerPixel) throw McMemoryException(ULONG_MAX);
    const auto count = static_cast<unsigned long>(width * height);
    allocateArray(cost, count + kRowReadAhead);
    allocateArray(soFar, count + kRowReadAhead);
    allocateArray(back, count);
    allocateArray(marks, count);
    allocateArray(entries, kEntriesPerPixel * count + 1); // and the seed's own
    if (costType != kFollowAlongEdge) return;
    allocateArray(gradX, count);
    allocateArray(gradY, count);
}

void IScissors::release()
{
    freeArray(cost);
    freeArray(gradX);
    freeArray(gradY);
    freeArray(soFar);
    freeArray(back);
    freeArray(entries);
    freeArray(marks);
    emptyQueue();
    width = height = 0;
    image = nullptr;
    currentCost = -1;
}

/// No pixel can be reached until the next start.
void IScissors::excludeAll()
{
    std::fill_n(soFar, width * height, kFinished);
    std::fill_n(back, width * height, kNoWay);
    std::fill_n(marks, width * height, 0);
    emptyQueue();
    lastIndex = seedIndex = 0;
}

void IScissors::emptyQueue()
{
    std::fill_n(buckets, kBuckets, -1);
    freeEntry = -1;
    usedEntries = 0;
}

int IScissors::start(int x, int y)
{
    const int seed = y * width + x;
    if (!cost || !isInside(seed)) return 0;

    std::fill_n(marks, width * height, 0);
    std::fill_n(back, width * height, kNoWay);
    for (int row = 0; row < height; ++row) {
        int* const line = soFar + static_cast<long>(row) * width;
        const bool isBorder = row == 0 || row == height - 1;
        std::fill_n(line, width, isBorder ? kFinished : INT_MAX);
        line[0] = line[width - 1] = kFinished;
    }
    const int steps[] = {1, width + 1, width, width - 1, -1, -width - 1, -width, -width + 1, 0};
    std::copy(std::begin(steps), std::end(steps), stepTo);

    emptyQueue();
    seedIndex = lastIndex = seed;
    soFar[seed] = currentCost = 0;
    back[seed] = kSeed;
    entries[0] = {seed, -1};
    buckets[0] = 0;
    usedEntries = 1;
    return 1;
}

int IScissors::restart(int x, int y)
{
    const int seed = y * width + x;
    if (!cost || !isInside(seed)) return 0;

    const unsigned char wayBack = back[seed];
    const int last = lastIndex;
    start(x, y);
    back[seed] = wayBack;
    lastIndex = last;
    return 1;
}
