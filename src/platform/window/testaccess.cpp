#include "platform/window/testaccess.h"

#include "platform/window/internal/host.h"

COLORREF surfacePixel(const CWnd& window, int x, int y) {
    if (window.host() == nullptr)
        return 0xFFFFFFFF;
    const Canvas& surface = *window.host()->surface();
    const QPoint place(static_cast<int>((x + 0.5) * surface.scale()),
                       static_cast<int>((y + 0.5) * surface.scale()));
    if (x < 0 || y < 0 || !surface.image().valid(place))
        return 0xFFFFFFFF;
    return colourOf(surface.image().pixel(place));
}

QWidget* clientWidget(const CWnd& window) {
    return window.host() == nullptr ? nullptr : window.host()->client();
}

QWidget* outerWidget(const CWnd& window) {
    return window.host();
}
