#include "platform/window/internal/canvas.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

QImage imageFor(QSize size, double scale) {
    const auto extent = [scale](int logical) { return static_cast<int>(std::ceil(logical * scale)); };
    return QImage(std::max(extent(size.width()), 1), std::max(extent(size.height()), 1),
                  QImage::Format_ARGB32_Premultiplied);
}

} // namespace

QRgb rgbOf(COLORREF colour) {
    return qRgb(static_cast<int>(colour & 0xFF), static_cast<int>(colour >> 8 & 0xFF),
                static_cast<int>(colour >> 16 & 0xFF));
}

COLORREF colourOf(QRgb rgb) {
    return RGB(qRed(rgb), qGreen(rgb), qBlue(rgb));
}

Canvas::Canvas(QSize size, double scale, QPoint origin)
    : size_(size), scale_(scale), origin_(origin), image_(imageFor(size, scale)) {
    image_.fill(Qt::transparent);
}

void Canvas::reset(QSize size, double scale, COLORREF colour) {
    size_ = size;
    scale_ = scale;
    image_ = imageFor(size, scale);
    image_.fill(rgbOf(colour));
}

int Canvas::edge(int logical) const {
    return static_cast<int>(std::floor(logical * scale_ + 0.5));
}

QRgb* Canvas::line(int y) {
    return static_cast<QRgb*>(static_cast<void*>(image_.scanLine(y)));
}

QRect Canvas::toDevice(const QRect& rectangle) const {
    const QPoint topLeft = toDevice(rectangle.left(), rectangle.top());
    const QPoint end = toDevice(rectangle.left() + rectangle.width(), rectangle.top() + rectangle.height());
    return {topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y())};
}

QRegion Canvas::toDevice(const QRegion& region) const {
    QRegion mapped;
    for (const QRect& part : region)
        mapped += toDevice(part);
    return mapped;
}

QRect Canvas::toLogical(const QRect& rectangle) const {
    const auto low = [this](int device) { return static_cast<int>(std::floor(device / scale_)); };
    const auto high = [this](int device) { return static_cast<int>(std::ceil(device / scale_)); };
    const QPoint topLeft(low(rectangle.left()), low(rectangle.top()));
    const QPoint end(high(rectangle.right() + 1), high(rectangle.bottom() + 1));
    return QRect(topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y())).translated(origin_);
}

void Canvas::fill(const QRect& rectangle, COLORREF colour, const QRegion& clip) {
    const QRgb rgb = rgbOf(colour);
    for (const QRect& part : clip) {
        const QRect area = rectangle & part & image_.rect();
        if (area.isEmpty())
            continue;
        for (int y = area.top(); y <= area.bottom(); ++y)
            std::fill_n(line(y) + area.left(), area.width(), rgb);
    }
}

void Canvas::move(int dx, int dy) {
    const QRect from = image_.rect() & image_.rect().translated(-dx, -dy);
    if (from.isEmpty())
        return;
    const auto bytes = static_cast<std::size_t>(from.width()) * sizeof(QRgb);
    for (int i = 0; i < from.height(); ++i) {
        // From the side that the pixels move to, so that no line is overwritten before it has moved.
        const int y = dy > 0 ? from.bottom() - i : from.top() + i;
        std::memmove(line(y + dy) + from.left() + dx, line(y) + from.left(), bytes);
    }
}
