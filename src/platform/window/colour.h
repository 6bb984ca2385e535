// Colour values: red in the lowest byte, green in the next, blue in the third.
#pragma once

#include <cstdint>

using COLORREF = std::uint32_t;

// The low 8 bits of each channel count.
constexpr COLORREF RGB(int red, int green, int blue) {
    return (static_cast<COLORREF>(red) & 0xFF) | (static_cast<COLORREF>(green) & 0xFF) << 8 |
           (static_cast<COLORREF>(blue) & 0xFF) << 16;
}

enum SystemColour : int {
    COLOR_BTNFACE = 15,
    COLOR_BTNSHADOW = 16,
    COLOR_BTNTEXT = 18,
    COLOR_BTNHIGHLIGHT = 20,
    COLOR_3DDKSHADOW = 21,
    COLOR_3DLIGHT = 22,
};

// The colour that the desktop's palette has for it now.
COLORREF GetSysColor(SystemColour colour);
