#include "MainWindow.h"

#include "app/HxFileDialog.h"
#include "app/HxUnsavedData.h"
#include "app/HxWorkspace.h"

#include <QFile>
#include <QListWidget>
#include <QSignalSpy>

namespace {

constexpr int kSave = 0, kDiscard = 1, kCancel = 2;

class UnsavedDataTest : public MainWindow
{
};

TEST_F(UnsavedDataTest, EditsMarkAnObjectAndSavingClearsTheMark)
{
    HxUniformLabelField3* labels = addLabels("liver.nrrd");
    EXPECT_FALSE(labels->isModified());
    labels->touchMinMax(0, 0, 1);
    EXPECT_FALSE(labels->isModified());
    QSignalSpy touched(labels, &HxData::dataObjectTouched);
    editLabels(labels);
    EXPECT_TRUE(labels->isModified());
    EXPECT_EQ(touched.count(), 0);
    EXPECT_TRUE(child<QListWidget>("objectList")->item(0)->font().bold());

    McString error;
    EXPECT_FALSE(labels->save(path("no/such/folder.nrrd").toUtf8(), error));
    EXPECT_TRUE(labels->isModified());
    ASSERT_TRUE(labels->save(path("liver.nrrd").toUtf8(), error)) << error.c_str();
    EXPECT_FALSE(labels->isModified());
    EXPECT_FALSE(child<QListWidget>("objectList")->item(0)->font().bold());

    McDArray<McString> paths;
    paths.append(path("liver.nrrd").toUtf8().constData());
    const McHandle<HxData> loaded(HxFileAccess::load(paths, true, error));
    ASSERT_TRUE(loaded) << error.c_str();
    EXPECT_FALSE(loaded->isModified());
}

TEST_F(UnsavedDataTest, ClosingAsksOnceForAllThatAPersonSees)
{
    window->close();
    EXPECT_TRUE(dialogs.empty());

    editLabels(addLabels("a.nrrd"));
    editLabels(addLabels("b.nrrd"));
    HxUniformLabelField3* hidden = addLabels("hidden.nrrd");
    editLabels(hidden);
    hidden->hideIcon();
    window->show();
    answer = kCancel;
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    ASSERT_EQ(dialogs.size(), 1u);
    EXPECT_EQ(dialogs[0], "Changes of \"a.nrrd\", \"b.nrrd\" are not saved.");

    answer = kDiscard;
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(window->isVisible());
}

TEST_F(UnsavedDataTest, AFailedSaveKeepsWindowAndMark)
{
    HxUniformLabelField3* labels = addLabels("a.nrrd");
    editLabels(labels);
    answer = kSave;
    HxFileDialog::setNextAnswer({path("no/such/a.nrrd")});
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(labels->isModified());
    ASSERT_EQ(dialogs.size(), 2u);
    EXPECT_NE(dialogs[1].find("no/such/a.nrrd"), std::string::npos) << dialogs[1];

    HxFileDialog::setNextAnswer({path("a.nrrd")});
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(QFile::exists(path("a.nrrd")));
}

TEST_F(UnsavedDataTest, SavingAsksForAFileOnlyWhereNoneCanBeWritten)
{
    HxUniformLabelField3* labels = addLabels("a");
    labels->setFilename(folder.path().toUtf8()); // as after reading a series
    HxFileDialog::setNextAnswer({path("a.nrrd")});
    EXPECT_TRUE(window->saveData(labels));
    EXPECT_EQ(labels->getFilename(), path("a.nrrd"));

    ASSERT_TRUE(QFile::remove(path("a.nrrd")));
    EXPECT_TRUE(window->saveData(labels));
    EXPECT_TRUE(QFile::exists(path("a.nrrd")));

    HxFileDialog::setNextAnswer({});
    EXPECT_FALSE(window->saveDataAs(labels));
    EXPECT_TRUE(dialogs.empty());
}

TEST_F(UnsavedDataTest, RemovingByHandAsksAndByScriptDoesNot)
{
    HxUniformLabelField3* labels = addLabels("a.nrrd");
    editLabels(labels);
    window->workspace()->select(labels);
    answer = kCancel;
    auto* list = child<QListWidget>("objectList");
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(dialogs.size(), 1u);
    EXPECT_EQ(list->count(), 1);
    answer = kDiscard;
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(list->count(), 0);
    EXPECT_EQ(HxObjectPool::getThePool()->size(), 0);

    HxUniformLabelField3* other = addLabels("b.nrrd");
    editLabels(other);
    HxObjectPool::getThePool()->removeObject(other);
    EXPECT_EQ(dialogs.size(), 2u);
}

} // namespace
