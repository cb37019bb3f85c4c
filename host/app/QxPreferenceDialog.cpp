#include "app/QxPreferenceDialog.h"

#include "app/HxMain.h"
#include "hx/HxSettingsMgr.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QShowEvent>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

constexpr int kMostAlpha = 255;
constexpr int kMostThreads = 256;

} // namespace

QxPreferenceDialog* QxPreferenceDialog::getThePreferenceDialog()
{
    static QPointer<QxPreferenceDialog> dialog; // ends with the main window
    if (!dialog) dialog = new QxPreferenceDialog(HxMain::getTheMain());
    return dialog;
}

QxPreferenceDialog::QxPreferenceDialog(QWidget* parent) : QDialog(parent), pages(new QTabWidget(this))
{
    setObjectName("preferences");
    setWindowTitle(tr("Preferences"));
    pages->setObjectName("pages");
    pages->addTab(makeSegmentationPage(), tr("Segmentation"));

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QxPreferenceDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QxPreferenceDialog::reject);

    auto* column = new QVBoxLayout(this);
    column->addWidget(pages);
    column->addWidget(buttons);
    load(HxSettingsMgr::getInstance()->getPreferences());
}

QWidget* QxPreferenceDialog::makeSegmentationPage()
{
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);

    drawStyle = new QComboBox(page);
    drawStyle->setObjectName("selectionDrawStyle");
    drawStyle->addItems(
        {tr("Filled, transparent"), tr("Contour"), tr("Hatched"), tr("Dotted"), tr("Light dots")});
    drawStyle->setToolTip(tr("How selected pixels are drawn over a slice"));
    form->addRow(tr("Selection in slices:"), drawStyle);

    alpha = new QSlider(Qt::Horizontal, page);
    alpha->setObjectName("selectionAlpha");
    alpha->setRange(0, kMostAlpha);
    alphaValue = new QSpinBox(page);
    alphaValue->setObjectName("selectionAlphaValue");
    alphaValue->setRange(0, kMostAlpha);
    auto* alphaRow = new QHBoxLayout;
    alphaRow->addWidget(alpha, 1);
    alphaRow->addWidget(alphaValue);
    form->addRow(tr("Strength of its color:"), alphaRow);

    style3D = new QComboBox(page);
    style3D->setObjectName("selectionStyle3D");
    style3D->addItem(tr("Small points"), "Points1");
    style3D->addItem(tr("Large points"), "Points2");
    style3D->addItem(tr("Solid"), "Solid");
    form->addRow(tr("Selection in 3D:"), style3D);

    anatomicalNames = new QCheckBox(tr("Name slices axial, coronal and sagittal"), page);
    anatomicalNames->setObjectName("anatomicalNames");
    form->addRow(QString(), anatomicalNames);

    threads = new QSpinBox(page);
    threads->setObjectName("numThreads");
    threads->setRange(1, kMostThreads);
    threads->setToolTip(tr("Threads that a long operation may use"));
    form->addRow(tr("Threads:"), threads);

    connect(alpha, &QSlider::valueChanged, alphaValue, &QSpinBox::setValue);
    connect(alphaValue, &QSpinBox::valueChanged, alpha, &QSlider::setValue);
    connect(alpha, &QSlider::valueChanged, this, &QxPreferenceDialog::preview);
    connect(drawStyle, &QComboBox::currentIndexChanged, this, &QxPreferenceDialog::preview);
    return page;
}

void QxPreferenceDialog::load(const HxPreferences& preferences)
{
    drawStyle->setCurrentIndex(preferences.selectionDrawStyle);
    alpha->setValue(preferences.selectionAlpha);
    style3D->setCurrentIndex(style3D->findData(QString(preferences.selectionStyle3D.c_str())));
    anatomicalNames->setChecked(preferences.anatomicalNames);
    threads->setValue(HxSettingsMgr::getInstance()->numThreads());
}

void QxPreferenceDialog::preview()
{
    if (isVisible()) emit selectionDrawStyleChanged(drawStyle->currentIndex(), alpha->value());
}

void QxPreferenceDialog::showEvent(QShowEvent* event)
{
    if (!event->spontaneous()) {
        const QSignalBlocker quiet(this); // the stored values are no change
        load(HxSettingsMgr::getInstance()->getPreferences());
    }
    QDialog::showEvent(event);
}

void QxPreferenceDialog::showPage(const char* page)
{
    for (int i = 0; i < pages->count(); ++i)
        if (pages->tabText(i) == tr(page)) pages->setCurrentIndex(i);
    show();
    raise();
    activateWindow();
}

void QxPreferenceDialog::accept()
{
    // What the dialog does not show stays as it is.
    HxPreferences preferences = HxSettingsMgr::getInstance()->getPreferences();
    preferences.selectionDrawStyle = drawStyle->currentIndex();
    preferences.selectionAlpha = alpha->value();
    preferences.selectionStyle3D = style3D->currentData().toString().toUtf8().constData();
    preferences.anatomicalNames = anatomicalNames->isChecked();
    preferences.numThreads = threads->value();
    QDialog::accept();
    HxSettingsMgr::getInstance()->setPreferences(preferences, true);
}
