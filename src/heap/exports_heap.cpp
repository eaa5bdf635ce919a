#include "util/heap.h"

#include "base/guard.h"
#include "heap/heap_calls.h"

using namespace vxut;

namespace {

clsModuleNode* Node(HUTILJOB job) { return reinterpret_cast<clsModuleNode*>(job); }
clsHeapNode* Node(HUTILHEAP heap) { return reinterpret_cast<clsHeapNode*>(heap); }

} // namespace

VXUT_API HUTILHEAP UtilHeapCreate(HUTILJOB job, const wchar_t* name, uint32_t flags) {
    return Guarded<HUTILHEAP>(
        nullptr, [=] { return reinterpret_cast<HUTILHEAP>(CreateHeap(Node(job), name, flags)); });
}

VXUT_API int32_t UtilHeapDelete(HUTILHEAP heap) {
    return Guarded<int32_t>(UTIL_ERR_HANDLE, [=] { return DeleteHeap(Node(heap)); });
}

VXUT_API int32_t UtilHeapSize(HUTILHEAP heap) {
    return Guarded<int32_t>(UTIL_ERR_UNAVAILABLE, [=] { return SizeHeap(Node(heap)); });
}

VXUT_API int32_t UtilHeapSizeObjects(HUTILHEAP heap) {
    return Guarded<int32_t>(UTIL_ERR_UNAVAILABLE, [=] { return SizeHeapObjects(Node(heap)); });
}

VXUT_API void* UtilHeapObjectAlloc(HUTILHEAP heap, int32_t size, uint32_t flags) {
    return UtilHeapObjectAllocExt(heap, size, flags, 0, 0);
}

VXUT_API void* UtilHeapObjectAllocExt(HUTILHEAP heap, int32_t size, uint32_t flags, uint32_t, uint32_t tag) {
    clsHeapException exception;
    void* const object =
        Guarded<void*>(nullptr, [&] { return AllocObject(Node(heap), {size, flags, tag}, exception); });
    exception.Raise();
    return object;
}

VXUT_API int32_t UtilHeapObjectFree(HUTILHEAP heap, void* object) {
    return Guarded<int32_t>(UTIL_ERR_OBJECT, [=] { return FreeObject(Node(heap), object); });
}

VXUT_API int32_t UtilHeapObjectSize(HUTILHEAP heap, const void* object) {
    return Guarded<int32_t>(UTIL_ERR_OBJECT, [=] { return SizeObject(Node(heap), object); });
}

VXUT_API int32_t UtilHeapValidate(HUTILHEAP heap, const void* object) {
    return Guarded<int32_t>(UTIL_ERR_UNAVAILABLE, [=] { return ValidateHeap(Node(heap), object); });
}

VXUT_API int32_t UtilHeapShrink(HUTILHEAP heap) {
    return Guarded<int32_t>(UTIL_ERR_HANDLE, [=] { return ShrinkHeap(Node(heap)); });
}
