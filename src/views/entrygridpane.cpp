#include "views/entrygridpane.h"

#include "model/database.h"
#include "model/datafile.h"
#include "model/keyentry.h"
#include "platform/window/dc.h"
#include "views/entryframe.h"
#include "views/entrytypespane.h"
#include "views/table.h"

namespace {

constexpr int cellWidth = 100;

}

void TSXentrygridpane::setGridRange() {
    hRange = 100;
    vRange = 100;
    updateScrollBars();
}

void TSXentrygridpane::paneCreated() {
    TSXscrollpane::paneCreated();
    setGridRange();
}

void TSXentrygridpane::paintPane(CDC& dc) {
    int width = 0;
    int height = 0;
    getClientSize(width, height);
    beginTable(dc);
    int top = -vStep * vPos;
    for (int t = 0; t <= owner.database.lasttype; ++t) {
        paintRow(dc, t, top, width);
        top += rowHeight;
    }
    fillBelow(dc, top, width, height);
}

void TSXentrygridpane::paintRow(CDC& dc, int type, int top, int width) {
    const COLORREF colour = rowColour(type == owner.selectedType);
    RECT cell = {-hStep * hPos, top, -hStep * hPos, top + rowHeight};
    dc.SetBkColor(colour);
    const int count = owner.key.occurrences(type);
    for (int n = 1; n <= count; ++n) {
        cell.left = cell.right;
        cell.right += cellWidth;
        paintOccurrence(dc, type, n, cell);
    }
    fillRow(dc, cell.right, top, width, colour);
}

void TSXentrygridpane::paintOccurrence(CDC& dc, int type, int n, const RECT& cell) {
    const Occurrence shown = owner.key.occurrence(type, n);
    paintCell(dc, cell.left + 5, cell,
              Text<700>().format("%s,%d", shown.file->name.c_str(), static_cast<int>(shown.record)));
    if (type != owner.selectedType || n != owner.selectedOccurrence)
        return;
    dc.SelectStockObject(BLACK_PEN);
    dc.SelectStockObject(NULL_BRUSH);
    dc.Rectangle(cell.left, cell.top, cell.right, cell.bottom);
}

void TSXentrygridpane::mouseDown(int /*kind*/, int x, int y) {
    const int type = (y + vStep * vPos) / rowHeight;
    if (type <= owner.database.lasttype) {
        if (type != owner.selectedType) {
            owner.selectedType = type;
            owner.limitSelection();
            InvalidateRect(false);
        }
        const int n = (x + hStep * hPos) / cellWidth + 1;
        if (n >= 1 && n <= owner.key.occurrences(type)) {
            owner.selectedOccurrence = n;
            InvalidateRect(false);
        }
    }
    UpdateWindow();
}

void TSXentrygridpane::afterVerticalScroll(int newPosition, int oldPosition) {
    TSXentrytypespane& names = *owner.typeNamesPane;
    names.UpdateWindow();
    names.vPos = vPos;
    names.ScrollWindow(0, (oldPosition - newPosition) * vStep);
    names.UpdateWindow();
}
