// The call stack at one moment, kept with a record for a later listing.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

namespace vxut {

// The pointer to the snapshot of a debug object lies in memory that a host may overwrite: follow it only
// after IsSnapshot(). Created with new, and owned by the record or object that it belongs to.
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

    // Captures the stack of the current thread, without the first skip frames and without the leading frames
    // of the library itself. Returns null if memory is short.
    static std::unique_ptr<clsStackSnapshot> Take(uint32_t skip);

    // Returns whether a pointer, which may lead anywhere, is a live snapshot.
    static bool IsSnapshot(const clsStackSnapshot* snapshot);

    // Reports the module of each entry under a title. Callers hold JobLock().
    void WriteListing(const wchar_t* title) const;
    // Reports the modules of the first count entries. Callers hold JobLock().
    void WriteCallers(uint32_t count) const;

private:
    static uint64_t CheckWord(const clsStackSnapshot* snapshot) noexcept;
};

} // namespace vxut
