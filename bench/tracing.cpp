// Tracing on slices of a head, as large as microscopes make them: the map of all paths from a seed, a path
// out of it, and the moves of a mouse. Beside OpenCV's scissors and scikit-image.

#include "BenchProgram.h"
#include "BenchPython.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "editor/tools/PlainScissors.h"
#include "tools/IScissors.h"

#include <opencv2/imgproc/segmentation.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>
#include <vector>

namespace {

constexpr int kRounds = 9;
constexpr int kRequests = 200;
constexpr int kMoves = 1000;

struct Pixel
{
    int x, y;
};

/// Where a seed is set: in the wall of a ventricle.
Pixel seedIn(const TraceImage& image)
{
    return {image.width * 2 / 5, image.height * 2 / 5};
}

void start(IScissors& scissors, const TraceImage& image)
{
    const Pixel seed = seedIn(image);
    benchRequire(scissors.start(seed.x, seed.y) == 1, "the trace does not start.");
}

/// No time is told before all ways are those of the plain search. Returns the pixel that is reached last.
Pixel requireSamePaths(IScissors& scissors, const TraceImage& image, int type)
{
    const Pixel seed = seedIn(image);
    const int seedIndex = seed.y * image.width + seed.x;
    const PlainScissors plain(image, type, seedIndex);
    start(scissors, image);
    for (int i = 0; i < image.count(); ++i) {
        const int back = plain.predecessors()[static_cast<std::size_t>(i)];
        if (image.isBorder(i) || back == seedIndex) continue;
        int x = i % image.width, y = i / image.width;
        benchRequire(scissors.next(x, y) == 1 && y * image.width + x == back,
                     "a path differs from the rule.");
    }
    return {plain.lastReached() % image.width, plain.lastReached() / image.width};
}

std::string named(const char* operation, const TraceImage& image, const char* what)
{
    return std::string(operation) + ", " + std::to_string(image.width) + "^2, " + what;
}

/// All paths from a seed: in an image just shown, and again where costs are known from a search before.
void benchMap(TraceImage& image, int type, const char* what, BenchPython& python,
              const std::string& imageFile)
{
    const Pixel seed = seedIn(image);
    cv::Mat view(image.height, image.width, CV_8U, image.values.data());
    IScissors scissors;
    const auto show = [&] {
        scissors.init(image.width, image.height, image.values.data(), static_cast<IScissors::CostType>(type));
    };
    show();
    const Pixel last = requireSamePaths(scissors, image, type);
    const auto search = [&] {
        start(scissors, image);
        scissors.isValid(last.x, last.y);
    };
    cv::segmentation::IntelligentScissorsMB theirs;
    theirs.setEdgeFeatureZeroCrossingParameters();
    theirs.applyImage(view);

    char open[500];
    std::snprintf(open, sizeof open, "open route route %s %d %d %d %d %d", imageFile.c_str(), image.width,
                  seed.x, seed.y, last.x, last.y);
    python.ask(open);
    BenchRace race;
    const int again = race.add([&] { return benchClockMs(search); });
    const int first = race.add([&] {
        return benchClockMs([&] {
            show();
            search();
        });
    });
    const int openCv = race.add([&] { return benchClockMs([&] { theirs.buildMap({seed.x, seed.y}); }); });
    const int openCvFirst = race.add([&] {
        return benchClockMs([&] {
            theirs.applyImage(view);
            theirs.buildMap({seed.x, seed.y});
        });
    });
    const int skimage = race.add([&] { return python.runMs("route"); });
    race.run(kRounds);
    python.ask("close route");

    const std::string map = named("trace all", image, what), shown = map + ", new";
    benchPrint(
        {map, 1, race.medianMs(again), "OpenCV buildMap", race.medianMs(openCv), 0, "costs are known"});
    benchPrint({map, 1, race.medianMs(again), "scikit-image route", race.medianMs(skimage), 0, ""});
    benchPrint({shown, 1, race.medianMs(first), "OpenCV applyImage, buildMap", race.medianMs(openCvFirst), 0,
                "costs computed on the way"});
}

/// A path to a place that has been searched already.
void benchPath(TraceImage& image)
{
    const Pixel seed = seedIn(image);
    cv::Mat view(image.height, image.width, CV_8U, image.values.data());
    IScissors scissors;
    scissors.init(image.width, image.height, image.values.data(), IScissors::kFollowEdges);
    start(scissors, image);
    cv::segmentation::IntelligentScissorsMB theirs;
    theirs.setEdgeFeatureZeroCrossingParameters();
    theirs.applyImage(view);
    theirs.buildMap({seed.x, seed.y});

    std::vector<Pixel> targets;
    McDArray<McVec2i> path;
    std::vector<cv::Point> contour;
    for (int i = 0; i < kRequests; ++i) // round the seed
        targets.push_back({static_cast<int>(seed.x + 0.35 * image.width * std::sin(i)),
                           static_cast<int>(seed.y + 0.35 * image.height * std::cos(i))});
    double ourPixels = 0, theirPixels = 0;
    const auto ourPaths = [&] {
        ourPixels = 0;
        for (const Pixel& target : targets) {
            scissors.getPath(target.x, target.y, path);
            ourPixels += path.size();
        }
    };
    const auto theirPaths = [&] {
        theirPixels = 0;
        for (const Pixel& target : targets) {
            theirs.getContour({target.x, target.y}, contour);
            theirPixels += static_cast<double>(contour.size());
        }
    };
    ourPaths(); // searches what lies between
    BenchRace race;
    const int ours = race.add([&] { return benchClockMs(ourPaths); });
    const int openCv = race.add([&] { return benchClockMs(theirPaths); });
    race.run(50 * kRounds);
    char note[100];
    std::snprintf(note, sizeof note, "%d paths of %.0f pixels, theirs of %.0f", kRequests,
                  ourPixels / kRequests, theirPixels / kRequests);
    benchPrint({named("paths in the map", image, "edges"), 1, race.medianMs(ours), "OpenCV getContour",
                race.medianMs(openCv), 0, note});
}

/// A hand that leads the mouse outward in loops: the search of each move, and the stretch to draw anew.
void benchMoves(TraceImage& image, int type, const char* what)
{
    IScissors scissors;
    scissors.init(image.width, image.height, image.values.data(), static_cast<IScissors::CostType>(type));
    start(scissors, image);
    const Pixel seed = seedIn(image);
    std::vector<double> times;
    for (int i = 1; i <= kMoves; ++i) {
        const double angle = 0.02 * i, reach = 0.35 * image.width * i / kMoves;
        const int x = static_cast<int>(seed.x + reach * std::sin(angle)),
                  y = static_cast<int>(seed.y + reach * std::cos(angle));
        times.push_back(benchClockMs([&] {
            int oldX, oldY, forkX, forkY;
            if (!scissors.isValid(x, y)) return;
            scissors.markPath(x, y, oldX, oldY, forkX, forkY);
            while ((oldX != forkX || oldY != forkY) && scissors.next(oldX, oldY)) {
            }
        }));
    }
    std::sort(times.begin(), times.end());
    char note[100];
    std::snprintf(note, sizeof note, "median; 99th percentile %.2f, worst %.2f; without paint",
                  times[times.size() * 99 / 100], times.back());
    benchPrint({named("a move of a trace", image, what), 1, times[times.size() / 2], "", 0, 0, note});
}

void benchTracing(const BenchOptions& options)
{
    cv::setNumThreads(1);
    for (const unsigned long side : {options.size, 4 * options.size}) {
        BenchPython python(side);
        const std::string file = options.work + "/slice.raw";
        python.ask("slice /usr/share/mricron/templates/ch2.nii.gz 90 " + file);
        TraceImage image{static_cast<int>(side), static_cast<int>(side), {}};
        image.values.resize(side * side);
        benchLoad(file, image.values.data(), image.values.size());
        benchMap(image, IScissors::kFollowEdges, "edges", python, file);
        benchMap(image, IScissors::kFollowBright, "bright lines", python, file);
        benchPath(image);
        benchMoves(image, IScissors::kFollowEdges, "edges");
        benchMoves(image, IScissors::kFollowBright, "bright lines");
    }
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchTracing);
}
