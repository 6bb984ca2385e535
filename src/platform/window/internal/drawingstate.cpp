#include "platform/window/internal/drawingstate.h"

#include <QFontMetrics>
#include <QHash>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <deque>

#include "platform/window/internal/conversion.h"
#include "platform/window/testaccess.h"

// A font as it is drawn at one scale: hinted to whole device pixels, in shades of grey and never in colours.
struct TextFace {
    QFont font;
    int ascent = 0; // from the top of the cell to the base line, in device pixels
    int height = 0; // of the cell
    int escapement = 0;

    int width(std::string_view bytes) const; // device pixels

    mutable QHash<QByteArray, int>
        widths; // of texts that were measured, since most are measured again and again
};

namespace {

constexpr int boldWeight = 700;
constexpr qsizetype mostWidths = 65536;

struct KeptFace {
    LOGFONT description;
    double scale;
    TextFace face;
};

TextFace makeFace(const LOGFONT& description, double scale) {
    QFont font;
    if (!description.face.empty())
        font.setFamily(QString::fromStdString(description.face));
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(std::abs(description.height) * scale))));
    font.setBold(description.weight >= boldWeight);
    font.setItalic(description.italic);
    font.setHintingPreference(QFont::PreferFullHinting);
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    const QFontMetrics metrics(font);
    return {font, metrics.ascent(), metrics.ascent() + metrics.descent(), description.escapement, {}};
}

const TextFace& textFaceFor(const LOGFONT& description, double scale) {
    static auto& faces = *new std::deque<KeptFace>; // never given up: no font outlives the window system
    const auto kept = std::ranges::find_if(
        faces, [&](const KeptFace& face) { return face.scale == scale && face.description == description; });
    return kept != faces.end()
               ? kept->face
               : faces.emplace_back(KeptFace{description, scale, makeFace(description, scale)}).face;
}

} // namespace

int TextFace::width(std::string_view bytes) const {
    const auto size = static_cast<qsizetype>(bytes.size());
    const auto known = widths.constFind(QByteArray::fromRawData(bytes.data(), size));
    if (known != widths.constEnd())
        return *known;
    if (widths.size() >= mostWidths)
        widths.clear();
    return *widths.insert(QByteArray(bytes.data(), size),
                          QFontMetrics(font).horizontalAdvance(unicodeOf(bytes)));
}

void DrawingState::fill(const QRect& logical, COLORREF colour) {
    if (!canvas || logical.isEmpty() || outOfSight(logical))
        return;
    const QRect device = canvas->toDevice(logical);
    canvas->fill(device, colour, clip);
    if (drawn)
        drawn(device);
}

const TextFace& DrawingState::currentFace() {
    if (face == nullptr)
        face = &textFaceFor(font, scale);
    return *face;
}

void DrawingState::text(int x, int y, const char* bytes, const QRegion& textClip) {
    if (!canvas || *bytes == '\0' || textClip.isEmpty())
        return;
    if (answers.text)
        return answers.text(x, y, alignment, bytes, font, textColour);
    const TextFace& shape = currentFace();
    // Level text lies within the lines of its cell, whatever it is: most rows of a long list need no more.
    if (shape.escapement == 0 && (y > clipBox.bottom() + 1 || y + shape.height + 1 < clipBox.top()))
        return;
    const int width = shape.width(bytes);
    const int left = alignment == TA_RIGHT ? -width : (alignment == TA_CENTER ? -width / 2 : 0);
    const QTransform turn = QTransform::fromTranslate(canvas->toDevice(x, y).x(), canvas->toDevice(x, y).y())
                                .rotate(-shape.escapement / 10.0);
    const QRect cell(left, 0, width, shape.height);
    // Slanted letters reach out of their cell a little, hence the margin.
    const QRect touched = turn.mapRect(cell).adjusted(-shape.height, -1, shape.height, 1);
    if (!textClip.intersects(touched))
        return;
    QPainter painter(&canvas->image());
    painter.setClipRegion(textClip);
    painter.setTransform(turn);
    if (backgroundMode == OPAQUE)
        painter.fillRect(cell, QColor(rgbOf(backgroundColour)));
    painter.setFont(shape.font);
    painter.setPen(QColor(rgbOf(textColour)));
    painter.drawText(QPoint(left, shape.ascent), unicodeOf(bytes));
    if (drawn)
        drawn(touched);
}

SIZE DrawingState::extent(const char* bytes) {
    const TextFace& shape = currentFace();
    const auto logical = [this](int device) { return static_cast<int>(std::ceil(device / scale)); };
    return {logical(shape.width(bytes)), logical(shape.height)};
}
