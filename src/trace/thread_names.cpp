#include "trace/thread_names.h"

#include "base/critical_section.h"
#include "base/debug.h"
#include "containers/skip_list.h"

#include <atomic>

namespace vxut {
namespace {

// Outlives the table, for callers that run after its end.
constinit std::atomic<bool> isTableThere{true};

class ThreadNames {
public:
    ~ThreadNames() { isTableThere = false; }

    static ThreadNames* Instance() {
        if (!isTableThere) return nullptr;
        static ThreadNames table;
        return &table;
    }

    void Set(DWORD threadId, const char* name) {
        const clsCriticalSectionScope scope(lock_);
        names_.remove(threadId);
        if (name) names_.insert(threadId, name);
    }

    const char* Find(DWORD threadId) {
        const clsCriticalSectionScope scope(lock_);
        const char* const* const name = names_.find(threadId);
        return name ? *name : nullptr;
    }

private:
    clsCriticalSection lock_; // nothing is called under it
    WCValSkipListDict<unsigned long, const char*> names_;
};

// Created at start-up, so that it is destroyed after all objects that write lines.
[[maybe_unused]] ThreadNames* const madeAtStartUp = ThreadNames::Instance();

} // namespace

void SetThreadName(DWORD threadId, const char* name) {
    if (ThreadNames* const table = ThreadNames::Instance()) table->Set(threadId, name);
}

const char* FindThreadName(DWORD threadId) {
    ThreadNames* const table = ThreadNames::Instance();
    return table ? table->Find(threadId) : nullptr;
}

void DebugSetThreadName(const char* name) { SetThreadName(GetCurrentThreadId(), name); }

} // namespace vxut
