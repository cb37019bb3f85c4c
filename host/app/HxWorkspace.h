#pragma once

#include "mc/McHandle.h"

#include <QWidget>

class HxObject;
class HxObjectPanel;
class QListWidget;
class QListWidgetItem;
class QSplitter;
class QToolButton;

/// The host's own tool panel: the objects of the pool, and below them the values of the selected one.
///
/// Hidden objects are left out. Names of objects with changes that are not saved are bold.
class HxWorkspace : public QWidget
{
    Q_OBJECT

public:
    explicit HxWorkspace(QWidget* parent = nullptr);

    /// Null without.
    HxObject* selected() const;
    void select(HxObject* object);

    /// Lets the person type a new name in the list.
    void rename(HxObject* object);

    /// Brings the selected object, a module, up to date; does nothing without one.
    void fireSelected();

signals:
    void selectionChanged(HxObject* object);
    /// A value of the selected object has changed.
    void valueChanged();

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    QListWidgetItem* itemOf(const HxObject* object) const;
    void add(HxObject* object);
    void remove(HxObject* object);
    void showMark(HxObject* object);
    void followIcon(HxObject* object);
    void applyName(QListWidgetItem* item);
    void showMenu(const QPoint& place);
    void editOrShow(QListWidgetItem* item);
    void selectionHasChanged();

    QListWidget* list;
    QToolButton* edit;
    QToolButton* save;
    QToolButton* drop;
    HxObjectPanel* details;
};
