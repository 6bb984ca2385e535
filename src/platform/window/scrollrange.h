// The arithmetic of a scroll bar: it counts from 0 to a maximum and shows a page of it at a time. No window
// is needed.
#pragma once

#include <algorithm>

// What is set on a scroll bar and read from it. The minimum is always 0.
struct SCROLLINFO {
    int nMax = 0;  // highest value of the range
    int nPage = 0; // values in view at a time
    int nPos = 0;  // first value in view
};

class ScrollRange {
public:
    // Limits the page to the size of the range, and the position to limit(). A maximum below 0 counts as 0.
    void set(const SCROLLINFO& info) {
        info_.nMax = std::max(info.nMax, 0);
        info_.nPage = info.nPage > info_.nMax ? info_.nMax + 1 : std::max(info.nPage, 0);
        setPosition(info.nPos);
    }
    void setPosition(int position) { info_.nPos = std::clamp(position, 0, limit()); }

    const SCROLLINFO& info() const { return info_; }
    // The highest position: the last page in view, or the maximum itself when the page is 0.
    int limit() const { return info_.nMax - std::max(info_.nPage - 1, 0); }

private:
    SCROLLINFO info_;
};
