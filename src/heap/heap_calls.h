// The calls of hosts on heaps: each takes the lock, finds out whether its handle leads to a heap, and writes
// the lines of traced jobs. One that leads to none is reported, and gives a neutral result.
#pragma once

#include "heap/heap.h"

namespace vxut {

clsHeapNode* CreateHeap(clsModuleNode* job, const wchar_t* name, uint32_t flags);
int32_t DeleteHeap(clsHeapNode* heap);
int32_t SizeHeap(clsHeapNode* heap);
int32_t SizeHeapObjects(clsHeapNode* heap);
int32_t ValidateHeap(clsHeapNode* heap, const void* object);
int32_t ShrinkHeap(clsHeapNode* heap);

// Without a heap these take no lock and work on loose objects.
void* AllocObject(clsHeapNode* heap, const scObjectRequest& request, clsHeapException& exception);
int32_t FreeObject(clsHeapNode* heap, void* object);
int32_t SizeObject(clsHeapNode* heap, const void* object);

} // namespace vxut
