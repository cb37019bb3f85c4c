#pragma once

#include "mc/McHandable.h"

#include <QPointer>
#include <QWidget>

class Gi;
class QPushButton;

/// A named operation on the selection or the labels of one editor, as a rule with a dialog of its own.
///
/// A filter lives as long as its editor, and so does its dialog with all that was typed into it: "Close" only
/// hides it. The dialog is a QDialog without modality, made when it is first asked for. Numbers are typed as
/// text and read when the action runs, so a field never complains while it is being filled in.
///
/// One that has slots derives from QObject first and from GiFilter second. Main thread only.
class GiFilter : public McHandable
{
public:
    explicit GiFilter(Gi* owner) : gi(owner) {}
    ~GiFilter() override;
    GiFilter(const GiFilter&) = delete;
    GiFilter& operator=(const GiFilter&) = delete;

    /// The dialog, made as a child of `parent` if it is not there yet and `create` says so. Null for a filter
    /// without one.
    QWidget* getWidget(QWidget* parent, bool create);
    /// Deletes the dialog, if there is one; the next getWidget() makes it anew.
    virtual void destroyWidget();
    /// The button that ends a running action; null where there is none.
    virtual QPushButton* getStopButton() { return nullptr; }

protected:
    /// Builds the dialog as a child of `parent`; null for a filter without one.
    virtual QWidget* createWidget(QWidget* parent);

public:
    Gi* gi;                   // never null
    const char* name = "";    // shown in the menu; a literal of the deriving class
    QPointer<QWidget> widget; // owned, but its parent may delete it first
};
