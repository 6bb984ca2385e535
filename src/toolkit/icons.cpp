#include "toolkit/icons.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>

#include "platform/window/dc.h"
#include "platform/window/resources.h"
#include "toolkit/drawing.h"

// The pictures as data: each a list of rectangles and pixels in the order in which they are drawn, or the
// number of a stored icon of the program.

namespace {

struct IconPart {
    std::uint32_t colour;              // 0xRRGGBB, or iconBaseColour
    std::int8_t x, y;                  // relative to the icon's place
    std::int8_t width = 0, height = 0; // both 0 for a single pixel
};

// Stands for colour 1 of the drawing set.
constexpr std::uint32_t iconBaseColour = 0xFF000000;

struct Place {
    std::int8_t x, y;
    std::int8_t width = 0, height = 0;
};

// The shape in the shadow's colour, and over it in the other one, one pixel to the left and up.
template <std::size_t N>
constexpr std::array<IconPart, 2 * N> shadowed(const Place (&shape)[N], std::uint32_t shadow,
                                               std::uint32_t colour) {
    std::array<IconPart, 2 * N> parts = {};
    for (std::size_t i = 0; i < N; ++i) {
        const Place& at = shape[i];
        parts[i] = {shadow, at.x, at.y, at.width, at.height};
        parts[N + i] = {colour, static_cast<std::int8_t>(at.x - 1), static_cast<std::int8_t>(at.y - 1),
                        at.width, at.height};
    }
    return parts;
}

constexpr IconPart cross[] = {{0xD20000, 3, 1, 1, 2}, {0xD20000, 3, 6, 1, 2}, {0xD20000, 4, 2, 1, 2},
                              {0xD20000, 4, 5, 1, 2}, {0xD20000, 5, 3, 1, 2}, {0xD20000, 5, 4, 1, 2},
                              {0xD20000, 6, 4, 1, 2}, {0xD20000, 6, 3, 1, 2}, {0xD20000, 7, 5, 1, 2},
                              {0xD20000, 7, 2, 1, 2}, {0xD20000, 8, 6, 1, 2}, {0xD20000, 8, 1, 1, 2},
                              {0xD20000, 9, 1},       {0x323232, 9, 2},       {0x323232, 8, 3},
                              {0x323232, 7, 4},       {0x323232, 5, 6},       {0x323232, 4, 7},
                              {0x323232, 9, 7},       {0xA08080, 9, 6},       {0xA08080, 8, 5}};
constexpr Place rightArrow[] = {{1, 4, 8, 5}, {7, 2, 1, 9},  {8, 3, 1, 7},
                                {9, 4, 1, 5}, {10, 5, 1, 3}, {11, 6, 1, 1}};
constexpr IconPart lamp[] = {{0x00C000, 3, 3, 3, 3}, {0x00FF00, 3, 2, 2, 1}, {0x00FF00, 2, 3, 1, 2},
                             {0x008000, 3, 6, 3, 1}, {0x008000, 6, 3, 1, 3}, {0x00A000, 6, 3, 1, 1},
                             {0x00A000, 3, 6, 1, 1}};
constexpr IconPart square[] = {{iconBaseColour, 2, 2, 5, 5}, {0x5C5C5C, 4, 4, 1, 1}};
constexpr Place tick[] = {{1, 3}, {2, 4}, {3, 5}, {4, 6}, {5, 7}, {3, 4}, {4, 5},  {5, 6},
                          {5, 5}, {5, 4}, {6, 6}, {7, 5}, {8, 4}, {9, 3}, {10, 2}, {11, 1},
                          {6, 5}, {7, 4}, {8, 3}, {9, 2}, {6, 4}, {7, 3}};
constexpr Place bentArrow[] = {{4, 7, 1, 1}, {5, 6, 1, 3},  {6, 5, 1, 5},  {7, 4, 1, 7},  {8, 6, 1, 3},
                               {9, 6, 1, 3}, {10, 6, 1, 3}, {11, 6, 1, 6}, {12, 6, 1, 6}, {13, 7, 1, 5}};
constexpr Place letterN[] = {{2, 4, 2, 8}, {7, 4, 2, 8}, {4, 5, 1, 3}, {5, 6, 1, 3},
                             {6, 7, 1, 3}, {7, 8, 1, 3}, {8, 9, 1, 3}};
constexpr IconPart twoArrows[] = {{0xE6E6E6, 0, 0, 15, 15}, {0x808080, 2, 7, 11, 1}, {0x808080, 11, 6},
                                  {0x808080, 11, 8},        {0x808080, 5, 4, 6, 1},  {0x808080, 9, 3},
                                  {0x808080, 9, 5},         {0x808080, 4, 3},        {0x808080, 3, 2},
                                  {0x808080, 5, 10, 6, 1},  {0x808080, 9, 9},        {0x808080, 9, 11},
                                  {0x808080, 4, 11},        {0x808080, 3, 12}};
constexpr IconPart lanes[] = {
    {0xE6E6E6, 0, 0, 15, 15}, {0xC8C8C8, 2, 1, 4, 1},  {0x8C8C8C, 2, 2, 4, 1},  {0xAAAAAA, 2, 2},
    {0xAAAAAA, 5, 2},         {0xC8C8C8, 2, 4, 4, 1},  {0x969696, 2, 5, 4, 1},  {0xB4B4B4, 2, 5},
    {0xB4B4B4, 5, 5},         {0xBEBEBE, 2, 7, 4, 1},  {0x646464, 2, 8, 4, 1},  {0x787878, 2, 8},
    {0x787878, 5, 8},         {0xD2D2D2, 2, 11, 4, 1}, {0xB4B4B4, 2, 12, 4, 1}, {0xC8C8C8, 9, 1, 4, 1},
    {0x787878, 9, 2, 4, 1},   {0xAAAAAA, 9, 2},        {0xAAAAAA, 12, 2},       {0xC8C8C8, 9, 4, 4, 1},
    {0xB4B4B4, 9, 8, 4, 1},   {0x505050, 9, 9, 4, 1},  {0x646464, 9, 9},        {0x646464, 12, 9},
    {0xD2D2D2, 9, 11, 4, 1},  {0xBEBEBE, 9, 12, 4, 1}};
constexpr IconPart squares[] = {{0xE6E6E6, 0, 0, 15, 15}, {0xA0A0FF, 2, 2, 3, 3},  {0x6464FF, 6, 2, 3, 3},
                                {0x9696FF, 10, 2, 3, 3},  {0x7878FF, 2, 6, 3, 3},  {0xAAAAFF, 6, 6, 3, 3},
                                {0xFAFAFF, 10, 6, 3, 3},  {0xC8C8FF, 2, 10, 3, 3}, {0xC8C8FF, 6, 10, 3, 3},
                                {0x4646FF, 10, 10, 3, 3}};
constexpr IconPart letters[] = {{0x5A5A5A, 0, 0, 15, 15}, {0xFF0000, 2, 3, 1, 4},  {0xFF0000, 5, 3, 1, 4},
                                {0xFF0000, 3, 2},         {0xFF0000, 4, 2},        {0xFF0000, 2, 4, 3, 1},
                                {0x8C8CFF, 8, 3, 1, 3},   {0x8C8CFF, 9, 2, 2, 1},  {0x8C8CFF, 9, 6, 2, 1},
                                {0x8C8CFF, 11, 3},        {0x8C8CFF, 11, 5},       {0x00FF00, 2, 9, 1, 3},
                                {0x00FF00, 3, 8, 2, 1},   {0x00FF00, 3, 12, 2, 1}, {0x00FF00, 5, 11, 1, 2},
                                {0x00FF00, 4, 10, 2, 1},  {0x00FFFF, 8, 8, 3, 1},  {0x00FFFF, 9, 8, 1, 5}};
constexpr IconPart triangle[] = {{0xE6E6E6, 0, 0, 15, 15}, {0x505050, 2, 2, 4, 4},  {0xC0C0C0, 2, 6, 4, 4},
                                 {0x505050, 6, 6, 4, 4},   {0xD2D2D2, 2, 10, 4, 4}, {0x808080, 6, 10, 4, 4},
                                 {0x505050, 10, 10, 4, 4}};
constexpr IconPart spots[] = {
    {0xE6E6E6, 0, 0, 15, 15}, {0x646464, 4, 5},        {0x8C8C8C, 3, 5},        {0x8C8C8C, 5, 5},
    {0x8C8C8C, 4, 4},         {0x8C8C8C, 4, 6},        {0xB4B4B4, 3, 4},        {0xB4B4B4, 5, 4},
    {0xB4B4B4, 3, 6},         {0xB4B4B4, 5, 6},        {0x828282, 9, 7},        {0xAAAAAA, 8, 7},
    {0xAAAAAA, 10, 7},        {0xAAAAAA, 9, 6},        {0xAAAAAA, 9, 8},        {0xC8C8C8, 8, 6},
    {0xC8C8C8, 10, 6},        {0xC8C8C8, 8, 8},        {0xC8C8C8, 10, 8},       {0x828282, 11, 11},
    {0xAAAAAA, 10, 11},       {0xAAAAAA, 12, 11},      {0xAAAAAA, 11, 10},      {0xAAAAAA, 11, 12},
    {0xC8C8C8, 10, 10},       {0xC8C8C8, 12, 10},      {0xC8C8C8, 10, 12},      {0xC8C8C8, 12, 12},
    {0xB4B4B4, 4, 9, 4, 3},   {0x646464, 5, 10, 2, 1}, {0x8C8C8C, 5, 9, 2, 1},  {0x8C8C8C, 5, 11, 2, 1},
    {0x8C8C8C, 4, 10},        {0x8C8C8C, 7, 10},       {0xAAAAAA, 10, 3, 3, 3}, {0x787878, 10, 4, 3, 1},
    {0x787878, 11, 3, 1, 3},  {0x505050, 11, 4}};

constexpr auto shadowedRightArrow = shadowed(rightArrow, 0x000000, 0x5C5CFF);
constexpr auto shadowedTick = shadowed(tick, 0x646464, 0x00FF00);
constexpr auto shadowedBentArrow = shadowed(bentArrow, 0x5A5A5A, 0xC046C0);
constexpr auto greyBentArrow = shadowed(bentArrow, 0x8C8C8C, 0x8C8C8C);
constexpr auto shadowedLetterN = shadowed(letterN, 0x808080, 0xFF5050);

struct DrawnIcon {
    int number;
    std::span<const IconPart> parts;
};

// From 201 on, 200 and the number of a file class.
constexpr DrawnIcon drawnIcons[] = {
    {-4, cross},        {1, shadowedRightArrow},
    {2, lamp},          {3, square},
    {4, shadowedTick},  {5, shadowedBentArrow},
    {6, greyBentArrow}, {11, shadowedLetterN},
    {199, twoArrows},   {201, lanes},
    {202, squares},     {203, letters},
    {204, triangle},    {205, spots},
};

struct StoredIcon {
    int number;
    int resource;
};

constexpr StoredIcon storedIcons[] = {{7, 100},  {8, 101},  {9, 102},  {10, 103}, {12, 104}, {13, 105},
                                      {14, 106}, {15, 107}, {16, 108}, {17, 109}, {18, 110}, {19, 111}};

template <class Row, std::size_t N> const Row* find(const Row (&table)[N], int number) {
    const auto* const found = std::find_if(std::begin(table), std::end(table),
                                           [number](const Row& row) { return row.number == number; });
    return found == std::end(table) ? nullptr : found;
}

} // namespace

void paintIcon(CDC& dc, int x, int y, int number) {
    const DrawnIcon* const drawn = find(drawnIcons, number);
    for (const IconPart& part : drawn == nullptr ? std::span<const IconPart>() : drawn->parts) {
        const COLORREF colour =
            part.colour == iconBaseColour ? getColour(baseColour) : hexColour(part.colour);
        if (part.width == 0)
            dc.SetPixel(x + part.x, y + part.y, colour);
        else
            dc.FillSolidRect(x + part.x, y + part.y, part.width, part.height, colour);
    }
    if (const StoredIcon* const stored = find(storedIcons, number))
        if (const IconResource* const icon = LoadIconA(stored->resource))
            dc.DrawIcon(x, y, *icon);
}
