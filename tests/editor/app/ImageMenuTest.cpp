// "Gray image" and "Gradient image" in the host's window, and what becomes of the gradient image when its
// data go.

#include "WindowSession.h"

#include "mc/McElementType.h"

class ImageMenus : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        if (editor()) gi()->onDeactivate(); // without announced modes both share the main panel
        labels = addLabels("labels");
        image = addImage("image");
        for (unsigned char i = 0; i < 60; ++i)
            static_cast<unsigned char*>(image->lattice()->dataPtr())[i] = i;
        hosted = new HxGiEditor;
        ASSERT_TRUE(hosted->attach(labels));
    }
    void TearDown() override
    {
        if (hosted->data()) hosted->detach();
        WindowSession::TearDown();
        if (editor()) gi()->onActivate();
    }

    GiQ& controller() { return *hosted->getGi(); }
    /// The entries after the menu was opened, the checked ones with a star.
    static std::vector<std::string> opened(const char* name)
    {
        const QMenu* menu = entry(mainMenu("&Segmentation"), name)->menu();
        emit const_cast<QMenu*>(menu)->aboutToShow();
        std::vector<std::string> list;
        for (const QAction* action : menu->actions())
            list.push_back((action->isChecked() ? "*" : "") + text(action->text()));
        return list;
    }
    static void choose(const char* name, const char* image)
    {
        opened(name);
        entry(mainMenu("&Segmentation"), QString(name) + "/" + image)->trigger();
    }
    static HxObject* generated() { return HxObjectPool::getThePool()->find("Default-GradientImage"); }
    const void* gradient() { return controller().gradientImage.data(); }

    using Entries = std::vector<std::string>;
    HxUniformLabelField3* labels = nullptr;
    HxUniformScalarField3* image = nullptr;
    McHandle<HxGiEditor> hosted;
};

TEST_F(ImageMenus, TheGradientIsGeneratedOrAnImageOfThePool)
{
    HxUniformScalarField3* second = addImage<short>("second", kMcShort);
    addImage("large", 0, std::initializer_list<unsigned long>{6, 4, 3}.begin());
    EXPECT_EQ(opened("Gray image"), (Entries{"labels", "*image", "second"}));
    EXPECT_EQ(opened("Gradient image"), (Entries{"labels", "image", "second", "Default-GradientImage"}));

    choose("Gradient image", "second");
    EXPECT_EQ(gradient(), second->lattice()->dataPtr());
    EXPECT_EQ(controller().gradientImage.type(), kMcShort);
    EXPECT_EQ(opened("Gradient image"), (Entries{"labels", "image", "*second", "Default-GradientImage"}));

    choose("Gradient image", "Default-GradientImage");
    ASSERT_TRUE(generated());
    EXPECT_EQ(gradient(), controller().gradientField->lattice()->dataPtr());
    EXPECT_EQ(opened("Gradient image"), (Entries{"labels", "image", "second", "*Default-GradientImage"}));
    EXPECT_EQ(controller().imageData, image) << "what the tools look at does not show";

    choose("Gradient image", "image");
    EXPECT_TRUE(generated()) << "it can be chosen again";
    choose("Gradient image", "Default-GradientImage");
    EXPECT_EQ(gradient(), controller().gradientField->lattice()->dataPtr());
}

TEST_F(ImageMenus, AnotherImageEndsTheGeneratedGradientUnlessItIsThat)
{
    addImage("second");
    choose("Gradient image", "Default-GradientImage");
    choose("Gray image", "Default-GradientImage");
    EXPECT_EQ(controller().imageData, generated());
    EXPECT_TRUE(gradient());
    choose("Gray image", "second");
    EXPECT_STREQ(controller().imageData->getLabel(), "second");
    EXPECT_FALSE(generated());
    EXPECT_FALSE(gradient()) << "the next tool computes that of the new image";

    choose("Gradient image", "image");
    choose("Gray image", "labels");
    EXPECT_EQ(gradient(), image->lattice()->dataPtr()) << "what the user chose stays";
}

TEST_F(ImageMenus, NoGradientOutlivesItsData)
{
    HxUniformScalarField3* second = addImage("second");
    choose("Gradient image", "second");
    second->touch();
    EXPECT_TRUE(gradient());
    second->lattice()->resize(6, 4, 3);
    second->touch();
    EXPECT_FALSE(gradient());
    HxUniformScalarField3* third = addImage("third");
    choose("Gradient image", "third");
    HxObjectPool::getThePool()->removeObject(third);
    EXPECT_FALSE(gradient());
    choose("Gradient image", "Default-GradientImage");
    HxObjectPool::getThePool()->removeObject(generated());
    EXPECT_FALSE(gradient());
    EXPECT_FALSE(controller().gradientField);
    controller().getGradientImage3D();
    EXPECT_TRUE(generated());
    hosted->stopEditing();
    EXPECT_FALSE(generated());
    EXPECT_FALSE(gradient());
}

TEST_F(ImageMenus, AGradientThatIsEditedOverStays)
{
    HxUniformLabelField3* more = addLabels("more");
    controller().getGradientImage3D();
    auto* image3D = dynamic_cast<HxData*>(generated());
    hosted->startEditing(more, image3D);
    EXPECT_EQ(controller().imageData, image3D);
    EXPECT_TRUE(image3D->isInPool());
}

TEST_F(ImageMenus, InTheModeOfItsOwnTheGradientIsOfferedButNotTaken)
{
    hosted->detach();
    eval("segment labels image");
    gi()->getGradientImage3D();
    EXPECT_EQ(items(toolbox().wImageData), (Entries{"*image", "Default-GradientImage", "<None>"}));
    EXPECT_EQ(gi()->imageData, image);
    toolbox().wImageData->setCurrentText("<None>");
    EXPECT_EQ(items(toolbox().wImageData), (Entries{"image", "*<None>"}));
}
