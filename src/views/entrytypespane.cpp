#include "views/entrytypespane.h"

#include "model/database.h"
#include "model/exptype.h"
#include "platform/window/dc.h"
#include "views/entryframe.h"
#include "views/entrygridpane.h"
#include "views/table.h"

namespace {

constexpr int nameRight = 120;

}

TSXentrytypespane::TSXentrytypespane(TSXentryframe& frame) : owner(frame) {
    hRange = 0;
    vRange = 0;
}

void TSXentrytypespane::paintPane(CDC& dc) {
    int width = 0;
    int height = 0;
    getClientSize(width, height);
    beginTable(dc);
    // The grid's position, as this pane's own bar stays at 0.
    int top = -owner.gridPane->vStep * owner.gridPane->vPos;
    for (int t = 0; t <= owner.database.lasttype; ++t) {
        dc.SetBkColor(rowColour(false));
        paintCell(dc, 5, {0, top, nameRight, top + rowHeight}, owner.database.gettype(t)->name);
        fillRow(dc, nameRight, top, width, rowColour(false));
        top += rowHeight;
    }
    fillBelow(dc, top, width, height);
}
