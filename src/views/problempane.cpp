#include "views/problempane.h"

#include <algorithm>
#include <utility>

#include "model/database.h"
#include "model/problem.h"
#include "platform/window/menu.h"
#include "platform/window/windowdc.h"
#include "views/current.h"
#include "views/mainframe.h"

namespace {

constexpr int buttonWidth = 40;
constexpr int messageX = 5;
constexpr int gap = 10; // between the longest message and the buttons

void paintSolveButton(CDC& dc, int x, int rowTop, bool pressed) {
    dc.SelectObject(getFont(plainFont));
    dc.FillSolidRect(x, rowTop + 1, buttonWidth, 18, RGB(192, 192, 192));
    dc.SetTextColor(RGB(0, 128, 0));
    dc.TextOutA(x + (pressed ? 8 : 7), rowTop + (pressed ? 3 : 2), "Solve");
    COLORREF light = RGB(255, 255, 255);
    COLORREF dark = RGB(128, 128, 128);
    if (pressed)
        std::swap(light, dark);
    dc.FillSolidRect(x, rowTop + 1, buttonWidth, 1, light);
    dc.FillSolidRect(x, rowTop + 1, 1, 18, light);
    dc.FillSolidRect(x, rowTop + 18, buttonWidth, 1, dark);
    dc.FillSolidRect(x + buttonWidth - 1, rowTop + 1, 1, 18, dark);
}

} // namespace

TSXproblempane::TSXproblempane(TSXmainframe& frame)
    : TSXrowpane("Problem list", frame.selectedProblem), owner(frame) {}

void TSXproblempane::updateScrollRange() {
    setRanges(0, rowHeight * database->problemcount);
}

void TSXproblempane::placeButtons(CDC& dc, int width) {
    solveX = 0;
    for (int r = 1; r <= database->problemcount; ++r) {
        const SIZE extent = dc.GetTextExtentPoint32A(database->getproblem(r)->message.c_str());
        solveX = std::max(solveX, messageX + extent.cx + gap);
    }
    solveX = std::min(solveX, width - buttonWidth);
}

void TSXproblempane::paintPane(CDC& dc) {
    dc.SelectObject(getFont(plainFont));
    placeButtons(dc, GetClientRect().right);
    TSXrowpane::paintPane(dc);
}

void TSXproblempane::paintRow(CDC& dc, int row, const RECT& place) {
    dc.SetBkColor(rowColour(row == owner.selectedProblem));
    dc.SetTextColor(RGB(0, 0, 0));
    paintCell(dc, messageX, place, database->getproblem(row)->message.c_str());
    paintSolveButton(dc, solveX, place.top, false);
}

void TSXproblempane::mouseDown(int kind, int x, int y) {
    const int row = rowAt(y);
    const bool onRow = isRow(row);
    if (onRow) {
        selectRow(row);
        InvalidateRect(false);
    }
    UpdateWindow(); // the selection stands on the screen before a menu opens
    if (onRow && kind == leftPress && x >= solveX && x <= solveX + buttonWidth)
        openMenu(row);
}

void TSXproblempane::openMenu(int row) {
    const TSXproblem& problem = *database->getproblem(row);
    CMenu menu;
    for (int i = 1; i <= problem.solutioncount(); ++i)
        menu.AppendMenuA(static_cast<std::uint32_t>(problem.solutioncommand(i)), problem.solutionlabel(i));
    const int left = solveX;
    const int top = rowPlace(row).top;
    const POINT below = ClientToScreen({left, top + rowHeight - 1});
    CClientDC popupDC(this);
    paintSolveButton(popupDC, left, top, true);
    menu.TrackPopupMenu(below.x, below.y, owner, [&frame = owner, row](std::uint32_t command) {
        frame.selectedProblem = row; // whatever keys have selected since
        frame.frameCommand(command);
    });
    // The window may have gone while the menu was open: nothing of the pane is touched from here on.
    paintSolveButton(popupDC, left, top, false);
}

int TSXproblempane::rowCount() const {
    return database->problemcount;
}

std::string TSXproblempane::rowText(int row) const {
    return database->getproblem(row)->message;
}

void TSXproblempane::selectRow(int row) {
    owner.selectedProblem = row;
    owner.describeProblem();
}

void TSXproblempane::openRow() {
    if (database->getproblem(owner.selectedProblem) != nullptr)
        openMenu(owner.selectedProblem);
}

std::string TSXproblempane::cutText(int row, int /*x*/) const {
    return wider(rowText(row), solveX - messageX);
}
