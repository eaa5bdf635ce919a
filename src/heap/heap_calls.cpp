#include "heap/heap_calls.h"

#include "base/system_libraries.h"
#include "heap/job.h"
#include "heap/loose_object.h"
#include "heap/report.h"
#include "heap/system_heap.h"
#include "util/frame.h"
#include "util/heap.h"

namespace vxut {
namespace {

bool CheckHandle(const wchar_t* function, const clsHeapNode* heap) {
    if (clsHeapNode::IsHeap(heap)) return true;
    WriteReport(L"Error: %s(%#p): bad pointer", function, heap);
    return false;
}

int32_t RefusePlatform(const wchar_t* function) {
    WriteReport(L"Error: %s(...) does only run under NT", function);
    return UTIL_ERR_UNAVAILABLE;
}

// The course of a call that is traced, for a heap that was found to be one.
template <class Work>
int32_t TracedCall(const wchar_t* function, clsHeapNode* heap, Work&& work) {
    const clsTraceScope trace(heap->owner->flags, L"%s(%#p) ['%s','%s']", function, heap, heap->owner->name,
                              heap->name);
    return trace.Result(work());
}

} // namespace

clsHeapNode* CreateHeap(clsModuleNode* job, const wchar_t* name, uint32_t flags) {
    if (job == nullptr || (flags & UTIL_HEAP_REFUSED)) return nullptr;
    const clsCriticalSectionScope scope(JobLock());
    if (!IsJob(job)) {
        WriteReport(L"Error: %s(%#p): bad pointer", L"UtilHeapCreate", job);
        return nullptr;
    }
    const bool mayInherit = !(flags & UTIL_HEAP_NEVER_DEBUG);
    if ((flags & UTIL_HEAP_DEBUG) || ((job->flags & UTIL_JOB_TRACE) && mayInherit))
        WriteReport(L"%s: UtilHeapCreate(..,'%s',..) called with DEBUG bit", job->name, ReportName(name));
    const clsTraceScope trace(job->flags, L"UtilHeapCreate(%#p,'%s',0x%08x)", job, ReportName(name), flags);
    if ((job->flags & UTIL_JOB_DEBUG_HEAPS) && mayInherit) flags |= UTIL_HEAP_DEBUG;
    return trace.Result(job->AddHeap(name, flags));
}

int32_t DeleteHeap(clsHeapNode* heap) {
    if (heap == nullptr) return UTIL_OK;
    const clsCriticalSectionScope scope(JobLock());
    if (!clsHeapNode::IsHeap(heap)) {
        WriteReport(L"Error: clsModuleNode['%s']::DeleteHeap(%#p): Invalid handle", ReportName(nullptr),
                    heap);
        return UTIL_ERR_HANDLE;
    }
    return TracedCall(L"UtilHeapDelete", heap, [=] { return heap->owner->DeleteHeap(heap); });
}

int32_t SizeHeap(clsHeapNode* heap) {
    constexpr wchar_t kFunction[] = L"UtilHeapSize";
    if (heap == nullptr) return 0;
    const clsCriticalSectionScope scope(JobLock());
    if (!CheckHandle(kFunction, heap)) return UTIL_ERR_HANDLE;
    return TracedCall(kFunction, heap, [=] {
        if (heap->IsDebug()) return heap->LastBlockSize();
        const clsReportScope report(L"UtilHeapSize will only work for DEBUG heaps, or in NT >= 3.51");
        WriteReport(L"0x%08x", heap->flags);
        return int32_t{UTIL_ERR_UNAVAILABLE};
    });
}

int32_t SizeHeapObjects(clsHeapNode* heap) {
    constexpr wchar_t kFunction[] = L"UtilHeapSizeObjects";
    if (heap == nullptr) return 0;
    const clsCriticalSectionScope scope(JobLock());
    if (!CheckHandle(kFunction, heap)) return UTIL_ERR_HANDLE;
    return TracedCall(kFunction, heap, [=] {
        return clsHeapWalk::IsAvailable() ? heap->LastBlockSize() : RefusePlatform(kFunction);
    });
}

int32_t ValidateHeap(clsHeapNode* heap, const void* object) {
    constexpr wchar_t kFunction[] = L"UtilHeapValidate";
    if (heap == nullptr) return UTIL_OK;
    const clsCriticalSectionScope scope(JobLock());
    if (!CheckHandle(kFunction, heap)) return UTIL_ERR_HANDLE;
    return TracedCall(kFunction, heap, [=] {
        return clsHeapWalk::IsAvailable() ? heap->Validate(object) : RefusePlatform(kFunction);
    });
}

int32_t ShrinkHeap(clsHeapNode* heap) {
    constexpr wchar_t kFunction[] = L"UtilHeapShrink";
    if (heap == nullptr) return UTIL_OK;
    const clsCriticalSectionScope scope(JobLock());
    if (!CheckHandle(kFunction, heap)) return UTIL_ERR_HANDLE;
    return TracedCall(kFunction, heap, [=] {
        return Kernel32().HeapCompact.IsAvailable() ? heap->ShrinkHeap() : RefusePlatform(kFunction);
    });
}

void* AllocObject(clsHeapNode* heap, const scObjectRequest& request, clsHeapException& exception) {
    if (heap == nullptr) return AllocLooseObject(request.size, request.flags);
    const clsCriticalSectionScope scope(JobLock());
    return CheckHandle(L"UtilHeapObjectAlloc", heap) ? heap->AllocObject(request, exception) : nullptr;
}

int32_t FreeObject(clsHeapNode* heap, void* object) {
    if (heap == nullptr) return FreeLooseObject(object);
    const clsCriticalSectionScope scope(JobLock());
    return CheckHandle(L"UtilHeapObjectFree", heap) ? heap->FreeObject(object) : UTIL_ERR_OBJECT;
}

int32_t SizeObject(clsHeapNode* heap, const void* object) {
    if (heap == nullptr) return SizeLooseObject(object);
    const clsCriticalSectionScope scope(JobLock());
    return CheckHandle(L"UtilHeapObjectSize", heap) ? heap->SizeObject(object) : UTIL_ERR_OBJECT;
}

} // namespace vxut
