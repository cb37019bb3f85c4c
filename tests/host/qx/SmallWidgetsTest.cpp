// The small widgets: names and their delegate, lines, buttons, the color question, tables, icons.

#include "hx/HxColormap.h"
#include "hx/HxMessage.h"
#include "hx/HxResource.h"
#include "hx/HxSpreadSheet.h"
#include "qx/HxColorEditor.h"
#include "qx/QxLineEdit.h"
#include "qx/QxLockItemDelegate.h"
#include "qx/QxMaterialNameItemDelegate.h"
#include "qx/QxMaterialValidator.h"
#include "qx/QxPushButton.h"
#include "qx/QxSpreadSheetWidget.h"
#include "qx/QxToolButton.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QCursor>
#include <QHeaderView>
#include <QIcon>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <string>
#include <vector>

namespace {

/// A one-row table with a name and a lock, open on the screen.
class MaterialCells : public testing::Test
{
protected:
    void SetUp() override
    {
        table.setItemDelegateForColumn(0, new QxMaterialNameItemDelegate(&table));
        table.setItemDelegateForColumn(1, new QxLockItemDelegate(&table));
        table.setItem(0, 0, new QTableWidgetItem("Liver"));
        QPixmap red(16, 16);
        red.fill(Qt::red);
        table.setItem(0, 1, new QTableWidgetItem(QIcon(red), QString()));
        table.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&table));
    }
    QLineEdit* edit(int column)
    {
        table.setCurrentCell(0, column);
        table.editItem(table.item(0, column));
        return table.viewport()->findChild<QLineEdit*>();
    }
    /// The base delegate commits by a queued call, so that the line sees the key first.
    static void press(QLineEdit* line, Qt::Key key)
    {
        QTest::keyClick(line, key);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // the line has had its time
    }
    QString name() const { return table.item(0, 0)->text(); }

    QTableWidget table{1, 2};
};

/// A folder of pictures that HxResource finds.
class Pictures : public testing::Test
{
protected:
    void SetUp() override
    {
        qputenv("VOREL_RESOURCES", folder.path().toUtf8());
        HxMessage::getTheMsg()->setSink([this](const char* text) { console.push_back(text); });
    }
    void TearDown() override
    {
        HxMessage::getTheMsg()->setSink({});
        qunsetenv("VOREL_RESOURCES");
    }
    void picture(const char* file, int side, Qt::GlobalColor color)
    {
        QImage image(side, side, QImage::Format_ARGB32);
        image.fill(color);
        ASSERT_TRUE(image.save(folder.filePath(file)));
    }
    QTemporaryDir folder;
    std::vector<std::string> console;
};

} // namespace

TEST(MaterialValidator, AcceptsWhatANameMayBeTypedAs)
{
    const QxMaterialValidator validator;
    const struct
    {
        QString text;
        QValidator::State state;
    } rows[] = {
        {"", QValidator::Intermediate},
        {"Left Lung (2)", QValidator::Acceptable},
        {QString::fromUtf8("Gehäuse"), QValidator::Acceptable},
        {"a\tb", QValidator::Invalid},
        {QString(QChar(0x7f)), QValidator::Invalid},
        {QString(64, 'x'), QValidator::Acceptable},
        {QString(65, 'x'), QValidator::Invalid},
        {QString(33, QChar(0xe4)), QValidator::Invalid}, // 66 bytes
    };
    for (const auto& row : rows) {
        QString text = row.text;
        int position = 0;
        EXPECT_EQ(validator.validate(text, position), row.state) << row.text.toStdString();
    }
}

TEST_F(MaterialCells, ANameIsTypedWithinTheRuleAndCommitted)
{
    QLineEdit* line = edit(0);
    ASSERT_TRUE(line);
    line->selectAll();
    QTest::keyClicks(line, QString(70, 'x'));
    EXPECT_EQ(line->text().size(), QxMaterialValidator::kMaxBytes);
    line->selectAll();
    QTest::keyClicks(line, "Left Lung");
    press(line, Qt::Key_Return);
    EXPECT_EQ(name(), "Left Lung");

    line = edit(0);
    QTest::keyClicks(line, "abc");
    press(line, Qt::Key_Escape);
    EXPECT_EQ(name(), "Left Lung");

    line = edit(0);
    line->clear();
    press(line, Qt::Key_Return); // who takes the text knows what an empty name means
    EXPECT_EQ(name(), "");
    EXPECT_FALSE(table.viewport()->findChild<QLineEdit*>());
}

TEST_F(MaterialCells, ANameThatCannotBeTypedCanBeMended)
{
    const QString longName(100, 'z');
    table.item(0, 0)->setText(longName);
    QLineEdit* line = edit(0);
    line->end(false);
    QTest::keyClicks(line, "y"); // it does not grow
    EXPECT_EQ(line->text(), longName);
    QTest::keyClick(line, Qt::Key_Backspace);
    QTest::keyClick(line, Qt::Key_Backspace);
    QTest::keyClicks(line, "y");
    press(line, Qt::Key_Return);
    EXPECT_EQ(name(), QString(98, 'z') + "y");
    EXPECT_FALSE(table.viewport()->findChild<QLineEdit*>());

    table.item(0, 0)->setText("Left\tLung");
    press(edit(0), Qt::Key_Return); // nobody meant a change
    EXPECT_EQ(name(), "Left\tLung");
    line = edit(0);
    line->end(false);
    QTest::keyClick(line, Qt::Key_Backspace);
    press(line, Qt::Key_Return);
    EXPECT_EQ(name(), "LeftLun");
    EXPECT_FALSE(table.viewport()->findChild<QLineEdit*>());
}

TEST_F(MaterialCells, ALockHasNoEditorAndStandsInTheMiddle)
{
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    EXPECT_FALSE(QxLockItemDelegate().createEditor(table.viewport(), {}, table.model()->index(0, 1)));
    table.setCurrentCell(0, 1);
    table.clearSelection();
    const QImage focused = table.viewport()->grab(table.visualItemRect(table.item(0, 1))).toImage();
    EXPECT_EQ(focused.pixelColor(focused.rect().center()), QColor(Qt::red));
    table.setCurrentCell(0, 0);
    table.clearSelection();
    const QImage plain = table.viewport()->grab(table.visualItemRect(table.item(0, 1))).toImage();
    EXPECT_EQ(focused, plain); // no focus frame
}

TEST(LineEdit, TellsWhenTheTextIsMeant)
{
    QWidget window;
    QxLineEdit line(&window);
    QLineEdit other(&window);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    QSignalSpy ready(&line, &QxLineEdit::inputReady);
    line.setFocus();
    line.setText("by program");
    other.setFocus();
    EXPECT_EQ(ready.count(), 0);
    line.setFocus();
    QTest::keyClicks(&line, "12");
    other.setFocus();
    EXPECT_EQ(ready.count(), 1);
    line.setFocus();
    QTest::keyClicks(&line, "3");
    QTest::keyClick(&line, Qt::Key_Return);
    EXPECT_EQ(ready.count(), 2);
    other.setFocus(); // told already
    EXPECT_EQ(ready.count(), 2);
}

TEST(ModifierButtons, RememberTheKeysOfThePress)
{
    QxPushButton push;
    QxToolButton tool;
    const auto check = [](auto& button) {
        EXPECT_EQ(button.modifiers(), Qt::NoModifier);
        QTest::mousePress(&button, Qt::LeftButton, Qt::ShiftModifier);
        QTest::mouseRelease(&button, Qt::LeftButton); // the key is up again
        EXPECT_EQ(button.modifiers(), Qt::ShiftModifier);
        QTest::keyClick(&button, Qt::Key_Space);
        EXPECT_EQ(button.modifiers(), Qt::NoModifier);
        QTest::mouseClick(&button, Qt::LeftButton, Qt::ControlModifier);
        EXPECT_EQ(button.modifiers(), Qt::ControlModifier);
        button.click();
        EXPECT_EQ(button.modifiers(), Qt::NoModifier);
    };
    check(push);
    check(tool);
}

TEST(ColorEditor, TakesAWaitingAnswerOnceAndNobodysForNo)
{
    HxColorEditor editor;
    editor.setColor(0.1f, 0.2f, 2.0f);
    EXPECT_FALSE(editor.exec());
    HxColorEditor::setNextAnswer(false, 1, 1, 1);
    EXPECT_FALSE(editor.exec());
    EXPECT_EQ(editor.getColor(), McColor(0.1f, 0.2f, 1.0f));
    HxColorEditor::setNextAnswer(true, 0.5f, 0, 1);
    EXPECT_TRUE(editor.exec());
    EXPECT_EQ(editor.getColor(), McColor(0.5f, 0, 1));
    EXPECT_EQ(editor.getAlpha(), -1);
    EXPECT_FALSE(editor.exec());
}

TEST(SpreadSheetWidget, ShowsSortsCopiesAndFollowsTheSheet)
{
    auto sheet = std::make_unique<HxSpreadSheet>();
    sheet->addColumn("Material", HxSpreadSheet::ColumnType::String);
    sheet->addColumn("Voxels", HxSpreadSheet::ColumnType::Int);
    const std::pair<const char*, long> rows[] = {{"b", 9}, {"a", 100}, {"c", -5}};
    for (const auto& [name, count] : rows) {
        const int row = sheet->addRow();
        sheet->setText(0, row, name);
        sheet->setInt(1, row, count);
    }
    QxSpreadSheetWidget view;
    view.setSpreadSheet(sheet.get());
    const auto names = [&] {
        QString all;
        for (int r = 0; r < view.model()->rowCount(); ++r) all += view.model()->index(r, 0).data().toString();
        return all;
    };
    EXPECT_EQ(names(), "bac");
    EXPECT_EQ(view.model()->headerData(1, Qt::Horizontal).toString(), "Voxels");
    view.sortByColumn(1, Qt::AscendingOrder);
    EXPECT_EQ(names(), "cba"); // as texts, 100 would come before 9

    view.selectAll();
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "c\t-5\nb\t9\na\t100\n");

    sheet->setText(0, 2, "d");
    sheet->touch();
    EXPECT_EQ(names(), "dba");
    sheet.reset();
    EXPECT_EQ(view.model()->rowCount(), 0);
}

TEST_F(Pictures, IconsAndCursorsComeFromTheFoldersAndAMissingOneIsReportedOnce)
{
    picture("Blue.png", 24, Qt::blue);
    picture("Blue@2x.png", 48, Qt::red);
    const QIcon icon = HxResource::readIcon("Blue.png");
    // On a screen of usual density, where the tests run, and also with QT_SCALE_FACTOR=2.
    const QColor expected(qApp->devicePixelRatio() > 1 ? Qt::red : Qt::blue);
    EXPECT_EQ(icon.pixmap(24, 24).toImage().pixelColor(12, 12), expected);
    const QCursor cursor = HxResource::readCursor("Blue.png", nullptr, 5, 15);
    EXPECT_EQ(cursor.hotSpot(), QPoint(5, 15));
    EXPECT_EQ(cursor.pixmap().toImage().pixelColor(12, 12), expected);
    EXPECT_TRUE(console.empty());

    EXPECT_TRUE(HxResource::readIcon("NoSuch.png").isNull());
    EXPECT_TRUE(HxResource::readIcon("NoSuch.png").isNull());
    EXPECT_EQ(HxResource::readCursor("NoSuchCursor.png", nullptr, 0, 0).shape(), Qt::ArrowCursor);
    ASSERT_EQ(console.size(), 2u);
    EXPECT_NE(console[0].find("NoSuch.png"), std::string::npos);
}

TEST(ColormapPicture, ShowsTheTableOrAPartOfIt)
{
    HxColormap map;
    map.setTable({{1, 0, 0, 1}, {0, 0, 1, 1}});
    const auto row = [](const QPixmap& picture) { return picture.toImage(); };
    const QImage whole = row(map.getPixmap(18, 12, 0, 0, 0));
    EXPECT_EQ(whole.size(), QSize(18, 12));
    for (int x = 0; x < 18; ++x) {
        const unsigned int rgba = map.packedColor(float(x) / 17);
        EXPECT_EQ(whole.pixelColor(x, 6),
                  QColor(int(rgba >> 24), int(rgba >> 16 & 255), int(rgba >> 8 & 255)));
    }
    EXPECT_EQ(row(map.getPixmap(18, 12, 0, 0.5f, 1)).pixelColor(0, 0).red(), 128);
    EXPECT_EQ(row(map.getPixmap(18, 12, 4, 0, 0)).pixelColor(5, 0), QColor(Qt::black)); // the frame
    const QImage grey = row(HxColormap::getPixmap(nullptr, 18, 12));
    EXPECT_EQ(grey.pixelColor(0, 3), QColor(Qt::black));
    EXPECT_EQ(grey.pixelColor(17, 3), QColor(Qt::white));
}
