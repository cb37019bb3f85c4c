#pragma once

#include "tools/GiTool.h"

#include <QCheckBox>
#include <QObject>
#include <QPointer>

class GiViewer;

/// Selects all voxels of the volume, or of the current slice, whose value lies in the tool data window. The
/// range slider of the masking sets that window, so masking is on while the tool is active: it shows what
/// will be selected.
class GiThreshold : public QObject, public GiTool
{
    Q_OBJECT

public:
    static constexpr int kIndex = 4; // in Gi's list of tools

    explicit GiThreshold(Gi* owner);

    const char* getIconName() const override { return "SegThresholdIcon.png"; }
    void select() override;
    void deselect(GiFrameBuffer* frameBuffer) override;
    void createWidget(QWidget* parent) override;

public slots:
    /// Selects as the panel's two boxes say; without a panel the whole volume and all materials. One undo
    /// step, whatever is selected. Memory that cannot be had is reported, and nothing changes.
    void compute();

private:
    bool allSlices() const { return !allSlicesBox || allSlicesBox->isChecked(); }
    int chosenMaterial() const;
    void computeSlice(const GiViewer& viewer, int material);
    void computeVolume(int material);

    bool last3D = false; // the last result went over all slices
    bool maskingWasOn = false;
    QPointer<QCheckBox> allSlicesBox, currentMaterialBox;
};
