// The magic wand's regions, beside the plain fills with a test of each pixel.

#include "editor/tools/ToolImage.h"
#include "editor/tools/WandEditor.h"

#include "core/GiOrientation.h"
#include "core/mcFloodFill.h"

#include <cmath>

namespace {

/// What a pixel needs, one pixel at a time.
template <class T>
struct GiMagicWandChecker
{
    bool accepts(T value, int x, int y) const
    {
        return (label < 0 || labels2D(x, y) == label) && value >= min && value <= max;
    }
    bool accepts(T value, int x, int y, int z) const
    {
        return (label < 0 || labels3D(x, y, z) == label) && value >= min && value <= max;
    }

    T min, max;
    int label = -1;
    McData2D<unsigned char> labels2D;
    McData3D<unsigned char> labels3D;
};

/// The clear pixels of a slice, to be filled from outside.
struct MagicWandBitfield2D
{
    int operator()(int x, int y) const { return bits->isSet(static_cast<unsigned long>(y * width + x)); }

    int width, height;
    McBitfield* bits;
};

/// A window as a range of the element type, to which whole numbers are rounded and limited.
template <class T>
void plainRange(const float* window, bool inSlice, T* range)
{
    for (int i = 0; i < 2; ++i) {
        if constexpr (std::is_floating_point_v<T>) {
            range[i] = static_cast<T>(window[i]);
            continue;
        }
        const double least = static_cast<double>(std::numeric_limits<T>::min()),
                     most = static_cast<double>(std::numeric_limits<T>::max());
        if (std::isnan(window[i])) {
            range[0] = static_cast<T>(1);
            range[1] = static_cast<T>(0);
            return;
        }
        double v = std::floor(static_cast<double>(window[i]) + 0.5);
        if (v > most) v = most;
        if (v < least) v = least;
        range[i] = static_cast<T>(v);
    }
    // kept: in a slice a window that begins below the smallest short holds nothing.
    if (std::is_same_v<T, short> && inSlice && window[0] < -32768) {
        range[0] = static_cast<T>(1);
        range[1] = static_cast<T>(0);
    }
}

/// The line by sums of errors, step by step.
void plainLine(const McVec2f& from, const McVec2f& to, int width, int height,
               std::vector<unsigned char>& image)
{
    int x0 = static_cast<int>(from.x), y0 = static_cast<int>(from.y);
    int x1 = static_cast<int>(to.x), y1 = static_cast<int>(to.y);
    if (x1 < x0) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    const int dx = x1 - x0, dy = std::abs(y1 - y0), down = y1 < y0 ? -1 : 1;
    int error = 0;
    for (int x = x0, y = y0;;) {
        if (x >= 0 && y >= 0 && x < width && y < height) image[static_cast<std::size_t>(y * width + x)] = 255;
        if (x == x1 && y == y1) return;
        if (dx >= dy) {
            ++x;
            error += 2 * dy;
            if (error >= dx) {
                y += down;
                error -= 2 * dx;
            }
        } else {
            y += down;
            error += 2 * dx;
            if (error >= dy) {
                ++x;
                error -= 2 * dy;
            }
        }
    }
}

void plainInterior(McBitfield& bits, int width, int height, const int* box)
{
    const MagicWandBitfield2D data{width, height, &bits};
    McEqualityChecker<int> isClear(0);
    McBitfield outside(bits.numBits());
    for (int y = box[1]; y <= box[3]; ++y)
        for (int x = box[0]; x <= box[2]; ++x) {
            const bool isEdge = x == box[0] || x == box[2] || y == box[1] || y == box[3];
            const auto bit = static_cast<unsigned long>(y * width + x);
            if (isEdge && !bits.isSet(bit) && !outside.isSet(bit))
                mcFloodFill2D(data, isClear, x, y, outside, nullptr);
        }
    for (int y = box[1]; y < box[3]; ++y)
        for (int x = box[0]; x < box[2]; ++x) {
            const auto bit = static_cast<unsigned long>(y * width + x);
            if (!outside.isSet(bit)) bits.set(bit);
        }
}

template <class T>
class MagicWandOnImage : public testing::Test
{
protected:
    // Neither rows nor slices fill whole words, but for bytes, where they all do.
    static constexpr int kWidth = sizeof(T) == 1 ? 64 : 67, kHeight = 31, kSlices = 13;

    MagicWandOnImage()
        : edited(kWidth, kHeight, kSlices),
          wand(dynamic_cast<GiMagicWand&>(*edited.gi.tools[GiMagicWand::kIndex]))
    {
        wand.getWidget(nullptr);
    }

    T& value(const MagicWandSeed& s) { return values()[s.x + kWidth * (s.y + kHeight * s.z)]; }
    T* values() { return static_cast<T*>(edited.gi.imageSlices.data()); }

    /// Some of the smallest and largest numbers of the type.
    void plantEnds(std::mt19937& random)
    {
        for (unsigned long i = 0; i < edited.size(); ++i) {
            const unsigned int end = random() % 60;
            if (end == 0) values()[i] = std::numeric_limits<T>::lowest();
            if (end == 1) values()[i] = std::numeric_limits<T>::max();
        }
    }

    MagicWandSeed randomSeed(std::mt19937& random, int orientation)
    {
        MagicWandSeed seed;
        seed.orientation = orientation;
        seed.setVoxel(randomVoxel(random));
        float window[2];
        ToolImage<T>::chooseWindow(random, window);
        seed.min = window[0] - static_cast<float>(random() % 6) / 2;
        seed.max = window[1] + static_cast<float>(random() % 6) / 2;
        if (random() % 4 == 0) { // beyond the type
            constexpr float kFar[][2] = {{-1e20f, 1e20f}, {-1e20f, -1e19f}, {1e19f, 1e20f}, {-32768, 1e9f},
                                         {-32769, 100},   {-100, 300},      {NAN, 1e20f},   {-1e20f, NAN}};
            const float* far = kFar[random() % 8];
            seed.min = far[0];
            seed.max = far[1];
            for (int i = 0; i < 10 && !(value(seed) >= seed.min && value(seed) <= seed.max); ++i)
                seed.setVoxel(randomVoxel(random));
        }
        seed.sameMaterial = random() % 2;
        seed.fillInterior = random() % 2;
        return seed;
    }
    static McVec3i randomVoxel(std::mt19937& random)
    {
        return McVec3i(static_cast<int>(random() % kWidth), static_cast<int>(random() % kHeight),
                       static_cast<int>(random() % kSlices));
    }
    void drawLimits(std::mt19937& random, const MagicWandSeed& seed, int width, int height)
    {
        wand.limits.clear();
        for (unsigned int n = random() % 4; n > 0; --n) {
            MagicWandLimit limit;
            limit.orientation = (seed.orientation + (random() % 5 == 0)) % 3;
            limit.slice = seed.coordinate(giSliceAxis(seed.orientation)) + (random() % 5 == 0);
            for (int i = 0; i < 4; ++i)
                limit.points.append(McVec2f(
                    static_cast<float>(random() % 1000) / 1000 * static_cast<float>(width + 20) - 10,
                    static_cast<float>(random() % 1000) / 1000 * static_cast<float>(height + 20) - 10));
            wand.limits.append(limit);
        }
    }

    DrawnEditor edited;
    GiMagicWand& wand;
};
TYPED_TEST_SUITE(MagicWandOnImage, ToolImageTypes);

TYPED_TEST(MagicWandOnImage, RegionsOfSlicesEqualThePlainRule)
{
    using T = TypeParam;
    std::mt19937 random(11);
    DrawnEditor& editor = this->edited;
    const ToolImage<T> image(editor, random);
    this->plantEnds(random);
    unsigned char label = 0;
    for (unsigned long i = 0; i < editor.size(); ++i)
        editor.labels()[i] = label = random() % 20 ? label : static_cast<unsigned char>(random() % 3);
    long total = 0, withLimits = 0;
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        const int o = trial % 3;
        const MagicWandSeed seed = this->randomSeed(random, o);
        GiViewer& viewer = *editor.gi.activate(o);
        viewer.setSlice(seed.coordinate(o), false);
        const int width = editor.gi.selection->getWidth(o), height = editor.gi.selection->getHeight(o);
        this->drawLimits(random, seed, width, height);

        std::vector<unsigned char> view(static_cast<std::size_t>(width * height));
        bool hasLimits = false;
        for (const MagicWandLimit& limit : this->wand.limits) {
            if (limit.slice != seed.coordinate(o) || limit.orientation != o) continue;
            hasLimits = true;
            for (int i = 0; i + 1 < limit.points.size(); ++i)
                plainLine(limit.points[i], limit.points[i + 1], width, height, view);
        }
        const auto voxel = [&](int x, int y) {
            const McVec3i v = editor.gi.getPoint3D(x, y, &viewer);
            return static_cast<std::size_t>(v.x + this->kWidth * (v.y + this->kHeight * v.z));
        };
        std::vector<T> pixels(view.size());
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const auto i = static_cast<std::size_t>(y * width + x);
                pixels[i] = this->values()[voxel(x, y)];
                if (seed.sameMaterial && view[i] == 0) view[i] = editor.labels()[voxel(x, y)];
            }
        const int px = seed.coordinate(giWidthAxis(o)), py = seed.coordinate(giHeightAxis(o));
        const float window[2] = {seed.min, seed.max};
        T range[2];
        plainRange(window, true, range);
        GiMagicWandChecker<T> checker{range[0], range[1], -1, {view.data(), width, height}, {}};
        if (hasLimits || seed.sameMaterial) checker.label = view[static_cast<std::size_t>(py * width + px)];
        McData2D<T> data(pixels.data(), width, height);
        McBitfield expected;
        int box[4];
        const int count = mcFloodFill2D(data, checker, px, py, expected, box);
        if (seed.fillInterior) plainInterior(expected, width, height, box);

        McBitfield grown;
        McBox2i grownBox;
        ASSERT_EQ(this->wand.grow2D(grown, grownBox, seed), count);
        ASSERT_EQ(grownBox, McBox2i(box[0], box[1], box[2], box[3]));
        ASSERT_EQ(grown, expected);

        const int code = trial / 3 % 3;
        std::vector<bool> changed;
        for (unsigned long i = 0; i < editor.size(); ++i) {
            if (random() & 1) editor.gi.selection->set(i);
            changed.push_back(editor.gi.selection->isSet(i));
        }
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                if (expected.isSet(static_cast<unsigned long>(y * width + x)))
                    changed[voxel(x, y)] = code != GiMagicWand::kSubtract;
                else if (code == GiMagicWand::kReplace)
                    changed[voxel(x, y)] = false;
            }
        ASSERT_TRUE(this->wand.regionGrowing2D(*viewer.getFrameBuffer(), code, seed));
        for (unsigned long i = 0; i < editor.size(); ++i)
            ASSERT_EQ(editor.gi.selection->isSet(i), changed[i]) << i;
        total += count;
        withLimits += hasLimits && count > 0;
    }
    EXPECT_GT(total, 2000) << "the trials must show something";
    EXPECT_GT(withLimits, 10);
}

TYPED_TEST(MagicWandOnImage, RegionsOfTheVolumeEqualThePlainRule)
{
    using T = TypeParam;
    std::mt19937 random(12);
    DrawnEditor& editor = this->edited;
    const ToolImage<T> image(editor, random);
    this->plantEnds(random);
    for (unsigned long i = 0; i < editor.size(); ++i)
        editor.labels()[i] = static_cast<unsigned char>(random() % 8 == 0);
    auto* sameMaterial =
        this->wand.getWidget(nullptr)->template findChild<QCheckBox*>("wSameMaterialCheckBox");
    unsigned long total = 0;
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        const MagicWandSeed seed = this->randomSeed(random, 2);
        this->drawLimits(random, seed, this->kWidth, this->kHeight); // which mean nothing in the volume
        editor.gi.setToolDataWindow(seed.min, seed.max, false);
        sameMaterial->setChecked(seed.sameMaterial);
        for (unsigned long i = 0; i < editor.size(); ++i)
            if (random() & 1) editor.gi.selection->set(i);

        const float window[2] = {seed.min, seed.max};
        T range[2];
        plainRange(window, false, range);
        const McData3D<T> data(this->values(), this->kWidth, this->kHeight, this->kSlices);
        GiMagicWandChecker<T> checker{
            range[0], range[1], -1, {}, {editor.labels(), this->kWidth, this->kHeight, this->kSlices}};
        if (seed.sameMaterial)
            checker.label = editor.labels()[seed.x + this->kWidth * (seed.y + this->kHeight * seed.z)];
        McBitfield region(editor.size());
        const auto value = static_cast<float>(this->value(seed));
        if (value >= seed.min && value <= seed.max)
            total += mcFloodFill3D(data, checker, seed.x, seed.y, seed.z, region, nullptr);
        const int code = trial % 3;
        std::vector<bool> expected;
        for (unsigned long i = 0; i < editor.size(); ++i)
            expected.push_back(region.isSet(i)
                                   ? code != GiMagicWand::kSubtract
                                   : code != GiMagicWand::kReplace && editor.gi.selection->isSet(i));
        ASSERT_TRUE(this->wand.regionGrowing3D(code, seed.voxel()));
        for (unsigned long i = 0; i < editor.size(); ++i)
            ASSERT_EQ(editor.gi.selection->isSet(i), expected[i]) << i;
    }
    EXPECT_GT(total, 5000u);
}

TEST_F(WandEditor, KeptTheLabelsAreThoseOfTheSliceInView)
{
    unsigned char* inView = editor.labels() + 2 * kWidth * kHeight;
    inView[7] = 1; // the first row ends in another material, in slice 2 alone
    MagicWandSeed seed;
    seed.orientation = 2;
    seed.setVoxel(McVec3i(4, 0, 1));
    seed.min = seed.max = 2;
    seed.sameMaterial = 1;
    McBitfield bits;
    McBox2i box;
    wand.grow2D(bits, box, seed);
    EXPECT_TRUE(bits.isSet(7));
    editor.viewer(2).setSlice(2, false);
    wand.grow2D(bits, box, seed);
    EXPECT_FALSE(bits.isSet(7));
    EXPECT_TRUE(bits.isSet(6));
    editor.gi.activate(0); // has none that would fit: those of the seed's own slice
    wand.grow2D(bits, box, seed);
    EXPECT_TRUE(bits.isSet(7));
}

TEST_F(WandEditor, LimitsOfAFileMayLieAnywhere)
{
    MagicWandLimit limit;
    limit.slice = 1;
    limit.orientation = 2;
    // Through the whole slice along x = 5, from and to places that no walk would reach.
    for (const McVec2f& p : {McVec2f(5.5f, -3e8f), McVec2f(5.5f, 3e8f), McVec2f(NAN, 2), McVec2f(1e30f, 2)})
        limit.points.append(p);
    wand.limits.append(limit);
    setWindow(0, 255);
    click(0, 0);
    EXPECT_EQ(rows(), (Rows{"#####...", "#####...", "#####...", "#####..."}));
    click(5, 0);
    EXPECT_EQ(rows(), (Rows{".....#..", ".....#..", ".....#..", ".....#.."})) << "along the line only";
}

} // namespace
