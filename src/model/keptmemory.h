// Memory that holds one row of things after another and goes back to the system only with its owner, since
// the system clears each page that it hands out anew.
#pragma once

#include <cstddef>
#include <memory>
#include <span>

class KeptMemory {
public:
    // Place for so many things, which need no destructor. What stands here stays, unless more is asked for
    // than ever before. What is never written to takes no memory.
    template <class Thing> std::span<Thing> place(std::size_t count) {
        if (count * sizeof(Thing) > size_)
            grow(count * sizeof(Thing));
        return {static_cast<Thing*>(static_cast<void*>(bytes_.get())), count};
    }

private:
    void grow(std::size_t size) {
        size_ = 0;
        bytes_.reset(); // first, so that the two are never there at once
        bytes_ = std::make_unique_for_overwrite<std::byte[]>(size);
        size_ = size;
    }

    std::unique_ptr<std::byte[]> bytes_;
    std::size_t size_ = 0;
};
