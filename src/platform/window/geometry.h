// Points, sizes and rectangles in logical pixels. A rectangle leaves out its right column and its bottom row.
#pragma once

struct POINT {
    int x = 0;
    int y = 0;
};

struct SIZE {
    int cx = 0;
    int cy = 0;
};

struct RECT {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};
