#pragma once

#include "mc/McHandable.h"

class Gi;
class QWidget;

/// A named operation on the selection or the labels of one editor.
class GiFilter : public McHandable
{
public:
    explicit GiFilter(Gi* owner) : gi(owner) {}

    /// The dialog with the filter's settings, made on the first call unless `create` is 0; null if it is
    /// not there, as for a filter without one.
    virtual QWidget* getWidget(QWidget* /*parent*/, int /*create*/) { return nullptr; }
    /// Deletes the dialog, if there is one; the next getWidget() makes it anew.
    virtual void destroyWidget() {}

    const char* name = "";

protected:
    Gi* gi; // never null
};
