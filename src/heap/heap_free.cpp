// How heaps free and size objects.
#include "base/debug.h"
#include "base/shielded_read.h"
#include "heap/heap.h"
#include "heap/heap_object.h"
#include "heap/job.h"
#include "heap/report.h"
#include "heap/system_heap.h"
#include "util/frame.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace vxut {
namespace {

constexpr wchar_t kNotFreed[] = L"error freeing object";

// Clears the pointer, so that an object that is kept has no stack to free a second time. Returns false, and
// frees nothing, if the pointer leads to no stack.
bool FreeStack(scDebugHeader* block) {
    clsStackSnapshot* const stack = block->stackSnapshot;
    if (stack == nullptr) return true;
    if (!clsStackSnapshot::IsSnapshot(stack)) return false;
    block->stackSnapshot = nullptr;
    const std::unique_ptr<clsStackSnapshot> freed(stack);
    return true;
}

} // namespace

int32_t clsHeapNode::FreeObject(void* object) {
    switch (const uint32_t magic = ReadMagic(object)) {
        case kDebugMagic:
            return FreeObjectD(object);
        case kPlainMagic:
            return FreeObjectND(object);
        default:
            return Refuse(L"FreeObject", object,
                          {.text = L"bad pointer, or memory underrun (magic=0x%08x)", .number = magic});
    }
}

// Only an object of this heap is changed, and only an undamaged one is passed to the system.
int32_t clsHeapNode::FreeObjectD(void* object) {
    constexpr wchar_t kMethod[] = L"FreeObjectD";
    scDebugHeader* const block = DebugBlockOf(object);
    scDebugHeader header;
    if (!ReadHeader(header, block))
        return Refuse(kMethod, object,
                      {.text = L"Not allocated with UTIL or memory underrun (object not freed)"});
    const bool isWhole = TestObject(block);
    const bool isOurs = IsBlock(block);
    if (isOurs && !FreeStack(block))
        Refuse(kMethod, object, {.text = L"bad stack pointer (stack not freed)"});
    if (!isWhole)
        return Refuse(
            kMethod, object,
            {.text = L"Memory overrun, fence value has been changed (object not freed)", .dumped = block});
    if (header.size < 0)
        Refuse(kMethod, object,
               {.text = L"bad size %d", .number = static_cast<uint32_t>(header.size), .dumped = block});
    if (isOurs && DebugIsActive()) FillFreed(block, header.size);
    if (!isOurs || !FreeBlock(block)) return Refuse(kMethod, object, {.text = kNotFreed, .dumped = block});
    SubtractWrapping(objectCount, 1);
    SubtractWrapping(bytes, header.size);
    return UTIL_OK;
}

// While nobody listens this is a hot path: the magic is cleared, so that a second free is refused, and all
// other checks are left to the system.
int32_t clsHeapNode::FreeObjectND(void* object) {
    constexpr wchar_t kMethod[] = L"FreeObjectND";
    void* const block = PlainBlockOf(object);
    if (DebugIsActive()) {
        const int64_t size = BlockSize(block);
        if (size <= 0) {
            Refuse(kMethod, object, {.text = L"bad object size %d", .number = static_cast<uint32_t>(size)});
            return Refuse(kMethod, object, {.text = kNotFreed});
        }
        std::memset(block, kFreedFill, static_cast<size_t>(size));
    } else if (constexpr uint32_t kNoMagic = 0; !WriteShielded(block, kNoMagic)) {
        return Refuse(kMethod, object, {.text = kNotFreed});
    }
    if (!FreeBlock(block)) {
        WriteShielded(block, kPlainMagic);
        return Refuse(kMethod, object, {.text = kNotFreed});
    }
    SubtractWrapping(objectCount, 1);
    return UTIL_OK;
}

// The header may have been overwritten, so the size of the block limits the fill. An object of a negative
// size is not filled: that would touch gigabytes.
void clsHeapNode::FillFreed(scDebugHeader* block, int32_t size) const {
    const int64_t end = std::min<int64_t>(size, BlockSize(block) - int64_t{kDebugOverhead});
    if (end > 0) std::memset(ObjectOf(block), kFreedFill, static_cast<size_t>(end));
}

int32_t clsHeapNode::SizeObject(const void* object) const {
    constexpr wchar_t kMethod[] = L"SizeObject";
    const uint32_t magic = ReadMagic(object);
    int64_t size = -1;
    if (magic == kDebugMagic) size = BlockSize(DebugBlockOf(object)) - int64_t{kDebugOverhead};
    if (magic == kPlainMagic) size = BlockSize(PlainBlockOf(object)) - int64_t{kPlainOverhead};
    if (size < 0)
        return Refuse(kMethod, object,
                      {.text = L"bad pointer, or memory underrun (magic=0x%08x)\n", .number = magic});
    if (size == 0 && IsDebug()) {
        const clsReportScope scope(L"Warning: clsHeapNode['%s'/'%s']::%s(%#p):", owner->name, name, kMethod,
                                   object);
        WriteReport(L"Object has a size of 0 (bad pointer?)\n");
    }
    return static_cast<int32_t>(size);
}

bool clsHeapNode::FreeBlock(void* block) const { return FreeHeapBlock(heap.Get(), kSystemFlags, block); }

bool clsHeapNode::IsBlock(const void* block) const { return IsHeapBlock(heap.Get(), kSystemFlags, block); }

int64_t clsHeapNode::BlockSize(const void* block) const {
    return IsBlock(block) ? HeapBlockSize(heap.Get(), kSystemFlags, block) : -1;
}

int32_t clsHeapNode::Refuse(const wchar_t* method, const void* object, const Fault& fault) const {
    const clsReportScope scope(L"Error: clsHeapNode['%s'/'%s']::%s(%#p)", owner->name, name, method, object);
    WriteReport(fault.text, fault.number);
    if (fault.dumped) WriteObjectDump(fault.dumped);
    return UTIL_ERR_OBJECT;
}

} // namespace vxut
