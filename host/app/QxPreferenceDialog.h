#pragma once

#include <QDialog>

struct HxPreferences;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QSlider;
class QSpinBox;
class QTabWidget;

/// The preferences, a page per subject. OK stores and tells all listeners; Cancel stores nothing.
///
/// Not modal, so that the effect of a value shows in the windows: the look of the selection is announced
/// with each change while the dialog is open, and rejected() means that the stored one holds again.
class QxPreferenceDialog : public QDialog
{
    Q_OBJECT

public:
    static QxPreferenceDialog* getThePreferenceDialog();

    /// Opens the dialog, with the stored values unless it is open already, at the page of this title; there
    /// is "Segmentation". An unknown one leaves the page as it is.
    void showPage(const char* page);

    void accept() override;

signals:
    /// style 0 to 4, alpha 0 to 255; not stored yet
    void selectionDrawStyleChanged(int style, int alpha);

protected:
    void showEvent(QShowEvent* event) override;

private:
    explicit QxPreferenceDialog(QWidget* parent);

    QWidget* makeSegmentationPage();
    void load(const HxPreferences& preferences);
    void preview();

    QTabWidget* pages;
    QComboBox* drawStyle = nullptr;
    QSlider* alpha = nullptr;
    QSpinBox* alphaValue = nullptr;
    QComboBox* style3D = nullptr;
    QCheckBox* anatomicalNames = nullptr;
    QSpinBox* threads = nullptr;
};
