#pragma once

#include <QList>
#include <QMargins>
#include <QRect>

/// The place for a window, without its frame, such that window and frame lie within one screen: the wanted
/// rectangle, moved, and cut if it is too large.
///
/// frame    widths of the frame around the window
/// screens  the areas of the screens that are free for windows, the main one first; of several that one is
///          taken which shows most of the wanted rectangle. Without any the rectangle stays as it is
QRect hxFitWindow(const QRect& wanted, const QMargins& frame, const QList<QRect>& screens);
