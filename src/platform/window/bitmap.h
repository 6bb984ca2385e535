// A picture in memory, which a memory device context draws on while it is selected there.
#pragma once

#include <memory>

#include "platform/system/cobject.h"

class CDC;
class Canvas;

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
