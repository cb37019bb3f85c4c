// What a slice costs until it is on screen: grey image, way into the frame buffer, outlines of the labels,
// and a brush stroke with the redraw behind it.

#include "BenchEditor.h"
#include "BenchProgram.h"
#include "BenchPython.h"
#include "BenchRace.h"
#include "BenchVolume.h"
#include "mc/McMemory.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <set>
#include <vector>

namespace {

constexpr int kRounds = 41;
constexpr int kFastRounds = 201; // of what takes less than 5 ms
const char* const kPlaneNames[3] = {"YZ", "XZ", "XY"};

/// Slice numbers far apart from each other: a user leafs through slices that no cache holds. The peers in
/// Python walk the same way.
class SliceWalk
{
public:
    explicit SliceWalk(const BenchOptions& options, unsigned long first = 0) : n(options.size), at(first) {}
    int next()
    {
        at = (at + kStep) % n;
        return static_cast<int>(at);
    }

private:
    static constexpr unsigned long kStep = 101;
    unsigned long n, at;
};

struct Free
{
    void operator()(void* memory) const { std::free(memory); }
};

/// An image of one element type, in memory as lattices have it. The width of the window is a prime, so that
/// no value lies halfway between two grey values, where each of us rounds in a way of his own.
template <class T>
struct TypedImage
{
    const char* name;      // for the table
    const char* numpyType; // for the peer
    float low, high;
    std::unique_ptr<T, Free> values;
};

template <class T>
TypedImage<T> typedImage(const char* name, const char* numpyType, float low, float high,
                         const BenchImage& blobs, int divisor)
{
    auto* values = static_cast<T*>(mcAllocateVolume(blobs.size() * sizeof(T)));
    for (std::size_t i = 0; i < blobs.size(); ++i) values[i] = static_cast<T>(blobs[i] / divisor);
    return {name, numpyType, low, high, std::unique_ptr<T, Free>(values)};
}

/// The pixels of a slice, one by one into 32 bits: what no look-up can do without.
template <class T>
void readSlice(const unsigned char* slice, unsigned long side, long xStride, long yStride,
               unsigned int* pixels)
{
    for (unsigned long y = 0; y < side; ++y, slice += yStride) {
        const unsigned char* element = slice;
        for (unsigned long x = 0; x < side; ++x, element += xStride)
            *pixels++ = static_cast<unsigned int>(*reinterpret_cast<const T*>(element));
    }
}

/// The cases of one element type: each slice orientation, as grey image alone and up to the finished picture.
template <class T>
class SliceCases
{
public:
    SliceCases(const BenchOptions& given, BenchPython& peers, BenchEditor& shown,
               const TypedImage<T>& shownImage)
        : options(given), python(peers), editor(shown), image(shownImage), pixels(given.size * given.size)
    {
        file = options.work + "/image.raw";
        benchSave(file, image.values.get(), options.voxels() * sizeof(T));
        editor.setImage(image.values.get());
    }

    void run()
    {
        for (const int orientation : {2, 1, 0}) {
            lookUp(orientation);
            finish(orientation);
        }
    }

private:
    static constexpr int kZoom = 4;

    void openPeer(int orientation, int zoom)
    {
        char line[256];
        std::snprintf(line, sizeof line, "open lookup lookup %s %s %d %d %g %g", file.c_str(),
                      image.numpyType, orientation, zoom, image.low, image.high);
        python.ask(line);
    }

    /// Compares a slice with the peer's, which has just shown its next one.
    void compareWithPeer(const std::vector<unsigned int>& ours, const char* what)
    {
        const std::string result = options.work + "/result.raw";
        python.runMs("lookup");
        python.ask("save lookup " + result);
        std::vector<unsigned int> theirs(ours.size());
        benchLoad(result, theirs.data(), theirs.size() * sizeof(unsigned int));
        for (unsigned int& pixel : theirs) pixel &= 0xFFFFFFu;
        benchRequire(ours == theirs, std::string(what) + ": the pixels differ from NumPy's.");
    }

    void lookUp(int orientation)
    {
        openPeer(orientation, 1);
        const unsigned long side = options.size;
        GiGreyImage grey;
        const auto slice = [&](int s, unsigned char*& data, long& xStride, long& yStride) {
            editor.gi.imageSlices.accessSlice(orientation, s, data, xStride, yStride);
        };
        const auto show = [&](int s) {
            unsigned char* data;
            long xStride, yStride;
            slice(s, data, xStride, yStride);
            grey.setImage(side, side, image.low, image.high, reinterpret_cast<const T*>(data),
                          static_cast<int>(xStride), static_cast<unsigned long>(yStride));
        };
        SliceWalk walk(options), floorWalk(options, side / 2);
        show(walk.next());
        std::vector<unsigned int> shown(grey.packed, grey.packed + side * side);
        for (unsigned int& pixel : shown) pixel &= 0xFFFFFFu;
        compareWithPeer(shown, "setImage");

        BenchRace race;
        const int ours = race.add([&] {
            const int s = walk.next();
            return benchClockMs([&] { show(s); });
        });
        const int numpy = race.add([&] { return python.runMs("lookup"); });
        const int floor = race.add([&] {
            unsigned char* data;
            long xStride, yStride;
            slice(floorWalk.next(), data, xStride, yStride);
            return benchClockMs([&] { readSlice<T>(data, side, xStride, yStride, pixels.data()); });
        });
        race.run(kFastRounds);
        benchPrint({std::string("look up a slice ") + kPlaneNames[orientation] + ", " + image.name, 1,
                    race.medianMs(ours), "NumPy lut[slice]", race.medianMs(numpy), race.medianMs(floor),
                    "floor: read and widen"});
        python.ask("close lookup");
    }

    void finish(int orientation)
    {
        openPeer(orientation, kZoom);
        editor.setZoom(kZoom);
        GiViewer& viewer = editor.viewer(orientation);
        viewer.setDataWindow(image.low, image.high, false);
        SliceWalk walk(options);
        viewer.setSlice(walk.next(), false);
        compareWithPeer(benchPicture(editor.buffer(orientation)), "setSlice");

        BenchRace race;
        const int ours = race.add([&] {
            const int s = walk.next();
            return benchClockMs([&] { viewer.setSlice(s, false); });
        });
        const int numpy = race.add([&] { return python.runMs("lookup"); });
        race.run(kRounds);
        benchPrint({std::string("setSlice ") + kPlaneNames[orientation] + ", zoom 4, " + image.name, 1,
                    race.medianMs(ours), "NumPy lut, repeat", race.medianMs(numpy), 0,
                    std::to_string(options.size * kZoom) + " x " + std::to_string(options.size * kZoom) +
                        " screen pixels"});
        python.ask("close lookup");
    }

    const BenchOptions& options;
    BenchPython& python;
    BenchEditor& editor;
    const TypedImage<T>& image;
    std::vector<unsigned int> pixels;
    std::string file;
};

/// A picture of random pixels that fills a window of 1920 x 1080, once with a disc of them selected.
class BlitCase
{
public:
    BlitCase(const char* zoomText, int width, int height)
        : zoom(zoomText), size(width, height), pixels(static_cast<std::size_t>(width * height))
    {
        std::mt19937 random(3);
        for (unsigned int& pixel : pixels) pixel = static_cast<unsigned int>(random()) & 0xFFFFFFu;
        columns.resize(static_cast<std::size_t>(size.x));
        rows.resize(static_cast<std::size_t>(size.y));
        GiViewer::computeReplicUniform(size.x, kWindowWidth, columns.data());
        GiViewer::computeReplicUniform(size.y, kWindowHeight, rows.data());
        buffer.zoomedSize = McVec2i(kWindowWidth, kWindowHeight);
        buffer.setMemSize(buffer.zoomedSize);
        buffer.resize(size, columns.data(), rows.data());
        buffer.setSelection(disc(), 1);
        buffer.unsetClipBox();
    }

    void run()
    {
        const std::vector<unsigned int> ready = expected(false);
        for (const bool blends : {false, true}) {
            buffer.setFunction(blends ? GiFrameBuffer::kBlend : GiFrameBuffer::kDraw);
            blit();
            benchRequire(benchPicture(buffer) == expected(blends), "the blit at zoom " + zoom + " is wrong.");
            BenchRace race;
            const int ours = race.add([&] { return benchClockMs([&] { blit(); }); });
            const int fill = race.add([&] {
                return benchClockMs(
                    [&] { std::memset(buffer.memory, 0x55, buffer.bytesPerRow * kWindowHeight); });
            });
            const int copy = race.add([&] {
                return benchClockMs(
                    [&] { std::memcpy(buffer.memory, ready.data(), buffer.bytesPerRow * kWindowHeight); });
            });
            race.run(kFastRounds);
            benchPrint({"draw 1920 x 1080, zoom " + zoom + (blends ? ", selection" : ""), 1,
                        race.medianMs(ours), "memcpy of the window", race.medianMs(copy), race.medianMs(fill),
                        blends ? "floor: memset; 38 % selected" : "floor: memset"});
        }
    }

private:
    static constexpr int kWindowWidth = 1920, kWindowHeight = 1080;

    void blit()
    {
        buffer.putImageGrey8Zoomed(pixels.data(), static_cast<unsigned long>(size.x),
                                   static_cast<unsigned long>(size.y),
                                   static_cast<unsigned long>(size.x) * sizeof(unsigned int));
    }

    bool isInDisc(int x, int y) const // 38 % of the window
    {
        const int dx = x - size.x / 2, dy = y - size.y / 2;
        return 32 * (dx * dx + dy * dy) < 7 * size.y * size.y;
    }

    GiSelection2D* disc() const
    {
        auto* selection = new GiSelection2D;
        selection->resize(size.x, size.y);
        for (int y = 0; y < size.y; ++y)
            for (int x = 0; x < size.x; ++x)
                if (isInDisc(x, y)) selection->set(x, y);
        selection->computeSelectionBox();
        return selection;
    }

    /// The picture, pixel by pixel.
    std::vector<unsigned int> expected(bool blends) const
    {
        std::vector<unsigned int> picture;
        for (int y = 0; y < size.y; ++y)
            for (int again = rows[static_cast<std::size_t>(y)]; again > 0; --again)
                for (int x = 0; x < size.x; ++x)
                    picture.insert(picture.end(),
                                   static_cast<std::size_t>(columns[static_cast<std::size_t>(x)]),
                                   expectedPixel(x, y, blends));
        return picture;
    }

    unsigned int expectedPixel(int x, int y, bool blends) const
    {
        const unsigned int pixel = pixels[static_cast<std::size_t>(y * size.x + x)];
        if (!blends || !isInDisc(x, y)) return pixel;
        unsigned int mixed = 0;
        const auto alpha = static_cast<unsigned int>(buffer.selectionAlpha);
        for (const int shift : {0, 8, 16}) {
            const unsigned int selected = buffer.selectionPixel >> shift & 255;
            mixed |= ((pixel >> shift & 255) * (255 - alpha) + selected * alpha) >> 8 << shift;
        }
        return mixed;
    }

    const std::string zoom;
    const McVec2i size;
    std::vector<unsigned int> pixels;
    std::vector<int> columns, rows;
    GiFrameBuffer buffer;
};

/// The outlines of all labels of one slice.
class OutlineCase
{
public:
    OutlineCase(const BenchOptions& options, BenchEditor& shown, int plane)
        : editor(shown),
          orientation(plane),
          side(static_cast<int>(options.size)),
          buffer(shown.buffer(plane)),
          copy(side, side, CV_8U),
          picture(side * kZoom, side * kZoom, CV_8UC4)
    {
        editor.viewer(orientation).setSlice(side / 2, false);
        const cv::Mat labels = sliceForOpenCv();
        present.insert(labels.begin<unsigned char>(), labels.end<unsigned char>());
        present.erase(0); // the background is hidden
    }

    void run()
    {
        compare();
        const McBox2i whole(0, 0, side * kZoom - 1, side * kZoom - 1);
        BenchRace race;
        const int ours = race.add([&] { return benchClockMs([&] { render(whole); }); });
        const int openCv = race.add([&] { return benchClockMs([&] { drawContours(kZoom, picture); }); });
        const int inBoxes = race.add([&] { return benchClockMs([&] { renderInBoxes(); }); });
        race.run(kFastRounds, 4000);
        const std::string name = std::string("outline the labels of a slice ") + kPlaneNames[orientation];
        benchPrint({name, 1, race.medianMs(ours), "OpenCV contours", race.medianMs(openCv), 0,
                    std::to_string(present.size()) + " labels, zoom 2"});
        const int boxes = side / kBox * (side / kBox);
        benchPrint({name + ", a box", 1, race.medianMs(inBoxes) / boxes, "", 0, race.medianMs(ours) / boxes,
                    "64 x 64 pixels, mean of " + std::to_string(boxes) + "; floor: share of the slice"});
    }

private:
    static constexpr int kZoom = 2, kBox = 64;

    void render(const McBox2i& box)
    {
        buffer.setClipBox(box);
        editor.viewer(orientation).getLabelImage()->render(&buffer, box);
    }

    void renderInBoxes()
    {
        constexpr int kEdge = kBox * kZoom;
        for (int y = 0; y + kEdge <= side * kZoom; y += kEdge)
            for (int x = 0; x + kEdge <= side * kZoom; x += kEdge)
                render(McBox2i(x, y, x + kEdge - 1, y + kEdge - 1));
    }

    /// The labels as OpenCV can take them: rows may lie apart, pixels of a row may not.
    cv::Mat sliceForOpenCv()
    {
        unsigned char* data;
        long xStride, yStride;
        editor.gi.labelSlices.accessSlice(orientation, side / 2, data, xStride, yStride);
        if (xStride == 1) return cv::Mat(side, side, CV_8U, data, static_cast<std::size_t>(yStride));
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) copy.at<unsigned char>(y, x) = data[y * yStride + x * xStride];
        return copy;
    }

    /// Which labels occur is a gift to the peer.
    ///
    /// zoom  1 draws the border pixels themselves
    void drawContours(int zoom, cv::Mat& target)
    {
        const cv::Mat labels = sliceForOpenCv();
        std::vector<std::vector<cv::Point>> contours;
        for (const int label : present) {
            cv::findContours(labels == label, contours, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);
            if (zoom > 1)
                for (std::vector<cv::Point>& contour : contours)
                    for (cv::Point& p : contour) p *= zoom;
            cv::polylines(target, contours, true, cv::Scalar(label, label, label));
        }
    }

    /// The data pixels with a mark on screen are those on OpenCV's contours, each in its label's colour.
    void compare()
    {
        cv::Mat theirs = cv::Mat::zeros(side, side, CV_8UC4);
        drawContours(1, theirs);
        const auto oursIn = [&](auto draw) {
            std::memset(buffer.memory, 0, buffer.bytesPerRow * static_cast<unsigned long>(buffer.memSize.y));
            draw();
            return benchPicture(buffer);
        };
        const std::vector<unsigned int> shown =
            oursIn([&] { render(McBox2i(0, 0, side * kZoom - 1, side * kZoom - 1)); });
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) {
                unsigned int mark = 0;
                for (int k = 0; k < kZoom * kZoom; ++k)
                    mark =
                        std::max(mark, shown[static_cast<std::size_t>((y * kZoom + k / kZoom) * side * kZoom +
                                                                      x * kZoom + k % kZoom)]);
                const unsigned int theirMark = theirs.at<cv::Vec4b>(y, x)[0] * 0x010101u;
                benchRequire(mark == theirMark, "the outlines differ from OpenCV's at " + std::to_string(x) +
                                                    " " + std::to_string(y) + ".");
            }
        benchRequire(shown == oursIn([&] { renderInBoxes(); }), "the boxes do not make the whole picture.");
    }

    BenchEditor& editor;
    const int orientation, side;
    GiMemoryFrameBuffer& buffer;
    cv::Mat copy, picture;
    std::set<int> present;
};

void benchOutlines(const BenchOptions& options, BenchEditor& editor)
{
    // A label in the colour of its number can be compared with what the peer draws.
    for (int label = 0; label < 256; ++label) GiLabelImage::setColor(&editor.gi, label, label, label, label);
    editor.setZoom(2);
    for (const int orientation : {2, 1, 0}) OutlineCase(options, editor, orientation).run();
}

/// A brush of 25 pixels across that paints in the XY viewer, around the place where all three slices meet.
void benchStroke(const BenchOptions& options, BenchEditor& editor)
{
    constexpr int kRadius = 12, kZoom = 2, kTurn = 6;
    const int middle = static_cast<int>(options.size) / 2;
    editor.setZoom(kZoom);
    editor.gi.selection->clear();
    for (int o = 0; o < 3; ++o) editor.viewer(o).setSlice(middle, false);
    GiViewer* viewer = &editor.viewer(2);
    std::mt19937 random(5);

    const auto move = [&](int cx, int cy) {
        GiSelection2D& selection = *viewer->getSelection();
        for (int y = -kRadius; y <= kRadius; ++y)
            for (int x = -kRadius; x <= kRadius; ++x)
                if (x * x + y * y <= kRadius * kRadius) selection.set(cx + x, cy + y);
        McBox2i box(cx - kRadius, cy - kRadius, cx + kRadius, cy + kRadius);
        editor.gi.updateSelectionBoxes(box, viewer);
        editor.gi.redraw(box, viewer);
    };
    const auto place = [&] { return middle - kTurn + static_cast<int>(random() % (2 * kTurn + 1)); };

    BenchRace race;
    const int moves = race.add([&] {
        const int x = place(), y = place();
        return benchClockMs([&] { move(x, y); });
    });
    const int wholes = race.add([&] { return benchClockMs([&] { editor.gi.redraw(); }); });
    race.run(kFastRounds);

    // The picture that the moves have left, before and after everything is drawn anew.
    move(middle, middle);
    for (int o = 0; o < 3; ++o) {
        const std::vector<unsigned int> left = benchPicture(editor.buffer(o));
        editor.viewer(o).redraw();
        benchRequire(left == benchPicture(editor.buffer(o)), "a move leaves another picture than a redraw.");
    }
    benchPrint({"one move of a brush, 3 viewers", 1, race.medianMs(moves), "our redraw of all",
                race.medianMs(wholes), 0, "25 pixels across, zoom 2, atlas outlined"});
}

void benchDisplay(const BenchOptions& options)
{
    benchSetThreads(1);
    cv::setNumThreads(1);
    BlitCase("1", 1920, 1080).run();
    BlitCase("3", 640, 360).run();
    BlitCase("0.5", 3840, 2160).run();

    BenchEditor editor(options.size);
    BenchPython python(options.size);
    const BenchImage blobs = benchBlobs(options.size);
    SliceCases<unsigned char>(options, python, editor,
                              typedImage<unsigned char>("bytes", "uint8", 20, 219, blobs, 16))
        .run();
    SliceCases<float>(options, python, editor, typedImage<float>("float", "float32", 500, 3499, blobs, 1))
        .run();
    const auto image = typedImage<unsigned short>("16 bit", "uint16", 500, 3499, blobs, 1);
    SliceCases<unsigned short>(options, python, editor, image).run();
    // This image stays shown below.

    const std::string atlas = options.work + "/atlas.raw";
    python.ask("atlas /usr/share/mricron/templates/aal.nii.gz " + atlas);
    benchLoad(atlas, editor.labels(), options.voxels());
    benchOutlines(options, editor);
    benchStroke(options, editor);
}

} // namespace

int main(int argc, char** argv)
{
    return benchMain(argc, argv, benchDisplay);
}
