#include "views/entrytypespane.h"

#include "model/database.h"
#include "model/exptype.h"
#include "platform/window/dc.h"
#include "views/entryframe.h"
#include "views/table.h"

namespace {

constexpr int nameX = 5;
constexpr int nameRight = 120;

} // namespace

TSXentrytypespane::TSXentrytypespane(TSXentryframe& frame) : owner(frame) {
    hRange = 0;
    vRange = 0;
}

void TSXentrytypespane::paintPane(CDC& dc) {
    int width = 0;
    int height = 0;
    getClientSize(width, height);
    beginTable(dc);
    int top = -vStep * vPos;
    for (int t = 0; t <= owner.database.lasttype; ++t) {
        dc.SetBkColor(rowColour(false));
        paintCell(dc, nameX, {0, top, nameRight, top + rowHeight}, owner.database.gettype(t)->name);
        fillRow(dc, nameRight, top, width, rowColour(false));
        top += rowHeight;
    }
    fillBelow(dc, top, width, height);
}

int TSXentrytypespane::rowCount() const {
    return owner.database.lasttype + 1;
}

std::string TSXentrytypespane::rowText(int row) const {
    return owner.database.gettype(row - 1)->name.c_str();
}

std::string TSXentrytypespane::cutText(int row, int /*x*/) const {
    return wider(rowText(row), nameRight - nameX);
}
