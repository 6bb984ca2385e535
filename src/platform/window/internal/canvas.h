// What is drawn on: an image in device pixels with the scale that leads to it from logical ones. The edges of
// every logical pixel are rounded to device pixels, so that what touches in the one touches in the other.
#pragma once

#include <QImage>
#include <QRegion>

#include "platform/window/colour.h"

class Canvas {
public:
    // Transparent. Size and origin, which is the place of the top-left pixel, in logical pixels.
    Canvas(QSize size, double scale, QPoint origin = {});

    double scale() const { return scale_; }
    QSize size() const { return size_; }
    QImage& image() { return image_; }
    const QImage& image() const { return image_; }

    // Makes it new at another size or scale; every device pixel has the colour.
    void reset(QSize size, double scale, COLORREF colour);

    // From logical to device pixels. All below is device pixels.
    QPoint toDevice(int x, int y) const { return {edge(x - origin_.x()), edge(y - origin_.y())}; }
    QRect toDevice(const QRect& rectangle) const;
    QRegion toDevice(const QRegion& region) const;
    // The smallest logical rectangle that covers it.
    QRect toLogical(const QRect& rectangle) const;

    void fill(const QRect& rectangle, COLORREF colour, const QRegion& clip);
    // Moves all pixels; those that come in from outside are whatever was there.
    void move(int dx, int dy);

private:
    int edge(int logical) const;
    QRgb* line(int y);

    QSize size_;
    double scale_;
    QPoint origin_;
    QImage image_;
};

QRgb rgbOf(COLORREF colour);
COLORREF colourOf(QRgb rgb);
