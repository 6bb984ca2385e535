// Modal loops run inside an operation of a window, and what is typed and clicked meanwhile, or was given
// before the person could see what stands on the screen now, was not meant for what it would meet.
#pragma once

#include <QObject>

// While one is there, widgets whose window goes may still stand on the stack below the loop: they are kept
// until the outermost loop has ended.
class ModalScope {
public:
    ModalScope();
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;
    ~ModalScope();
};

// Hides the widget and deletes it, later, from the message loop.
void retire(QWidget* widget);

// While it is there, a key that is held opens nothing and chooses nothing, in no window of the application.
class HeldKeyFilter : public QObject {
public:
    HeldKeyFilter();

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    int released_ = 0; // the key that was let go of last
    quint64 releaseTime_ = 0;
};

// Brings the screen up to date; what was typed and clicked until then goes to nobody. Other events arrive
// meanwhile, so that a window may have gone afterwards.
void discardInput();
