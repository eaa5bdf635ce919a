#include "heap/heap.h"

#include "base/debug.h"
#include "base/shielded_read.h"
#include "heap/heap_object.h"
#include "heap/job.h"
#include "heap/report.h"
#include "heap/system_heap.h"
#include "util/frame.h"
#include "util/heap.h"

#include <cwchar>

namespace vxut {
namespace {

constexpr SIZE_T kInitialSize = 32768;

DWORD CreateOptions(uint32_t flags) {
    DWORD options = 0;
    if (flags & UTIL_HEAP_NO_SERIALIZE) options |= HEAP_NO_SERIALIZE;
    if (flags & UTIL_HEAP_RAISE) options |= HEAP_GENERATE_EXCEPTIONS;
    return options;
}

const void* StartOfBlock(const void* object) {
    switch (ReadMagic(object)) {
        case kDebugMagic:
            return DebugBlockOf(object);
        case kPlainMagic:
            return PlainBlockOf(object);
        default:
            return object;
    }
}

} // namespace

clsHeapNode::~clsHeapNode() {
    static_cast<volatile uint32_t&>(handleMagic) = 0;
    if (lastUsed_ == this) lastUsed_ = nullptr;
}

bool clsHeapNode::FindHeap(const clsHeapNode* node) {
    uint32_t magic = 0;
    const bool isAligned = reinterpret_cast<uintptr_t>(node) % alignof(clsHeapNode) == 0;
    if (!isAligned || !ReadShielded(magic, &node->handleMagic) || magic != kHandleMagic) return false;
    lastUsed_ = node;
    return true;
}

bool clsHeapNode::Create(clsModuleNode* job, const wchar_t* heapName, uint32_t heapFlags) {
    owner = job;
    if (heapName) std::wcsncpy(name, heapName, kNameUnits - 1);
    flags = heapFlags & UTIL_HEAP_NEVER_DEBUG ? heapFlags & ~UTIL_HEAP_DEBUG : heapFlags;
    if (IsDebug()) stackSnapshot = clsStackSnapshot::Take(kSkippedCallers);
    createOptions = CreateOptions(flags);
    heap.Reset(HeapCreate(createOptions, kInitialSize, 0));
    return static_cast<bool>(heap);
}

int32_t clsHeapNode::Validate(const void* object) const {
    int32_t result = UTIL_OK;
    if (object && !IsHeapBlock(heap.Get(), kSystemFlags, StartOfBlock(object))) {
        const clsReportScope scope(L" Error: Heap corrupted");
        WriteListing();
        result = UTIL_ERR_CORRUPT;
    }
    if (IsDebug()) TestObjects();
    return result;
}

int32_t clsHeapNode::ShrinkHeap() const {
    if (CompactHeap(heap.Get(), kSystemFlags)) return UTIL_OK;
    WriteReport(L"Error: clsHeapNode['%s'/'%s']::ShrinkHeap(%#p) failed", owner->name, name, this);
    return UTIL_ERR_HANDLE;
}

// The last block only, not a sum: callers rely on it.
int32_t clsHeapNode::LastBlockSize() const {
    if (!clsHeapWalk::IsAvailable()) return bytes;
    DWORD size = 0;
    for (clsHeapWalk walk(heap.Get()); walk.Next();) {
        if (walk.IsBusy()) size = walk.Size();
    }
    return static_cast<int32_t>(size);
}

template <class Visitor>
void clsHeapNode::VisitDebugObjects(Visitor&& visit) const {
    for (clsHeapWalk walk(heap.Get()); walk.Next();) {
        const auto* const block = static_cast<const scDebugHeader*>(walk.Data());
        scDebugHeader header;
        const bool isObject = walk.IsBusy() && walk.Size() >= kDebugOverhead && ReadHeader(header, block) &&
                              header.heap == heap.Get();
        if (isObject && !visit(block)) return;
    }
}

void clsHeapNode::TestObjects() const { VisitDebugObjects(TestObject); }

void clsHeapNode::WriteListing() const {
    if (!DebugIsActive()) return;
    const clsReportScope scope(L"Heap['%s'/'%s']: %d objects", owner->name, name, objectCount);
    if (stackSnapshot) stackSnapshot->WriteListing(L"Heap allocation");
    VisitDebugObjects([](const scDebugHeader* block) {
        WriteObjectDump(block);
        return true;
    });
}

void clsHeapNode::WriteFarewell() const {
    if (IsDebug()) TestObjects();
    if (maximum > 0)
        WriteReport(L"Heap['%s'/'%s']: max %d, total %d allocations", owner->name, name, maximum, total);
    if (objectCount > 0 && !(flags & UTIL_HEAP_NO_WARNING)) {
        const clsReportScope scope(L"Warning: deleting heap, but objects are left:");
        WriteListing();
    }
}

} // namespace vxut
