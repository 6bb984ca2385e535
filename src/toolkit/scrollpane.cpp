#include "toolkit/scrollpane.h"

#include <algorithm>
#include <optional>

namespace {

constexpr int lowestTarget = -1999; // below, a position is taken for damage and not for the top

// Where the event wants the bar; none when it is not one to follow. A drag has been followed by its
// SB_THUMBTRACK when SB_THUMBPOSITION ends it.
std::optional<int> targetOf(int code, int position, const SCROLLINFO& info) {
    switch (code) {
    case SB_LINEDOWN:
        return info.nPos + 1;
    case SB_LINEUP:
        return info.nPos - 1;
    case SB_PAGEDOWN:
        return info.nPos + info.nPage;
    case SB_PAGEUP:
        return info.nPos - info.nPage;
    case SB_THUMBTRACK:
        return position;
    default:
        return std::nullopt;
    }
}

} // namespace

void TSXscrollpane::paneCreated() {
    const SCROLLINFO provisional = {5, 3, 0};
    for (const ScrollBarKind bar : {SB_VERT, SB_HORZ}) {
        ShowScrollBar(bar);
        SetScrollInfo(bar, provisional);
    }
}

void TSXscrollpane::paneSized(int /*type*/, int /*width*/, int /*height*/) {
    updateScrollBars();
}

void TSXscrollpane::updateScrollBars() {
    updateScrollBar(SB_VERT, vRange, GetClientRect().bottom / vStep);
    updateScrollBar(SB_HORZ, hRange, GetClientRect().right / hStep);
}

void TSXscrollpane::updateScrollBar(ScrollBarKind bar, int range, int page) {
    SCROLLINFO info;
    if (!GetScrollInfo(bar, info))
        info.nPos = 0;
    if (page != 0)
        --page;
    page = std::min(page, range + 1);
    const int keep = std::max(page - 1, 0);
    SetScrollInfo(bar, {std::max(range, keep + info.nPos), page, info.nPos});
}

// False when the event is ignored.
bool TSXscrollpane::moveBar(ScrollBarKind bar, int code, int position, int& newPosition, int& oldPosition) {
    SCROLLINFO info;
    GetScrollInfo(bar, info);
    const std::optional<int> target = targetOf(code, position, info);
    if (!target || *target < lowestTarget)
        return false;
    SetScrollPos(bar, std::max(*target, 0));
    newPosition = GetScrollPos(bar); // the bar has limited it
    oldPosition = info.nPos;
    return true;
}

// What waits to be painted is painted while pixels and position still agree.
void TSXscrollpane::moveContent(std::int32_t& position, int newPosition, int dx, int dy) {
    UpdateWindow();
    position = newPosition;
    ScrollWindow(dx, dy);
    UpdateWindow();
}

void TSXscrollpane::verticalScroll(int code, int position) {
    int now = 0;
    int before = 0;
    if (!moveBar(SB_VERT, code, position, now, before))
        return;
    moveContent(vPos, now, 0, (before - now) * vStep);
    afterVerticalScroll(now, before);
}

void TSXscrollpane::horizontalScroll(int code, int position) {
    int now = 0;
    int before = 0;
    if (!moveBar(SB_HORZ, code, position, now, before))
        return;
    moveContent(hPos, now, (before - now) * hStep, 0);
    afterHorizontalScroll(now, before);
}
