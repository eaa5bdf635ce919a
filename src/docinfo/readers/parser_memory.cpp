#include "docinfo/readers/parser_memory.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace vxut {
namespace {

constexpr size_t kSmallAreaBytes = size_t{256} * 1024 * 1024;
constexpr size_t kFirstBytes = size_t{64} * 1024; // of each area
constexpr size_t kStepBytes = size_t{256} * 1024;

size_t RoundedUp(size_t bytes, size_t unit) { return (bytes + unit - 1) / unit * unit; }

} // namespace

clsParserMemory::clsParserMemory() noexcept
    : pages_(
          VirtualAlloc(nullptr, kBuffers * kMostBufferBytes + kSmallAreaBytes, MEM_RESERVE, PAGE_NOACCESS)) {
    if (!pages_) return;
    auto* start = static_cast<uint8_t*>(pages_.Get());
    isReady_ = true;
    for (Area& buffer : buffers_) {
        buffer = {start, kMostBufferBytes, 0};
        start += kMostBufferBytes;
        isReady_ = isReady_ && buffer.Provide(kFirstBytes);
    }
    small_ = {start, kSmallAreaBytes, 0};
    isReady_ = isReady_ && small_.Provide(kFirstBytes);
}

// Makes at least the first needed bytes usable.
bool clsParserMemory::Area::Provide(size_t needed) noexcept {
    if (needed <= usable) return true;
    if (needed > bytes) return false;
    const size_t more = std::min(RoundedUp(needed - usable, kStepBytes), bytes - usable);
    const size_t first = usable == 0 ? needed : more;
    if (!VirtualAlloc(start + usable, first, MEM_COMMIT, PAGE_READWRITE)) return false;
    usable += first;
    return true;
}

HRESULT clsParserMemory::QueryInterface(REFIID id, void** object) {
    if (!object) return E_POINTER;
    if (!IsEqualIID(id, IID_IMalloc)) return clsIUnknownImpl::QueryInterface(id, object);
    *object = static_cast<IMalloc*>(this);
    AddRef();
    return S_OK;
}

clsParserMemory::Area* clsParserMemory::BufferOf(const Head* head) noexcept {
    for (Area& buffer : buffers_)
        if (reinterpret_cast<const uint8_t*>(head) == buffer.start) return &buffer;
    return nullptr;
}

clsParserMemory::Head* clsParserMemory::TakeBuffer(size_t bytes) noexcept {
    for (size_t i = 0; i < kBuffers; ++i) {
        if (isTaken_[i]) continue;
        if (!buffers_[i].Provide(sizeof(Head) + bytes)) return nullptr;
        isTaken_[i] = true;
        return reinterpret_cast<Head*>(buffers_[i].start);
    }
    return nullptr;
}

clsParserMemory::Head* clsParserMemory::TakeSmall(size_t bytes) noexcept {
    const size_t units = RoundedUp(bytes, kUnitBytes) / kUnitBytes;
    if (units < std::size(free_) && free_[units]) return std::exchange(free_[units], free_[units]->nextFree);
    const size_t needed = sizeof(Head) + units * kUnitBytes;
    if (needed > small_.bytes - smallBytes_ || !small_.Provide(smallBytes_ + needed)) return nullptr;
    return reinterpret_cast<Head*>(small_.start + std::exchange(smallBytes_, smallBytes_ + needed));
}

void* clsParserMemory::Alloc(SIZE_T bytes) {
    if (bytes > kSmallAreaBytes) return nullptr;
    Head* head = bytes >= kLeastBufferBytes ? TakeBuffer(bytes) : nullptr;
    if (!head) head = TakeSmall(bytes);
    if (!head) return nullptr;
    head->bytes = bytes;
    return head + 1;
}

void* clsParserMemory::Realloc(void* block, SIZE_T bytes) {
    if (!block) return Alloc(bytes);
    Head* const head = HeadOf(block);
    if (Area* const buffer = BufferOf(head)) {
        if (bytes > kMostBufferBytes || !buffer->Provide(sizeof(Head) + bytes)) return nullptr;
        head->bytes = bytes;
        return block;
    }
    void* const larger = Alloc(bytes);
    if (!larger) return nullptr;
    std::memcpy(larger, block, std::min<size_t>(head->bytes, bytes));
    Free(block);
    return larger;
}

void clsParserMemory::Free(void* block) {
    if (!block) return;
    Head* const head = HeadOf(block);
    if (const Area* const buffer = BufferOf(head)) {
        isTaken_[buffer - buffers_] = false;
        return;
    }
    const size_t units = RoundedUp(head->bytes, kUnitBytes) / kUnitBytes;
    if (units < std::size(free_)) head->nextFree = std::exchange(free_[units], head);
}

SIZE_T clsParserMemory::GetSize(void* block) { return block ? HeadOf(block)->bytes : 0; }

} // namespace vxut
