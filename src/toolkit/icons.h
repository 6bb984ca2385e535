// The small pictures as data: each a list of rectangles and pixels in the order in which they are drawn, or
// the number of a stored icon of the program.
#pragma once

#include <cstdint>
#include <span>

struct IconPart {
    std::uint32_t colour;              // 0xRRGGBB, or iconBaseColour
    std::int8_t x, y;                  // relative to the icon's place
    std::int8_t width = 0, height = 0; // both 0 for a single pixel
};

// Stands for colour 1 of the drawing set.
constexpr std::uint32_t iconBaseColour = 0xFF000000;

// Empty when the picture is not one of the drawn ones.
std::span<const IconPart> iconParts(int number);

// The number of the icon resource that is shown for an icon number; 0 when there is none.
int storedIcon(int number);
