#pragma once

#include <QColor>
#include <QIcon>
#include <QObject>

#include <optional>

class GiQTissueList;
class QCheckBox;
class QFrame;
class QTableWidgetItem;
class QxToolButton;

/// The widgets of one row of the material list. It keeps no row number: rows move when one above is deleted.
class GiQTissueListItem : public QObject
{
    Q_OBJECT

public:
    /// Fills row `row` of the list, which must exist and be empty.
    GiQTissueListItem(GiQTissueList* owner, int row);

    int row() const;
    QColor getColor() const { return color; }
    QString getName() const;
    bool isColor3DButtonChecked() const;
    bool isShow2DButtonChecked() const;

    /// Lock and 2D box as the controller's tables say of the item's row. Cheap if nothing has changed.
    void showStates(int row);
    /// The color of the material of the item's row. Cheap if it has not changed.
    void showColor(int row);
    /// Shows the name; the list is not told of an edit.
    void setName(const QString& name);
    void setColor(const QColor& newColor);
    void setLock(bool on);
    /// Show a state of the 3D view; it is not told.
    void setShow3D(bool on);
    void setColor3D(bool on);
    /// Whether there is a 3D view to act on.
    void enable3D(bool on);

public slots:
    void slotShow3D(bool on);
    void slotShowColor(bool on);
    /// 0 hides the material in the slice viewers and remembers its present style.
    void setDrawStyle2D(unsigned int style);
    /// Hides the material, or brings its last visible style back.
    void setShow2D(bool on);
    /// Makes the row current and marks its voxels: added to the selection with Shift, taken out of it with
    /// Control, alone without.
    void selectMaterial();

private:
    static const QIcon& lockIcon(bool locked);
    QCheckBox* makeBox(int row, int column, const char* objectName, const QString& toolTip);
    void makeCells(int row);
    void fillCells(int row);
    void connectCells();

    GiQTissueList* list;
    QFrame* colorFrame;
    QTableWidgetItem* nameItem;
    QTableWidgetItem* lockItem;
    QxToolButton* selectButton;
    QCheckBox* box2D;
    QCheckBox* box3D;
    QCheckBox* boxColor;
    QColor color;
    std::optional<bool> shownLock;
};
