#pragma once

#include "display/GiShape.h"

#include <QCursor>
#include <QPointer>
#include <QWidget>

#include <optional>

class Gi;
class GiSelection2D;
class HxViewerModalTool;

/// An interactive tool: turns events in a slice viewer into changes of the selection. The active
/// tool is a shape in every viewer's frame buffer; it works on Gi alone, so it runs without a panel: a
/// setting whose widget is not there has its default.
class GiTool : public GiShape
{
public:
    explicit GiTool(Gi* owner) : gi(owner) {}
    ~GiTool() override;

    /// The panel with the tool's settings, made on the first call; null for a tool without settings, which
    /// gets no page and no button. It belongs to `parent`, or to the tool if that is null.
    virtual QWidget* getWidget(QWidget* parent);
    /// File name of the toolbar icon.
    virtual const char* getIconName() const = 0;
    /// A new data set was attached.
    virtual void init() {}
    virtual void select() {}
    /// Called once per viewer when the tool stops being the active one; null for a viewer that draws
    /// nothing.
    virtual void deselect(GiFrameBuffer*) {}
    /// An operation that the tool did not start has changed something; the codes are GiNotice.
    virtual void selectionNotify(int /*what*/) {}
    /// The cursor over the viewers while the tool is active. Lives as long as the tool.
    virtual const QCursor* getToolCursor() const;
    /// The tool that stands for this one in a viewer's own tool list; null if none does.
    virtual HxViewerModalTool* wrapper() { return nullptr; }
    /// The user moved the tool data window.
    virtual void dataWindowChanged(float /*min*/, float /*max*/) {}
    /// Fills the panel, which is empty and has no layout yet.
    virtual void createWidget(QWidget* /*parent*/) {}
    /// The panel stands in a foreign window, which has no room for all of it. Called once, behind
    /// getWidget().
    virtual void adaptToForeignWindow() {}
    /// A tool whose marks belong to other materials takes them out of a slice transfer here.
    virtual bool guardsSeeds() const { return false; }
    virtual void lockInactiveSeeds(GiSelection2D&) {}
    /// Pan tool or cross hair took an event of this viewer: a mark that follows the pointer has to go.
    virtual void eventTakenElsewhere(GiFrameBuffer*) {}

    const char* name = "";

protected:
    /// Whether a gesture that is under way is given up: a press of Escape.
    static bool isGivenUp(const McEvent& event);
    /// Makes the tool's own cursor; an arrow here. Asked for once, and only when there is a display to
    /// show it: tools also run in scripts without one.
    virtual QCursor makeCursor() const;

    Gi* gi;
    QPointer<QWidget> widget; // the panel; null again when its parent has deleted it

private:
    mutable std::optional<QCursor> cursor;
};
