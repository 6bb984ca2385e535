// What a device context of the screen draws on: a frameless window over the part drawn, without input and
// focus.
#pragma once

#include <QWidget>
#include <memory>

class Canvas;

// A canvas for all monitors taken together.
std::shared_ptr<Canvas> screenCanvas();

class ScreenOverlay : public QWidget {
public:
    explicit ScreenOverlay(std::shared_ptr<Canvas> canvas);

    // Shows the place (device pixels of the canvas) as it is on the canvas now.
    void add(const QRect& device);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const std::shared_ptr<Canvas> canvas_;
    QRect place_; // around all that was drawn on, in logical pixels of the screen
};
