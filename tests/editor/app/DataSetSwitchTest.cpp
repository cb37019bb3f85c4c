// The choice of image and labels in the toolbox, and what the pool's coming and going does to it.

#include "WindowSession.h"
#include "hx/HxOrientation.h"

class DataSetSwitch : public WindowSession
{
protected:
    using Items = std::vector<std::string>;

    static Items images() { return items(toolbox().wImageData); }
    static Items labelFields() { return items(toolbox().wLabelData); }
    static std::string pair()
    {
        return (gi()->labelData ? gi()->labelData->getLabel() : std::string("-")) + " over " +
               (gi()->imageData ? gi()->imageData->getLabel() : "-");
    }
    static void start() { HxGiSubApplication::instance()->makeCurrent(); }
    void chooseImage(const char* name) { toolbox().wImageData->setCurrentText(name); }
    void chooseLabels(const char* name) { toolbox().wLabelData->setCurrentText(name); }

    const unsigned long other[3] = {6, 4, 3};
};

TEST_F(DataSetSwitch, AnEmptyPoolOffersNothingAndWaits)
{
    start();
    EXPECT_EQ(images(), Items{"*<None>"});
    EXPECT_EQ(labelFields(), Items{"*<None>"});
    EXPECT_EQ(pair(), "- over -");
    EXPECT_EQ(HxMain::getTheMain()->currentToolPanel(), &toolbox());
    click(toolbox().wNewLabels);
    EXPECT_EQ(pair(), "- over -");
}

TEST_F(DataSetSwitch, TheFirstPairThatFitsIsOpened)
{
    addImage("small", 0, other);
    addLabels("labels");
    addImage("image");
    addImage("second");
    auto* memory = static_cast<float*>(std::calloc(2 * 60, sizeof(float)));
    struct VectorField : HxRegScalarField3
    {
        explicit VectorField(HxLattice3* lattice) : HxRegScalarField3(lattice) {}
    };
    HxObjectPool::getThePool()->addObject(new VectorField(new HxLattice3(kDims, 2, 3, 1, memory, true)));
    start();
    EXPECT_EQ(images(), (Items{"small", "*image", "second", "<None>"})) << "no vectors";
    EXPECT_EQ(labelFields(), (Items{"*labels", "<None>"}));
    EXPECT_EQ(pair(), "labels over image");
}

TEST_F(DataSetSwitch, ANamedPairShowsInTheBoxes)
{
    addLabels("labels");
    addLabels("more");
    addImage("image");
    addImage("second");
    eval("segment more second");
    EXPECT_EQ(images(), (Items{"image", "*second", "<None>"}));
    EXPECT_EQ(labelFields(), (Items{"labels", "*more", "<None>"}));
    eval("segment more more");
    EXPECT_EQ(images().back(), "*<None>") << "the labels are their own image";
    eval("segment more labels");
    EXPECT_EQ(images(), (Items{"image", "second", "*labels", "<None>"}));
}

TEST_F(DataSetSwitch, AnotherImageOfTheSizeKeepsSelectionAndUndo)
{
    addLabels("labels");
    addImage("image");
    addImage<short>("second", 1);
    eval("segment labels image; gi invertSelection 3d");
    chooseImage("second");
    EXPECT_EQ(pair(), "labels over second");
    EXPECT_EQ(gi()->primType, 1);
    EXPECT_EQ(gi()->undoActions.size(), 1);
    EXPECT_EQ(numSelected(), 60u);
    chooseImage("<None>");
    EXPECT_EQ(pair(), "labels over labels");
}

TEST_F(DataSetSwitch, AnImageOfAnotherSizeBringsLabelsOfThatSize)
{
    addLabels("labels");
    addImage("image");
    addImage("large", 0, other);
    addLabels("largeLabels", other);
    HxUniformLabelField3* own = addLabels("ownLabels", other);
    own->imageConnection().connect(HxObjectPool::getThePool()->find("large"));
    addImage("alone", 0, std::initializer_list<unsigned long>{2, 2, 2}.begin());
    eval("segment labels image; gi invertSelection 3d");
    chooseImage("large");
    EXPECT_EQ(pair(), "ownLabels over large") << "the connected ones before the first that fit";
    EXPECT_EQ(labelFields(), (Items{"labels", "largeLabels", "*ownLabels", "<None>"}));
    EXPECT_EQ(numSelected(), 0u);
    chooseImage("alone");
    EXPECT_EQ(pair(), "- over -");
    EXPECT_EQ(labelFields().back(), "*<None>");
    EXPECT_EQ(gi()->labelSlices.data(), nullptr);
}

TEST_F(DataSetSwitch, OtherLabelsBringTheirImage)
{
    addLabels("labels");
    addImage("image");
    addLabels("largeLabels", other);
    addImage("large", 0, other);
    addImage("large2", 0, other);
    eval("segment labels image");
    chooseLabels("largeLabels");
    EXPECT_EQ(pair(), "largeLabels over large");
    EXPECT_EQ(images(), (Items{"image", "*large", "large2", "<None>"}));
    chooseLabels("<None>");
    EXPECT_EQ(pair(), "- over -");
    EXPECT_FALSE(entry(mainMenu("&Selection"), "Invert/All slices")->isEnabled());
    chooseLabels("labels");
    EXPECT_EQ(pair(), "labels over image");
}

TEST_F(DataSetSwitch, SaveFollowsWhetherLabelsAreChosen)
{
    addLabels("labels");
    addImage("image");
    eval("segment labels image");
    const auto* save = HxMain::getTheMain()->findChild<QAction*>("save");
    const auto canSave = [save] {
        QCoreApplication::processEvents(); // the window looks once all have changed
        return save->isEnabled();
    };
    EXPECT_TRUE(canSave());
    chooseLabels("<None>");
    EXPECT_FALSE(canSave());
    chooseLabels("labels");
    EXPECT_TRUE(canSave());
}

TEST_F(DataSetSwitch, NewMakesAFieldToDrawInto)
{
    HxUniformScalarField3* image = addImage("brain.nrrd");
    const float box[6] = {0, 8, 0, 6, 0, 2};
    image->coords()->setBoundingBox(box);
    HxOrientation turned;
    turned.directions[0] = turned.directions[4] = -1;
    turned.write(image->parameters);
    start();
    EXPECT_EQ(images().front(), "*brain.nrrd");
    click(toolbox().wNewLabels);
    EXPECT_EQ(pair(), "brain.Labels over brain.nrrd");
    EXPECT_EQ(labelFields(), (Items{"*brain.Labels", "<None>"}));
    EXPECT_EQ(eval("brain.Labels materials"), "Exterior Inside");
    auto* labels = dynamic_cast<HxLabelField3*>(gi()->labelData);
    EXPECT_EQ(labels->imageConnection().source(), image);
    EXPECT_EQ(labels->coords()->boundingBox()[1], 8);
    HxOrientation kept;
    EXPECT_TRUE(HxOrientation::read(labels->parameters, kept));
    EXPECT_EQ(kept.directions[4], -1) << "saved labels lie where the image lies";
    EXPECT_EQ(gi()->currentTissue, 1);
    EXPECT_EQ(gi()->materialColors[1][2], 204);
    EXPECT_TRUE(toolbox().addSelectionButton->isEnabled());
    eval("gi invertSelection 3d");
    click(toolbox().addSelectionButton);
    EXPECT_EQ(eval("brain.Labels count 1"), "60");
    click(toolbox().wNewLabels);
    EXPECT_EQ(labelFields(), (Items{"brain.Labels", "*brain2.Labels", "<None>"})) << "none is overwritten";
}

TEST_F(DataSetSwitch, WhatEntersThePoolIsOfferedAndAnImageTakenAtOnce)
{
    start();
    addImage("image");
    EXPECT_EQ(images(), (Items{"*image", "<None>"}));
    addLabels("labels");
    addLabels("more");
    EXPECT_EQ(labelFields(), (Items{"labels", "more", "*<None>"})) << "of labels the user chooses";
    EXPECT_EQ(pair(), "- over -");
    chooseLabels("labels");
    EXPECT_EQ(pair(), "labels over image");
    addImage("second");
    EXPECT_EQ(pair(), "labels over second");
    addImage("large", 0, other);
    EXPECT_EQ(pair(), "- over -");

    HxSubApplication::leaveRunning();
    addImage("unseen");
    EXPECT_EQ(images(), (Items{"image", "second", "*large", "<None>"})) << "behind another panel it rests";
    start();
    EXPECT_EQ(images().size(), 5u) << "and is there when it shows again";
}

TEST_F(DataSetSwitch, WhatLeavesThePoolLeavesTheBoxes)
{
    HxUniformLabelField3* labels = addLabels("labels");
    HxUniformScalarField3* image = addImage("image");
    HxUniformScalarField3* second = addImage("second");
    eval("segment labels image");
    HxObjectPool::getThePool()->removeObject(second);
    EXPECT_EQ(images(), (Items{"*image", "<None>"}));
    EXPECT_EQ(pair(), "labels over image");
    HxObjectPool::getThePool()->removeObject(image);
    EXPECT_EQ(images(), Items{"*<None>"});
    EXPECT_EQ(pair(), "labels over labels") << "the editing goes on";
    HxObjectPool::getThePool()->removeObject(labels);
    EXPECT_EQ(labelFields(), Items{"*<None>"});
    EXPECT_EQ(pair(), "- over -");
}

TEST_F(DataSetSwitch, ANewNameShows)
{
    addLabels("labels");
    addImage("image");
    eval("segment labels image; image rename brain; labels rename atlas");
    EXPECT_EQ(images(), (Items{"*brain", "<None>"}));
    EXPECT_EQ(labelFields(), (Items{"*atlas", "<None>"}));
}

TEST_F(DataSetSwitch, AResampledImageIsBoundAnewAndNewValuesAreNot)
{
    HxUniformLabelField3* labels = addLabels("labels");
    HxUniformScalarField3* image = addImage("image");
    addImage("spare");
    eval("segment labels image; gi invertSelection 3d");
    image->touch();
    EXPECT_EQ(gi()->undoActions.size(), 1) << "values alone need no new binding";
    image->lattice()->resize(6, 4, 3);
    image->touch();
    EXPECT_EQ(pair(), "labels over spare");
    EXPECT_EQ(images(), (Items{"image", "*spare", "<None>"}));
    EXPECT_EQ(gi()->undoActions.size(), 0);
    EXPECT_EQ(gi()->labelData, labels);
}
