// The painter of the small pictures.
#pragma once

class CDC;

// Draws the icon of that number at (x, y), over what is there; a number without a picture draws nothing.
// Leaves the context's background colour changed.
void paintIcon(CDC& dc, int x, int y, int number);
