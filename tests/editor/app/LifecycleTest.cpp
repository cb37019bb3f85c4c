// Which image belongs to which labels, what is repaired on the way in, and what is forgotten on the
// way out.

#include "EditorSession.h"

#include "display/GiViewer.h"

/// A field with several values per voxel.
struct VectorField : HxRegScalarField3
{
    explicit VectorField(HxLattice3* lattice) : HxRegScalarField3(lattice) {}
};

class Lifecycle : public EditorSession
{
};

TEST_F(Lifecycle, MissingMaterialsAreMadeAndNamedByTheirLabel)
{
    HxUniformLabelField3* labels = addLabels("labels");
    addMaterials(labels, 3);
    labels->labelLattice()->getLabels()[7] = 5;
    labels->touchMinMax(0, -1, 0);
    eval("segment labels");
    EXPECT_EQ(console[0], "Warning: max label is 5, but max material id is 2.");
    EXPECT_EQ(console[1], "Creating 3 new materials.");
    EXPECT_EQ(eval("labels materials"), "Exterior M1 M2 Material3 Material4 Material5");
}

TEST_F(Lifecycle, AFieldWithoutMaterialsGetsItsBackground)
{
    HxUniformLabelField3* labels = addLabels("labels");
    labels->materials()->clear();
    eval("segment labels");
    EXPECT_EQ(eval("labels materials"), "Exterior");
}

TEST_F(Lifecycle, TheImageIsNamedConnectedFoundOrTheLabelsThemselves)
{
    const unsigned long other[3] = {5, 4, 2};
    HxUniformLabelField3* labels = addLabels("labels");
    addMaterials(labels, 1);
    HxUniformScalarField3* wrong = addImage("wrong", 0, other);
    eval("segment labels");
    EXPECT_EQ(console, (std::vector<std::string>{"No matching image volume found.\n"}));
    EXPECT_EQ(gi()->imageData, labels) << "the labels are their own grey image";

    HxUniformScalarField3* first = addImage("first");
    HxUniformScalarField3* second = addImage<short>("second", 1);
    editor()->stopEditing();
    eval("segment labels");
    EXPECT_EQ(gi()->imageData, first);

    editor()->stopEditing();
    labels->parameters.set("ImageData", "second");
    eval("segment labels");
    EXPECT_EQ(gi()->imageData, second);
    EXPECT_EQ(gi()->primType, 1);

    eval("segment labels first");
    EXPECT_EQ(gi()->imageData, first);

    editor()->stopEditing();
    labels->imageConnection().connect(first);
    eval("segment labels");
    EXPECT_EQ(gi()->imageData, first) << "the connected image comes before the search";
    labels->imageConnection().connect(wrong);
    editor()->stopEditing();
    eval("segment labels");
    EXPECT_EQ(gi()->imageData, first) << "no image has the name in the parameter: the first that fits";
}

TEST_F(Lifecycle, ComplexAndForeignFieldsAreNoImages)
{
    HxUniformLabelField3* labels = addLabels("labels");
    addLabels("otherLabels");
    auto* memory = static_cast<float*>(std::calloc(2 * 60, sizeof(float)));
    auto* field = new VectorField(new HxLattice3(kDims, 2, 3, 1, memory, true));
    field->setLabel("vectors");
    HxObjectPool::getThePool()->addObject(field);
    eval("segment labels");
    EXPECT_EQ(gi()->imageData, labels) << "neither other labels nor vectors are found as image";
    EXPECT_EQ(error("segment labels vectors"),
              "segment: \"vectors\" has 2 values per voxel; an image has one.");
    eval("segment labels otherLabels");
    EXPECT_STREQ(gi()->imageData->getLabel(), "otherLabels") << "but what is named is taken";
}

TEST_F(Lifecycle, TheSamePairAgainKeepsSelectionAndUndo)
{
    addLabels("labels");
    addImage("image");
    eval("segment labels image");
    eval("gi toggleVoxel 1 1 1");
    eval("gi invertSelection 3d");
    EXPECT_EQ(gi()->undoActions.size(), 1);
    eval("segment labels image");
    eval("segment labels");
    HxGiSubApplication::instance()->onStart();
    EXPECT_EQ(gi()->undoActions.size(), 1);
    EXPECT_EQ(eval("gi isVoxelSelected 1 1 1"), "0");
    EXPECT_EQ(eval("gi isVoxelSelected 0 1 1"), "1");
}

TEST_F(Lifecycle, ASelectionInAnySliceIsUnfinishedWork)
{
    addLabels("labels");
    eval("segment labels labels");
    EXPECT_STREQ(editor()->unfinishedWork(), "");
    eval("gi toggleVoxel 1 1 0"); // not the slice in view
    EXPECT_STREQ(editor()->unfinishedWork(),
                 "the selection over \"labels\", which was not added to a material");
    eval("gi clear 3d");
    EXPECT_STREQ(editor()->unfinishedWork(), "");
    eval("gi toggleVoxel 1 1 0");
    editor()->stopEditing();
    EXPECT_STREQ(editor()->unfinishedWork(), "");
}

TEST_F(Lifecycle, LabelsThatAreNamedAsTheirOwnImageStaySo)
{
    HxUniformLabelField3* labels = addLabels("labels");
    addImage("image");
    eval("segment labels labels");
    EXPECT_EQ(gi()->imageData, labels);
}

TEST_F(Lifecycle, TheLastMaterialIsCurrentAfterOpening)
{
    HxUniformLabelField3* labels = addLabels("labels");
    addMaterials(labels, 5);
    HxUniformLabelField3* few = addLabels("few");
    addMaterials(few, 2);
    eval("segment labels; gi selectMaterial 3");
    eval("segment few; gi invertSelection 3d; gi add 3d");
    EXPECT_EQ(eval("few count 1"), "60");
}

TEST_F(Lifecycle, UndoBringsTheRangeOfTheLabelsBack)
{
    HxUniformLabelField3* labels = addLabels("labels");
    addMaterials(labels, 5);
    labels->labelLattice()->getLabels()[5] = 4;
    labels->touchMinMax(0, -1, 0);
    eval("segment labels; gi selectMaterial 0; gi invertSelection 3d; gi add 3d");
    EXPECT_EQ(eval("labels range"), "0 0");
    eval("gi undo");
    EXPECT_EQ(eval("labels range"), "0 4");
}

TEST_F(Lifecycle, RemovedAndReshapedDataLeaveNoStalePointer)
{
    HxUniformLabelField3* labels = addLabels("labels");
    addImage("image");
    eval("segment labels image");
    HxObjectPool::getThePool()->removeObject(gi()->imageData);
    EXPECT_EQ(gi()->imageData, labels);
    EXPECT_EQ(gi()->labelData, labels);

    labels->labelLattice()->resize(6, 4, 3);
    labels->touch();
    EXPECT_EQ(gi()->selection->dims[0], 6u);
    EXPECT_EQ(gi()->labelSlices.data(), labels->labelLattice()->getLabels());

    HxObjectPool::getThePool()->removeObject(labels);
    EXPECT_EQ(gi()->labelData, nullptr);
    EXPECT_EQ(gi()->selection->numBits(), 0u);
    eval("gi add 3d"); // nothing is open: nothing happens
    eval("gi undo");
    error("material 0 name");
}

TEST_F(Lifecycle, LeavingTellsDownstreamAndKeepsTheData)
{
    addLabels("labels");
    eval("segment labels");
    EXPECT_EQ(HxSubApplication::running(), HxGiSubApplication::instance());
    HxSubApplication::leaveRunning();
    EXPECT_NE(gi()->labelData, nullptr);
    gi()->labelData->touch();
    EXPECT_EQ(gi()->labelData, nullptr) << "a change from outside ends the editing of a mode that was left";
}

TEST_F(Lifecycle, WindowsStartFromTheImage)
{
    addLabels("labels");
    auto* image = addImage<float>("image", 3);
    auto* values = static_cast<float*>(image->lattice()->dataPtr());
    values[3] = -2;
    values[4] = 6;
    image->touchMinMax(0, -1, 0);
    const float window[2] = {-1.5f, 20};
    image->parameters.set("DataWindow", 2, window);
    eval("segment labels image");
    EXPECT_EQ(gi()->dataWindow[0], -1.5f);
    EXPECT_EQ(gi()->dataWindow[1], 6) << "limited to the range";
    EXPECT_EQ(eval("gi getToolDataWindow"), "0 6");
    eval("gi setToolDataWindow 1.9 2.9");
    EXPECT_EQ(eval("gi getToolDataWindow"), "1 2");
    EXPECT_EQ(gi()->dataDigits, 4);
}

TEST_F(Lifecycle, LargeSidesAreRefusedBeforeAnythingChanges)
{
    addLabels("labels");
    eval("segment labels");
    const unsigned long dims[3] = {32768, 1, 1};
    addLabels("long", dims);
    EXPECT_EQ(error("segment long"),
              "segment: \"long\" has a side of 32768 voxels; the editor takes sides up to 32767.");
    EXPECT_STREQ(gi()->labelData->getLabel(), "labels");
    const unsigned long most[3] = {1, 32767, 1};
    addLabels("most", most);
    eval("segment most");
}

TEST_F(Lifecycle, SegmentNamesWhatItCannotUse)
{
    addLabels("labels");
    addImage("image");
    const unsigned long other[3] = {5, 4, 2};
    addImage("flat", 0, other);
    EXPECT_EQ(error("segment nobody"), "segment: there is no object \"nobody\".");
    EXPECT_EQ(error("segment image"), "segment: \"image\" is not a label field.");
    EXPECT_EQ(error("segment labels flat"), "segment: \"flat\" has 5 x 4 x 2 voxels, the labels 5 x 4 x 3.");
    EXPECT_EQ(eval("segment labels image"), "gi");
}
