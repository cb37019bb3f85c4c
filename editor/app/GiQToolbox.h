#pragma once

#include "app/Ui_GiToolboxBase.h"
#include "mc/McVec.h"

#include <QList>
#include <QWidget>

class GiQ;
class HxParamBundle;
class QAction;
class QMenu;
class QStackedLayout;
class QToolBar;

/// The panel beside the viewers: data sets, materials, zoom and data window, transfer of the selection,
/// masking, and a button and a panel per tool. Its slots translate into operations of the controller;
/// buttons that would act on a locked material or without data are silent.
class GiQToolbox : public QWidget, public Ui_GiToolboxBase
{
    Q_OBJECT

public:
    GiQToolbox(GiQ* owner, QWidget* parent);
    ~GiQToolbox() override;

    GiQ* getGi() const { return gi; }
    /// Operations act on the whole volume, not on the current slice.
    bool selectionIs3D() const;
    bool zoomAll() const;
    void set3D(bool on);
    void allZoom(bool on);

    /// Fills the material list; null empties it and disables everything but the choice of data sets.
    void setTissues(HxParamBundle* bundle);
    void activateGUI(bool on);

    /// What is under the pointer, for the four lines at the foot; without arguments they are blank.
    void updateInfo(const McVec3i& index, const McVec3f& position, const char* material);
    void updateInfo(const McVec3i& index, const McVec3f& position, float value, const char* material);
    void updateInfo();

    /// Added to voxel indices and slice numbers that are shown, never to those that scripts give.
    static int sIndexNumBase;

public slots:
    /// Makes tool n the active one and shows its panel, or an empty page.
    void setTool(int n);
    void setActiveTool(QAction* action);
    void toggleZoomChanged(bool);
    void toggle3dChanged(bool);
    void zoomIn();
    void zoomOut();
    void clearSelection();
    void addSelection();
    void replaceBySelection();
    void subtractSelection();
    /// The volume's selection or the current slice's, by the choice of "All slices" and "Current slice".
    void growSelection();
    void shrinkSelection();
    void crossHair();
    void redraw();
    void setColormap(QAction* action);
    void configure2DColormapMenu();
    void configure3DColormapMenu();
    void handleSelectionChange();
    /// Not 0: the four transfer buttons turn red, as they would act on voxels that nobody sees.
    void handleHiddenSelection(int hidden);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void makeToolArea();
    void loadIcons();
    void connectWidgets();
    void connectButtons();
    void addTools();
    bool mayTransfer() const;
    void handleAlertMode3D(bool alert);

    GiQ* gi;
    QToolBar* toolBar = nullptr;
    QStackedLayout* toolPages = nullptr;
    QWidget* emptyPage = nullptr;
    QMenu* colormap2DMenu = nullptr;
    QMenu* colormap3DMenu = nullptr;
    bool shiftOnAdd = false;
    bool alertShown = false;
};
