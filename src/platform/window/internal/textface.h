// A font as it is drawn at one scale: hinted to whole device pixels, in shades of grey and never in colours.
#pragma once

#include <QFont>
#include <QString>

struct LOGFONT;

struct TextFace {
    QFont font;
    int ascent = 0; // from the top of the cell to the base line, in device pixels
    int height = 0; // of the cell
    int escapement = 0;

    int width(const QString& text) const; // device pixels
};

// The faces made are kept as long as the window system is up.
const TextFace& textFaceFor(const LOGFONT& description, double scale);
