// A window: a client area that is drawn by onPaint, keeps what was drawn, and may have scroll bars and child
// windows. An operation on a CWnd that has no window does nothing and gives 0.
#pragma once

#include "platform/window/drawingobjects.h"
#include "platform/window/geometry.h"
#include "platform/window/messages.h"

class RowSource;
class WindowHost;
struct IconResource;

// What is set on a scroll bar and read from it. The minimum is always 0.
struct SCROLLINFO {
    int nMax = 0;  // highest value of the range
    int nPage = 0; // values in view at a time
    int nPos = 0;  // first value in view

    // The highest position: the last page in view, or the maximum itself when the page is 0.
    int limit() const { return nMax - (nPage > 0 ? nPage - 1 : 0); }
};

// What windows of a class share. All show the arrow cursor and tell double clicks.
struct WindowClass {
    COLORREF background = 0;
    const IconResource* icon = nullptr;
    int menu = 0; // of a frame: the number of its menu resource; 0 for none
};

WindowClass AfxRegisterWndClass(const CBrush* background, const IconResource* icon = nullptr, int menu = 0);

class CWnd : public MessageTarget {
public:
    CWnd();
    ~CWnd() override; // destroys the window if it is still there

    // Makes a child window, visible with its parent, at a rectangle of the parent's client area. onCreate and
    // onSize have been called when it returns. False when the parent has no window or this one has one.
    bool Create(const WindowClass& windowClass, const RECT& rectangle, CWnd& parent);
    // First the windows that belong to this one go, then this one, then PostNcDestroy is called, which for a
    // frame deletes the object: whoever may end his own window touches no member afterwards.
    void DestroyWindow();

    void ShowWindow();      // in its normal size, if it is not on show
    void SetActiveWindow(); // brings a frame to the front
    // Places a child window in its parent's client area, on top of its sisters and visible; a size below 0
    // counts as 0.
    void SetWindowPos(int x, int y, int width, int height);
    void SetWindowTextA(const char* text);
    RECT GetClientRect() const;
    POINT ClientToScreen(POINT point) const;

    void InvalidateRect(bool erase); // the whole client area; a new size does so by itself, with erase
    void UpdateWindow();             // paints at once what is invalid, when the window is on show
    // Moves the pixels of the client area and what is invalid of it; the strip that comes into view becomes
    // invalid, with erase. Child windows stay.
    void ScrollWindow(int dx, int dy);

    // A bar that can't be moved stays on show, disabled.
    void ShowScrollBar(ScrollBarKind bar);
    bool GetScrollInfo(ScrollBarKind bar, SCROLLINFO& info) const; // false when the bar is not on show
    // Limits the page to the size of the range, and the position to limit(). A maximum below 0 counts as 0.
    void SetScrollInfo(ScrollBarKind bar, const SCROLLINFO& info);
    int GetScrollPos(ScrollBarKind bar) const;
    void SetScrollPos(ScrollBarKind bar, int position);

    void SetTimer(std::uint32_t id, unsigned milliseconds); // repeats; set again, it starts anew
    void KillTimer(std::uint32_t id);
    // While a button is held, all of the mouse goes to this window. It ends with onCaptureChanged: by
    // ReleaseCapture, by the release of the button (after its own operation), and when the window is
    // deactivated or hidden.
    void SetCapture();
    void ReleaseCapture();

    // Takes part in the keyboard: gets the focus by a click, and by Tab after the window that called this
    // before it in the same frame. The first has the focus from the start.
    void SetTabStop();
    void SetRows(const RowSource& rows); // which are read to the person and shown whole where they are cut
    void RowSelected();                  // tells that another of them is selected now

    void onPaint() override;
    void onClose() override;

    WindowHost* host() const { return host_; } // for the layer itself

protected:
    virtual void PostNcDestroy() {}

private:
    friend class CFrameWnd;
    friend class WindowHost;
    void started(); // the first operations of a new window
    bool giveUpWindow();
    WindowHost* host_ = nullptr;
};
