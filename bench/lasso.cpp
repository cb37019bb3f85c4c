// Outlines in a large slice: filling one of ten thousand points, beside OpenCV, and a move of the mouse while
// an outline traces edges, with the search and all that is drawn anew.

#include "BenchEditor.h"
#include "BenchProgram.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "core/GiSelection2D.h"
#include "mc/McEvent.h"
#include "tools/GiLasso.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <vector>

namespace {

constexpr int kSide = 2048;
constexpr int kPoints = 10000;
constexpr int kRounds = 25;
constexpr int kMoves = 2000;
constexpr int kMovesPerFix = 80;

using Outline = std::vector<McVec2f>;

/// Once around the middle, as a hand with a tremor.
Outline drawnOutline()
{
    Outline points;
    for (int i = 0; i < kPoints; ++i) {
        const double t = i * 2 * std::numbers::pi / kPoints;
        const double r = 800 + 120 * std::sin(5 * t) + 3 * std::sin(611 * t);
        points.emplace_back(static_cast<float>(kSide / 2 + r * std::cos(t)),
                            static_cast<float>(kSide / 2 + r * std::sin(t)));
    }
    return points;
}

/// A scribble that crosses itself thousands of times.
Outline scribble()
{
    Outline points;
    for (int i = 0; i < kPoints; ++i) {
        const double t = i * 2 * std::numbers::pi / kPoints;
        points.emplace_back(static_cast<float>(kSide / 2 + 1000 * std::sin(53 * t)),
                            static_cast<float>(kSide / 2 + 1000 * std::cos(71 * t + 1)));
    }
    return points;
}

/// OpenCV counts pixels that the outline only touches; apart from them the areas must be one.
void compare(const GiSelection2D& ours, const cv::Mat& theirs, const std::vector<cv::Point>& outline,
             int shift)
{
    cv::Mat touched(kSide, kSide, CV_8U, cv::Scalar(0));
    cv::polylines(touched, std::vector<std::vector<cv::Point>>{outline}, true, cv::Scalar(255), 3, cv::LINE_8,
                  shift);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            benchRequire(touched.at<unsigned char>(y, x) != 0 ||
                             ours.isSet(x, y) == (theirs.at<unsigned char>(y, x) != 0),
                         "the filled outline differs from OpenCV's.");
}

void benchFill(const char* name, const Outline& outline)
{
    constexpr int kShift = 4;
    std::vector<cv::Point> points;
    for (const McVec2f& p : outline) // pixels are sampled half a pixel from their corner
        points.emplace_back(static_cast<int>(std::lround((p.x - 0.5f) * (1 << kShift))),
                            static_cast<int>(std::lround((p.y - 0.5f) * (1 << kShift))));
    const std::vector<std::vector<cv::Point>> polygons{points};
    GiSelection2D selection;
    selection.resize(kSide, kSide);
    cv::Mat bytes(kSide, kSide, CV_8U);
    const auto ours = [&] { selection.setSelection(kPoints, outline.data(), kSelectReplace); };
    const auto openCv = [&] {
        bytes.setTo(0);
        cv::fillPoly(bytes, polygons, cv::Scalar(255), cv::LINE_8, kShift);
    };
    ours();
    openCv();
    compare(selection, bytes, points, kShift);
    BenchRace race;
    const int our = race.add([&] { return benchClockMs(ours); });
    const int their = race.add([&] { return benchClockMs(openCv); });
    race.run(kRounds);
    benchPrint({std::string("polygon, ") + name, 1, race.medianMs(our), "OpenCV fillPoly",
                race.medianMs(their), 0, "10000 points, 2048 x 2048; OpenCV makes bytes"});
}

/// One slice of blobs, enlarged.
std::vector<unsigned char> largeSlice()
{
    constexpr unsigned long kBlobs = 256;
    const BenchImage blobs = benchBlobs(kBlobs);
    cv::Mat small(static_cast<int>(kBlobs), static_cast<int>(kBlobs), CV_16U,
                  const_cast<unsigned short*>(blobs.data() + kBlobs * kBlobs * (kBlobs / 2)));
    cv::Mat large, grey;
    cv::resize(small, large, cv::Size(kSide, kSide), 0, 0, cv::INTER_CUBIC);
    large.convertTo(grey, CV_8U, 255.0 / 4000);
    return {grey.data, grey.data + grey.total()};
}

double percentile(std::vector<double> times, double share)
{
    std::sort(times.begin(), times.end());
    return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1))];
}

/// A hand that goes around, some ten pixels an event, and fixes what is right.
void benchTrace(int window)
{
    std::vector<unsigned char> image = largeSlice();
    BenchEditor editor(kSide, kSide, 1);
    editor.setImage(image.data());
    editor.gi.imageLattice = editor.lattice();
    editor.gi.setZoomFactor(1);
    editor.viewer(2).setDataWindow(0, 255, false);
    editor.viewer(2).setSlice(0, false);
    GiMemoryFrameBuffer& buffer = editor.buffer(2);
    buffer.setWindowSize(McVec2i(window, window));
    buffer.setOffset(McVec2i((kSide - window) / 2, (kSide - window) / 2));
    editor.gi.setTool(GiLasso::kIndex);
    dynamic_cast<GiLasso*>(editor.gi.tools[GiLasso::kIndex])->setAutoTrace(true);

    std::vector<double> moves, clicks;
    const double radius = 0.4 * window;
    for (int i = 0; i < kMoves; ++i) {
        const double t = i * 10 / radius;
        McMotionEvent motion;
        motion.x = kSide / 2 + static_cast<int>(radius * std::cos(t) + 20 * std::sin(0.7 * i));
        motion.y = kSide / 2 + static_cast<int>(radius * std::sin(t) + 20 * std::sin(0.9 * i));
        if (i > 0) moves.push_back(benchClockMs([&] { buffer.handleEvent(&motion); }));
        if (i % kMovesPerFix) continue;
        McMouseButtonEvent click;
        click.pressed = click.left = click.button = 1;
        click.x = motion.x;
        click.y = motion.y;
        clicks.push_back(benchClockMs([&] { buffer.handleEvent(&click); }));
    }
    const std::vector<unsigned int> left = benchPicture(buffer);
    const double redraw = benchClockMs([&] { editor.viewer(2).redraw(); });
    benchRequire(left == benchPicture(buffer), "the trace leaves another picture than a redraw.");
    char name[80], note[120];
    std::snprintf(name, sizeof name, "trace, a move, window of %d", window);
    std::snprintf(note, sizeof note, "99th percentile %.2f, worst %.2f; a fixing click %.1f",
                  percentile(moves, 0.99), percentile(moves, 1), percentile(clicks, 0.5));
    benchPrint({name, 1, percentile(moves, 0.5), "redraw of the window", redraw, 0, note});
}

void benchLasso(const BenchOptions&)
{
    benchSetThreads(1);
    cv::setNumThreads(1);
    benchFill("drawn", drawnOutline());
    benchFill("scribble", scribble());
    benchTrace(1000);
    benchTrace(kSide);
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchLasso);
}
