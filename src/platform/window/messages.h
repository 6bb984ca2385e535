// What can happen to a window, as operations that a window class overrides. The base of CWnd.
#pragma once

#include <cstdint>

#include "platform/system/cobject.h"
#include "platform/window/geometry.h"

// Bits of the flags of a mouse operation.
constexpr unsigned MK_SHIFT = 0x04;
constexpr unsigned MK_CONTROL = 0x08;

enum class MouseAction { leftPress, leftRelease, leftDouble, rightPress, rightRelease, move };

// Codes of keys; those of letters and digits are their ASCII codes.
enum VirtualKey : std::uint32_t {
    VK_RETURN = 13,
    VK_SHIFT = 16,
    VK_PRIOR = 33,
    VK_NEXT = 34,
    VK_END = 35,
    VK_HOME = 36,
    VK_LEFT = 37,
    VK_UP = 38,
    VK_RIGHT = 39,
    VK_DOWN = 40,
};

enum SizeType : int { SIZE_RESTORED = 0, SIZE_MAXIMIZED = 2 };

enum ScrollBarKind : unsigned { SB_HORZ = 0, SB_VERT = 1 };

enum ScrollCode : int {
    SB_LINEUP = 0,
    SB_LINEDOWN = 1,
    SB_PAGEUP = 2,
    SB_PAGEDOWN = 3,
    SB_THUMBPOSITION = 4, // the thumb was let go
    SB_THUMBTRACK = 5,    // the thumb is being dragged
    SB_TOP = 6,
    SB_BOTTOM = 7,
    SB_ENDSCROLL = 8,
};

class MessageTarget : public CObject {
public:
    virtual void onCreate() {}  // the window is there, not yet on show
    virtual void onDestroy() {} // the window is about to go
    // The client area has a new size; also when the window is made. The type is a SizeType.
    virtual void onSize(int /*type*/, int /*width*/, int /*height*/) {}
    virtual void onPaint() {}                       // CWnd's makes a CPaintDC, so that it is erased
    virtual void onClose() {}                       // the person wants to close it; CWnd's destroys it
    virtual void onCommand(std::uint32_t /*id*/) {} // chosen from a menu
    virtual void onTimer(std::uint32_t /*id*/) {}

    // The place is in client pixels, also outside of the client area while a button is held. Flags: MK_SHIFT,
    // MK_CONTROL. A double click is press, release, double click, release.
    virtual void onMouse(MouseAction /*action*/, unsigned /*flags*/, POINT /*place*/) {}
    virtual void onMouseLeave() {}     // the mouse has left the client area, with no button held
    virtual void onCaptureChanged() {} // the capture that SetCapture took is over, for whatever reason

    // Keys reach the window with the focus, and then its frame. Codes are those of the platform; a key that
    // is held repeats with flag 0x4000.
    virtual void onKeyDown(std::uint32_t /*key*/, std::uint32_t /*repeat*/, std::uint32_t /*flags*/) {}
    virtual void onChar(std::uint32_t /*unicode*/, std::uint32_t /*repeat*/, std::uint32_t /*flags*/) {}

    // From the window's own bars, and in lines, three a notch, from wheel and touchpad. The code is a
    // ScrollCode; the position is the thumb's.
    virtual void onScroll(ScrollBarKind /*bar*/, int /*code*/, int /*position*/) {}
};
