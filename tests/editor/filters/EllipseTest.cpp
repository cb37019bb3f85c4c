// The ellipse fit beside a plain transcription of its rule, on drawings and on random blobs.

#include "editor/display/TestEditor.h"

#include "filters/GiShapeFilter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

/// A slice as bytes, and the fit as one would write it down.
struct PlainFit
{
    PlainFit(int w, int h) : width(w), height(h), pixels(static_cast<std::size_t>(w * h)) {}

    unsigned char& at(int x, int y) { return pixels[static_cast<std::size_t>(y * width + x)]; }

    void draw(std::vector<unsigned char>& target, float angle, float mx, float my, float a, float b) const
    {
        const double across = angle + M_PI / 2;
        const float c1 = std::cos(angle), s1 = std::sin(angle), c2 = float(std::cos(across)),
                    s2 = float(std::sin(across));
        const float r = std::max(a, b);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (x < int(mx - r - 1) || x > int(mx + r + 1) || y < int(my - r - 1) || y > int(my + r + 1))
                    continue;
                const float dx = float(x) - mx, dy = float(y) - my;
                const float u = (c1 * dx + s1 * dy) / a, v = (c2 * dx + s2 * dy) / b;
                if (u * u + v * v <= 1) target[static_cast<std::size_t>(y * width + x)] = 1;
            }
        }
    }

    int quality(int a, int b) const
    {
        std::vector<unsigned char> candidate(pixels.size());
        draw(candidate, phi, float(cx), float(cy), float(a), float(b));
        int differing = 0;
        for (std::size_t i = 0; i < pixels.size(); ++i) differing += candidate[i] != pixels[i];
        return differing;
    }

    void fit()
    {
        long n = 0, sx = 0, sy = 0;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (at(x, y)) ++n, sx += x, sy += y;
        if (n == 0) return;
        cx = int(sx / n);
        cy = int(sy / n);
        float m11 = 0, m20 = 0, m02 = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (!at(x, y)) continue;
                m11 = float(long(m11 + float(x - cx) * float(y - cy)));
                m20 = float(long(m20 + std::pow(x - cx, 2)));
                m02 = float(long(m02 + std::pow(y - cy, 2)));
            }
        }
        if (m20 == m02)
            phi = m11 > 0 ? 0.7853982f : m11 < 0 ? -0.7853982f : 0.0f;
        else {
            phi = std::atan(2 * m11 / (m20 - m02)) / 2;
            if (phi > 0 && m20 < m02)
                phi -= 1.5707964f;
            else if (phi < 0 && m20 < m02)
                phi += 1.5707964f;
            else if (phi == 0)
                phi = m20 < m02 ? 1.5707964f : 0.0f;
        }
        int x0 = 100000, x1 = -1, y0 = 100000, y1 = -1;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (!at(x, y)) continue;
                const double c = std::cos(-phi), s = std::sin(-phi);
                const int u = int(std::floor(c * (x - cx) - s * (y - cy) + 0.5)) + cx;
                const int v = int(std::floor((x - cx) * s + (y - cy) * c + 0.5)) + cy;
                if (u < 0 || v < 0 || u >= width || v >= height) continue;
                x0 = std::min(x0, u), x1 = std::max(x1, u), y0 = std::min(y0, v), y1 = std::max(y1, v);
            }
        }
        if (x1 < 0) return;
        int rx = (x1 - x0) / 2;
        const int ry = (y1 - y0) / 2;
        if (rx < ry) rx = ry;
        // kept: a longer second radius counts in the quality but is not taken.
        int best = quality(rx, ry), bestRx = rx, bestRy = ry;
        const int tried[6][4] = {{rx + 1, ry + 1, rx + 1, ry + 1}, {rx - 1, ry - 1, rx - 1, ry - 1},
                                 {rx + 1, ry, rx + 1, ry},         {rx, ry + 1, rx, ry},
                                 {rx - 1, ry, rx - 1, ry},         {rx, ry - 1, rx, ry - 1}};
        for (const int* t : tried) {
            const int q = quality(t[0], t[1]);
            if (q < best) best = q, bestRx = t[2], bestRy = t[3];
        }
        std::fill(pixels.begin(), pixels.end(), 0);
        draw(pixels, phi, float(cx), float(cy), float(bestRx), float(bestRy));
    }

    int width, height, cx = 0, cy = 0;
    float phi = 0;
    std::vector<unsigned char> pixels;
};

struct Drawing
{
    const char* name;
    float x, y, a, b, angle; // an ellipse
    int noise;               // further pixels at random places
};

const Drawing kDrawings[] = {
    {"circle", 20, 17, 8, 8, 0, 0},
    {"lying", 20, 17, 13, 6, 0, 0},
    {"standing", 20, 17, 6, 13, 0, 0},
    {"tilted", 20, 17, 14, 5, 0.6f, 0},
    {"tilted the other way, steep", 20, 17, 14, 5, -1.2f, 0},
    {"along the diagonal", 20, 17, 14, 5, 0.7853982f, 0},
    {"cut off by the border", 3, 30, 12, 6, 0.4f, 0},
    {"a pixel", 20, 17, 0.5f, 0.5f, 0, 0},
    {"nothing", 20, 17, 0, 0, 0, 0},
    {"noisy", 22, 15, 11, 7, 0.3f, 25},
    {"little but noise", 22, 15, 1, 1, 0, 40},
};

} // namespace

TEST(Ellipse, IsTheOneOfThePlainRuleInEachOrientation)
{
    std::mt19937 random(3);
    for (const Drawing& d : kDrawings) {
        for (int o = 0; o < 3; ++o) {
            TestEditor editor(o == 0 ? 3 : 41, o == 1 ? 3 : o == 0 ? 41 : 35, o == 2 ? 3 : 35);
            const GiViewer* viewer = editor.gi.activate(o);
            GiSelection2D& slice = *viewer->getSelection();
            PlainFit plain(static_cast<int>(slice.width), static_cast<int>(slice.height));
            if (d.a > 0) plain.draw(plain.pixels, d.angle, d.x, d.y, d.a, d.b);
            for (int i = 0; i < d.noise; ++i)
                plain.at(int(random() % unsigned(plain.width)), int(random() % unsigned(plain.height))) = 1;
            for (int y = 0; y < plain.height; ++y)
                for (int x = 0; x < plain.width; ++x)
                    if (plain.at(x, y)) slice.set(x, y);
            const std::vector<bool> before = editor.copyOfSelection();

            testing::internal::CaptureStderr();
            GiShapeFilter(&editor.gi).applyEllipse();
            testing::internal::GetCapturedStderr();
            plain.fit();

            std::vector<unsigned char> seen;
            for (int y = 0; y < plain.height; ++y)
                for (int x = 0; x < plain.width; ++x) seen.push_back(slice.isSet(x, y));
            EXPECT_EQ(seen, plain.pixels) << d.name << ", orientation " << o;
            McBox2i box = slice.selectionBox;
            slice.computeSelectionBox();
            EXPECT_EQ(box, slice.selectionBox) << d.name;
            editor.gi.undo();
            EXPECT_EQ(editor.copyOfSelection(), before) << d.name;
        }
    }
}

// kept: one row more fits a line best but is not taken, and an ellipse without a width has no pixel.
TEST(Ellipse, ALineOnePixelWideGoesAndComesBackByUndo)
{
    TestEditor editor(41, 41, 1);
    GiSelection2D& slice = *editor.gi.activate(2)->getSelection();
    for (int x = 10; x <= 30; ++x) slice.set(x, 20);
    const std::vector<bool> line = editor.copyOfSelection();
    testing::internal::CaptureStderr();
    GiShapeFilter(&editor.gi).applyEllipse();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "rx :10 ry:0\nqual: 21, opt: 2, optrx: 10, optry: 0\n");
    EXPECT_FALSE(editor.gi.selection->isSet());
    editor.gi.undo();
    EXPECT_EQ(editor.copyOfSelection(), line);
}

TEST(Ellipse, NeedsAnImageAndLeavesAnEmptySliceAlone)
{
    TestEditor editor(9, 9, 3);
    GiShapeFilter(&editor.gi).applyEllipse();
    EXPECT_EQ(editor.gi.canUndo(), 1);
    EXPECT_FALSE(editor.gi.selection->isSet());

    TestGi bare;
    GiShapeFilter(&bare).applyEllipse();
    EXPECT_EQ(bare.canUndo(), 0);
}
