// Makes the rows of a window known to screen readers, as a list of texts.
#pragma once

// Once is enough; every window with rows is known from then on.
void makeRowsAccessible();
