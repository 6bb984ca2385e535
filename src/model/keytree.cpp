#include "model/keytree.h"

#include "model/database.h"
#include "model/keyentry.h"
#include "platform/system/letters.h"

TSXkeytree::TSXkeytree(TSXdatabase& owner) : database(owner) {}

TSXkeytree::~TSXkeytree() = default;

TSXkeyentry* TSXkeytree::find(std::string_view key) const {
    TSXkeyentry* entry = root.get();
    while (entry != nullptr) {
        const int order = compareIgnoringCase(key, entry->key);
        if (order == 0)
            break;
        entry = (order < 0 ? entry->left : entry->right).get();
    }
    return entry;
}

TSXkeyentry& TSXkeytree::findoradd(std::string_view key) {
    added = 0;
    bool taller = false;
    return insert(root, key, taller);
}

// Insertion by balance factors. taller tells whether the subtree just visited has grown in height.
TSXkeyentry& TSXkeytree::insert(Link& link, std::string_view key, bool& taller) {
    if (!link) {
        link = std::make_unique<TSXkeyentry>(database, key);
        taller = true;
        added = 1;
        return *link;
    }
    const int order = compareIgnoringCase(key, link->key);
    if (order == 0) {
        taller = false;
        return *link;
    }
    TSXkeyentry& entry = insert(order < 0 ? link->left : link->right, key, taller);
    if (taller)
        taller = grow(link, order < 0 ? -1 : 1);
    return entry;
}

// The subtree on one side, -1 left or 1 right, has grown; answers whether the one at the link has grown with
// it.
bool TSXkeytree::grow(Link& link, int side) {
    if (link->balance == side) {
        if (side < 0)
            repairleft(link);
        else
            repairright(link);
        link->balance = 0;
        return false;
    }
    link->balance = static_cast<std::int16_t>(link->balance + side);
    return link->balance != 0;
}

void TSXkeytree::repairleft(Link& link) {
    Link top = std::move(link);
    Link child = std::move(top->left);
    if (child->balance == -1) {
        top->left = std::move(child->right);
        top->balance = 0;
        child->right = std::move(top);
        link = std::move(child);
        return;
    }
    Link middle = std::move(child->right);
    child->right = std::move(middle->left);
    top->left = std::move(middle->right);
    top->balance = middle->balance == -1 ? 1 : 0;
    child->balance = middle->balance == 1 ? -1 : 0;
    middle->left = std::move(child);
    middle->right = std::move(top);
    link = std::move(middle);
}

void TSXkeytree::repairright(Link& link) {
    Link top = std::move(link);
    Link child = std::move(top->right);
    if (child->balance == 1) {
        top->right = std::move(child->left);
        top->balance = 0;
        child->left = std::move(top);
        link = std::move(child);
        return;
    }
    Link middle = std::move(child->left);
    child->left = std::move(middle->right);
    top->right = std::move(middle->left);
    top->balance = middle->balance == 1 ? -1 : 0;
    child->balance = middle->balance == -1 ? 1 : 0;
    middle->right = std::move(child);
    middle->left = std::move(top);
    link = std::move(middle);
}

void TSXkeytree::clear() {
    root.reset();
}

void TSXkeytree::flatten() {
    database.keyarray.resize(static_cast<std::size_t>(database.keytotal) + 1);
    walk(root.get());
}

void TSXkeytree::walk(TSXkeyentry* entry) {
    if (entry == nullptr)
        return;
    walk(entry->left.get());
    ++database.keytotal;
    database.keyarray.push_back(entry);
    walk(entry->right.get());
}
