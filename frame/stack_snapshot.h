// The call stack that was, kept with a record for a later listing.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

namespace vxut {

struct clsStackSnapshot {
    struct Entry {
        void* address = nullptr; // null in unused entries
        uintptr_t words[2] = {};
    };
    static constexpr uint32_t kEntries = 30;

    std::array<Entry, kEntries> entries;

    // Leaves out the first skip frames.
    static std::unique_ptr<clsStackSnapshot> Take(uint32_t skip);
};

} // namespace vxut
