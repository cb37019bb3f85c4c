#include "app/hxFitWindow.h"

#include <algorithm>

namespace {

qint64 commonArea(const QRect& a, const QRect& b)
{
    const QRect common = a.intersected(b);
    return common.isEmpty() ? 0 : static_cast<qint64>(common.width()) * common.height();
}

} // namespace

QRect hxFitWindow(const QRect& wanted, const QMargins& frame, const QList<QRect>& screens)
{
    if (screens.isEmpty()) return wanted;
    // The first of equals, so that a window whose screen is gone comes to the main one.
    const QRect screen =
        *std::max_element(screens.begin(), screens.end(), [&wanted](const QRect& a, const QRect& b) {
            return commonArea(a, wanted) < commonArea(b, wanted);
        });
    const QRect room = screen.marginsRemoved(frame);
    const QSize size = wanted.size().boundedTo(room.size());
    return {QPoint(std::clamp(wanted.x(), room.x(), room.x() + room.width() - size.width()),
                   std::clamp(wanted.y(), room.y(), room.y() + room.height() - size.height())),
            size};
}
