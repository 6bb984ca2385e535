#include "platform/window/resources.h"

#include <algorithm>

namespace {

Resources tables;

template <class Resource> const Resource* find(std::span<const Resource> table, int number) {
    const auto found = std::find_if(table.begin(), table.end(),
                                    [number](const Resource& row) { return row.number == number; });
    return found == table.end() ? nullptr : &*found;
}

} // namespace

void setResources(const Resources& resources) {
    tables = resources;
}

const IconResource* LoadIconA(int number) {
    return find(tables.icons, number);
}

const MenuResource* findMenu(int number) {
    return find(tables.menus, number);
}

const DialogResource* findDialog(int number) {
    return find(tables.dialogs, number);
}
