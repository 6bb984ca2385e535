// A device context: draws on a window's surface, a picture in memory or the screen. All places are logical
// pixels; on a screen of a higher resolution each becomes a block of device pixels, and nothing but letters
// is ever smoothed. It starts with a black pen, a white brush, the system font, black text on an opaque white
// background, and stays usable without effect when its window goes.
#pragma once

#include <memory>

#include "platform/system/cobject.h"
#include "platform/window/colour.h"
#include "platform/window/drawingobjects.h"
#include "platform/window/geometry.h"

class CBitmap;
class Canvas;
struct DrawingState;
struct IconResource;

enum BackgroundMode : int { TRANSPARENT = 1, OPAQUE = 2 };
enum TextAlignment : unsigned { TA_LEFT = 0, TA_TOP = 0, TA_RIGHT = 2, TA_CENTER = 6 };

class CDC : public CObject {
public:
    CDC(); // has nothing to draw on, and no effect, until it is a memory context with a bitmap
    ~CDC() override;

    // Makes it a memory context at the resolution of the other one.
    void CreateCompatibleDC(const CDC& other);

    // What is selected is copied and need not live on. The object selected before is not given back.
    void SelectObject(const CPen* pen);
    void SelectObject(const CBrush* brush);
    void SelectObject(const CFont* font);
    void SelectObject(const CBitmap* bitmap); // memory contexts only; it is what they draw on from then
    void SelectStockObject(StockObject object);

    void MoveTo(int x, int y);
    void LineTo(int x, int y); // with the pen; leaves out the end point
    // Outline with the pen, inside with the brush; the right column and the bottom row are left out.
    void Rectangle(int left, int top, int right, int bottom);
    void SetPixel(int x, int y, COLORREF colour);
    // Leaves its colour as the background colour. A width or height below 1 fills nothing.
    void FillSolidRect(int x, int y, int width, int height, COLORREF colour);

    void SetTextColor(COLORREF colour);
    void SetBkColor(COLORREF colour);
    void SetBkMode(BackgroundMode mode);
    // A TextAlignment: where x lies in the text. y is always the top of its cell.
    void SetTextAlign(unsigned alignment);
    void TextOutA(int x, int y, const char* text);
    // Fills the rectangle with the background colour and clips the text to it: always both.
    void ExtTextOutA(int x, int y, const RECT& rectangle, const char* text);
    SIZE GetTextExtentPoint32A(const char* text) const; // of one line in the selected font, rounded up

    // Copies pixels from another context, whose scale may differ.
    void BitBlt(int x, int y, int width, int height, const CDC& source, int sourceX, int sourceY);
    void DrawIcon(int x, int y, const IconResource& icon);
    COLORREF GetNearestColor(COLORREF colour) const { return colour & 0xFFFFFF; }

    // The rectangle around all that can be drawn on: of a CPaintDC, the paint rectangle.
    RECT GetClipBox() const;

protected:
    explicit CDC(std::shared_ptr<Canvas> canvas);
    std::unique_ptr<DrawingState> state_;

private:
    friend class CBitmap;
};

// A picture in memory, which a memory device context draws on while it is selected there.
class CBitmap : public CObject {
public:
    CBitmap() = default;

    // Makes the picture, width by height logical pixels at the resolution of what the context draws on;
    // transparent until drawn on. What was held before is given up.
    void CreateCompatibleBitmap(const CDC& context, int width, int height);

    const std::shared_ptr<Canvas>& canvas() const { return canvas_; } // for the layer itself

private:
    std::shared_ptr<Canvas> canvas_;
};
