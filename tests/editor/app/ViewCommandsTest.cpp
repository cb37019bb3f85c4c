// The pictures of the slice viewers, as scripts get them.

#include "editor/app/EditorSession.h"

#include "display/GiFrameBuffer.h"
#include "hx/HxSettingsMgr.h"

#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class ViewCommands : public EditorSession
{
protected:
    void SetUp() override
    {
        EditorSession::SetUp();
        labels = addLabels("labels");
        auto* image = addImage("image");
        auto* values = static_cast<unsigned char*>(image->lattice()->dataPtr());
        for (int i = 0; i < 60; ++i) values[i] = static_cast<unsigned char>(i);
        const float box[6] = {0, 5, 0, 4, 0, 3};
        labels->coords()->setBoundingBox(box);
        eval("segment labels image");
        gi()->setDataWindow(0, 255, true);
    }

    std::string path(const char* name) const { return (folder.path() + "/" + name).toStdString(); }
    QImage picture(int viewer)
    {
        const std::string file = path("view.png");
        eval("view " + std::to_string(viewer) + " snapshot " + file);
        return QImage(QString::fromStdString(file));
    }

    HxUniformLabelField3* labels = nullptr;
    QTemporaryDir folder;
};

TEST_F(ViewCommands, showTheSliceThatTheyAreToldTo)
{
    eval("view 2 zoom 10");
    eval("view 2 size 30 20");
    EXPECT_EQ(eval("view 2 slice 2"), "2");
    QImage image = picture(2);
    ASSERT_EQ(image.size(), QSize(30, 20));
    eval("view 2 size 300 200");
    image = picture(2);
    ASSERT_EQ(image.size(), QSize(50, 40)) << "no larger than the slice";
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 5; ++i) EXPECT_EQ(qRed(image.pixel(10 * i + 5, 10 * j + 5)), 40 + 5 * j + i);

    EXPECT_EQ(eval("view 2 flip 1 0 0"), "1 0 0");
    EXPECT_EQ(picture(2), image.mirrored(true, false));
    EXPECT_EQ(eval("view 2 flip"), "1 0 0");
    EXPECT_EQ(eval("view 2 flip 0 0 0"), "0 0 0");

    EXPECT_EQ(eval("view 2 orientation 1"), "1");
    EXPECT_EQ(picture(2).size(), QSize(50, 30));
    EXPECT_EQ(qRed(picture(2).pixel(45, 5)), 40 + 5 * 2 + 4) << "z grows upward";
    EXPECT_EQ(eval("view 2 orientation"), "1");
    EXPECT_EQ(eval("view 2 zoom"), "10");
    EXPECT_EQ(eval("view 2 slice 99"), "3");
}

TEST_F(ViewCommands, refuseWhatMakesNoSense)
{
    EXPECT_NE(error("view 3 slice").find("there is no viewer \"3\""), std::string::npos);
    EXPECT_NE(error("view x slice").find("there is no viewer"), std::string::npos);
    EXPECT_NE(error("view 0 orientation 3").find("0 to 2"), std::string::npos);
    EXPECT_NE(error("view 0 zoom 0").find("zoom factor"), std::string::npos);
    EXPECT_NE(error("view 0 size 0 5").find("1 to"), std::string::npos);
    EXPECT_NE(error("view 0 flip 1 0").find("view N"), std::string::npos);
    EXPECT_NE(error("view 0 turn").find("unknown"), std::string::npos);
    EXPECT_NE(error("view 0 snapshot " + path("no/such/folder.png")).find("folder.png"), std::string::npos);
    HxObjectPool::getThePool()->removeObject(labels);
    EXPECT_NE(error("view 0 slice").find("no label field is open"), std::string::npos);
}

TEST_F(ViewCommands, snapshotOfTheEditorIsThatOfTheViewer)
{
    EXPECT_EQ(error("gi snapshot 0"), "Usage: snapshot [viewer id] [filename]");
    EXPECT_EQ(error("gi snapshot 7 " + path("a.png")), "Viewer id invalid");
    EXPECT_EQ(eval("gi snapshot 0 " + path("a.png")), "");
    EXPECT_EQ(QImage(QString::fromStdString(path("a.png"))), picture(0));
    EXPECT_EQ(eval("gi snapshot 0 " + path("no/such/folder.png")), "") << "a lost picture is no error";
}

TEST_F(ViewCommands, setMaxAlphaWeighsTheSelectionOfTheCurrentViewer)
{
    gi()->selectionDrawStyle = 0;
    eval("view 2 slice 0");
    eval("gi toggleVoxel 0 0 0");
    gi()->updateSelectionBoxes();
    eval("gi setMaxAlpha 255");
    EXPECT_EQ(qRed(picture(2).pixel(0, 0)), 254);
    eval("gi setMaxAlpha 0");
    EXPECT_EQ(qRed(picture(2).pixel(0, 0)), 0);
    EXPECT_EQ(gi()->viewers[0]->getFrameBuffer()->selectionAlpha,
              HxSettingsMgr::getInstance()->getPreferences().selectionAlpha);
    gi()->readSelectionDrawStyle();
}

TEST_F(ViewCommands, aChangedPreferenceIsSeenAtOnce)
{
    HxSettingsMgr& settings = *HxSettingsMgr::getInstance();
    const HxPreferences former = settings.getPreferences();
    eval("view 2 slice 0");
    eval("gi toggleVoxel 0 0 0");
    gi()->updateSelectionBoxes();
    HxPreferences changed = former;
    changed.selectionDrawStyle = 0;
    changed.selectionAlpha = 255;
    settings.setPreferences(changed, true);
    EXPECT_EQ(gi()->selectionDrawStyle, 0);
    EXPECT_EQ(qRed(picture(2).pixel(0, 0)), 254);

    eval("gi setMaxAlpha 0");
    changed.anatomicalNames = !changed.anatomicalNames;
    settings.setPreferences(changed, true);
    EXPECT_EQ(qRed(picture(2).pixel(0, 0)), 0) << "a preference of another kind leaves the weight alone";
    changed.selectionStyle3D = "Solid";
    settings.setPreferences(changed, true);
    EXPECT_EQ(qRed(picture(2).pixel(0, 0)), 254);
    settings.setPreferences(former, true);
}

TEST_F(ViewCommands, aRemovedImageLeavesNoPicture)
{
    HxObjectPool::getThePool()->removeObject(labels);
    const GiFrameBuffer& buffer = *gi()->viewers[1]->getFrameBuffer();
    for (unsigned long i = 0; i < buffer.bytesPerRow * static_cast<unsigned long>(buffer.memSize.y); ++i)
        ASSERT_EQ(buffer.memory[i], 128);
}

} // namespace
