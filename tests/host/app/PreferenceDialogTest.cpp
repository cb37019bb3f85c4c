#include "MainWindow.h"

#include "app/QxPreferenceDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>

namespace {

class PreferenceDialogTest : public MainWindow
{
protected:
    PreferenceDialogTest()
    {
        dialog = QxPreferenceDialog::getThePreferenceDialog();
        dialog->showPage("Segmentation");
        style = dialog->findChild<QComboBox*>("selectionDrawStyle");
        alpha = dialog->findChild<QSlider*>("selectionAlpha");
    }

    void press(QDialogButtonBox::StandardButton which)
    {
        QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(which), Qt::LeftButton);
    }

    static const HxPreferences& stored() { return HxSettingsMgr::getInstance()->getPreferences(); }

    QxPreferenceDialog* dialog;
    QComboBox* style;
    QSlider* alpha;
};

TEST_F(PreferenceDialogTest, ChangesShowAtOnceAndCancelStoresNothing)
{
    QSignalSpy preview(dialog, &QxPreferenceDialog::selectionDrawStyleChanged);
    QSignalSpy rejected(dialog, &QDialog::rejected);
    QSignalSpy changed(HxSettingsMgr::getInstance(), &HxSettingsMgr::preferencesChanged);
    EXPECT_EQ(style->currentText(), "Contour"); // 1, as for materials
    QTest::keyClick(style, Qt::Key_Down);
    QTest::keyClick(alpha, Qt::Key_Home);
    ASSERT_EQ(preview.count(), 2);
    EXPECT_EQ(preview[0], (QList<QVariant>{2, 96}));
    EXPECT_EQ(preview[1], (QList<QVariant>{2, 0}));

    press(QDialogButtonBox::Cancel);
    EXPECT_EQ(rejected.count(), 1);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(stored().selectionDrawStyle, 1);

    // Opening shows the stored values again, which is no change to announce.
    dialog->showPage("Segmentation");
    EXPECT_EQ(style->currentIndex(), 1);
    EXPECT_EQ(preview.count(), 2);
}

TEST_F(PreferenceDialogTest, OkStoresWhatIsShownAndKeepsTheRest)
{
    HxPreferences before = stored();
    before.giOrientation = "2 1 0 1";
    HxSettingsMgr::getInstance()->setPreferences(before, false);
    QSignalSpy changed(HxSettingsMgr::getInstance(), &HxSettingsMgr::preferencesChanged);
    QTest::keyClick(style, Qt::Key_End);
    dialog->findChild<QComboBox*>("selectionStyle3D")->setCurrentIndex(2);
    dialog->findChild<QSpinBox*>("numThreads")->setValue(3);
    dialog->showPage("Weather"); // leaves what was chosen
    press(QDialogButtonBox::Ok);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(stored().selectionDrawStyle, 4);
    EXPECT_EQ(stored().selectionStyle3D, McString("Solid"));
    EXPECT_EQ(stored().numThreads, 3);
    EXPECT_EQ(stored().giOrientation, McString("2 1 0 1"));
}

} // namespace
