#include "tools/GiTool.h"

#include "mc/McEvent.h"

GiTool::~GiTool()
{
    if (widget && !widget->parent()) delete widget;
}

QWidget* GiTool::getWidget(QWidget* parent)
{
    if (!widget) {
        widget = new QWidget(parent);
        createWidget(widget);
    }
    return widget;
}

const QCursor* GiTool::getToolCursor() const
{
    if (!cursor) cursor = makeCursor();
    return &*cursor;
}

bool GiTool::isGivenUp(const McEvent& event)
{
    const auto* key = event.as<McKeyboardEvent>();
    return key && !key->released && key->key == McKeyboardEvent::kEscape;
}

QCursor GiTool::makeCursor() const
{
    return QCursor(Qt::ArrowCursor);
}
