// A pane with a row of flat push buttons that rise under the mouse, repeat while they are held and show a
// hint. A frame makes it as any pane, with the background of getBrush(buttonFaceBrush), adds its buttons and
// gets their commands through frameCommand.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/window/dc.h"
#include "toolkit/barbutton.h"
#include "toolkit/hintwindow.h"
#include "toolkit/pane.h"

class TSXframe;

class TSXbuttonbar : public TSXpane {
public:
    static constexpr int capacity = 60;
    enum BarTimer : std::uint32_t { repeatTimer = 1235, hoverTimer = 1236 };

    // A bar 31 pixels high has room for icons.
    explicit TSXbuttonbar(TSXframe& frame);
    ~TSXbuttonbar() override;

    // Puts a button at the right end, as wide as its content when its width is 0. Gives its index, from 1, or
    // 0 when the bar is full.
    int addButton(const BarButton& button, std::unique_ptr<CBitmap> bitmap = nullptr);
    // The record of an index from 1 to buttonCount; invalidate the bar after a change.
    BarButton& button(int index) { return buttons[static_cast<std::size_t>(index)]; }
    // The button whose edges enclose a place in client pixels; 0 for none.
    int buttonAt(int x, int y) const;

    // No effect when the index is not that of a button.
    void drawButton(CDC& dc, int index, int state);
    void showHint(); // of the button under the mouse; an older hint goes first
    void hideHint();

    void paneSized(int type, int width, int height) override;
    void paintPane(CDC& dc) override;
    void mouseDown(int kind, int x, int y) override;
    void mouseUp(int kind, int x, int y) override;
    void mouseMove(int kind, int x, int y) override;

private:
    void onTimer(std::uint32_t id) override;
    void onCaptureChanged() override;
    void onMouseLeave() override;

    void layOut();
    int stateOf(int index) const;
    void redraw(CDC& dc, int index);
    void hoverOver(int index);
    void repeatPressed();

    TSXframe& owner;
    std::unique_ptr<CDC> pressContext; // while a button is held down
    std::int32_t pressedIndex = 0;     // the button that is held down
    std::int32_t pressActive = 0;
    std::int32_t hoverIndex = 0; // the button under the mouse
    std::int32_t buttonCount = 0;
    std::vector<BarButton> buttons; // slot 0 is unused, as in bitmaps
    std::vector<std::unique_ptr<CBitmap>> bitmaps;
    const ButtonLook look;
    std::int32_t repeatCount = 0;
    bool repeated = false;      // the press has given its command, and gives none when it ends
    std::int32_t hintShown = 0; // the hover delay has passed, and the mouse has not left the bar since
    std::unique_ptr<TSXhintwindow> hint;
};
