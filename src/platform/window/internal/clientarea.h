// The client area of a window: copies the window's surface to the screen and hands on its events of the
// mouse.
#pragma once

#include <QWidget>

class QHelpEvent;
class WindowHost;

class ClientArea : public QWidget {
public:
    explicit ClientArea(WindowHost& host);

    WindowHost& host() const { return host_; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override { sendMouse(*event); }
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { sendMouse(*event); }
    void mouseMoveEvent(QMouseEvent* event) override { sendMouse(*event); }
    void wheelEvent(QWheelEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void sendMouse(const QMouseEvent& event) const;
    bool showCutText(const QHelpEvent& event);

    WindowHost& host_;
    bool ring_ = false; // around it while it has the focus: that came by a key
};
