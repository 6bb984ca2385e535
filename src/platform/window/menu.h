// A pop-up menu.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/system/cobject.h"

class CWnd;

class CMenu : public CObject {
public:
    struct Item {
        std::uint32_t id;
        std::string text;
    };

    CMenu() = default;

    // Adds an entry at the end.
    void AppendMenuA(std::uint32_t id, const char* text);
    // Opens the menu, with nothing marked, with its top-left corner at a point of the screen and returns when
    // it has closed. A choice is told afterwards, from the message loop, if the window is there by then.
    void TrackPopupMenu(int x, int y, CWnd& window,
                        const std::function<void(std::uint32_t id)>& chosen) const;

    const std::vector<Item>& items() const { return items_; }

private:
    std::vector<Item> items_;
};
