#include "platform/window/internal/host.h"

#include <QGridLayout>
#include <QMenu>
#include <QMenuBar>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "platform/window/internal/conversion.h"
#include "platform/window/internal/modal.h"
#include "platform/window/resources.h"

namespace {

// A scroll bar of a window: the wheel over it is the window's, and it has no menu of its own.
class WindowBar : public QScrollBar {
public:
    WindowBar(Qt::Orientation orientation, WindowHost& host) : QScrollBar(orientation, &host), host_(host) {
        setContextMenuPolicy(Qt::NoContextMenu);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void wheelEvent(QWheelEvent* event) override { host_.wheel(*event); }

private:
    WindowHost& host_;
};

// By QAbstractSlider::SliderAction.
constexpr int scrollCodes[] = {SB_THUMBTRACK, SB_LINEDOWN, SB_LINEUP, SB_PAGEDOWN,
                               SB_PAGEUP,     SB_TOP,      SB_BOTTOM, SB_THUMBTRACK};

// The label with a mark before its first letter that none above it has: that key chooses it.
QString withLetter(QString label, QString& taken) {
    const auto* const free = std::find_if(label.cbegin(), label.cend(), [&](QChar letter) {
        return letter.isLetter() && !taken.contains(letter, Qt::CaseInsensitive);
    });
    if (free == label.cend())
        return label;
    taken += *free;
    return label.insert(free - label.cbegin(), '&');
}

// The hosts of windows that go stay for a while.
void destroyWindowsIn(const QObject& parent) {
    for (QObject* child : QObjectList(parent.children()))
        if (auto* const host = dynamic_cast<WindowHost*>(child); host != nullptr && host->wnd() != nullptr)
            host->wnd()->DestroyWindow();
}

} // namespace

WindowHost::WindowHost(CWnd& wnd, const WindowClass& windowClass, QWidget* parent, Qt::WindowFlags flags)
    : QWidget(parent, flags), wnd_(&wnd), background_(windowClass.background),
      client_(new ClientArea(*this)) {
    setAutoFillBackground(true); // the corner between the bars
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    grid->setSizeConstraint(QLayout::SetNoConstraint);
    grid->setRowStretch(0, 1);
    grid->setColumnStretch(0, 1);
    grid->addWidget(client_, 0, 0);
    client_->show(); // as soon as this is: what is hidden has no size
}

WindowHost::~WindowHost() {
    if (wnd_ != nullptr) // the window system has gone before the window
        wnd_->host_ = nullptr;
}

void WindowHost::detach() {
    destroyWindowsIn(*this); // frames that belong to this one
    hide();                  // at once with all that is in it
    destroyWindowsIn(*client_);
    wnd_ = nullptr;
    timers.clear();
    endCapture();
    if (dialog_)
        dialog_->reject();
    retire(this);
}

void WindowHost::arrange() {
    layout()->update();
    layout()->activate();
}

void WindowHost::tellSize() {
    const QSize size = clientSize();
    if (wnd_ == nullptr || size == toldSize_)
        return;
    toldSize_ = size;
    invalidate(QRect(QPoint(0, 0), size), true);
    wnd_->onSize(isMaximized() ? SIZE_MAXIMIZED : SIZE_RESTORED, size.width(), size.height());
}

bool WindowHost::event(QEvent* event) {
    const bool done = QWidget::event(event);
    const bool changesPlaces = event->type() == QEvent::Resize || event->type() == QEvent::Show ||
                               event->type() == QEvent::LayoutRequest; // the menu wants another height
    if (changesPlaces)
        tellSize();
    return done;
}

void WindowHost::setMenu(const MenuResource& menu) {
    menu_ = new QMenuBar(this);
    menu_->setNativeMenuBar(false);
    layout()->setMenuBar(menu_);
    menu_->show();
    QMenu* column = nullptr;
    const char* title = nullptr;
    QString titleLetters;
    QString letters;
    for (const MenuEntry& entry : menu.entries) {
        if (column == nullptr || std::string_view(title) != entry.menu) {
            column = menu_->addMenu(withLetter(labelOf(entry.menu), titleLetters));
            letters.clear();
        }
        title = entry.menu;
        QAction* const action = column->addAction(withLetter(labelOf(entry.text), letters));
        action->setData(entry.id);
        connect(action, &QAction::triggered, this,
                [this, id = entry.id] { post([this, id] { wnd_->onCommand(id); }); });
    }
}

void WindowHost::setDialog(QDialog* dialog) {
    dialog_ = dialog;
    client_->setEnabled(dialog == nullptr); // and not all of this: windows that belong to it stay enabled
    if (menu_ != nullptr)
        menu_->setEnabled(dialog == nullptr);
}

// The menu has gone from the screen before the work begins, and nothing that was typed while it went on meets
// what it leaves.
void WindowHost::post(std::function<void()> work) {
    const auto carryOut = [this, work = std::move(work)] {
        discardInput();
        if (wnd_ != nullptr)
            work();
        discardInput();
    };
    QMetaObject::invokeMethod(this, carryOut, Qt::QueuedConnection);
}

const std::shared_ptr<Canvas>& WindowHost::surface() {
    const QRect all(QPoint(0, 0), clientSize());
    const double scale = client_->devicePixelRatioF();
    if (!surface_)
        surface_ = std::make_shared<Canvas>(QSize(), scale);
    if (surface_->size() != all.size() || surface_->scale() != scale) {
        surface_->reset(all.size(), scale, background_);
        update_ = erase_ = all;
    }
    return surface_;
}

void WindowHost::invalidate(const QRegion& region, bool erase) {
    update_ += region;
    if (erase)
        erase_ += region;
    client_->update(region);
}

bool WindowHost::paintInvalid() {
    surface(); // a new one makes all of it invalid
    if (wnd_ == nullptr || painting_ || update_.isEmpty() || !client_->isVisible())
        return false;
    painting_ = true;
    wnd_->onPaint();
    painting_ = false;
    return true;
}

void WindowHost::paintAtOnce() {
    if (paintInvalid())
        client_->repaint();
}

QRegion WindowHost::takeUpdateRegion() {
    const QRect all(QPoint(0, 0), clientSize());
    QRegion region = std::exchange(update_, {}) & all;
    const QRegion erase = surface()->toDevice(std::exchange(erase_, {}) & all);
    surface_->fill(erase.boundingRect(), background_, erase);
    return region;
}

void WindowHost::scroll(int dx, int dy) {
    const QRect all(QPoint(0, 0), clientSize());
    const double scale = surface()->scale();
    const double deviceX = dx * scale;
    const double deviceY = dy * scale;
    if (deviceX != std::floor(deviceX) || deviceY != std::floor(deviceY)) {
        // No whole device pixels: moved ones would not lie where painted ones do.
        invalidate(all, true);
        return;
    }
    surface_->move(static_cast<int>(deviceX), static_cast<int>(deviceY));
    update_ = update_.translated(dx, dy) & all;
    erase_ = erase_.translated(dx, dy) & all;
    invalidate(QRegion(all) - all.translated(dx, dy), true);
    client_->update();
}

void WindowHost::showBar(ScrollBarKind kind) {
    Bar& shown = bars_[kind];
    if (shown.widget != nullptr)
        return;
    shown.widget = new WindowBar(kind == SB_VERT ? Qt::Vertical : Qt::Horizontal, *this);
    connect(shown.widget, &QScrollBar::actionTriggered, this,
            [this, kind](int action) { barMoved(kind, action); });
    connect(shown.widget, &QScrollBar::sliderReleased, this,
            [this, kind] { sendScroll(kind, SB_THUMBPOSITION, range(kind).nPos); });
    connect(shown.widget, &QScrollBar::valueChanged, this, [this, kind](int value) {
        if (value == range(kind).nPos)
            return;
        sendScroll(kind, SB_THUMBTRACK, value); // a screen reader sets the value itself
        setRange(kind, range(kind));
    });
    setRange(kind, shown.range);
    dynamic_cast<QGridLayout&>(*layout()).addWidget(shown.widget, kind == SB_VERT ? 0 : 1,
                                                    kind == SB_VERT ? 1 : 0);
    shown.widget->show();
    arrange();
    tellSize();
}

void WindowHost::setRange(ScrollBarKind kind, SCROLLINFO range) {
    range.nMax = std::max(range.nMax, 0);
    range.nPage = std::clamp(range.nPage, 0, range.nMax + 1);
    range.nPos = std::clamp(range.nPos, 0, range.limit());
    bars_[kind].range = range;
    QScrollBar* const widget = bars_[kind].widget;
    if (widget == nullptr)
        return;
    const QSignalBlocker quiet(widget);
    widget->setRange(0, range.limit());
    widget->setPageStep(std::max(range.nPage, 1));
    widget->setValue(range.nPos);
    widget->setEnabled(range.limit() > 0);
}

void WindowHost::barMoved(ScrollBarKind kind, int action) {
    QScrollBar* const widget = bars_[kind].widget;
    const int wanted = widget->sliderPosition();
    const int code = scrollCodes[action];
    sendScroll(kind, code, code == SB_THUMBTRACK ? wanted : 0);
    widget->setSliderPosition(bars_[kind].range.nPos); // the window has the last word
}

void WindowHost::sendScroll(ScrollBarKind kind, int code, int position) {
    if (wnd_ != nullptr)
        wnd_->onScroll(kind, code, position);
}

void WindowHost::timeOut(int timer) {
    const auto isIt = [timer](const auto& entry) { return entry.second.timerId() == timer; };
    const auto found = std::find_if(timers.begin(), timers.end(), isIt);
    if (wnd_ != nullptr && found != timers.end())
        wnd_->onTimer(found->first);
}
