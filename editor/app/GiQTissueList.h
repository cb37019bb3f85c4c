#pragma once

#include <QTableWidget>

#include <memory>
#include <vector>

class GiQ;
class GiQTissueListItem;
class HxParamBundle;
class McColor;

/// The table of materials: one row per material, and the row number is the label in the volume.
///
/// The only place that adds, renames, recolours, locks and deletes materials; deleting rewrites the label
/// volume. The materials are sub-bundles of the label data's bundle "Materials"; the list holds widgets only.
/// Changes made here take effect on the controller's tables, colours and viewers at once.
class GiQTissueList : public QTableWidget
{
    Q_OBJECT

public:
    enum Column
    {
        kColor,
        kName,
        kShow2D,
        kShow3D,
        kColor3D,
        kLock,
        kSelect,
        kNumColumns
    };

    /// A label is a byte.
    static constexpr int kMaxMaterials = 256;

    explicit GiQTissueList(QWidget* parent = nullptr);
    ~GiQTissueList() override;

    /// The list acts through the controller; without one it only shows.
    void setGiQ(GiQ* controller) { gi = controller; }
    GiQ* getGi() const { return gi; }

    /// Shows another bundle, which stays the caller's, or none. A row below 0 makes the last one current.
    void setTissues(HxParamBundle* bundle, int row);
    /// Makes a row current, and so its material that of the tools.
    void setTissue(int row);
    /// The material of a row; null outside.
    HxParamBundle* bundleOf(int row) const;
    GiQTissueListItem* itemOf(int row) const;
    /// "LongName" if the material has one, else its name.
    QString nameOf(int row) const;

    /// Adds a material at the end and makes it current. Null: a name is made. With 256 materials it only
    /// says so.
    void addTissue(const char* name = nullptr);
    void addMaterial(const char* name) { addTissue(name); }

    /// Asks, then deletes the current material in favour of material 0, which itself stays.
    void removeTissue();
    /// Deletes material i without a question; its voxels become `replacement`, and higher labels go down by
    /// one. This is also how two materials merge. Not recorded for undo. Indices that no material has, equal
    /// ones, and the last remaining material are left alone.
    void removeTissue(int i, int replacement);
    /// Moves the material of the row last pressed to another row; labels stay, and so does material 0.
    void moveTissue(int to);

    /// Brings all viewers to the slice that shows most of the material.
    void locateTissue(int row);
    /// Asks for a colour.
    void editColor(int row);
    /// Far from the colours of all materials, from black and from white.
    McColor bestNewColor() const;

    /// Names, and rows of materials that are not to be shown, anew from the bundles.
    void updateMaterialVisibility();
    /// What the 3D view shows, one flag per material.
    void set3DVisibility(const bool* visible);
    void set3DUseLabelColor(const bool* used);

    void popupContextMenu(GiQTissueListItem* item, const QPoint& globalPosition, int row);
    /// Marks a material: mode 0 adds to the selection, 1 takes out of it, 2 replaces it.
    void selectVoxels(int row, int mode);
    /// Colours, names or styles were changed: tables and viewers follow.
    void showChanges();

public slots:
    void selectionChanged();
    void nameChanged(int row, int column);
    void itemClicked(int row, int column);
    /// Ends an edit of a name in whatever row.
    void notifyStop();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    QSize sizeHint() const override;
};
