#pragma once

#include "mc/McHandable.h"

#include <QCursor>

#include <optional>
#include <string>

class HxViewer;
class HxViewerBase;
class SoEvent;

/// Something that a viewer panel offers for its viewers.
class HxViewerTool : public McHandable
{
public:
    explicit HxViewerTool(const char* name);

    virtual bool supportsViewer(HxViewerBase* viewer);

    const char* getName() const { return toolName.c_str(); }

    /// File of the icon in a resource folder, empty without one.
    void setIconFile(const char* file) { iconName = file; }
    const char* iconFile() const { return iconName.c_str(); }

private:
    std::string toolName;
    std::string iconName;
};

/// A tool that stays active and takes a viewer's events.
class HxViewerModalTool : public HxViewerTool
{
public:
    explicit HxViewerModalTool(const char* name);

    /// The person has chosen the tool while this viewer was active.
    virtual void onActivate(HxViewerBase* viewer);

    /// Returns 0 when the event was not used.
    virtual int processEvent(const SoEvent* event, HxViewer* viewer);

    void setCursor(const QCursor& newCursor) { shape = newCursor; }

    /// Empty: the viewer's own.
    const std::optional<QCursor>& cursor() const { return shape; }

    /// True (the default): a viewer returns to this tool after navigation.
    void setRememberAsLastToolEnabled(bool enabled) { rememberAsLast = enabled; }
    bool isRememberAsLastToolEnabled() const { return rememberAsLast; }

private:
    std::optional<QCursor> shape;
    bool rememberAsLast = true;
};

/// A tool that does its work at once.
class HxViewerTriggerTool : public HxViewerTool
{
public:
    explicit HxViewerTriggerTool(const char* name);

    virtual void onTrigger(HxViewerBase* viewer) = 0;
};
