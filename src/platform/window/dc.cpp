#include "platform/window/dc.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "platform/window/internal/drawingstate.h"
#include "platform/window/resources.h"

namespace {

const LOGFONT systemFont{-12, 0, 400, false, {}};

QRect rectangleOf(int left, int top, int right, int bottom) {
    return {left, top, right - left, bottom - top};
}

} // namespace

CDC::CDC() : state_(std::make_unique<DrawingState>()) {
    state_->font = systemFont;
}

CDC::CDC(std::shared_ptr<Canvas> canvas) : CDC() {
    if (!canvas)
        return;
    state_->scale = canvas->scale();
    state_->clip = canvas->image().rect();
    state_->clipBox = canvas->toLogical(canvas->image().rect());
    state_->canvas = std::move(canvas);
}

CDC::~CDC() = default;

void CDC::CreateCompatibleDC(const CDC& other) {
    state_->scale = other.state_->scale;
}

void CDC::SelectObject(const CPen* pen) {
    state_->penColour = pen->colour;
    state_->hasPen = true;
}

void CDC::SelectObject(const CBrush* brush) {
    state_->brushColour = brush->colour;
    state_->hasBrush = true;
}

void CDC::SelectObject(const CFont* font) {
    if (state_->font == font->description) // each row of a list selects its font anew
        return;
    state_->font = font->description;
    state_->face = nullptr;
}

void CDC::SelectObject(const CBitmap* bitmap) {
    state_->canvas = bitmap->canvas();
    if (!state_->canvas)
        return;
    state_->clip = state_->canvas->image().rect();
    state_->clipBox = QRect(QPoint(0, 0), state_->canvas->size());
}

void CDC::SelectStockObject(StockObject object) {
    if (object == SYSTEM_FONT) {
        state_->font = systemFont;
        state_->face = nullptr;
        return;
    }
    const bool brush = object <= NULL_BRUSH; // the pens come after them
    (brush ? state_->brushColour : state_->penColour) =
        object == WHITE_BRUSH || object == WHITE_PEN ? RGB(255, 255, 255) : RGB(0, 0, 0);
    (brush ? state_->hasBrush : state_->hasPen) = object != NULL_BRUSH && object != NULL_PEN;
}

void CDC::MoveTo(int x, int y) {
    state_->position = {x, y};
}

void CDC::LineTo(int x, int y) {
    const POINT from = state_->position;
    state_->position = {x, y};
    const int dx = x - from.x;
    const int dy = y - from.y;
    const int length = std::max(std::abs(dx), std::abs(dy));
    if (!state_->hasPen || length == 0)
        return;
    if (dx == 0 || dy == 0) { // one block; from its lower end, which belongs to it only when it is the start
        const int left = dx < 0 ? x + 1 : from.x;
        const int top = dy < 0 ? y + 1 : from.y;
        state_->fill({left, top, dx == 0 ? 1 : length, dy == 0 ? 1 : length}, state_->penColour);
        return;
    }
    for (int i = 0; i < length; ++i) {
        const auto along = [i, length](int way) {
            return static_cast<int>(std::lround(double(way) * i / length));
        };
        state_->fill({from.x + along(dx), from.y + along(dy), 1, 1}, state_->penColour);
    }
}

void CDC::Rectangle(int left, int top, int right, int bottom) {
    const QRect whole = rectangleOf(left, top, right, bottom);
    if (whole.isEmpty())
        return;
    if (state_->hasBrush)
        state_->fill(state_->hasPen ? whole.adjusted(1, 1, -1, -1) : whole, state_->brushColour);
    if (!state_->hasPen)
        return;
    state_->fill({left, top, whole.width(), 1}, state_->penColour);
    state_->fill({left, bottom - 1, whole.width(), 1}, state_->penColour);
    state_->fill({left, top, 1, whole.height()}, state_->penColour);
    state_->fill({right - 1, top, 1, whole.height()}, state_->penColour);
}

void CDC::SetPixel(int x, int y, COLORREF colour) {
    state_->fill({x, y, 1, 1}, colour);
}

void CDC::FillSolidRect(int x, int y, int width, int height, COLORREF colour) {
    state_->backgroundColour = colour;
    state_->fill({x, y, width, height}, colour);
}

void CDC::SetTextColor(COLORREF colour) {
    state_->textColour = colour;
}

void CDC::SetBkColor(COLORREF colour) {
    state_->backgroundColour = colour;
}

void CDC::SetBkMode(BackgroundMode mode) {
    state_->backgroundMode = mode;
}

void CDC::SetTextAlign(unsigned alignment) {
    state_->alignment = alignment;
}

void CDC::TextOutA(int x, int y, const char* text) {
    state_->text(x, y, text, state_->clip);
}

void CDC::ExtTextOutA(int x, int y, const RECT& rectangle, const char* text) {
    const QRect area = rectangleOf(rectangle.left, rectangle.top, rectangle.right, rectangle.bottom);
    if (!state_->canvas || area.isEmpty() || state_->outOfSight(area))
        return;
    const QRegion textClip = state_->clip & state_->canvas->toDevice(area);
    if (textClip.isEmpty())
        return;
    state_->fill(area, state_->backgroundColour);
    state_->text(x, y, text, textClip);
}

SIZE CDC::GetTextExtentPoint32A(const char* text) const {
    return state_->extent(text);
}

void CDC::BitBlt(int x, int y, int width, int height, const CDC& source, int sourceX, int sourceY) {
    const Canvas* const from = source.state_->canvas.get();
    if (!state_->canvas || from == nullptr || width <= 0 || height <= 0)
        return;
    const QRect target = state_->canvas->toDevice(QRect(x, y, width, height));
    const QImage piece = from->image().copy(from->toDevice(QRect(sourceX, sourceY, width, height)));
    QPainter painter(&state_->canvas->image());
    painter.setClipRegion(state_->clip);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(target, piece);
    if (state_->drawn)
        state_->drawn(target);
}

void CDC::DrawIcon(int x, int y, const IconResource& icon) {
    int row = 0;
    for (const char* letters : icon.rows) {
        for (int column = 0; letters[column] != '\0'; ++column) {
            for (const IconColour& entry : icon.colours) {
                if (entry.letter == letters[column])
                    SetPixel(x + column, y + row, entry.colour);
            }
        }
        ++row;
    }
}

RECT CDC::GetClipBox() const {
    const QRect& box = state_->clipBox;
    return {box.left(), box.top(), box.left() + box.width(), box.top() + box.height()};
}

void CBitmap::CreateCompatibleBitmap(const CDC& context, int width, int height) {
    canvas_ = std::make_shared<Canvas>(QSize(width, height), context.state_->scale);
}
