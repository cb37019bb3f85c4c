// Opening from the dialog, by drop and from the list of recent files.

#include "MainWindow.h"

#include "app/HxFileDialog.h"
#include "hx/HxUniformScalarField3.h"

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QMenuBar>

namespace {

class OpenFiles : public MainWindow
{
protected:
    QString picture(const char* name, int width = 4, QImage::Format format = QImage::Format_Grayscale8)
    {
        QImage image(width, 3, format);
        image.fill(1);
        EXPECT_TRUE(image.save(path(name)));
        return path(name);
    }
    QString volume(const char* name)
    {
        const unsigned long dims[3] = {2, 2, 2};
        const McHandle<HxData> field(new HxUniformScalarField3(dims, 0));
        McString error;
        EXPECT_TRUE(field->save(path(name).toUtf8(), error)) << error.c_str();
        return path(name);
    }
    /// Every object as "NAME slices", label fields with a star.
    static std::vector<std::string> objects()
    {
        std::vector<std::string> list;
        const HxObjectPool* pool = HxObjectPool::getThePool();
        for (int i = 0; i < pool->size(); ++i) {
            auto* field = dynamic_cast<HxRegScalarField3*>(pool->object(i));
            list.push_back((dynamic_cast<HxLabelField3*>(field) ? "*" : "") + std::string(field->getLabel()) +
                           " " + std::to_string(field->lattice()->dims()[2]));
        }
        return list;
    }
    QMenu* recentMenu() const
    {
        QMenu* file = window->menuBar()->actions().front()->menu();
        emit file->aboutToShow();
        for (QAction* action : file->actions())
            if (action->menu()) return action->menu();
        return nullptr;
    }
    std::vector<std::string> recent() const
    {
        std::vector<std::string> list;
        for (const QAction* action : recentMenu()->actions()) list.push_back(action->text().toStdString());
        return list;
    }

    using List = std::vector<std::string>;
};

TEST_F(OpenFiles, SlicesThatBelongTogetherAreOneSeries)
{
    const QStringList slices{picture("s10.png"), volume("v.nrrd"), picture("s2.png"), picture("s1.png")};
    window->openFiles(slices);
    EXPECT_EQ(objects(), (List{"s10.png 3", "v.nrrd 2"}));
    EXPECT_EQ(recent(), (List{"&1 v.nrrd", "&2 s10.png and 2 more"}));
    HxObjectPool::getThePool()->clear();
    recentMenu()->actions()[1]->trigger();
    EXPECT_EQ(objects(), (List{"s10.png 3"})) << "the whole series comes again";
    EXPECT_EQ(recent().size(), 2u);
}

TEST_F(OpenFiles, PicturesThatAreNoSeriesAreOpenedByThemselves)
{
    window->openFiles({picture("a.png"), picture("b.png", 5), path("missing.png")});
    EXPECT_EQ(objects(), (List{"a.png 1", "b.png 1"}));
    ASSERT_EQ(dialogs.size(), 1u);
    EXPECT_NE(dialogs[0].find("missing.png"), std::string::npos) << dialogs[0];
    dialogs.clear();

    HxObjectPool::getThePool()->clear();
    QStringList many;
    for (int i = 0; i < 12; ++i)
        many.append(picture(("m" + std::to_string(i) + ".png").c_str(), i == 7 ? 9 : 4));
    window->openFiles(many);
    EXPECT_EQ(objects(), List{}) << "nobody wants so many volumes of one slice";
    ASSERT_EQ(dialogs.size(), 1u);
    EXPECT_NE(dialogs[0].find("m7.png"), std::string::npos) << dialogs[0];
}

TEST_F(OpenFiles, RecentFilesRememberThatTheyWereLabels)
{
    volume("v.nii.gz");
    HxFileDialog::setNextAnswer({path("v.nii.gz")});
    for (QAction* action : window->menuBar()->actions().front()->menu()->actions())
        if (action->text() == "Open as &Labels...") action->trigger();
    EXPECT_EQ(objects(), List{"*v.nii.gz 2"});
    EXPECT_EQ(recent(), List{"&1 v.nii.gz (labels)"});
    HxObjectPool::getThePool()->clear();
    recentMenu()->actions()[0]->trigger();
    EXPECT_EQ(objects(), List{"*v.nii.gz 2"});
    window->openFiles({path("v.nii.gz")});
    EXPECT_EQ(recent(), List{"&1 v.nii.gz"}) << "as it was opened last";
}

} // namespace
