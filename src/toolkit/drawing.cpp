#include "toolkit/drawing.h"

#include <algorithm>
#include <map>
#include <utility>

#include "platform/window/windowdc.h"

namespace {

constexpr COLORREF black = RGB(0, 0, 0);
constexpr COLORREF red = RGB(255, 0, 0);
constexpr COLORREF green = RGB(0, 255, 0);
constexpr COLORREF blue = RGB(0, 0, 255);

using Channels = std::array<std::int32_t, 3>;

struct DrawingSet {
    std::map<int, COLORREF> colours;
    std::map<int, CBrush> brushes;
    std::map<int, CPen> pens;
    std::map<int, CFont> fonts;
};

DrawingSet set;

template <class Formula> COLORREF perChannel(const Channels& base, Formula formula) {
    return RGB(static_cast<int>(formula(base[0])), static_cast<int>(formula(base[1])),
               static_cast<int>(formula(base[2])));
}

// A little darker, and further from grey.
COLORREF accent(const Channels& base) {
    const int middle = static_cast<int>((base[0] + base[1] + base[2]) * 0.31);
    return perChannel(base, [middle](int c) {
        const int darker = static_cast<int>(c * 0.88);
        return std::clamp(static_cast<int>(darker + (darker - middle) * 1.5), 0, 255);
    });
}

void makeColours(const Channels& base) {
    set.colours = {
        {baseColour, perChannel(base, [](int c) { return c; })},
        {darkColour, perChannel(base, [](int c) { return c * 0.86; })},
        {darkerColour, perChannel(base, [](int c) { return c * 0.76; })},
        {darkEdgeColour, perChannel(base, [](int c) { return c * 0.7; })},
        {lightEdgeColour, perChannel(base, [](int c) { return 255.0 - (255 - c) * 0.4; })},
        {accentColour, accent(base)},
        {greenColour, green},
    };
}

void makeBrushes() {
    const CClientDC screen(nullptr);
    for (const int number : {1, 2, 3})
        set.brushes.try_emplace(number, screen.GetNearestColor(getColour(number)));
    const std::pair<int, COLORREF> rows[] = {{4, green},
                                             {5, blue},
                                             {6, red},
                                             {101, getColour(accentColour)},
                                             {buttonFaceBrush, GetSysColor(COLOR_BTNFACE)}};
    for (const auto& [number, colour] : rows)
        set.brushes.try_emplace(number, colour);
}

void makePens() {
    const std::pair<int, COLORREF> rows[] = {{1, getColour(lightEdgeColour)},
                                             {darkEdgePen, getColour(darkEdgeColour)},
                                             {3, getColour(baseColour)},
                                             {5, red},
                                             {6, blue},
                                             {199, GetSysColor(COLOR_3DLIGHT)},
                                             {desktopHighlightPen, GetSysColor(COLOR_BTNHIGHLIGHT)},
                                             {201, GetSysColor(COLOR_BTNFACE)},
                                             {desktopShadowPen, GetSysColor(COLOR_BTNSHADOW)},
                                             {203, GetSysColor(COLOR_3DDKSHADOW)}};
    for (const auto& [number, colour] : rows)
        set.pens.try_emplace(number, colour);
}

void makeFonts() {
    const std::pair<int, LOGFONT> rows[] = {
        {plainFont, {-11, 0, 400, false, "arial"}}, {boldFont, {-12, 0, 700, false, "arial"}},
        {3, {-11, 0, 400, true, "arial"}},          {4, {-9, 0, 400, false, "arial"}},
        {5, {-14, 0, 400, false, "courier new"}},   {6, {-7, 0, 400, false, "arial"}},
        {7, {-11, 0, 400, true, "arial"}},          {101, {-11, 900, 400, false, "arial"}},
        {102, {-10, 900, 400, false, "arial"}},
    };
    for (const auto& [number, font] : rows)
        set.fonts.try_emplace(number, font);
}

// The object of the number, else the first one; null before there is a set.
template <class Object> const Object* find(const std::map<int, Object>& objects, int number) {
    const auto found = objects.find(number);
    if (found != objects.end())
        return &found->second;
    return objects.empty() ? nullptr : &objects.at(1);
}

} // namespace

void initDrawing(const std::array<std::int32_t, 3>& base) {
    releaseDrawing();
    makeColours(base);
    makeBrushes();
    makePens();
    makeFonts();
}

void releaseDrawing() {
    set.brushes.clear();
    set.pens.clear();
    set.fonts.clear();
    set.colours.clear();
}

COLORREF getColour(int number) {
    const auto found = set.colours.find(number);
    return found == set.colours.end() ? black : found->second;
}

const CBrush* getBrush(int number) {
    return find(set.brushes, number);
}

const CPen* getPen(int number) {
    return find(set.pens, number);
}

const CFont* getFont(int number) {
    return find(set.fonts, number);
}

void drawLine(CDC& dc, POINT from, POINT to) {
    dc.MoveTo(from.x, from.y);
    dc.LineTo(to.x, to.y);
}
