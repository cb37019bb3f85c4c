// The way of a slice into the picture, at sizes at which every fast path has a body and an odd end.

#include "editor/display/DrawnEditor.h"

#include <gtest/gtest.h>

namespace {

class Blit : public testing::Test
{
protected:
    std::mt19937 random{811};

    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

    std::vector<int> blocks(int n, int least, int most)
    {
        std::vector<int> counts(static_cast<std::size_t>(n));
        for (int& count : counts) count = number(least, most);
        counts[static_cast<std::size_t>(number(0, n - 1))] = std::max(most, 1); // never all of them 0
        return counts;
    }

    /// A selection in bits of its own or, with strides, across a larger field; sparse, dense or empty.
    void select(GiSelection2D& selection, McBitfield& field, int w, int h, bool isStrided)
    {
        const auto width = static_cast<unsigned long>(w), height = static_cast<unsigned long>(h);
        if (isStrided) {
            field.resize(0);
            field.resize(width * height * 3 + 7);
            selection.setBitfield(&field, width, height, 5, 3, 3 * width);
        } else {
            selection.resize(w, h);
            selection.clear();
        }
        const int percent = std::array{0, 3, 50, 100}[static_cast<std::size_t>(number(0, 3))];
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                if (number(1, 100) <= percent) selection.set(x, y);
        selection.computeSelectionBox();
    }

    static unsigned int mixed(unsigned int pixel, unsigned int color, int alpha)
    {
        unsigned int result = pixel & 0xFF000000;
        for (int shift = 0; shift < 24; shift += 8) {
            const unsigned int a = static_cast<unsigned int>(alpha), c = pixel >> shift & 255;
            result |= (c * (255 - a) + (color >> shift & 255) * a) >> 8 << shift;
        }
        return result;
    }

    void compareOne(int least, int most)
    {
        const int w = number(1, 150), h = number(1, 12);
        const auto columns = blocks(w, least, most), rows = blocks(h, least, most);
        GiFrameBuffer buffer(McVec2i(1, 1), McVec2i(1, 1), GiFrameBuffer::kXBGR);
        buffer.setMemSize(McVec2i(number(1, 400), number(1, 40)));
        buffer.resize(McVec2i(w, h), columns.data(), rows.data());
        buffer.setOffset(McVec2i(number(0, buffer.zoomedSize.x - buffer.memSize.x),
                                 number(0, buffer.zoomedSize.y - buffer.memSize.y)));
        buffer.prepareCoordLookups2();
        buffer.setFlip(number(0, 1), number(0, 1));
        buffer.clear();
        buffer.setClipBox(number(0, 1) ? buffer.window()
                                       : McBox2i(number(0, buffer.zoomedSize.x), 0, buffer.zoomedSize.x,
                                                 number(0, buffer.zoomedSize.y)));
        std::vector<unsigned int> image(static_cast<std::size_t>(w * h));
        for (unsigned int& pixel : image) pixel = static_cast<unsigned int>(random());
        McBitfield field;
        McHandle<GiSelection2D> selection(new GiSelection2D);
        // One of another size, as it is between two volumes, marks what it covers.
        select(*selection, field, number(0, 3) ? w : number(1, w), number(0, 3) ? h : number(1, h),
               number(0, 1));
        buffer.setSelection(selection, 1);
        buffer.selectionAlpha = number(0, 255);
        buffer.setFunction(number(0, 3) ? GiFrameBuffer::kBlend : GiFrameBuffer::kDraw);

        buffer.putImageGrey8Zoomed(image.data(), static_cast<unsigned long>(w), static_cast<unsigned long>(h),
                                   static_cast<unsigned long>(w) * sizeof(unsigned int));

        for (int my = 0; my < buffer.memSize.y; ++my)
            for (int mx = 0; mx < buffer.memSize.x; ++mx) {
                const int x = (buffer.flipX ? buffer.memSize.x - 1 - mx : mx) + buffer.offset.x;
                const int y = (buffer.flipY ? buffer.memSize.y - 1 - my : my) + buffer.offset.y;
                const int i = buffer.dataColumn(x), j = buffer.dataRow(y);
                unsigned int expected = 0x80808080;
                if (buffer.clipBox.contains(x, y)) {
                    expected = image[static_cast<std::size_t>(j * w + i)];
                    if (buffer.function == GiFrameBuffer::kBlend && i < static_cast<int>(selection->width) &&
                        j < static_cast<int>(selection->height) && selection->isSet(i, j))
                        expected = mixed(expected, buffer.selectionPixel, buffer.selectionAlpha);
                }
                unsigned int found;
                std::memcpy(&found,
                            buffer.memory + static_cast<unsigned long>(my) * buffer.bytesPerRow +
                                static_cast<unsigned long>(mx) * sizeof found,
                            sizeof found);
                ASSERT_EQ(found, expected)
                    << "pixel " << mx << " " << my << " of " << w << " x " << h << ", blocks of " << least
                    << " to " << most << ", bits " << selection->xStride << " apart";
            }
    }
};

TEST_F(Blit, isThatOfSinglePixels)
{
    for (int round = 0; round < 150; ++round)
        for (const auto& [least, most] : {std::pair(1, 1), {0, 1}, {0, 3}, {1, 4}, {7, 20}}) {
            compareOne(least, most);
            ASSERT_FALSE(HasFatalFailure()) << "round " << round;
        }
}

/// Every step of an ellipse, whether it is seen or not.
void drawEachStep(GiFrameBuffer& buffer, int cx, int cy, float rx, float ry, float degrees,
                  unsigned int pixel)
{
    constexpr double kFull = 2 * 3.14159265358979323846;
    const unsigned int former = buffer.currentPixel;
    const float step = std::max(1 / ((rx + ry) * 6), 1e-6f);
    const int dash = std::max(1, static_cast<int>(kFull / step * degrees / 360));
    int i = 0;
    for (float a = 0; a < kFull; a += step, ++i) {
        buffer.currentPixel = i / dash % 2 == 0 ? former : pixel;
        buffer.writePixel(static_cast<int>(rx * std::cos(a) + static_cast<float>(cx)),
                          static_cast<int>(ry * std::sin(a) + static_cast<float>(cy)));
    }
    buffer.currentPixel = former;
}

TEST_F(Blit, ellipsesFromOutsideAreThoseOfTheWholeWalk)
{
    for (int round = 0; round < 60; ++round) {
        const float rx = std::exp(std::uniform_real_distribution<float>(-1, 11)(random));
        const float ry = round % 3 ? rx : rx * std::uniform_real_distribution<float>(0, 2)(random);
        // Centres from which the circumference passes through the window, or near it.
        const double angle = std::uniform_real_distribution<double>(0, 7)(random);
        const int cx = static_cast<int>(-rx * std::cos(angle)) + number(-20, 50);
        const int cy = static_cast<int>(-ry * std::sin(angle)) + number(-20, 50);
        const float degrees = std::uniform_real_distribution<float>(0.001f, 30)(random);
        std::vector<unsigned int> pictures[2];
        for (int plain = 0; plain < 2; ++plain) {
            GiFrameBuffer buffer(McVec2i(40, 30), McVec2i(40, 30), GiFrameBuffer::kXBGR);
            buffer.swapAxes = round % 5 == 0;
            buffer.setClipBox(McBox2i(2, 1, 36, 28));
            buffer.setColor(255, 0, 0);
            if (plain)
                drawEachStep(buffer, cx, cy, rx, ry, degrees, 0xFF00);
            else
                buffer.drawStippleEllipse(cx, cy, rx, ry, degrees, 0xFF00);
            pictures[plain] = pictureOf(buffer);
        }
        ASSERT_EQ(pictures[0], pictures[1]) << rx << " x " << ry << " around " << cx << " " << cy;
    }
}

} // namespace
