#pragma once

class GiQTissueList;
class QCheckBox;
class QComboBox;
class QFrame;
class QGroupBox;
class QLabel;
class QLayout;
class QRadioButton;
class QToolButton;
class QWidget;
class QxColormapFullRangeSlider;

/// The toolbox's form: its widgets under the object names by which scripts and tests find them, laid out
/// and with their texts. Icons, and what the widgets do, are the toolbox's affair.
struct Ui_GiToolboxBase
{
    QFrame* wGiFrame;

    QWidget* wGiInput;
    QLabel* wImageDataText;
    QComboBox* wImageData;
    QLabel* wLabelDataText;
    QComboBox* wLabelData;
    QToolButton* wNewLabels;

    QLabel* matLabel;
    QToolButton* addMatButton;
    QToolButton* delMatButton;
    QFrame* tissueFrame;
    GiQTissueList* tissueList;

    QGroupBox* wGiZoomBox;
    QToolButton* zoomInButton;
    QToolButton* zoomOutButton;
    QLabel* zoomLabel;
    QxColormapFullRangeSlider* qxRangeSlider;
    QToolButton* w2DColormapButton;
    QRadioButton* allZoomRadioButton;
    QRadioButton* currentZoomRadioButton;

    QGroupBox* wGiSelectionBox;
    QToolButton* clearSelectionButton;
    QToolButton* replaceSelectionButton;
    QToolButton* addSelectionButton;
    QToolButton* subtractSelectionButton;
    QToolButton* prevSel2DButton;
    QToolButton* nextSel2DButton;
    QToolButton* growButton;
    QToolButton* shrinkButton;
    QRadioButton* allSlicesRadioButton;
    QRadioButton* currentSliceRadioButton;
    QCheckBox* wShow3DSelectionCheckBox;

    QGroupBox* wGiToolsBox;
    QToolButton* wShowCrossHairButton;
    QToolButton* wShow3DSlicesButton;
    QToolButton* wShow3DVolrenButton;
    QToolButton* w3DColormapButton;
    QLabel* wMaskingLabel;
    QCheckBox* wEnableMaskingCheckBox;
    QCheckBox* wShowMaskingCheckBox;
    QxColormapFullRangeSlider* wMaskingWindowSlider;

    QFrame* wGiFrame2;
    QFrame* wToolContainer;
    QWidget* wInfoContainer;
    QLabel* infoPos;
    QLabel* infoIdx;
    QLabel* infoMat;
    QLabel* infoGrey;

    void setupUi(QWidget* toolbox);

private:
    QWidget* makeInput();
    QLayout* makeMaterials();
    QWidget* makeZoomBox();
    QWidget* makeSelectionBox();
    QWidget* makeToolsBox();
    void makeInfo();
};
