// Coordinates, drawing and bookkeeping of the frame buffer, without a viewer.

#include "editor/display/DrawnEditor.h"

#include "display/GiShape.h"
#include "hx/HxMessage.h"
#include "mc/McMemoryException.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <utility>

using testing::ElementsAre;

namespace {

/// One pixel per data pixel unless told otherwise, all black.
class Sheet : public GiFrameBuffer
{
public:
    Sheet(std::vector<int> columns, std::vector<int> rows, McVec2i mem = McVec2i(1000, 1000))
    {
        setPixelType(kXRGB);
        setMemSize(mem);
        resize(McVec2i(static_cast<int>(columns.size()), static_cast<int>(rows.size())), columns.data(),
               rows.data());
        std::memset(memory, 0, bytesPerRow * static_cast<unsigned long>(memSize.y));
        unsetClipBox();
        setColor(255, 0, 0);
    }
    Sheet(int w, int h)
        : Sheet(std::vector<int>(static_cast<std::size_t>(w), 1),
                std::vector<int>(static_cast<std::size_t>(h), 1))
    {
    }
    using GiFrameBuffer::setPixelType;
};

/// Console lines while it lives.
class Console
{
public:
    Console()
    {
        HxMessage::setSink([this](const char* line) { lines.push_back(line); });
    }
    ~Console() { HxMessage::setSink(nullptr); }
    std::vector<std::string> lines;
};

TEST(FrameBufferCoordinates, followBlocksOfAnySize)
{
    const Sheet sheet({2, 3, 2}, {1, 0, 4});
    EXPECT_EQ(sheet.zoomedSize, McVec2i(7, 5));
    EXPECT_THAT(listed(sheet.zoomedCoordsX), ElementsAre(0, 2, 5));
    EXPECT_THAT(listed(sheet.originalCoordsX), ElementsAre(0, 0, 1, 1, 1, 2, 2));
    EXPECT_THAT(listed(sheet.subPixelX), ElementsAre(0, 1, 0, 1, 2, 0, 1));
    EXPECT_THAT(listed(sheet.originalCoordsY), ElementsAre(0, 2, 2, 2, 2))
        << "a row without height is skipped";
    EXPECT_FLOAT_EQ(sheet.unzoomf(McVec2i(3, 0)).x, 1 + 1.f / 3);
    EXPECT_EQ(sheet.zoomf(McVec2f(1.5f, 2.5f)), McVec2i(4, 3));
    EXPECT_EQ(sheet.zoomf(McVec2f(9, -4)), McVec2i(5, 0)) << "limited to the slice";
    EXPECT_EQ(sheet.screenBox(McBox2i(-3, 0, 9, 2)), McBox2i(0, 0, 6, 4));
    EXPECT_EQ(sheet.pixelCentre(1, 2), McVec2i(3, 3));
}

TEST(FrameBufferCoordinates, startInsideABlock)
{
    Sheet sheet(std::vector<int>(5, 4), std::vector<int>(5, 4), McVec2i(9, 9));
    sheet.setOffset(McVec2i(3, 8));
    sheet.prepareCoordLookups2();
    EXPECT_EQ(sheet.originalCoordsX[0], 0);
    EXPECT_EQ(sheet.subPixelX[0], 3);
    EXPECT_EQ(sheet.originalCoordsX[1], 1);
    EXPECT_EQ(sheet.originalCoordsY[0], 2);
    EXPECT_EQ(sheet.subPixelY[0], 0);
    EXPECT_EQ(sheet.dataColumn(-100), 0);
    EXPECT_EQ(sheet.dataColumn(100), 2);
}

TEST(FrameBufferCoordinates, keptSubPixelsOfTheLastColumnCountFromItsWindow)
{
    Sheet sheet({2, 6}, {1}, McVec2i(3, 1));
    sheet.setOffset(McVec2i(4, 0));
    sheet.prepareCoordLookups2();
    EXPECT_THAT(listed(sheet.subPixelX), ElementsAre(0, 1, 2));
}

TEST(FrameBufferResize, keepsTheOffsetOfASliceOfTheSameSizeAndElseTheMiddle)
{
    const std::vector<int> two(100, 2), four(100, 4), one(100, 1);
    Sheet sheet(two, two, McVec2i(50, 50));
    sheet.setOffset(McVec2i(60, 100));
    sheet.prepareCoordLookups2();
    sheet.resize(McVec2i(100, 100), two.data(), two.data());
    EXPECT_EQ(sheet.offset, McVec2i(60, 100));

    const int middle = sheet.originalCoordsX[25];
    sheet.resize(McVec2i(100, 100), four.data(), four.data());
    EXPECT_EQ(sheet.originalCoordsX[25], middle);
    sheet.setOffset(McVec2i(350, 350));
    sheet.prepareCoordLookups2();
    sheet.resize(McVec2i(100, 100), one.data(), one.data());
    EXPECT_EQ(sheet.offset, McVec2i(50, 50)) << "the window stays within the slice";
    sheet.resize(McVec2i(20, 30), one.data(), one.data());
    EXPECT_EQ(sheet.memSize, McVec2i(20, 30));
}

TEST(FrameBufferResize, spreadsAZoomedSizeEvenlyWithoutTables)
{
    GiFrameBuffer buffer(McVec2i(10, 3), McVec2i(100, 100), GiFrameBuffer::kRGBX);
    buffer.resize(McVec2i(4, 3), nullptr, nullptr);
    EXPECT_THAT(listed(buffer.replicX), ElementsAre(2, 3, 2, 3));
    EXPECT_THAT(listed(buffer.replicY), ElementsAre(1, 1, 1));
}

struct PixelFormat
{
    int type, bytes;
    unsigned int color, red, blue; // of (1, 2, 3), pure red, pure blue
};

TEST(FrameBufferPixels, arePackedByType)
{
    class Typed : public GiFrameBuffer
    {
    public:
        explicit Typed(int type) { setPixelType(static_cast<PixelType>(type)); }
    };
    for (const PixelFormat& f : {PixelFormat{0, 4, 0x030201, 0xFF, 0xFF0000},
                                 {1, 4, 0x010203, 0xFF0000, 0xFF},
                                 {2, 4, 0x03020100, 0xFF00, 0xFF000000},
                                 {3, 4, 0x01020300, 0xFF000000, 0xFF00},
                                 {4, 2, (8u & 252) << 3 | 16 >> 3 | (24u & 248) << 8, 0xF800, 0x1F}}) {
        Typed buffer(f.type);
        EXPECT_EQ(buffer.currentPixel, ~0u);
        EXPECT_EQ(buffer.bytesPerPixel, f.bytes);
        if (f.type == 4)
            buffer.setColor(24, 8, 16);
        else
            buffer.setColor(1, 2, 3);
        EXPECT_EQ(buffer.currentPixel, f.color) << f.type;
        EXPECT_EQ(buffer.selectionPixel, f.red) << f.type;
        EXPECT_EQ(buffer.secondPixel, f.blue) << f.type;
    }
    Typed buffer(GiFrameBuffer::kRGBX);
    buffer.selectionRed = 1;
    buffer.selectionPixel = 0;
    buffer.defaultValues();
    EXPECT_EQ(buffer.selectionPixel, 0xFF000000u) << "red again, in the buffer's own format";
    EXPECT_EXIT(GiFrameBuffer(McVec2i(1, 1), McVec2i(1, 1), GiFrameBuffer::kXRGB),
                testing::ExitedWithCode(99), "Unsupported pixel type");
}

TEST(FrameBufferDrawing, writesThroughFlipOffsetClipAndFunction)
{
    Sheet sheet(std::vector<int>(6, 1), std::vector<int>(3, 1), McVec2i(4, 3));
    sheet.setOffset(McVec2i(2, 0));
    sheet.prepareCoordLookups2();
    sheet.setClipBox(McBox2i(0, 0, 4, 1));
    sheet.setFlip(1, 0);
    for (int x = -1; x < 8; ++x) sheet.writePixel(x, 1);
    sheet.writePixel(2, 2);
    sheet.swapAxes = true;
    sheet.writePixel(0, 3);
    EXPECT_THAT(drawn(sheet), ElementsAre("..r.", ".rrr", "...."));

    sheet.swapAxes = false;
    sheet.unsetClipBox();
    sheet.setFunction(GiFrameBuffer::kInvert);
    sheet.writePixel(5, 2);
    EXPECT_EQ(*reinterpret_cast<unsigned int*>(sheet.memory + 2 * sheet.bytesPerRow), ~0u);
    sheet.setFunction(GiFrameBuffer::kXor);
    sheet.writePixel(5, 2);
    EXPECT_EQ(*reinterpret_cast<unsigned int*>(sheet.memory + 2 * sheet.bytesPerRow), 0x00FFFFu);
}

TEST(FrameBufferDrawing, blendsOverSelectedPixelsAlone)
{
    McHandle<GiSelection2D> selection(new GiSelection2D);
    selection->resize(2, 1);
    selection->set(1, 0);
    Sheet sheet({2, 2}, {1});
    sheet.setSelection(selection, 1);
    sheet.setColor(0, 100, 200);
    sheet.setFunction(GiFrameBuffer::kBlend);
    for (int x = 0; x < 4; ++x) sheet.writePixel(x, 0);
    const unsigned int plain = 100 << 8 | 200;
    const unsigned int mixed = (255 * 96 >> 8) << 16 | (100 * 159 >> 8) << 8 | (200 * 159 >> 8);
    EXPECT_THAT(pictureOf(sheet), ElementsAre(plain, plain, mixed, mixed));
    sheet.clear();
    sheet.fillRect(0, 0, 3, 0);
    EXPECT_THAT(pictureOf(sheet), ElementsAre(plain, plain, mixed, mixed));
}

TEST(FrameBufferDrawing, linesAreThinWhereTheyStart)
{
    Sheet sheet(8, 5);
    sheet.drawLine(6, 3, 0, 1);
    EXPECT_THAT(drawn(sheet), ElementsAre("........", "rr......", "..rrr...", ".....rr.", "........"));
    Sheet wide(6, 4);
    wide.setLineWidth(2);
    wide.drawLine(0, 1, 3, 1);
    EXPECT_THAT(drawn(wide), ElementsAre("......", "rrrrr.", ".rrrr.", "......"));
    Sheet steep(4, 6);
    steep.setLineWidth(3);
    steep.drawLine(1, 4, 2, 1);
    EXPECT_THAT(drawn(steep), ElementsAre(".rrr", ".rrr", "rrrr", "rrrr", "rrr.", "...."));
}

TEST(FrameBufferDrawing, lineFollowsTheIdealWithinHalfAPixel)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<int> at(0, 39);
    for (int k = 0; k < 200; ++k) {
        Sheet sheet(40, 40);
        const int x0 = at(random), y0 = at(random), x1 = at(random), y1 = at(random);
        sheet.drawLine(x0, y0, x1, y1);
        const auto pixels = pictureOf(sheet);
        const int dx = x1 - x0, dy = y1 - y0, n = std::max(std::abs(dx), std::abs(dy));
        EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 0xFF0000u), n + 1);
        for (int i = 0; i < 1600; ++i) {
            if (!pixels[static_cast<std::size_t>(i)]) continue;
            const int x = i % 40, y = i / 40;
            // Twice the distance along the minor axis, times the length of the major one.
            EXPECT_LE(2 * std::abs((x - x0) * dy - (y - y0) * dx), n);
        }
    }
}

/// Every step of Bresenham's rule, each point by itself.
void drawEachStep(Sheet& sheet, long x0, long y0, long x1, long y1)
{
    if (x1 < x0) std::swap(x0, x1), std::swap(y0, y1);
    const long dx = x1 - x0, dy = std::abs(y1 - y0), up = y1 < y0 ? -1 : 1;
    const long large = std::max(dx, dy), small = std::min(dx, dy);
    const int first = sheet.lineWidth == 3 ? -1 : 0, last = sheet.lineWidth == 1 ? 0 : 1;
    sheet.writePixel(static_cast<int>(x0), static_cast<int>(y0));
    for (long i = 0, x = x0, y = y0, d = 2 * small - large; i < large; ++i) {
        const bool diagonal = d >= 0;
        d += diagonal ? 2 * (small - large) : 2 * small;
        if (dy <= dx || diagonal) ++x;
        if (dy > dx || diagonal) y += up;
        for (int v = first; v <= last; ++v)
            for (int u = first; u <= last; ++u)
                sheet.writePixel(static_cast<int>(x + u), static_cast<int>(y + v));
    }
}

TEST(FrameBufferDrawing, linesFromOutsideAreThoseOfTheWholeWalk)
{
    std::mt19937 random(11);
    std::uniform_int_distribution<int> at(-60, 80);
    for (int k = 0; k < 600; ++k) {
        Sheet sheet(20, 14), plain(20, 14);
        const int x0 = at(random), y0 = at(random), x1 = at(random), y1 = at(random);
        for (Sheet* s : {&sheet, &plain}) {
            s->setLineWidth(1 + k % 3);
            s->swapAxes = k % 5 == 0;
            s->setClipBox(McBox2i(3, 2, 16, 11));
        }
        sheet.drawLine(x0, y0, x1, y1);
        drawEachStep(plain, x0, y0, x1, y1);
        ASSERT_EQ(drawn(sheet), drawn(plain)) << x0 << " " << y0 << " to " << x1 << " " << y1;
    }
}

TEST(FrameBufferDrawing, linesOfAnyLengthPassThroughTheWindow)
{
    constexpr int kFar = std::numeric_limits<int>::max();
    Sheet sheet(4, 3);
    sheet.drawLine(-kFar, -kFar, kFar, kFar);
    EXPECT_THAT(drawn(sheet), ElementsAre("r...", ".r..", "..r."));
    Sheet level(4, 3);
    level.setLineWidth(3);
    level.drawLine(kFar, 0, -kFar, 0);
    EXPECT_THAT(drawn(level), ElementsAre("rrrr", "rrrr", "...."));
    Sheet dashes(4, 3);
    dashes.drawStippleRect(McVec2i(1 << 29, 1), McVec2i(1 << 29, 1 << 29), 50, 0xFF);
    EXPECT_THAT(drawn(dashes), ElementsAre("r...", "r...", "b..."))
        << "where two dashes of the left side meet";
}

TEST(FrameBufferDrawing, outlines)
{
    Sheet rect(7, 7);
    rect.drawRect(McVec2i(3, 3), McVec2i(2, 2));
    EXPECT_THAT(drawn(rect),
                ElementsAre(".......", ".rrrrr.", ".r...r.", ".r...r.", ".r...r.", ".rrrrr.", "......."));

    Sheet dashed(7, 7);
    dashed.drawStippleRect(McVec2i(3, 3), McVec2i(3, 3), 50, 0xFF);
    EXPECT_EQ(dashed.currentPixel, 0xFF0000u);
    EXPECT_THAT(drawn(dashed),
                ElementsAre("rbbrrrb", "r.....b", "r.....b", "r.....r", "b.....r", "b.....r", "brrrbbb"));

    Sheet point(3, 3);
    point.drawStippleRect(McVec2i(1, 1), McVec2i(0, 0), 50, 0xFF);
    EXPECT_THAT(drawn(point), ElementsAre("...", ".r.", "..."));

    Sheet circle(9, 9);
    circle.drawEllipse(4, 4, 3.5f, 3.5f);
    const auto rows = drawn(circle);
    for (int i = 0; i < 9; ++i) {
        for (int j = 0; j < 9; ++j)
            if (rows[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)] == 'r') {
                const double r = std::hypot(i - 3.5, j - 3.5);
                EXPECT_NEAR(r, 3.5, 1) << i << " " << j;
            }
    }
    Sheet halves(11, 11);
    halves.drawStippleEllipse(5, 5, 5, 5, 180, 0xFF);
    EXPECT_EQ(drawn(halves)[9][6], 'r') << "the first dash, with rising angle, has the current colour";
    EXPECT_EQ(drawn(halves)[0][6], 'b');
}

TEST(FrameBufferDrawing, fillsRectanglesAndReportsWhatItCannot)
{
    Console console;
    Sheet sheet(5, 3);
    sheet.fillRect(3, 1, 9, 9);
    EXPECT_THAT(drawn(sheet), ElementsAre(".....", "...rr", "...rr"));
    sheet.setFunction(GiFrameBuffer::kXor);
    sheet.fillRect(0, 0, 1, 1);
    EXPECT_THAT(drawn(sheet), ElementsAre(".....", "...rr", "...rr"));
    EXPECT_THAT(console.lines, ElementsAre("Line 441: unsupported function"));
    sheet.setFunction(GiFrameBuffer::kDraw);
    sheet.setFlip(1, 1);
    sheet.fillRect(0, 0, 0, 0);
    sheet.fillRect(4, 2, 4, 2);
    EXPECT_THAT(drawn(sheet), ElementsAre("r....", "...rr", "...rr"));

    GiFrameBuffer small(McVec2i(3, 1), McVec2i(3, 1), GiFrameBuffer::kRGB16);
    small.unsetClipBox();
    small.setColor(255, 0, 0);
    small.fillRect(1, 0, 1, 0);
    small.setFunction(GiFrameBuffer::kInvert);
    small.fillRect(2, 0, 2, 0);
    small.writePixel(0, 0);
    const auto* pixels = reinterpret_cast<const unsigned short*>(small.memory);
    EXPECT_THAT(std::vector<int>(pixels, pixels + 3), ElementsAre(0x8080, 0xF800, 0x7F7F));
    small.setFunction(GiFrameBuffer::kBlend);
    small.fillRect(0, 0, 0, 0);
    EXPECT_EQ(console.lines.back(), "Line 461: unsupported function");
}

TEST(FrameBufferDrawing, scrollsWhatStaysAndLeavesTheRest)
{
    Sheet sheet(4, 3);
    sheet.writePixel(1, 1);
    sheet.scrollHorizontal(2);
    EXPECT_THAT(drawn(sheet), ElementsAre("....", ".r.r", "...."));
    sheet.scrollVertical(-1);
    EXPECT_THAT(drawn(sheet), ElementsAre(".r.r", "....", "...."));
    sheet.scrollHorizontal(-9);
    sheet.scrollVertical(3);
    EXPECT_THAT(drawn(sheet), ElementsAre(".r.r", "....", "...."));
}

class RecordingShape : public GiShape
{
public:
    RecordingShape(std::string letter, std::string& list) : name(std::move(letter)), log(list) {}
    ~RecordingShape() override { log += "~" + name; }
    void render(GiFrameBuffer* buffer, const McBox2i& box) override
    {
        log += name + std::to_string(buffer->function);
        lastBox = box;
    }
    McBox2i lastBox;

private:
    std::string name;
    std::string& log;
};

TEST(FrameBufferShapes, renderInOrderWithTheLowestUnderTheBlend)
{
    std::string log;
    McHandle<RecordingShape> a(new RecordingShape("a", log)), b(new RecordingShape("b", log));
    {
        Sheet sheet(8, 8);
        EXPECT_EQ(sheet.addShape(a), 0);
        EXPECT_EQ(sheet.addShape(b), 1);
        EXPECT_TRUE(sheet.hasShape(b));
        sheet.render(nullptr);
        McHandle<GiSelection2D> selection(new GiSelection2D);
        sheet.setSelection(selection, 1);
        sheet.render(nullptr);
        sheet.render(b);
        selection->hidden = 1;
        sheet.render(nullptr);
        selection->hidden = 0;
        sheet.setSelection(selection, 9);
        sheet.render(McBox2i(-4, 5, 3, 20), nullptr);
        EXPECT_EQ(a->lastBox, McBox2i(0, 5, 3, 7));
        EXPECT_EQ(sheet.clipBox, a->lastBox);
        EXPECT_EQ(sheet.selectionLayers, 2);
        sheet.flags |= GiFrameBuffer::kRenderingOff;
        sheet.render(nullptr);
        sheet.flags = 0;
        sheet.render(McBox2i(3, 3, 2, 2), nullptr);
        EXPECT_EQ(log, "a0b0a3b0a3a0b0a3b3");
        EXPECT_EQ(sheet.removeShape(b), 0);
        EXPECT_EQ(sheet.removeShape(b), 1);
        EXPECT_EQ(selection->refCount(), 2);
    }
    log.clear();
    a = nullptr;
    b = nullptr;
    EXPECT_EQ(log, "~a~b") << "the buffer gives its references back";
}

TEST(FrameBufferShapes, aShapeThatThrowsLeavesTheFunction)
{
    class Throwing : public GiShape
    {
    public:
        void render(GiFrameBuffer*, const McBox2i&) override { throw McMemoryException(1); }
    };
    Sheet sheet(4, 4);
    sheet.addShape(McHandle<GiShape>(new Throwing));
    sheet.setSelection(McHandle<GiSelection2D>(new GiSelection2D), 1);
    EXPECT_THROW(sheet.render(nullptr), McMemoryException);
    EXPECT_EQ(sheet.function, GiFrameBuffer::kDraw);
}

TEST(FrameBufferTables, withoutEntriesStayAtTheOrigin)
{
    GiFrameBuffer buffer;
    EXPECT_EQ(buffer.columnStart(-1), 0);
    EXPECT_EQ(buffer.rowStart(3), 0);
    Sheet sheet({2, 2}, {2, 2});
    const int none = 0;
    sheet.resize(McVec2i(0, 0), &none, &none);
    EXPECT_EQ(sheet.offset, McVec2i(0, 0));
    EXPECT_EQ(sheet.dataColumn(1), 0);
}

TEST(FrameBufferTables, complainAboutAMissingFirstStep)
{
    Console console;
    Sheet sheet(3, 3);
    sheet.originalSize.x = 4;
    sheet.prepareCoordLookups2();
    EXPECT_THAT(console.lines,
                ElementsAre("Error: prepareCoordLookups2: zoomedCoordsX.size()!=originalSize.x (3!=4)\n"));
}

TEST(FrameBufferState, turnsByQuarters)
{
    Sheet sheet(1, 1);
    sheet.setRotate(0, 4);
    EXPECT_FALSE(sheet.rotated);
    sheet.setRotate(0, 1);
    EXPECT_TRUE(sheet.rotated);
    sheet.setRotate(0, 3);
    EXPECT_FALSE(sheet.rotated);
}

} // namespace
