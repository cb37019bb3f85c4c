#pragma once

#include "mc/McDArray.h"
#include "mc/McVec.h"

/// Finds the cheapest path from a seed to the pixel under the mouse, in an image of one slice.
///
/// Paths are 8-connected and never run along the border of the image. The cost of a step follows edges, or
/// bright or dark lines. The search runs only as far as the pixel that is asked for and keeps its state: what
/// lies nearer costs nothing any more, what lies farther resumes the search where it stopped. A path does not
/// depend on the order in which pixels were asked for.
///
///     init, start, then isValid, markPath and next for each place of the mouse; restart to go on from a
///     fixed point; init again for another image.
///
/// A pixel index is y * width + x. Only init takes memory: 7 bytes for a pixel, 9 for kFollowAlongEdge, and
/// 32 as room for the queue, of which a search touches a few percent.
///
/// Mortensen and Barrett, "Intelligent Scissors for Image Composition", SIGGRAPH 1995; the queue is that of
/// Dial, "Algorithm 360: Shortest-Path Forest with Topological Ordering", Communications of the ACM 12, 1969.
class IScissors
{
public:
    /// What a path clings to. Any other value means edges.
    enum CostType : int
    {
        kImageAsCost = 0,     // the image is the cost
        kFollowEdges = 2,     // where the gradient is large
        kFollowBright = 3,    // where the image is bright
        kFollowAlongEdge = 99 // across the gradient; only its direction counts, not its size
    };

    IScissors() = default;
    ~IScissors();
    IScissors(const IScissors&) = delete;
    IScissors& operator=(const IScissors&) = delete;

    /// Prepares for an image, as often as there is a new one; start comes next.
    ///
    /// image   width x height bytes, x fastest. The costs that follow edges are read from it while the search
    ///         goes on, so it must stay until the next init or the last search.
    /// throws  McMemoryException; then the object is as before the first init
    void init(int width, int height, unsigned char* image, CostType type);

    /// Sets the seed and forgets all that was found so far.
    /// returns 0, and does nothing, without an image or if the seed's index lies outside of it
    int start(int x, int y);

    /// Like start, for a seed on a path found: markPath still knows where the path ended.
    int restart(int x, int y);

    /// Whether a path leads to the pixel and can end there: not on the border, and not on the seed.
    int isValid(int x, int y);

    /// Moves (x, y) one step toward the seed. Returns 0, and stays, where that step would reach the seed, on
    /// the seed itself and where there is no path; the seed itself is never returned.
    int next(int& x, int& y);

    /// The whole way from (x, y) to the seed, without the seed: what next tells step by step, in half the
    /// time. Empty where isValid is 0. Takes no memory once `path` has held a longer one.
    void getPath(int x, int y, McDArray<McVec2i>& path);

    /// Makes (x, y) the end of the path, and tells what has to be drawn anew: the way from (oldX, oldY), the
    /// previous end, to (forkX, forkY), where it joined what is still the path. The fork is the seed if
    /// nothing is left of the old path. Ask isValid first.
    void markPath(int x, int y, int& oldX, int& oldY, int& forkX, int& forkY);

    /// The pixel nearest to the end of the path that markPath has found on it at least `minMarks` times: how
    /// long a stretch has stayed the same while the mouse moved. Returns 0 at the seed if there is none.
    int getPoint(int minMarks, int& x, int& y) const;

private:
    struct Search;
    /// A place of a pixel in the queue. A pixel that gets cheaper takes another one, and the dearer one is
    /// passed over when its turn comes: it no longer has the pixel's cost.
    struct Entry
    {
        int index;
        int next; // in the bucket, or among the free ones; -1: the last
    };

    // A step costs 255 at most, so all costs in the queue lie closer together than this, and no bucket holds
    // two different ones.
    static constexpr int kBuckets = 512;
    static constexpr unsigned char kNotComputed = 255; // in the cost plane
    static constexpr int kFinished = -1;               // in soFar
    // In back: one of the steps 0 to 7 that led to the pixel, or ...
    static constexpr unsigned char kSeed = 8, kNoWay = 9;

    bool isInside(int index) const { return index >= 0 && index < width * height; }
    void allocate();
    void release();
    void excludeAll();
    void emptyQueue();

    void computeGradient(int index);
    void computeGradientsAround(int index);
    int getCost(const int& from, const int& to, const int& direction) const;
    int reallyCompute(int target);
    int predecessor(int index) const;
    int clearMarks(int index, int fork);

    int width = 0, height = 0;
    int costType = kImageAsCost;
    unsigned char* image = nullptr;
    unsigned char* cost = nullptr;
    signed char *gradX = nullptr, *gradY = nullptr;
    int* soFar = nullptr;          // cost of the path to a pixel; negative: finished, or excluded
    unsigned char* back = nullptr; // the last step of that path
    Entry* entries = nullptr;
    int freeEntry = -1, usedEntries = 0;
    int stepTo[kSeed + 1] = {}; // by step: what it adds to an index

public:
    /// Lowest cost that can still be in the queue, -1 if no search was started. Set it to -1 to end a trace.
    int currentCost = -1;

private:
    int buckets[kBuckets] = {}; // bucket c % kBuckets: the latest entry of cost c; -1: none
    unsigned char* marks = nullptr;
    int lastIndex = 0;
    int seedIndex = 0;
};
