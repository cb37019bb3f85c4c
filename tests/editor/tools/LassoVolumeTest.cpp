// The lasso over the 3D view, without a view: outline and camera are made here.

#include "editor/tools/ToolImage.h"

#include "hx/HxMessage.h"
#include "tools/GiLasso.h"
#include "tools/GiScreenOutline.h"

#include <QAbstractButton>

#include <cmath>
#include <functional>
#include <optional>

namespace {

/// A disc on the screen, seen by a camera somewhere off the axes.
class DiscOutline : public GiScreenOutline
{
public:
    void startSelectionTest() override { ++tests; }
    void stopSelectionTest() override
    {
        --tests;
        if (onStop) onStop();
    }
    bool isSelected(const McVec2f& p) const override
    {
        EXPECT_EQ(tests, 1);
        return squaredDistance(p) <= kSquaredRadius;
    }
    bool wasCtrlDown() const override { return ctrl; }
    bool wasShiftDown() const override { return shift; }
    bool hasPerspectiveCamera() const override { return perspective; }
    McVec2f projectToScreen(const McVec3f& p) const override
    {
        return McVec2f(0.04f * p.x + 0.01f * p.z, 0.05f * p.y - 0.02f * p.x + 0.2f);
    }
    void getMatrices(Matrix& affine, Matrix& projection) const override
    {
        std::copy_n(&camera[0][0], 16, &affine[0][0]);
        std::copy_n(&kProjection[0][0], 16, &projection[0][0]);
        projection[0][1] = skew;
    }

    /// Where a point is seen, by the whole of both matrices.
    McVec2<double> seen(const McVec3f& p) const
    {
        if (!perspective) {
            const McVec2f at = projectToScreen(p);
            return {static_cast<double>(at.x), static_cast<double>(at.y)};
        }
        double v[4] = {static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z), 1};
        for (const Matrix* m : {&camera, &kProjection}) {
            double q[4] = {};
            for (int i = 0; i < 4; ++i)
                for (int k = 0; k < 4; ++k) q[i] += v[k] * static_cast<double>((*m)[k][i]);
            std::copy_n(q, 4, v);
        }
        return {(v[0] / v[3] + 1) / 2, (v[1] / v[3] + 1) / 2};
    }
    /// Whether a voxel is seen inside; nothing too close to the line to tell.
    std::optional<bool> seesInside(DrawnEditor& editor, unsigned long voxel) const
    {
        const unsigned long nx = editor.dims[0], ny = editor.dims[1];
        const McVec3f at = editor.lattice()->coords()->position(static_cast<int>(voxel % nx),
                                                                static_cast<int>(voxel / nx % ny),
                                                                static_cast<int>(voxel / (nx * ny)));
        const double d = squaredDistance(seen(at));
        if (std::fabs(d - 0.04) < 1e-5) return {};
        return d < 0.04;
    }
    template <class T>
    static T squaredDistance(const McVec2<T>& p)
    {
        const T dx = p.x - static_cast<T>(0.5), dy = p.y - static_cast<T>(0.45);
        return dx * dx + dy * dy;
    }

    static constexpr float kSquaredRadius = 0.04f;
    static constexpr Matrix kProjection = {{2, 0, 0, 0}, {0, 2.5f, 0, 0}, {0, 0, -1.2f, -1}, {0, 0, -9, 0}};
    bool ctrl = false, shift = false, perspective = false;
    Matrix camera = {{0.8f, 0.6f, 0, 0}, {-0.6f, 0.8f, 0, 0}, {0, 0, 1, 0}, {-1, -11, -40, 1}};
    float skew = 0;
    int tests = 0;
    std::function<void()> onStop;
};

template <class T>
class LassoVolume : public testing::Test
{
};
TYPED_TEST_SUITE(LassoVolume, ToolImageTypes);

/// What a voxel becomes, by the words of the rule.
bool becomes(bool before, bool inside, bool accepted, bool outsideMode, const DiscOutline& outline,
             bool compares)
{
    if (!compares) { // values are out of the question: what is inside is set
        const bool clears = !outsideMode && !outline.ctrl && !outline.shift;
        return inside || (before && !clears);
    }
    if (outsideMode) return !inside && accepted ? outline.shift : before;
    if (outline.ctrl) return before && !(inside && accepted);
    return (inside && accepted) || (before && outline.shift);
}

TYPED_TEST(LassoVolume, changesTheVoxelsThatAreSeenInsideOrOutside)
{
    std::mt19937 random(3);
    DrawnEditor editor(13, 11, 9);
    editor.setVoxelSize(1, 1.5f, 2);
    const ToolImage<TypeParam> image(editor, random);
    auto* lasso = dynamic_cast<GiLasso*>(editor.gi.tools[GiLasso::kIndex]);
    for (int run = 0; run < 64; ++run) {
        SCOPED_TRACE(run);
        DiscOutline outline;
        outline.ctrl = run & 1;
        outline.shift = run & 2;
        outline.perspective = run & 4;
        const bool outside = run & 8, masks = run & 16;
        lasso->getWidget(nullptr)
            ->template findChild<QAbstractButton*>(outside ? "wOutsideButton" : "wInsideButton")
            ->click();
        float window[2];
        ToolImage<TypeParam>::chooseWindow(random, window);
        editor.gi.setMaskingEnabled(masks);
        std::copy_n(window, 2, editor.gi.toolDataWindow);
        for (unsigned long i = 0; i < editor.gi.selection->numWords(); ++i)
            editor.gi.selection->bits.words()[i] = static_cast<unsigned int>(random());
        std::vector<bool> before(editor.size());
        for (unsigned long i = 0; i < editor.size(); ++i) before[i] = editor.gi.selection->isSet(i);
        editor.gi.clearUndo(1);
        editor.gi.touches.clear();

        editor.gi.redraws = 0;
        outline.onStop = [&] {
            EXPECT_TRUE(editor.gi.touches.empty() && editor.gi.redraws == 0) << "listeners come later";
        };
        lasso->viewerSelect(outline);
        EXPECT_EQ(outline.tests, 0);
        EXPECT_EQ(editor.gi.touches, (std::vector<TestGi::Touch>{{1, 0, 0, -1, 0, 1}}));
        long numInside = 0;
        for (unsigned long i = 0; i < editor.size(); ++i) {
            const std::optional<bool> inside = outline.seesInside(editor, i);
            if (!inside) continue;
            numInside += *inside;
            const bool compares = !masks || !std::is_same_v<TypeParam, unsigned int>;
            // Compared as floats, whatever the type.
            const bool accepted = !masks || image.acceptsAsFloat(i, window);
            ASSERT_EQ(editor.gi.selection->isSet(i),
                      becomes(before[i], *inside, accepted, outside, outline, compares))
                << "voxel " << i;
        }
        ASSERT_GT(numInside, 50);
        ASSERT_LT(numInside, 1000);
        editor.gi.undo();
        for (unsigned long i = 0; i < editor.size(); ++i) ASSERT_EQ(editor.gi.selection->isSet(i), before[i]);
    }
}

// kept: see the lasso's rows for a perspective camera.
TEST(LassoVolumeCamera, inTheVolumeSeesWhatIsBehindItMirrored)
{
    DrawnEditor editor(13, 11, 9);
    editor.setVoxelSize(1, 1.5f, 2);
    editor.gi.setVolumeByte(editor.dims, 13, editor.labels(), editor.lattice());
    auto* lasso = dynamic_cast<GiLasso*>(editor.gi.tools[GiLasso::kIndex]);
    DiscOutline outline;
    outline.perspective = true;
    constexpr int kDepth = 7; // between two slices
    outline.camera[3][2] = -kDepth;
    lasso->viewerSelect(outline);
    int behind = 0, before = 0;
    for (unsigned long i = 0; i < editor.size(); ++i) {
        const std::optional<bool> inside = outline.seesInside(editor, i);
        if (!inside) continue;
        ASSERT_EQ(editor.gi.selection->isSet(i), *inside) << "voxel " << i;
        if (*inside) ++(2 * (i / 143) > kDepth ? behind : before);
    }
    EXPECT_TRUE(behind > 2 && before > 2) << behind << ", " << before;
}

TEST(LassoVolumeCamera, warnsOnceOfAProjectionThatIsNotPlain)
{
    std::vector<std::string> lines;
    HxMessage::getTheMsg()->setSink([&](const char* text) { lines.push_back(text); });
    DrawnEditor editor(4, 4, 4);
    editor.gi.setVolumeByte(editor.dims, 4, editor.labels(), editor.lattice());
    auto* lasso = dynamic_cast<GiLasso*>(editor.gi.tools[GiLasso::kIndex]);
    DiscOutline outline;
    outline.perspective = true;
    lasso->viewerSelect(outline);
    EXPECT_TRUE(lines.empty());
    outline.skew = 2e-6f;
    lasso->viewerSelect(outline);
    HxMessage::getTheMsg()->setSink({});
    std::string all;
    for (const std::string& line : lines) all += line;
    EXPECT_NE(all.find("Warning: Inaccurate matrix"), std::string::npos);
    EXPECT_NE(all.find(" 2 2e-06 0 0\n 0 2.5 0 0\n 0 0 -1.2 -1\n 0 0 -9 0"), std::string::npos) << all;
}

} // namespace
