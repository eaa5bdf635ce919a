// Memory of exceptions in flight and the end after a fatal one, in place of those of the C++ run-time.
//
// The run-time's own functions take an exception's memory from the heap, keep an emergency pool that they
// allocate at load and never free, and make a thread's record and a lock when they are first used. A first
// throw that finds no memory ends the process, and each load and unload of the DLL loses the pool, a slot of
// thread-local storage and two handles. These functions allocate nothing: the blocks below are part of the
// module, and the loader makes the record of each thread, of those that run already too, together with its
// thread-local variables.
#include <windows.h>

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>

#include <cxxabi.h>

namespace {

// The run-time keeps its own fields before the object that is thrown: 160 bytes, and alignment.
constexpr size_t kHeaderBytes = 256;
constexpr size_t kBlockBytes = 512;
constexpr size_t kBlockCount = 64;
// How long a throw waits for a block while all are in use and the heap has no memory.
constexpr int kPatience = 10000;

struct alignas(std::max_align_t) Block {
    std::byte bytes[kBlockBytes];
};

constinit Block blocks[kBlockCount] = {};
constinit std::atomic<uint64_t> usedBlocks{0}; // a bit for each

void* TakeBlock() noexcept {
    uint64_t used = usedBlocks.load(std::memory_order_relaxed);
    while (used != UINT64_MAX) {
        const int index = std::countr_one(used);
        if (usedBlocks.compare_exchange_weak(used, used | uint64_t{1} << index, std::memory_order_acquire,
                                             std::memory_order_relaxed))
            return blocks[index].bytes;
    }
    return nullptr;
}

void* TryAllocate(size_t bytes) noexcept {
    void* const block = bytes <= kBlockBytes ? TakeBlock() : nullptr;
    return block ? block : std::malloc(bytes);
}

// Zeroed, as the run-time expects its fields to be.
void* Allocate(size_t bytes) noexcept {
    void* memory = TryAllocate(bytes);
    // Other threads are handling exceptions of the same shortage and free their blocks soon.
    for (int waited = 0; !memory && waited < kPatience; ++waited) {
        Sleep(1);
        memory = TryAllocate(bytes);
    }
    if (!memory) std::terminate();
    return std::memset(memory, 0, bytes);
}

void Free(void* memory) noexcept {
    const auto offset = reinterpret_cast<uintptr_t>(memory) - reinterpret_cast<uintptr_t>(blocks);
    if (offset < sizeof blocks) {
        usedBlocks.fetch_and(~(uint64_t{1} << offset / sizeof(Block)), std::memory_order_release);
    } else {
        std::free(memory);
    }
}

} // namespace

namespace __cxxabiv1 {

// The exceptions that a thread is handling. The layout is part of the binary interface of C++.
struct __cxa_eh_globals {
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};

namespace {

constinit thread_local __cxa_eh_globals threadGlobals = {};

} // namespace

// What std::terminate() calls. The run-time's own handler prints the type of the exception to a console that
// hosts rarely have, and for that brings a demangler of 45 KB with it.
extern std::terminate_handler __terminate_handler;
std::terminate_handler __terminate_handler = std::abort;

extern "C" {

__cxa_eh_globals* __cxa_get_globals() noexcept { return &threadGlobals; }

__cxa_eh_globals* __cxa_get_globals_fast() noexcept { return &threadGlobals; }

void* __cxa_allocate_exception(size_t bytes) noexcept {
    if (bytes > SIZE_MAX - kHeaderBytes) std::terminate();
    return static_cast<std::byte*>(Allocate(kHeaderBytes + bytes)) + kHeaderBytes;
}

void __cxa_free_exception(void* object) noexcept { Free(static_cast<std::byte*>(object) - kHeaderBytes); }

// The record with which std::rethrow_exception() throws an object once more.
__cxa_dependent_exception* __cxa_allocate_dependent_exception() noexcept {
    return static_cast<__cxa_dependent_exception*>(Allocate(kHeaderBytes));
}

void __cxa_free_dependent_exception(__cxa_dependent_exception* record) noexcept { Free(record); }

} // extern "C"

} // namespace __cxxabiv1
