#include "tools/GiTool.h"

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

QCursor GiTool::makeCursor() const
{
    return QCursor(Qt::ArrowCursor);
}
