// Whole pictures of real viewers against the plain renderer.

#include "editor/display/DrawnEditor.h"
#include "editor/display/PlainRenderer.h"

#include "hx/HxColormap.h"
#include "mc/McElementType.h"

#include <gtest/gtest.h>

namespace {

class Pictures : public testing::TestWithParam<int>
{
protected:
    std::mt19937 random{20240613u + static_cast<unsigned int>(GetParam())};

    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
    float real(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); }
    bool chance(int percent) { return number(0, 99) < percent; }

    /// Blobs, so that regions have insides as well as single pixels.
    void paintLabels(DrawnEditor& editor)
    {
        const auto n = editor.dims;
        for (int blob = 0; blob < 8; ++blob) {
            const int center[3] = {number(0, static_cast<int>(n[0]) - 1),
                                   number(0, static_cast<int>(n[1]) - 1),
                                   number(0, static_cast<int>(n[2]) - 1)};
            const int r = number(0, 5), label = number(0, 1) ? number(0, 4) : number(0, 255);
            const bool select = chance(50);
            for (unsigned long i = 0; i < editor.size(); ++i) {
                const int p[3] = {static_cast<int>(i % n[0]), static_cast<int>(i / n[0] % n[1]),
                                  static_cast<int>(i / n[0] / n[1])};
                int distance = 0;
                for (int a = 0; a < 3; ++a) distance += (p[a] - center[a]) * (p[a] - center[a]);
                if (distance > r * r) continue;
                editor.labels()[i] = static_cast<unsigned char>(label);
                if (select) editor.gi.selection->set(i);
            }
        }
    }

    /// Slices of a stack at any distance from each other.
    void spreadSlices(DrawnEditor& editor)
    {
        std::vector<float> z{real(-5, 5)};
        while (z.size() < editor.dims[2]) z.push_back(z.back() + real(0.1f, 4));
        editor.lattice()->coords()->setZPositions(z.data());
    }

    template <class T>
    void bindImage(DrawnEditor& editor, std::vector<T>& image)
    {
        image.resize(editor.size());
        for (T& v : image) v = static_cast<T>(real(0, 250));
        if (std::is_floating_point_v<T>) image[0] = std::numeric_limits<T>::infinity();
        constexpr int kEditorCode[9] = {0, 1, 3, 5, 6, 0, 0, 2, 4}; // by host code
        editor.gi.primType = kEditorCode[mcElementCode<T>()];
        editor.gi.setVolume(editor.dims, McTypedPointer(image.data(), mcElementCode<T>()), editor.lattice());
    }

    PlainRenderer rulesOf(DrawnEditor& editor, int v)
    {
        PlainRenderer plain;
        const GiFrameBuffer& buffer = editor.buffer(v);
        plain.width = buffer.originalSize.x;
        plain.height = buffer.originalSize.y;
        plain.columns.assign(buffer.replicX.begin(), buffer.replicX.end());
        plain.rows.assign(buffer.replicY.begin(), buffer.replicY.end());
        plain.offset = buffer.offset;
        plain.memSize = buffer.memSize;
        const int flip = editor.viewer(v).getFlip(), o = editor.viewer(v).getOrientation();
        plain.flipX = o == 0 ? flip & 2 : flip & 1;
        plain.flipY = o == 2 ? flip & 2 : !(flip & 4);
        const int s = editor.viewer(v).getSlice();
        const unsigned long* n = editor.dims;
        const auto index = [=](int i, int j) {
            const int p[3][3] = {{s, i, j}, {i, s, j}, {i, j, s}};
            return static_cast<unsigned long>(p[o][0]) +
                   n[0] * (static_cast<unsigned long>(p[o][1]) + n[1] * static_cast<unsigned long>(p[o][2]));
        };
        plain.label = [&editor, index](int i, int j) { return editor.labels()[index(i, j)]; };
        plain.selected = [&editor, index](int i, int j) { return editor.gi.selection->isSet(index(i, j)); };
        plain.value = [&editor, index](int i, int j) {
            float value = 0;
            mcDispatch(editor.gi.imageSlices.type(), [&](auto* tag) {
                using T = std::remove_pointer_t<decltype(tag)>;
                value = static_cast<float>(static_cast<const T*>(editor.gi.imageSlices.data())[index(i, j)]);
            });
            return value;
        };
        editor.viewer(v).getDataWindow(plain.windowMin, plain.windowMax);
        const GiGreyImage& image = *editor.viewer(v).getGreyImage();
        plain.overlay = image.maskingOverlay;
        plain.maskMin = image.maskingWindow[0];
        plain.maskMax = image.maskingWindow[1];
        if (HxColormap* map = image.colormap) plain.color = [map](float u) { return map->packedColor(u); };
        plain.alpha = buffer.selectionAlpha;
        for (int i = 0; i < 256; ++i) plain.style[static_cast<std::size_t>(i)] = editor.gi.drawStyle2D[i];
        plain.labelPixel = [&editor](int l) {
            const unsigned char* c = editor.gi.materialColors[l];
            return static_cast<unsigned int>(c[0] << 16 | c[1] << 8 | c[2]);
        };
        plain.selectionStyle = editor.gi.selectionDrawStyle;
        plain.selectionHidden = editor.viewer(v).getSelection()->hidden != 0;
        return plain;
    }

    void chooseLook(DrawnEditor& editor)
    {
        for (int i = 0; i < 256; ++i) {
            editor.gi.drawStyle2D[i] = static_cast<unsigned char>(i % 7 == 0 ? 0 : number(0, 4));
            for (unsigned char& c : editor.gi.materialColors[i])
                c = static_cast<unsigned char>(number(0, 255));
        }
        editor.gi.selectionDrawStyle = static_cast<unsigned char>(chance(50) ? 0 : number(1, 4));
    }

    void chooseView(DrawnEditor& editor, int v)
    {
        GiViewer& viewer = editor.viewer(v);
        editor.buffer(v).selectionAlpha = chance(30) ? number(0, 1) * 255 : number(0, 255);
        editor.buffer(v).setWindowSize(McVec2i(number(1, 90), number(1, 90)));
        constexpr float kZooms[] = {0.2f, 0.5f, 1, 1, 2, 3, 7, 13};
        viewer.setZoomFactor(chance(70) ? kZooms[number(0, 7)] : real(0.1f, 9));
        viewer.setFlip(number(0, 1), number(0, 1), number(0, 1));
        const float low = real(-20, 200);
        viewer.setDataWindow(low, chance(10) ? low : real(0, 270), true);
        viewer.setMaskingOverlay(chance(30));
        viewer.setMaskingWindow(std::floor(real(0, 100)), std::floor(real(100, 250)), true);
        viewer.setSlice(number(-2, 30), false);
        viewer.getSelection()->hidden = chance(15);
        const GiFrameBuffer& buffer = editor.buffer(v);
        editor.buffer(v).setOffset(McVec2i(number(0, buffer.zoomedSize.x), number(0, buffer.zoomedSize.y)));
    }

    template <class T>
    void compareManyPictures()
    {
        for (int round = 0; round < 30; ++round) {
            DrawnEditor editor(static_cast<unsigned long>(number(1, 40)),
                               static_cast<unsigned long>(number(1, 25)),
                               static_cast<unsigned long>(number(2, 20)),
                               chance(30) ? HxLatticeCoords::kStacked : HxLatticeCoords::kUniform);
            editor.setVoxelSize(real(0.4f, 2), real(0.4f, 2), real(0.4f, 4));
            if (editor.lattice()->coords()->kind() == HxLatticeCoords::kStacked) spreadSlices(editor);
            std::vector<T> image;
            bindImage(editor, image);
            paintLabels(editor);
            McHandle<HxColormap> map(chance(40) ? HxColormap::createStandard("perceptual") : nullptr);
            for (int v = 0; v < 3; ++v) {
                editor.viewer(v).setColormap(map);
                chooseLook(editor);
                chooseView(editor, v);
                const PlainRenderer plain = rulesOf(editor, v);
                const auto expected = plain.picture();
                ASSERT_EQ(pictureOf(editor.buffer(v)), expected)
                    << "round " << round << ", viewer " << v << ", zoom " << editor.viewer(v).getZoomFactor();
                compareBoxes(editor.buffer(v), expected);
            }
        }
    }

    /// A part that is drawn alone is the part of the whole, and nothing else is touched.
    void compareBoxes(GiFrameBuffer& buffer, const std::vector<unsigned int>& whole)
    {
        for (int k = 0; k < 4; ++k) {
            const McBox2i box(number(-5, buffer.zoomedSize.x), number(-5, buffer.zoomedSize.y),
                              number(-5, buffer.zoomedSize.x + 5), number(-5, buffer.zoomedSize.y + 5));
            buffer.clear();
            buffer.render(box, nullptr);
            auto expected = whole;
            for (int y = 0; y < buffer.memSize.y; ++y)
                for (int x = 0; x < buffer.memSize.x; ++x) {
                    const int zx = (buffer.flipX ? buffer.memSize.x - 1 - x : x) + buffer.offset.x;
                    const int zy = (buffer.flipY ? buffer.memSize.y - 1 - y : y) + buffer.offset.y;
                    if (!box.contains(zx, zy))
                        expected[static_cast<std::size_t>(y * buffer.memSize.x + x)] = 0x808080;
                }
            ASSERT_EQ(pictureOf(buffer), expected)
                << "box " << box.xmin << " " << box.ymin << " " << box.xmax << " " << box.ymax;
        }
    }
};

TEST_P(Pictures, areThoseOfTheRules)
{
    mcDispatch(GetParam(),
               [this](auto* tag) { compareManyPictures<std::remove_pointer_t<decltype(tag)>>(); });
}

INSTANTIATE_TEST_SUITE_P(EveryElementType, Pictures, testing::Values(0, 1, 2, 3, 4, 7, 8),
                         [](const auto& test) {
                             std::string name = mcElementName(test.param);
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

} // namespace
