#include "mc/McEvent.h"

McEvent::~McEvent() = default;
McButtonEvent::~McButtonEvent() = default;
McMouseButtonEvent::~McMouseButtonEvent() = default;
McMotionEvent::~McMotionEvent() = default;
McLeaveWindowEvent::~McLeaveWindowEvent() = default;
McKeyboardEvent::~McKeyboardEvent() = default;

bool McMouseButtonEvent::isButtonPressEvent(const McEvent* event, int button)
{
    const auto* mouse = dynamic_cast<const McMouseButtonEvent*>(event);
    return mouse && mouse->pressed && mouse->button == button;
}

bool McMouseButtonEvent::isButtonReleaseEvent(const McEvent* event, int button)
{
    const auto* mouse = dynamic_cast<const McMouseButtonEvent*>(event);
    return mouse && !mouse->pressed && (button == 0 || mouse->button == button);
}
