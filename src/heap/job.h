// The named jobs of hosts, which share one record for each name.
#pragma once

#include "base/critical_section.h"
#include "containers/skip_list.h"
#include "heap/process_heap.h"
#include "heap/stack_snapshot.h"
#include "text/string.h"

#include <cstdint>
#include <memory>

namespace vxut {

struct clsHeapNode;

// One job. Hosts hold its address as their handle.
struct clsModuleNode {
    static constexpr size_t kNameUnits = 33; // the terminator included; longer names are cut

    wchar_t name[kNameUnits] = {};
    uint32_t flags = 0;                              // of the first open
    std::unique_ptr<clsStackSnapshot> stackSnapshot; // of traced jobs: who opened it first
    uint32_t referenceCount = 0;
    clsModuleNode* next = nullptr;
    clsModuleNode* previous = nullptr;
    clsHeapNode* firstHeap = nullptr;
    clsHeapNode* lastHeap = nullptr;

    // Appends a heap. Null when memory is short.
    clsHeapNode* AddHeap(const wchar_t* heapName, uint32_t heapFlags);
    // Destroys a heap with all its objects; a result code of the frame.
    int32_t DeleteHeap(clsHeapNode* node);
    // Reports the heaps that are left, and destroys them.
    void DestroyHeaps();

private:
    void DestroyHeap(clsHeapNode* node);
};

// All jobs of the process, the oldest first. Callers hold JobLock().
class clsModuleList {
public:
    // Null if no job has exactly this name: a longer one than is stored is never found.
    clsModuleNode* Find(const wchar_t* name) const noexcept;
    // Null when memory is short.
    clsModuleNode* Add(const wchar_t* name, uint32_t flags);
    // Destroys a job with all its heaps; a result code of the frame.
    int32_t Delete(clsModuleNode* node);
    bool Contains(const clsModuleNode* node) const noexcept;

private:
    void Append(clsModuleNode* node) noexcept;
    void Unlink(clsModuleNode* node) noexcept;

    clsModuleNode* head_ = nullptr;
    clsModuleNode* tail_ = nullptr;
};

// The one lock of jobs and heaps. It stays held across their lines on the debug channel.
clsCriticalSection& JobLock();

// A hook: what is entered here under the name of a job goes when the job does. Guarded by JobLock().
WCValSkipListDict<String, void*>& JobNames();

// Whether any pointer leads to an open job. Callers hold JobLock().
bool IsJob(const clsModuleNode* job) noexcept;

// What the exports of the same names do.
clsModuleNode* OpenJob(const wchar_t* name, uint32_t flags);
int32_t CloseJob(clsModuleNode* job);

} // namespace vxut
