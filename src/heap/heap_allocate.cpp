// How heaps allocate objects.
#include "base/debug.h"
#include "heap/heap.h"
#include "heap/heap_object.h"
#include "heap/job.h"
#include "heap/report.h"
#include "util/heap.h"

#include <algorithm>
#include <cstring>

namespace vxut {
namespace {

constexpr uint32_t kListedCallers = 10;

constexpr const wchar_t* FormName(bool isDebug) { return isDebug ? L"D" : L"ND"; }

} // namespace

void* clsHeapNode::AllocObject(const scObjectRequest& request, clsHeapException& exception) {
    const bool isDebug =
        !(request.flags & UTIL_OBJECT_PLAIN) && ((request.flags & UTIL_OBJECT_DEBUG) || IsDebug());
    void* const object = isDebug ? AllocObjectD(request, exception) : AllocObjectND(request, exception);
    CountAllocation();
    if (object == nullptr)
        WriteReport(L"Error: clsHeapNode['%s'/'%s']::AllocObject%s(%d): Out of memory", owner->name, name,
                    FormName(isDebug), request.size);
    return object;
}

// Failed requests count as well: callers rely on it.
void clsHeapNode::CountAllocation() noexcept {
    AddWrapping(objectCount, 1);
    AddWrapping(total, 1);
    maximum = std::max(maximum, objectCount);
}

// A negative size is reported as a mistake, but served all the same, as the unsigned number of the same bits.
void* clsHeapNode::AllocObjectD(const scObjectRequest& request, clsHeapException& exception) {
    const size_t size = ObjectBytes(request.size);
    const bool isZeroed = (request.flags & UTIL_OBJECT_ZERO) != 0;
    if (request.size < 0 && DebugIsActive()) {
        const clsReportScope scope(L"Error: clsHeapNode['%s'/'%s']::AllocObject%s(%d)", owner->name, name,
                                   FormName(true), request.size);
        if (const auto callers = clsStackSnapshot::Take(kSkippedCallers))
            callers->WriteCallers(kListedCallers);
    }
    void* const block = AllocBlock(0, size + kDebugOverhead, exception);
    if (block == nullptr) return nullptr;
    auto stack = request.flags & UTIL_OBJECT_NO_STACK ? nullptr : clsStackSnapshot::Take(kSkippedCallers);
    const scDebugHeader header = {kHeadMagic,      heap.Get(),   GetTickCount(), stack.release(),
                                  request.userTag, request.size, kDebugMagic};
    std::memcpy(block, &header, kDebugHeaderBytes);
    auto* const object = static_cast<std::byte*>(block) + kDebugHeaderBytes;
    std::memcpy(object + size, &kFence, sizeof kFence);
    if (isZeroed) {
        std::memset(object, 0, size);
    } else if (request.flags & UTIL_OBJECT_FILL) {
        std::memset(object, kUninitialisedFill, size);
    }
    AddWrapping(bytes, request.size);
    return object;
}

void* clsHeapNode::AllocObjectND(const scObjectRequest& request, clsHeapException& exception) {
    const size_t size = ObjectBytes(request.size);
    const bool isZeroed = (request.flags & UTIL_OBJECT_ZERO) != 0;
    void* const block =
        AllocBlock(createOptions | (isZeroed ? HEAP_ZERO_MEMORY : 0), size + kPlainOverhead, exception);
    if (block == nullptr) return nullptr;
    std::memcpy(block, &kPlainMagic, sizeof kPlainMagic);
    auto* const object = static_cast<std::byte*>(block) + kPlainOverhead;
    if (!isZeroed && (request.flags & UTIL_OBJECT_FILL)) std::memset(object, kUninitialisedFill, size);
    return object;
}

// A fault inside the system, in a heap that an overrun has wrecked, counts as a lack of memory; the host sees
// it only if it has asked for exceptions.
void* clsHeapNode::AllocBlock(DWORD systemFlags, size_t size, clsHeapException& exception) const {
    clsHeapException fault;
    void* const block = AllocateShielded(heap.Get(), systemFlags | kSystemFlags, size, fault);
    if (createOptions & HEAP_GENERATE_EXCEPTIONS) exception = fault;
    return block;
}

} // namespace vxut
