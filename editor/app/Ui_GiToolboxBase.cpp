#include "app/Ui_GiToolboxBase.h"

#include "app/GiQTissueList.h"
#include "qx/QxColormapFullRangeSlider.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <initializer_list>

namespace {

constexpr int kSpacing = 4;    // device-independent pixels, between neighbours in a row
constexpr int kRowSpacing = 2; // between rows: the whole has to fit a window 800 pixels high
constexpr int kGap = 12;       // between groups of buttons in one row
constexpr int kComboCharacters = 18;
constexpr int kLeastListHeight = 60; // the header and two materials
constexpr int kFrame2Width = 16, kFrame2Height = 188;

QString tr(const char* text)
{
    return QCoreApplication::translate("GiToolboxBase", text);
}

template <class Widget>
void make(Widget*& widget, const char* name, QWidget* parent)
{
    widget = new Widget(parent);
    widget->setObjectName(name);
}

void makeButton(QToolButton*& button, const char* name, const char* toolTip, QWidget* parent)
{
    make(button, name, parent);
    button->setToolTip(tr(toolTip));
    button->setAutoRaise(true);
}

void makeTextButton(QToolButton*& button, const char* name, const char* text, const char* toolTip,
                    QWidget* parent)
{
    make(button, name, parent);
    button->setText(tr(text));
    button->setToolTip(tr(toolTip));
}

template <class Layout>
Layout* tight(QWidget* parent)
{
    auto* layout = new Layout(parent);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kSpacing);
    return layout;
}

/// The box's own layout, below its title.
QVBoxLayout* columnOf(QGroupBox* box)
{
    box->setFlat(true);
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    return column;
}

QHBoxLayout* rowOf(std::initializer_list<QWidget*> widgets)
{
    auto* row = new QHBoxLayout;
    row->setSpacing(kSpacing);
    for (QWidget* widget : widgets) {
        if (widget)
            row->addWidget(widget);
        else
            row->addSpacing(kGap);
    }
    return row;
}

} // namespace

void Ui_GiToolboxBase::setupUi(QWidget* toolbox)
{
    toolbox->setObjectName("GiToolboxBase");
    toolbox->setWindowTitle(tr("Form1"));
    make(wGiFrame, "wGiFrame", toolbox);
    make(wGiFrame2, "wGiFrame2", toolbox);
    wGiFrame2->setMinimumSize(kFrame2Width, kFrame2Height);

    auto* column = new QVBoxLayout(wGiFrame);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(kRowSpacing);
    column->addWidget(makeInput());
    column->addLayout(makeMaterials());
    column->addWidget(tissueFrame, 1);
    column->addWidget(makeZoomBox());
    column->addWidget(makeSelectionBox());
    column->addWidget(makeToolsBox());

    auto* whole = new QVBoxLayout(toolbox);
    whole->setContentsMargins(kSpacing, kRowSpacing, kSpacing, 0);
    whole->setSpacing(kRowSpacing);
    whole->addWidget(wGiFrame, 1);
    whole->addWidget(wGiFrame2);
    makeInfo();
}

QWidget* Ui_GiToolboxBase::makeInput()
{
    make(wGiInput, "wGiInput", wGiFrame);
    make(wImageDataText, "wImageDataText", wGiInput);
    make(wImageData, "wImageData", wGiInput);
    make(wLabelDataText, "wLabelDataText", wGiInput);
    make(wLabelData, "wLabelData", wGiInput);
    makeTextButton(wNewLabels, "wNewLabels", "New", "Make an empty label field for the image", wGiInput);
    wImageDataText->setText(tr("Image Data:"));
    wLabelDataText->setText(tr("Label Data:"));
    for (QComboBox* box : {wImageData, wLabelData}) {
        // Long names are shown as far as there is room; they must not widen the panel.
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(kComboCharacters);
        box->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }
    auto* grid = tight<QGridLayout>(wGiInput);
    grid->setVerticalSpacing(kRowSpacing);
    grid->addWidget(wImageDataText, 0, 0);
    grid->addWidget(wImageData, 0, 1, 1, 2);
    grid->addWidget(wLabelDataText, 1, 0);
    grid->addWidget(wLabelData, 1, 1);
    grid->addWidget(wNewLabels, 1, 2);
    return wGiInput;
}

QLayout* Ui_GiToolboxBase::makeMaterials()
{
    make(matLabel, "matLabel", wGiFrame);
    matLabel->setText(tr("Materials:"));
    makeTextButton(addMatButton, "addMatButton", "New", "Add a new material", wGiFrame);
    makeTextButton(delMatButton, "delMatButton", "Delete", "Delete the selected material", wGiFrame);
    make(tissueFrame, "tissueFrame", wGiFrame);
    tissueFrame->setFrameShape(QFrame::StyledPanel);
    make(tissueList, "tissueList", tissueFrame);
    tissueFrame->setMinimumHeight(kLeastListHeight);
    tight<QVBoxLayout>(tissueFrame)->addWidget(tissueList);
    QHBoxLayout* row = rowOf({matLabel, addMatButton, delMatButton});
    row->setStretchFactor(matLabel, 1);
    return row;
}

QWidget* Ui_GiToolboxBase::makeZoomBox()
{
    make(wGiZoomBox, "wGiZoomBox", wGiFrame);
    wGiZoomBox->setTitle(tr("Zoom and Data Window"));
    makeButton(zoomInButton, "zoomInButton", "Zoom in", wGiZoomBox);
    makeButton(zoomOutButton, "zoomOutButton", "Zoom out", wGiZoomBox);
    make(zoomLabel, "zoomLabel", wGiZoomBox);
    zoomLabel->setText("1:1");
    make(qxRangeSlider, "qxRangeSlider", wGiZoomBox);
    qxRangeSlider->setFieldsBeside(true); // the height goes to the list of materials
    qxRangeSlider->setToolTip(tr("Set data window"));
    makeButton(w2DColormapButton, "w2DColormapButton", "Select 2D Colormap", wGiZoomBox);
    make(allZoomRadioButton, "allZoomRadioButton", wGiZoomBox);
    allZoomRadioButton->setText(tr("All viewers"));
    allZoomRadioButton->setChecked(true);
    make(currentZoomRadioButton, "currentZoomRadioButton", wGiZoomBox);
    currentZoomRadioButton->setText(tr("Current viewer"));

    QVBoxLayout* column = columnOf(wGiZoomBox);
    QHBoxLayout* row = rowOf({zoomInButton, zoomOutButton, zoomLabel, nullptr, allZoomRadioButton,
                              currentZoomRadioButton, w2DColormapButton});
    row->insertStretch(row->indexOf(w2DColormapButton));
    column->addLayout(row);
    column->addWidget(qxRangeSlider);
    return wGiZoomBox;
}

QWidget* Ui_GiToolboxBase::makeSelectionBox()
{
    make(wGiSelectionBox, "wGiSelectionBox", wGiFrame);
    wGiSelectionBox->setTitle(tr("Selection"));
    QWidget* box = wGiSelectionBox;
    makeButton(clearSelectionButton, "clearSelectionButton", "Clear current selection", box);
    makeButton(replaceSelectionButton, "replaceSelectionButton", "Replace selected region", box);
    makeButton(addSelectionButton, "addSelectionButton", "Add selected voxels", box);
    makeButton(subtractSelectionButton, "subtractSelectionButton", "Subtract selected voxels", box);
    makeButton(prevSel2DButton, "prevSel2DButton", "Previous selection", box);
    makeButton(nextSel2DButton, "nextSel2DButton", "Next selection", box);
    makeButton(growButton, "growButton", "Grow Selection", box);
    growButton->setText(tr("G"));
    makeButton(shrinkButton, "shrinkButton", "Shrink Selection", box);
    shrinkButton->setText(tr("S"));
    make(allSlicesRadioButton, "allSlicesRadioButton", box);
    allSlicesRadioButton->setText(tr("All slices"));
    allSlicesRadioButton->setChecked(true);
    make(currentSliceRadioButton, "currentSliceRadioButton", box);
    currentSliceRadioButton->setText(tr("Current slice"));
    make(wShow3DSelectionCheckBox, "wShow3DSelectionCheckBox", box);
    wShow3DSelectionCheckBox->setText(tr("Show in 3D"));

    QVBoxLayout* column = columnOf(wGiSelectionBox);
    QHBoxLayout* buttons =
        rowOf({clearSelectionButton, replaceSelectionButton, addSelectionButton, subtractSelectionButton,
               nullptr, prevSel2DButton, nextSel2DButton, nullptr, growButton, shrinkButton});
    buttons->addStretch();
    column->addLayout(buttons);
    QHBoxLayout* choices = rowOf({allSlicesRadioButton, currentSliceRadioButton, wShow3DSelectionCheckBox});
    choices->insertStretch(2);
    column->addLayout(choices);
    return wGiSelectionBox;
}

QWidget* Ui_GiToolboxBase::makeToolsBox()
{
    make(wGiToolsBox, "wGiToolsBox", wGiFrame);
    wGiToolsBox->setTitle(tr("Display and Masking"));
    QWidget* box = wGiToolsBox;
    makeButton(wShowCrossHairButton, "wShowCrossHairButton", "2D Crosshair", box);
    wShowCrossHairButton->setCheckable(true);
    makeButton(wShow3DSlicesButton, "wShow3DSlicesButton", "3D MPR", box);
    wShow3DSlicesButton->setText(tr("MPR"));
    makeButton(wShow3DVolrenButton, "wShow3DVolrenButton", "3D Volume Rendering", box);
    wShow3DVolrenButton->setText(tr("VRT"));
    wShow3DVolrenButton->setCheckable(true);
    makeButton(w3DColormapButton, "w3DColormapButton", "Select 3D Colormap", box);
    make(wMaskingLabel, "wMaskingLabel", box);
    wMaskingLabel->setText(tr("Masking:"));
    make(wEnableMaskingCheckBox, "wEnableMaskingCheckBox", box);
    wEnableMaskingCheckBox->setText(tr("Enable"));
    make(wShowMaskingCheckBox, "wShowMaskingCheckBox", box);
    wShowMaskingCheckBox->setText(tr("Show"));
    wShowMaskingCheckBox->setEnabled(false);
    make(wMaskingWindowSlider, "wMaskingWindowSlider", box);
    wMaskingWindowSlider->setFieldsBeside(true);
    wMaskingWindowSlider->setToolTip("<html><head/><body><p>" + tr("Set masking window") +
                                     "</p></body></html>");

    QVBoxLayout* column = columnOf(wGiToolsBox);
    QHBoxLayout* row =
        rowOf({wShowCrossHairButton, wShow3DSlicesButton, wShow3DVolrenButton, w3DColormapButton, nullptr,
               wMaskingLabel, wEnableMaskingCheckBox, wShowMaskingCheckBox});
    row->insertStretch(row->indexOf(wMaskingLabel));
    column->addLayout(row);
    column->addWidget(wMaskingWindowSlider);
    return wGiToolsBox;
}

void Ui_GiToolboxBase::makeInfo()
{
    make(wToolContainer, "wToolContainer", wGiFrame2);
    make(wInfoContainer, "wInfoContainer", wGiFrame2);
    make(infoPos, "infoPos", wInfoContainer);
    make(infoIdx, "infoIdx", wInfoContainer);
    make(infoMat, "infoMat", wInfoContainer);
    make(infoGrey, "infoGrey", wInfoContainer);
    auto* grid = tight<QGridLayout>(wInfoContainer);
    grid->setSpacing(0);
    int i = 0;
    for (QLabel* line : {infoPos, infoIdx, infoMat, infoGrey}) {
        // The texts change with every move of the pointer; the panel must not move along.
        line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        line->setTextFormat(Qt::RichText);
        grid->addWidget(line, i / 2, i % 2);
        ++i;
    }
    grid->setColumnStretch(0, 3); // positions and names are longer
    grid->setColumnStretch(1, 2);
}
