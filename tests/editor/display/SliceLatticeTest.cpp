// What the contour methods work on: the gradient image, which is made once, and single slices with a mask.

#include "TestEditor.h"

#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxUniformScalarField3.h"
#include "hx/HxWorkArea.h"
#include "mc/McElementType.h"
#include "mc/McMemoryException.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace {

class SliceServices : public testing::Test
{
protected:
    SliceServices() : editor(6, 5, 4)
    {
        std::mt19937 random(3);
        for (unsigned long i = 0; i < editor.size(); ++i)
            editor.labels()[i] = static_cast<unsigned char>(random());
        HxMessage::getTheMsg()->setSink([this](const char* text) { console.push_back(text); });
    }
    ~SliceServices() override
    {
        HxObjectPool::getThePool()->clear();
        HxMessage::getTheMsg()->setSink({});
    }

    /// Binds an image of another type over the same labels.
    template <class T>
    void bind(std::vector<T>& image, int editorType)
    {
        image.resize(editor.size());
        for (unsigned long i = 0; i < editor.size(); ++i) image[i] = static_cast<T>(editor.labels()[i]);
        gi().primType = editorType;
        gi().setVolume(editor.dims, McTypedPointer(image.data(), mcElementCode<T>()), editor.lattice());
    }
    TestGi& gi() { return editor.gi; }
    HxRegScalarField3* field() { return gi().gradientField; }
    static HxObject* inPool() { return HxObjectPool::getThePool()->find("Default-GradientImage"); }

    TestEditor editor;
    std::vector<std::string> console;
};

} // namespace

TEST_F(SliceServices, TheGradientIsMadeOnceAndKeptHiddenInThePool)
{
    const float box[6] = {0, 10, -1, 7, 2, 5};
    editor.lattice()->coords()->setBoundingBox(box);
    const McTypedData3D* gradient = gi().getGradientImage3D();
    ASSERT_TRUE(gradient->data());
    EXPECT_EQ(gradient->type(), kMcUnsignedChar);
    EXPECT_EQ(inPool(), field());
    EXPECT_TRUE(field()->isIconHidden());
    EXPECT_EQ(field()->lattice()->dataPtr(), gradient->data());
    EXPECT_EQ(field()->coords()->boundingBox()[1], 10);
    const void* first = gradient->data();
    EXPECT_EQ(gi().getGradientImage3D()->data(), first);

    const McHandle<HxObject> former(inPool());
    gi().generateGradientImage();
    EXPECT_NE(field(), former.get());
    EXPECT_TRUE(former->isInPool()) << "only the editor's own reference goes";
    gi().removeGradientField();
    EXPECT_FALSE(gi().gradientImage.data());
    EXPECT_EQ(HxObjectPool::getThePool()->size(), 1);
    EXPECT_EQ(HxWorkArea::getTheWorkArea()->busyDepth(), 0);
}

TEST_F(SliceServices, TheGradientHasTheTypeOfItsImageAndOfRealNumbersOfDoubleThereIsNone)
{
    std::vector<short> shorts;
    bind(shorts, 1);
    EXPECT_EQ(gi().getGradientImage3D()->type(), kMcShort);
    const auto* values = static_cast<const short*>(gi().gradientImage.data());
    EXPECT_GE(*std::max_element(values, values + editor.size()), 32764);
    gi().removeGradientField();

    std::vector<float> floats;
    bind(floats, 5);
    EXPECT_EQ(gi().getGradientImage3D()->type(), kMcFloat);
    gi().removeGradientField();

    std::vector<double> doubles;
    bind(doubles, 6);
    EXPECT_FALSE(gi().getGradientImage3D()->data());
    EXPECT_FALSE(field());
    EXPECT_EQ(HxObjectPool::getThePool()->size(), 0);
    HxLattice3* lattice = nullptr;
    unsigned char* mask = nullptr;
    gi().getSliceLattice(lattice, mask, 1);
    EXPECT_EQ(lattice, editor.lattice());
    EXPECT_FALSE(mask);
}

TEST_F(SliceServices, LackOfMemoryIsToldAndLeavesTheFormerGradient)
{
    gi().generateGradientImage();
    const void* former = gi().gradientImage.data();
    const unsigned long huge[3] = {1ul << 20, 1ul << 20, 1ul << 20};
    float one = 0;
    gi().imageSlices.init(huge, McTypedPointer(&one, kMcFloat));
    const struct
    {
        int type;
        void (Gi::*generate)();
    } rows[] = {{1, &Gi::generateGradientShortImage},
                {2, &Gi::generateGradientUnsignedShortImage},
                {3, &Gi::generateGradientIntImage},
                {4, &Gi::generateGradientUnsignedIntImage},
                {5, &Gi::generateGradientFloatImage}};
    for (const auto& row : rows) {
        console.clear();
        (gi().*row.generate)();
        EXPECT_EQ(console, (std::vector<std::string>{"Could not allocate memory!\n "})) << row.type;
    }
    console.clear();
    EXPECT_THROW(gi().generateGradientByteImage(), McMemoryException) << "kept: of bytes the caller tells";
    EXPECT_TRUE(console.empty());
    EXPECT_EQ(gi().gradientImage.data(), former);
}

TEST_F(SliceServices, ASliceBecomesALatticeWithTheSelectionAsMask)
{
    const float box[6] = {0, 10, -1, 7, 2, 5};
    editor.lattice()->coords()->setBoundingBox(box);
    std::mt19937 random(9);
    for (unsigned long i = 0; i < editor.size(); ++i)
        if (random() % 3 == 0) gi().selection->set(i);
    const auto before = editor.copyOfSelection();
    for (int orientation = 0; orientation < 3; ++orientation)
        for (const int useGradient : {0, 1}) {
            gi().activate(orientation)->setSlice(2, false);
            HxLattice3* lattice = nullptr;
            unsigned char* mask = nullptr;
            gi().getSliceLattice(lattice, mask, useGradient);
            ASSERT_NE(lattice, editor.lattice());
            const auto* source =
                static_cast<const unsigned char*>(useGradient ? gi().gradientImage.data() : editor.labels());
            const auto* pixels = static_cast<const unsigned char*>(lattice->dataPtr());
            unsigned long n = 0;
            for (unsigned long i = 0; i < editor.size(); ++i) {
                const unsigned long at[3] = {i % 6, i / 6 % 5, i / 30};
                if (at[orientation] != 2) continue;
                EXPECT_EQ(pixels[n], source[i]) << orientation << ", " << i;
                EXPECT_EQ(mask[n], before[i] ? 255 : 0) << orientation << ", " << i;
                ++n;
            }
            EXPECT_EQ(lattice->numNodes(), n);
            for (int axis = 0; axis < 3; ++axis) {
                const bool isThin = axis == orientation;
                EXPECT_EQ(lattice->dims()[axis], isThin ? 1 : editor.dims[axis]);
                EXPECT_EQ(lattice->coords()->boundingBox()[2 * axis], isThin ? 0 : box[2 * axis]);
                EXPECT_EQ(lattice->coords()->boundingBox()[2 * axis + 1], isThin ? 1 : box[2 * axis + 1]);
            }
            // kept: the mask does not reach the selection.
            std::fill_n(mask, n, static_cast<unsigned char>(255));
            gi().updateSliceLattice(lattice, mask);
            EXPECT_EQ(editor.copyOfSelection(), before);
            delete lattice;
            std::free(mask);
        }
}

TEST_F(SliceServices, ImagesAreFieldsOfTheSizeWithOneComponentOfAKnownType)
{
    struct Field : HxRegScalarField3
    {
        explicit Field(HxLattice3* lattice) : HxRegScalarField3(lattice) {}
    };
    HxObjectPool* pool = HxObjectPool::getThePool();
    const unsigned long other[3] = {6, 5, 3};
    constexpr int kComplex = 5;
    auto* first = new HxUniformScalarField3(editor.dims, kMcDouble);
    for (HxData* data : std::initializer_list<HxData*>{
             first, new HxUniformScalarField3(other, kMcFloat),
             new Field(new HxLattice3(editor.dims, 2, kMcFloat, 1, nullptr, true)),
             new Field(new HxLattice3(editor.dims, 1, kComplex, 1, nullptr, true)), editor.field.get()})
        pool->addObject(data);
    McDArray<HxData*> found;
    found.append(first);
    gi().findImageDataSets(editor.dims, found);
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0], first);
    EXPECT_EQ(found[1], editor.field.get());
}
