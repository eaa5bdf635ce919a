#include "heap/heap_calls.h"

#include "base/shield.h"
#include "base/system_libraries.h"
#include "heap/host_name.h"
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
    ReportBadPointer(function, heap);
    return false;
}

int32_t RefusePlatform(const wchar_t* function) {
    WriteReport(L"Error: %s(...) does only run under NT", function);
    return UTIL_ERR_UNAVAILABLE;
}

// Runs work under the lock if the handle is a heap. Returns refused otherwise.
template <class Result, class Work>
Result CallOnHeap(const wchar_t* function, clsHeapNode* heap, Result refused, Work&& work) {
    return Locked(JobLock(), [&] { return CheckHandle(function, heap) ? work() : refused; });
}

// Runs work between the entry line and the result line of a traced job.
template <class Work>
int32_t Traced(const wchar_t* function, clsHeapNode* heap, Work&& work) {
    const clsTraceScope trace(heap->owner->flags, L"%s(%#p) ['%s','%s']", function, heap, heap->owner->name,
                              heap->name);
    return trace.Result(work());
}

template <class Work>
int32_t TracedCall(const wchar_t* function, clsHeapNode* heap, Work&& work) {
    return CallOnHeap<int32_t>(function, heap, UTIL_ERR_HANDLE, [&] { return Traced(function, heap, work); });
}

// The caller holds JobLock(). The name lies in memory of the library, or is null.
clsHeapNode* CreateHeapNamed(clsModuleNode* job, const wchar_t* name, uint32_t flags) {
    const bool mayInherit = !(flags & UTIL_HEAP_NEVER_DEBUG);
    if ((flags & UTIL_HEAP_DEBUG) || ((job->flags & UTIL_JOB_TRACE) && mayInherit))
        WriteReport(L"%s: UtilHeapCreate(..,'%s',..) called with DEBUG bit", job->name, ReportName(name));
    const clsTraceScope trace(job->flags, L"UtilHeapCreate(%#p,'%s',0x%08x)", job, ReportName(name), flags);
    if ((job->flags & UTIL_JOB_DEBUG_HEAPS) && mayInherit) flags |= UTIL_HEAP_DEBUG;
    return trace.Result(job->AddHeap(name, flags));
}

} // namespace

clsHeapNode* CreateHeap(clsModuleNode* job, const wchar_t* name, uint32_t flags) {
    if (job == nullptr || (flags & UTIL_HEAP_REFUSED)) return nullptr;
    const clsHostName copy(name);
    return Locked(JobLock(), [&]() -> clsHeapNode* {
        if (IsJob(job) && copy.IsReadable()) return CreateHeapNamed(job, copy.Text(), flags);
        ReportBadPointer(L"UtilHeapCreate", IsJob(job) ? static_cast<const void*>(name) : job);
        return nullptr;
    });
}

int32_t DeleteHeap(clsHeapNode* heap) {
    if (heap == nullptr) return UTIL_OK;
    return Locked(JobLock(), [=]() -> int32_t {
        if (clsHeapNode::IsHeap(heap))
            return Traced(L"UtilHeapDelete", heap, [=] { return heap->owner->DeleteHeap(heap); });
        WriteReport(L"Error: clsModuleNode['%s']::DeleteHeap(%#p): Invalid handle", ReportName(nullptr),
                    heap);
        return UTIL_ERR_HANDLE;
    });
}

int32_t SizeHeap(clsHeapNode* heap) {
    if (heap == nullptr) return 0;
    return TracedCall(L"UtilHeapSize", heap, [=] {
        if (heap->IsDebug()) return heap->LastBlockSize();
        const clsReportScope report(L"UtilHeapSize will only work for DEBUG heaps, or in NT >= 3.51");
        WriteReport(L"0x%08x", heap->flags);
        return int32_t{UTIL_ERR_UNAVAILABLE};
    });
}

int32_t SizeHeapObjects(clsHeapNode* heap) {
    constexpr const wchar_t* kFunction = L"UtilHeapSizeObjects";
    if (heap == nullptr) return 0;
    return TracedCall(kFunction, heap, [=] {
        return clsHeapWalk::IsAvailable() ? heap->LastBlockSize() : RefusePlatform(kFunction);
    });
}

int32_t ValidateHeap(clsHeapNode* heap, const void* object) {
    constexpr const wchar_t* kFunction = L"UtilHeapValidate";
    if (heap == nullptr) return UTIL_OK;
    return TracedCall(kFunction, heap, [=] {
        return clsHeapWalk::IsAvailable() ? heap->Validate(object) : RefusePlatform(kFunction);
    });
}

int32_t ShrinkHeap(clsHeapNode* heap) {
    constexpr const wchar_t* kFunction = L"UtilHeapShrink";
    if (heap == nullptr) return UTIL_OK;
    return TracedCall(kFunction, heap, [=] {
        return Kernel32().HeapCompact.IsAvailable() ? heap->ShrinkHeap() : RefusePlatform(kFunction);
    });
}

void* AllocObject(clsHeapNode* heap, const scObjectRequest& request, clsHeapException& exception) {
    if (heap == nullptr) return AllocLooseObject(request.size, request.flags);
    return CallOnHeap<void*>(L"UtilHeapObjectAlloc", heap, nullptr,
                             [&] { return heap->AllocObject(request, exception); });
}

int32_t FreeObject(clsHeapNode* heap, void* object) {
    if (heap == nullptr) return FreeLooseObject(object);
    return CallOnHeap<int32_t>(L"UtilHeapObjectFree", heap, UTIL_ERR_OBJECT,
                               [=] { return heap->FreeObject(object); });
}

int32_t SizeObject(clsHeapNode* heap, const void* object) {
    if (heap == nullptr) return SizeLooseObject(object);
    return CallOnHeap<int32_t>(L"UtilHeapObjectSize", heap, UTIL_ERR_OBJECT,
                               [=] { return heap->SizeObject(object); });
}

} // namespace vxut
