// The widgets behind a CWnd: the outer one with menu and scroll bars, and in it the client area, whose
// surface keeps what was painted. Qt's events are turned into the operations of the CWnd here. A host may
// live on for a while when its window is gone; it then has no window and does nothing.
#pragma once

#include <QBasicTimer>
#include <QDialog>
#include <QPointer>
#include <QRegion>
#include <QScrollBar>
#include <QWidget>
#include <array>
#include <functional>
#include <map>
#include <memory>

#include "platform/window/internal/canvas.h"
#include "platform/window/internal/clientarea.h"
#include "platform/window/wnd.h"

class QMenuBar;
class RowSource;
struct MenuResource;

class WindowHost : public QWidget {
public:
    // The parent of a child window is a client area, that of a frame its owner or none.
    WindowHost(CWnd& wnd, const WindowClass& windowClass, QWidget* parent, Qt::WindowFlags flags);
    ~WindowHost() override;

    void arrange();  // lays out menu, bars and client area at once: a hidden window is not told of its size
    void tellSize(); // onSize, when the client size is not the one told before
    // The window is gone; gives up the host, after the windows that belong to it and its child windows.
    void detach();

    CWnd* wnd() const { return wnd_; } // null when it is gone
    ClientArea* client() const { return client_; }
    QSize clientSize() const { return client_->size(); }

    void setMenu(const MenuResource& menu);
    void post(std::function<void()> work); // from the message loop, if the window is there by then
    // While a dialog is there, the window takes no input; the dialog is rejected when the window goes.
    void setDialog(QDialog* dialog);

    // The surface at the present size and scale.
    const std::shared_ptr<Canvas>& surface();
    void invalidate(const QRegion& region, bool erase);
    bool paintInvalid();        // onPaint, when something is invalid and the window on show
    void paintAtOnce();         // the same, and on the screen when it returns
    QRegion takeUpdateRegion(); // erases what is to be erased; client pixels
    void scroll(int dx, int dy);

    void setTabStop();
    void setRows(const RowSource& rows); // and makes them known to screen readers, as a list of texts
    void rowSelected();
    const RowSource* rows() const { return wnd_ == nullptr ? nullptr : rows_; } // null without any

    void showBar(ScrollBarKind kind);
    bool hasBar(ScrollBarKind kind) const { return bars_[kind].widget != nullptr; }
    const SCROLLINFO& range(ScrollBarKind kind) const { return bars_[kind].range; }
    void setRange(ScrollBarKind kind, SCROLLINFO range);
    void sendScroll(ScrollBarKind kind, int code, int position);
    void wheel(const QWheelEvent& event);

    std::map<std::uint32_t, QBasicTimer> timers; // by the number that onTimer gets; of the client area
    void timeOut(int timer);

    void takeCapture();
    void endCapture(); // only if it is this window's
    bool hasCapture() const;

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Bar {
        QScrollBar* widget = nullptr; // null: not on show
        SCROLLINFO range;
    };

    void barMoved(ScrollBarKind kind, int action);
    void sendLines(ScrollBarKind kind, int delta);

    CWnd* wnd_;
    const COLORREF background_;
    ClientArea* const client_;
    QMenuBar* menu_ = nullptr;
    std::array<Bar, 2> bars_;           // by ScrollBarKind
    std::array<int, 2> wheelRest_ = {}; // what of the wheel's way was no whole line yet
    std::shared_ptr<Canvas> surface_;
    QRegion update_;
    QRegion erase_; // the part of update_ that is to be erased
    bool painting_ = false;
    QSize toldSize_;
    QPointer<QDialog> dialog_;
    const RowSource* rows_ = nullptr;
    QPointer<QWidget> lastTabStop_; // of a frame
};
