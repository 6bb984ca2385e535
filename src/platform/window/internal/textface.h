// A font as it is drawn at one scale: hinted to whole device pixels, in shades of grey and never in colours.
#pragma once

#include <QByteArray>
#include <QFont>
#include <QHash>
#include <string_view>

struct LOGFONT;

struct TextFace {
    QFont font;
    int ascent = 0; // from the top of the cell to the base line, in device pixels
    int height = 0; // of the cell
    int escapement = 0;

    int width(std::string_view bytes) const; // device pixels

    mutable QHash<QByteArray, int>
        widths; // of texts that were measured, since most are measured again and again
};

// The faces made are kept as long as the window system is up.
const TextFace& textFaceFor(const LOGFONT& description, double scale);
