// What a window shows as rows of text, for those who have it read to them or see it cut.
#pragma once

#include <string>

#include "platform/window/geometry.h"

class RowSource {
public:
    virtual ~RowSource() = default;

    virtual std::string rowsName() const = 0; // what the rows are
    virtual int rowCount() const = 0;         // rows count from 1
    virtual std::string rowText(int row) const = 0;
    virtual RECT rowPlace(int row) const = 0; // in client pixels, also out of sight
    virtual int selectedRow() const = 0;      // 0 for none
    // The whole of a text that is cut at that place of the row; empty where none is.
    virtual std::string cutText(int row, int x) const = 0;
};
