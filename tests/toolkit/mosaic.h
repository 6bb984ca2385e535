// Small parts of what windows show, side by side in one picture, which is compared with one in golden/. With
// TX_WRITE_GOLDEN set that one is made anew, to be looked at before it is kept.
#pragma once

#include <QImage>
#include <gtest/gtest.h>

#include "platform/window/testaccess.h"

class Mosaic {
public:
    Mosaic(int columns, int width, int height) : perRow(columns), tile(width, height) {}

    // The part of the client area whose corner that is, as the next tile.
    void add(const CWnd& window, int left, int top) {
        if (count % perRow == 0)
            picture = picture.copy(0, 0, perRow * tile.width(), (count / perRow + 1) * tile.height());
        for (int i = 0; i < tile.width() * tile.height(); ++i) {
            const int x = i % tile.width(), y = i / tile.width();
            const COLORREF c = surfacePixel(window, left + x, top + y);
            picture.setPixel(count % perRow * tile.width() + x, count / perRow * tile.height() + y,
                             qRgb(c & 0xFF, c >> 8 & 0xFF, c >> 16 & 0xFF));
        }
        ++count;
    }

    void compare(const char* name) const {
        const QString file = QString(GOLDEN) + name;
        if (qEnvironmentVariableIsSet("TX_WRITE_GOLDEN"))
            picture.save(file);
        const QImage golden = QImage(file).convertToFormat(picture.format());
        EXPECT_TRUE(golden == picture) << name << " looks different";
    }

private:
    int perRow, count = 0;
    QSize tile;
    QImage picture{1, 1, QImage::Format_RGB32};
};
