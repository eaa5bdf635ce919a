// The named jobs of hosts. Opens of one name share one record.
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

// One job, which owns its heaps. Its address is the handle that hosts hold. Callers hold JobLock().
struct clsModuleNode {
    static constexpr size_t kNameUnits = 33; // the terminator included; longer names are cut

    wchar_t name[kNameUnits] = {};
    uint32_t flags = 0;                              // those of the first open
    std::unique_ptr<clsStackSnapshot> stackSnapshot; // traced jobs only: the stack of the first open
    uint32_t referenceCount = 0;                     // opens not yet closed
    clsModuleNode* next = nullptr;
    clsModuleNode* previous = nullptr;
    clsHeapNode* firstHeap = nullptr;
    clsHeapNode* lastHeap = nullptr;

    // Creates a heap and appends it. The name lies in memory of the library, or is null. Returns null if
    // memory is short.
    clsHeapNode* AddHeap(const wchar_t* heapName, uint32_t heapFlags);
    // Destroys a heap with all its objects. Returns UTIL_OK, UTIL_ERR_LEFT_BEHIND if there were objects, or
    // UTIL_ERR_HANDLE for a heap of another job.
    int32_t DeleteHeap(clsHeapNode* node);
    // Reports the remaining heaps and destroys them.
    void DestroyHeaps();

private:
    void DestroyHeap(clsHeapNode* node);
};

// All jobs of the process, oldest first. Owns their records. Callers hold JobLock().
class clsModuleList {
public:
    // Returns the job of exactly this name, or null. A name longer than a record stores is never found.
    clsModuleNode* Find(const wchar_t* name) const noexcept;
    // Appends a job with a reference count of 1. Returns null if memory is short.
    clsModuleNode* Add(const wchar_t* name, uint32_t flags);
    // Destroys a job with all its heaps. Returns UTIL_OK, UTIL_ERR_LEFT_BEHIND if there were heaps, or
    // UTIL_ERR_HANDLE for a pointer to anything else, which is not followed.
    int32_t Delete(clsModuleNode* node);
    bool Contains(const clsModuleNode* node) const noexcept;

private:
    void Append(clsModuleNode* node) noexcept;
    void Unlink(clsModuleNode* node) noexcept;

    clsModuleNode* head_ = nullptr;
    clsModuleNode* tail_ = nullptr;
};

// The one lock of jobs and heaps, held across the lines that their calls write to the debug channel. Take it
// with Locked() wherever memory of a host may be touched.
inline clsCriticalSection& JobLock() {
    static clsCriticalSection lock;
    return lock;
}

// A hook: an entry under the name of a job is removed when the job ends. Guarded by JobLock().
WCValSkipListDict<String, void*>& JobNames();

// Returns whether a pointer, which may lead anywhere, is an open job. Callers hold JobLock().
bool IsJob(const clsModuleNode* job) noexcept;

// The bodies of UtilJobOpen() and UtilJobClose(), with their arguments and results: see util/frame.h. Both
// take JobLock() and survive names and handles that lead anywhere. Call on any thread.
clsModuleNode* OpenJob(const wchar_t* name, uint32_t flags);
int32_t CloseJob(clsModuleNode* job);

} // namespace vxut
