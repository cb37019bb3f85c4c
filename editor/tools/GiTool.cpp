#include "tools/GiTool.h"

const QCursor* GiTool::getToolCursor() const
{
    if (!cursor) cursor = makeCursor();
    return &*cursor;
}

QCursor GiTool::makeCursor() const
{
    return QCursor(Qt::ArrowCursor);
}
