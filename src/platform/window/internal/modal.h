// Modal loops run inside an operation of a window. Widgets whose window goes meanwhile may still stand on the
// stack below the loop, so they are kept until the outermost loop has ended.
#pragma once

class QWidget;

class ModalScope {
public:
    ModalScope();
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;
    ~ModalScope();
};

// Hides the widget and deletes it, later, from the message loop.
void retire(QWidget* widget);
