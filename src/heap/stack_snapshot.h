// The call stack at one moment, kept with a record for a later listing.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

namespace vxut {

// The pointer to the snapshot of a debug object lies in memory that a host may overwrite: what it leads to is
// a snapshot only if Read() says so.
struct clsStackSnapshot {
    struct Entry {
        void* address = nullptr; // null in unused entries
        uintptr_t words[2] = {};
    };
    static constexpr uint32_t kEntries = 30;

    std::array<Entry, kEntries> entries;
    uint64_t checkWord; // differs for each address: a copy elsewhere is no snapshot

    clsStackSnapshot() noexcept : checkWord(CheckWord(this)) {}
    ~clsStackSnapshot();
    clsStackSnapshot(const clsStackSnapshot&) = delete;
    clsStackSnapshot& operator=(const clsStackSnapshot&) = delete;

    // Takes the stack of the current thread, without the first skip frames and without the leading frames of
    // the library itself. Null when memory is short.
    static std::unique_ptr<clsStackSnapshot> Take(uint32_t skip);

    // Whether any pointer leads to a live snapshot. Not null.
    static bool IsSnapshot(const clsStackSnapshot* snapshot);

    // Reports the modules that were called through, one line each, under a title. Callers hold JobLock().
    void WriteListing(const wchar_t* title) const;
    // The same for the first entries only, without a title.
    void WriteCallers(uint32_t count) const;

private:
    static uint64_t CheckWord(const clsStackSnapshot* snapshot) noexcept;
};

} // namespace vxut
