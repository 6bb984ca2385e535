// Keys and clicks that were not meant for what they would meet: those of a key that is held, and those that
// were given before the person could see what stands on the screen now.
#pragma once

#include <QObject>

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
