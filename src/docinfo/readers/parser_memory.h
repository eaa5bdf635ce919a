// Memory for a parser of the system's that does not bear with every fault.
//
// Some versions of the parser keep a pointer into a buffer while they enlarge it, and write through it
// afterwards: buffers grow in place here. Some do not test whether they were given memory: an ordinary
// document needs no more than the object has from the beginning. Some leave blocks after a fault: all are
// freed with the object.
#pragma once

#include "base/owners.h"
#include "base/unknown.h"

#include <objbase.h>
#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace vxut {

struct scPagesTraits {
    using Type = void*;
    static Type Null() noexcept { return nullptr; }
    static void Close(Type pages) noexcept { VirtualFree(pages, 0, MEM_RELEASE); }
};

// On the stack: it must outlive what was made with it. For one thread.
class clsParserMemory : public clsIUnknownImpl, public IMalloc {
public:
    // No buffer grows beyond this.
    static constexpr size_t kMostBufferBytes = size_t{64} * 1024 * 1024;

    clsParserMemory() noexcept;

    // Whether there is memory to begin with. Without it the object may not be used.
    bool IsReady() const noexcept { return isReady_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return clsIUnknownImpl::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return clsIUnknownImpl::Release(); }

    // Return null without memory, and then leave an old block as it is.
    void* STDMETHODCALLTYPE Alloc(SIZE_T bytes) override;
    void* STDMETHODCALLTYPE Realloc(void* block, SIZE_T bytes) override;
    void STDMETHODCALLTYPE Free(void* block) override;
    SIZE_T STDMETHODCALLTYPE GetSize(void* block) override;
    int STDMETHODCALLTYPE DidAlloc(void*) override { return -1; } // not known
    void STDMETHODCALLTYPE HeapMinimize() override {}

private:
    static constexpr size_t kBuffers = 4;
    static constexpr size_t kUnitBytes = 32; // sizes of small blocks are multiples of it
    static constexpr size_t kLeastBufferBytes = 4096;

    // Before each block.
    struct alignas(16) Head {
        size_t bytes;
        Head* nextFree;
    };

    // A range of addresses whose first part can be used.
    struct Area {
        uint8_t* start = nullptr;
        size_t bytes = 0;
        size_t usable = 0;

        bool Provide(size_t needed) noexcept;
    };

    static Head* HeadOf(void* block) { return static_cast<Head*>(block) - 1; }
    // The area of a buffer; null for a small block.
    Area* BufferOf(const Head* head) noexcept;
    Head* TakeBuffer(size_t bytes) noexcept;
    Head* TakeSmall(size_t bytes) noexcept;

    clsAutoClose<scPagesTraits> pages_;
    Area buffers_[kBuffers];
    bool isTaken_[kBuffers] = {};
    Area small_;
    size_t smallBytes_ = 0; // that were ever taken
    Head* free_[kLeastBufferBytes / kUnitBytes + 2] = {};
    bool isReady_ = false;
};

} // namespace vxut
