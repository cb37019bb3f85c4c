#pragma once

#include "core/Gi.h"
#include "hx/HxViewerPanelBase.h"

#include <QObject>

class HxGiEditor;
class HxObject;
struct HxPreferences;

/// The editor's controller: what the core announces reaches the outside through it, and what it
/// needs of the outside it asks here. It makes the three slice viewers and binds data objects.
class GiQ : public QObject, public Gi
{
    Q_OBJECT

public:
    explicit GiQ(HxGiEditor* editor);
    ~GiQ() override;

    void setDataWindow(float min, float max, bool redrawAfter) override;
    void setToolDataWindow(float min, float max, bool redrawAfter) override;
    void setToolDataWindowMarker(float) override {}
    void clearToolDataWindowMarker() override {}
    void setToolDataWindowSliderTracking(bool on) override { sliderTracking = on; }
    bool toolDataWindowSliderTracking() override { return sliderTracking; }
    void setMaskingEnabled(bool on) override;
    bool maskingEnabled() const override { return masking; }
    /// The active tool's cursor, or an arrow, for every viewer.
    void updateCursor() override;
    void touchData(int selectionTouched, int labelsTouched, int orientation, int slice, int, int) override;
    int getPickedVoxel(HxViewer* viewer, int x, int y, McVec3i& voxel, float& value) override;

    /// Sets both windows from the image: the tool window to the upper three quarters of its range.
    /// Gives back the window for the grey display: the one stored with the data, limited to the range.
    void initRangeSliders(HxData* image, float& min, float& max);
    /// Hands image memory to the entry of its element type.
    void setVolumeOfType(int hostType, const unsigned long* dims, void* data, HxLabelLattice3* lattice);
    /// Swaps the image under the same labels; selection and undo history stay.
    void setImageDataSet(HxData* image);
    /// Listens to changes of label and image data.
    void connectData();
    /// Forgets all data and undo information.
    void clear();
    /// Colours or names of materials changed: the colour table is read anew.
    void materialsChanged();

public slots:
    /// A data object was changed from outside.
    void slotDataTouched(unsigned int mask);
    /// A data object leaves the pool.
    void slotObjectRemoved(HxObject* object);
    /// Takes over how selections are drawn, if that was changed.
    void preferencesChanged(const HxPreferences& old, const HxPreferences& now);

signals:
    void selectionChanged();
    void labelsChanged(HxData* labelData);
    void colorChanged(HxData* labelData, int material);

private:
    void createViewers();
    void disconnectData();

    HxGiEditor* editor;
    HxViewerPanelBase panel;
    bool sliderTracking = true;
    bool masking = false;
};
