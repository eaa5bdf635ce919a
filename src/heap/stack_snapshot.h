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

    // Leaves out the first skip frames. Null when memory is short.
    static std::unique_ptr<clsStackSnapshot> Take(uint32_t skip);

    // Reports the modules that were called through, one line each, under a title. Callers hold JobLock().
    void WriteListing(const wchar_t* title) const;
    // The same for the first entries only, without a title.
    void WriteCallers(uint32_t count) const;
};

} // namespace vxut
