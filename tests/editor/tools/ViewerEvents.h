#pragma once

#include "mc/McEvent.h"

// The only makers of events in these tests.

inline McMouseButtonEvent buttonEvent(int button, bool pressed, int x, int y)
{
    McMouseButtonEvent event;
    event.button = button;
    event.pressed = pressed;
    event.left = pressed && button == 1;
    event.middle = pressed && button == 2;
    event.right = pressed && button == 3;
    event.x = x;
    event.y = y;
    return event;
}

/// held  0 for no button
inline McMotionEvent motionEvent(int held, int x, int y)
{
    McMotionEvent event;
    event.left = held == 1;
    event.middle = held == 2;
    event.right = held == 3;
    event.x = x;
    event.y = y;
    return event;
}
