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

void TSXscrollpane::verticalScroll(int code, int position) {
    scroll(SB_VERT, code, position);
}

void TSXscrollpane::horizontalScroll(int code, int position) {
    scroll(SB_HORZ, code, position);
}

void TSXscrollpane::scroll(ScrollBarKind bar, int code, int position) {
    SCROLLINFO info;
    GetScrollInfo(bar, info);
    const int before = info.nPos;
    const std::optional<int> target = targetOf(code, position, info);
    if (!target || *target < lowestTarget)
        return;
    SetScrollPos(bar, std::max(*target, 0));
    const int now = GetScrollPos(bar); // the bar has limited it
    UpdateWindow();                    // what waits to be painted, while pixels and position still agree
    if (bar == SB_VERT) {
        vPos = now;
        ScrollWindow(0, (before - now) * vStep);
    } else {
        hPos = now;
        ScrollWindow((before - now) * hStep, 0);
    }
    UpdateWindow();
    if (bar == SB_VERT)
        afterVerticalScroll(now, before);
    else
        afterHorizontalScroll(now, before);
}
