#include "platform/window/internal/textface.h"

#include <QApplication>
#include <QFontMetrics>
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "platform/window/drawingobjects.h"
#include "platform/window/internal/conversion.h"

namespace {

constexpr int boldWeight = 700;
constexpr qsizetype mostWidths = 65536;

struct KeptFace {
    LOGFONT description;
    double scale;
    TextFace face;
};

// A child of the application object, so that no font outlives what it came from.
class FaceShelf : public QObject {
public:
    explicit FaceShelf(QObject* parent) : QObject(parent) {}
    std::vector<std::unique_ptr<KeptFace>> faces;
};

FaceShelf& shelf() {
    for (QObject* child : qApp->children()) {
        if (auto* const found = dynamic_cast<FaceShelf*>(child))
            return *found;
    }
    return *new FaceShelf(qApp); // owned by the application object
}

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

const TextFace& textFaceFor(const LOGFONT& description, double scale) {
    auto& faces = shelf().faces;
    for (const auto& kept : faces) {
        if (kept->scale == scale && kept->description == description)
            return kept->face;
    }
    faces.push_back(std::make_unique<KeptFace>(KeptFace{description, scale, makeFace(description, scale)}));
    return faces.back()->face;
}
