// The bodies of the heap exports, whose arguments, results and handling of null they share: see util/heap.h.
//
// Each call takes JobLock(), checks its handle, and writes the lines of traced jobs. An invalid handle is
// reported and refused. No fault in memory of a host leaves the lock held. Call on any thread.
#pragma once

#include "heap/heap.h"

namespace vxut {

clsHeapNode* CreateHeap(clsModuleNode* job, const wchar_t* name, uint32_t flags);
int32_t DeleteHeap(clsHeapNode* heap);
int32_t SizeHeap(clsHeapNode* heap);
int32_t SizeHeapObjects(clsHeapNode* heap);
int32_t ValidateHeap(clsHeapNode* heap, const void* object);
int32_t ShrinkHeap(clsHeapNode* heap);

// With a null heap these take no lock and work on loose objects. The exception is for the caller to raise.
void* AllocObject(clsHeapNode* heap, const scObjectRequest& request, clsHeapException& exception);
int32_t FreeObject(clsHeapNode* heap, void* object);
int32_t SizeObject(clsHeapNode* heap, const void* object);

} // namespace vxut
