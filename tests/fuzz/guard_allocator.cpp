// Replaces operator new. Each block ends at an inaccessible page, and freed blocks stay inaccessible for a
// while, so that an overrun or a use after free raises an exception. For all threads.
#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

constexpr size_t kPage = 4096;
constexpr size_t kAlignment = 16;
// Freed blocks that keep their address space; the oldest one is released first.
constexpr size_t kQuarantine = 4096;
// Blocks beyond this number of live ones are not guarded: two pages for each would slow every input down, and
// a process of Wine has no more than 65 530 mappings.
constexpr unsigned kMaxGuardedLive = 10000;

struct Header {
    uint64_t magic;
    void* base;
};
constexpr uint64_t kGuarded = 0x6775617264656421;
constexpr uint64_t kPlain = 0x706C61696E626C6B;

SRWLOCK lock = SRWLOCK_INIT;
void* quarantine[kQuarantine];
size_t oldest = 0;
unsigned guardedLive = 0;

Header& HeaderOf(void* block) { return static_cast<Header*>(block)[-1]; }

void* AllocateGuarded(size_t size) {
    // The header precedes the block, so that an underrun is found when the block is freed.
    const size_t used = (size + sizeof(Header) + kAlignment - 1) & ~(kAlignment - 1);
    const size_t pages = (used + kPage - 1) / kPage;
    auto* base =
        static_cast<uint8_t*>(VirtualAlloc(nullptr, (pages + 1) * kPage, MEM_RESERVE, PAGE_NOACCESS));
    if (base == nullptr) return nullptr;
    if (VirtualAlloc(base, pages * kPage, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
        VirtualFree(base, 0, MEM_RELEASE);
        return nullptr;
    }
    // A block whose size is not a multiple of the alignment ends up to 15 bytes before the page.
    void* block = base + pages * kPage - (used - sizeof(Header));
    HeaderOf(block) = {kGuarded, base};
    return block;
}

void* AllocatePlain(size_t size) {
    auto* memory = static_cast<Header*>(std::malloc(size + sizeof(Header)));
    if (memory == nullptr) return nullptr;
    *memory = {kPlain, memory};
    return memory + 1;
}

void FreeGuarded(void* base) {
    VirtualFree(base, 0, MEM_DECOMMIT);
    AcquireSRWLockExclusive(&lock);
    --guardedLive;
    void* released = quarantine[oldest];
    quarantine[oldest] = base;
    oldest = (oldest + 1) % kQuarantine;
    ReleaseSRWLockExclusive(&lock);
    if (released) VirtualFree(released, 0, MEM_RELEASE);
}

bool TakeGuardedPlace() {
    AcquireSRWLockExclusive(&lock);
    const bool taken = guardedLive < kMaxGuardedLive;
    guardedLive += taken;
    ReleaseSRWLockExclusive(&lock);
    return taken;
}

} // namespace

void* operator new(size_t size) {
    void* block = TakeGuardedPlace() ? AllocateGuarded(size) : AllocatePlain(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
    try {
        return operator new(size);
    } catch (...) {
        return nullptr;
    }
}

void operator delete(void* block) noexcept {
    if (block == nullptr) return;
    const Header header = HeaderOf(block);
    if (header.magic == kGuarded) {
        FreeGuarded(header.base);
    } else if (header.magic == kPlain) {
        std::free(header.base);
    } else {
        __builtin_trap(); // an underrun, or a pointer that was never allocated
    }
}

void* operator new[](size_t size) { return operator new(size); }
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete[](void* block) noexcept { operator delete(block); }
void operator delete(void* block, size_t) noexcept { operator delete(block); }
void operator delete[](void* block, size_t) noexcept { operator delete(block); }
