#pragma once

#include <QTableWidget>

#include <memory>
#include <vector>

class GiMaterialView3D;
class GiQ;
class GiQTissueListItem;
class HxParamBundle;
class McColor;
class QMenu;

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

    /// What selectVoxels does to the selection.
    enum SelectMode
    {
        kAddVoxels = 0,
        kRemoveVoxels = 1,
        kReplaceVoxels = 2
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
    /// one. This is also how two materials merge. Not recorded for undo. Indices that no material has or no
    /// label can be, equal ones, and the last remaining material are left alone.
    void removeTissue(int i, int replacement);
    /// Moves the material of the row last pressed to another row; labels stay, and so does material 0.
    void moveTissue(int to);

    /// Brings all viewers to the slice that shows most of the material.
    void locateTissue(int row);
    /// Asks for a colour.
    void editColor(int row);
    /// Far from the colours of all materials, from black and from white.
    McColor bestNewColor() const;

    /// Brings the rows up to date after somebody else has changed the bundles: as many as there are
    /// materials, with their names and colors. The current row stays if it can.
    void updateRows();
    /// Names, and rows of materials that are not to be shown, anew from the bundles.
    void updateMaterialVisibility();
    /// Locks and 2D boxes anew, after somebody else has written the controller's tables.
    void updateStates();
    /// The view behind the boxes of the 3D columns, which outlives its use here; without one they are
    /// disabled.
    void setView3D(GiMaterialView3D* view);
    GiMaterialView3D* getView3D() const { return view3D; }
    /// What the 3D view shows, one flag per material.
    void set3DVisibility(const bool* visible);
    void set3DUseLabelColor(const bool* used);

    void popupContextMenu(GiQTissueListItem* item, const QPoint& globalPosition, int row);
    /// Marks a material, in the volume or in the current slice as the toolbox says.
    void selectVoxels(int row, SelectMode mode);
    /// Locks material `row` against edits, in the controller and in the list.
    void lock(int row, bool on);
    bool isLocked(int row) const;
    /// All but material 0.
    void lockAll(bool on);
    /// Makes a bundle that was added to the list's bundle current; it and all others without one get a row.
    void appendTissue(HxParamBundle* material);

public slots:
    void selectionChanged();
    void nameChanged(int row, int column);
    void itemClicked(int row, int column);
    /// Ends an edit of a name in whatever row.
    void notifyStop();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void commitData(QWidget* nameEditor) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

private:
    void setUpTable();
    void setUpHeader();
    int heightOfRows(int rows) const;
    int rowsNeeded() const;
    void fitRows();
    void addRow();
    void dropRow(int row);
    void applyVoid(int row);
    void refresh3DColor(int row);
    void show3DStates();
    void updateColors();
    bool is3D() const;
    QByteArray freshName() const;
    void fillNewMaterial(HxParamBundle& material, const char* name) const;
    void storeColor(int row, const McColor& color);
    void storeLongName(int row, const QByteArray& text);
    bool rename(int row, const QByteArray& name);
    void mergeInto(int row, HxParamBundle* other);
    void moveTables(int from, int remaining);
    void fillContextMenu(QMenu& menu, int row);
    void fillStyleMenu(QMenu& menu, int row) const;
    void runMenuEntry(int entry, int row);
    void handlePress(QMouseEvent* event);
    void handleKey(QKeyEvent* event);

    HxParamBundle* bundle = nullptr; // the label data's "Materials"
    GiQ* gi = nullptr;
    std::vector<std::unique_ptr<GiQTissueListItem>> items; // by row
    bool committing = false;                               // the name's editor hands over its text
    int pressRow = -1;                                     // under the last left press
    GiMaterialView3D* view3D = nullptr;
};
