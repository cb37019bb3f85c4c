#include "MainWindow.h"

#include "app/HxFileDialog.h"
#include "app/HxUnsavedData.h"
#include "app/HxWindowCommands.h"
#include "app/HxWorkspace.h"
#include "hx/HxEditor.h"
#include "hx/HxInterpreter.h"
#include "hx/HxUniformScalarField3.h"
#include "mc/McElementType.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QListWidget>
#include <QSignalSpy>

#include <tcl.h>

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

TEST_F(UnsavedDataTest, WhatAnEditorHoldsIsAskedAboutBeforeTheData)
{
    struct Editor : HxEditor
    {
        Editor() : HxEditor(HxData::getClassTypeId()) {}
        void startEditing(HxData*) override {}
        void stopEditing() override {}
        McString unfinishedWork() const override { return work; }
        McString work;
    };
    const McHandle<Editor> editor(new Editor), idle(new Editor);
    constexpr int kQuit = 0;
    editor->work = "the beginning of a contour";
    EXPECT_FALSE(window->close()) << "Escape keeps the work";
    EXPECT_EQ(dialogs, (std::vector<std::string>{"This will be lost: the beginning of a contour."}));
    answer = kQuit;
    EXPECT_TRUE(window->close());
    window->show();
    editor->work = "";
    dialogs.clear();
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(dialogs.empty());
}

TEST_F(UnsavedDataTest, APersonIsToldOnceWhatAFileDoesNotKeepAndAScriptIsNotHeldUp)
{
    hxRegisterWindowCommands();
    HxUniformLabelField3* labels = addLabels("a");
    labels->materials()->insert(new HxParamBundle("Exterior"));
    window->workspace()->select(labels);
    HxFileDialog::setNextAnswer({path("a.nii.gz")});
    EXPECT_TRUE(window->saveDataAs(labels));
    ASSERT_EQ(dialogs.size(), 1u);
    EXPECT_EQ(dialogs[0], path("a.nii.gz").toStdString() +
                              ": the file does not keep the names and colors of the materials.");
    EXPECT_TRUE(window->saveData(labels));
    EXPECT_EQ(dialogs.size(), 1u) << "once for each file";

    HxFileDialog::setNextAnswer({path("b.nii.gz")});
    McString result;
    EXPECT_EQ(HxInterpreter::getTheInterpreter()->eval("menu {File/Save As}", result), TCL_OK)
        << result.c_str();
    EXPECT_TRUE(QFile::exists(path("b.nii.gz")));
    HxFileDialog::setNextAnswer({path("a.nrrd")});
    EXPECT_TRUE(window->saveDataAs(labels));
    EXPECT_EQ(dialogs.size(), 1u);
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

TEST_F(UnsavedDataTest, TheSaveDialogProposesThePlaceOfTheObjectAndOnlyWhatCanBeWritten)
{
    const auto proposed = [](const char* name, const QString& file = {}) {
        return HxFileDialog::proposal(name, file);
    };
    EXPECT_EQ(proposed("liver", path("scan.nii.gz")), path("scan.nii.gz")); // its own file again
    EXPECT_EQ(proposed("scan.nhdr", path("scan.nhdr")), path("scan.nhdr.nrrd"));
    EXPECT_EQ(proposed("series", folder.path()), QFileInfo(folder.path()).absolutePath() + "/series.nrrd");

    ASSERT_TRUE(QDir(folder.path()).mkdir("out"));
    HxFileDialog::setNextAnswer({path("out/a.seg.nrrd")});
    ASSERT_TRUE(window->saveData(addLabels("a")));
    EXPECT_EQ(proposed("b"), path("out/b.nrrd")); // where the last one went
    EXPECT_EQ(proposed("b/c.mhd"), path("out/b_c.mhd"));

    // Each suffix that the dialog offers is one that the writer takes.
    const unsigned long dims[3] = {2, 3, 4};
    const McHandle<HxData> image(new HxUniformScalarField3(dims, kMcUnsignedChar));
    for (HxData* object : {image.get(), static_cast<HxData*>(addLabels("all"))})
        for (const QString& filter : HxFileDialog::saveFilters(object != image.get()))
            for (const QString& pattern : filter.section('(', 1).remove(')').split(' ')) {
                McString error;
                EXPECT_TRUE(object->save((path("all") + pattern.mid(1)).toUtf8(), error)) << error.c_str();
            }
}

TEST_F(UnsavedDataTest, RemovingByHandAsksAndByScriptDoesNot)
{
    HxUniformLabelField3* labels = addLabels("a.nrrd");
    HxUniformLabelField3* other = addLabels("b.nrrd");
    editLabels(labels);
    editLabels(other);
    window->workspace()->select(labels);
    answer = kCancel;
    auto* list = child<QListWidget>("objectList");
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(dialogs.size(), 1u);
    EXPECT_EQ(list->count(), 2);
    answer = kDiscard;
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(list->count(), 1);
    EXPECT_EQ(HxObjectPool::getThePool()->object(0), other);

    HxObjectPool::getThePool()->removeObject(other);
    EXPECT_EQ(dialogs.size(), 2u);
}

} // namespace
