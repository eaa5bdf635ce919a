#include "crash/handle_list.h"

#include "base/debug.h"
#include "base/stack_trace.h"
#include "crash/handle_report.h"

#include <new>

namespace vxut {

clsUTHandleList::clsUTHandleList(const clsUTHandleList& other) : typeName_(other.typeName_) {
    const clsCriticalSectionScope scope(other.lock_);
    handles_ = other.handles_;
    isReported_ = other.isReported_;
}

clsUTHandleList::clsUTHandleList(clsUTHandleList&& other) noexcept
    : typeName_(std::move(other.typeName_)),
      handles_(std::move(other.handles_)),
      isReported_(other.isReported_) {}

// The stack is captured outside the lock: the system may need the lock of its loader for that, under which
// the unload waits for this one.
void clsUTHandleList::Add(void* handle) {
    if (AddReference(handle)) return;
    scHandleRecord record;
    record.count = 1;
    record.frameCount = CaptureStack(0, record.frames, scHandleRecord::kFrames);
    const clsCriticalSectionScope scope(lock_);
    if (AddReference(handle)) return; // another thread has added it meanwhile
    if (!handles_.insert(handle, record)) throw std::bad_alloc();
}

bool clsUTHandleList::AddReference(void* handle) {
    const clsCriticalSectionScope scope(lock_);
    scHandleRecord* const record = handles_.find(handle);
    if (record) ++record->count;
    return record != nullptr;
}

void clsUTHandleList::Remove(void* handle) {
    const clsCriticalSectionScope scope(lock_);
    scHandleRecord* const record = handles_.find(handle);
    if (record && --record->count == 0) handles_.remove(handle);
}

uint64_t clsUTHandleList::Count() const {
    const clsCriticalSectionScope scope(lock_);
    return handles_.entries();
}

bool clsUTHandleList::IsLive(void* handle) const {
    const clsCriticalSectionScope scope(lock_);
    return handles_.contains(handle);
}

// A copy is written: the stack engine may take seconds, in which other threads announce handles, among them
// entry points of libraries that it loads.
void clsUTHandleList::ListLost() {
    if (DebugIsActive()) {
        const clsUTHandleList copy(*this);
        const HandleSelection all = SelectAll(copy.handles_);
        WriteLostHandles(typeName_, copy.handles_, clsFrameTexts({&all}));
    }
    const clsCriticalSectionScope scope(lock_);
    isReported_ = true;
}

// Hosts rely on it that a list is not written again, also if handles were added since.
void clsUTHandleList::ListLostAtUnload() {
    const clsCriticalSectionScope scope(lock_);
    if (isReported_) return;
    WriteLostHandles(typeName_, handles_, clsFrameTexts());
    isReported_ = true;
}

} // namespace vxut
