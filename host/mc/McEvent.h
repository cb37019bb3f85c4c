#pragma once

/// An event of a viewer's pointer or keyboard, free of any window system. The flags are 0 or 1.
///
/// In a motion event left, middle and right tell the state of the buttons. In a button event only the flag
/// of the event's own button can be 1, and only on a press.
/// A viewer fills one record per kind and uses it again: receivers must not keep it.
class McEvent
{
public:
    int shift = 0, ctrl = 0, alt = 0;
    int left = 0, middle = 0, right = 0;
    /// Pointer, in pixels of the viewer.
    int x = 0, y = 0;

    virtual ~McEvent();

    /// The event as one of the kinds below, or null if it is of another kind.
    template <class T>
    T* as()
    {
        return dynamic_cast<T*>(this);
    }
    template <class T>
    const T* as() const
    {
        return dynamic_cast<const T*>(this);
    }
};

class McButtonEvent : public McEvent
{
public:
    /// 1 for a press or a double click, 0 for a release.
    int pressed = 0;
    /// 1 left, 2 middle, 3 right.
    int button = 0;

    ~McButtonEvent() override;
};

class McMouseButtonEvent : public McButtonEvent
{
public:
    ~McMouseButtonEvent() override;

    /// True for a press of this button; false for null.
    static bool isButtonPressEvent(const McEvent* event, int button);
    /// True for a release of this button, or of any if the button is 0; false for null.
    static bool isButtonReleaseEvent(const McEvent* event, int button);
};

class McMotionEvent : public McEvent
{
public:
    ~McMotionEvent() override;
};

class McLeaveWindowEvent : public McEvent
{
public:
    ~McLeaveWindowEvent() override;
};

class McKeyboardEvent : public McEvent
{
public:
    // Keys without a character; the numbers are those of the X11 key symbols. All other keys are named by
    // the first byte of their text, capitals lowered.
    static constexpr int kBackspace = 65288;
    static constexpr int kTab = 65289;
    static constexpr int kReturn = 65293;
    static constexpr int kEscape = 65307;
    static constexpr int kHome = 65360;
    static constexpr int kLeft = 65361;
    static constexpr int kUp = 65362;
    static constexpr int kRight = 65363;
    static constexpr int kDown = 65364;
    static constexpr int kPageUp = 65365;
    static constexpr int kPageDown = 65366;
    static constexpr int kEnd = 65367;
    static constexpr int kKeypadDelete = 65439;
    static constexpr int kShift = 65505;
    static constexpr int kControlLeft = 65507;
    static constexpr int kControlRight = 65508;
    static constexpr int kAltLeft = 65513;
    static constexpr int kAltRight = 65514;
    static constexpr int kDelete = 65535;

    int count = 1;
    int key = 0;
    /// 0 press, 1 release.
    int released = 0;
    int autoRepeat = 0;

    ~McKeyboardEvent() override;
};
