#include "host/trace_queue.h"

#include <new>
#include <utility>

namespace vlm {

void clsTraceQueue::Add(std::string_view record) noexcept {
    const std::lock_guard guard(mutex_);
    if (!HasAdded(record)) ++batch_.lost;
    changed_.notify_one();
}

bool clsTraceQueue::HasAdded(std::string_view record) noexcept {
    if (batch_.records.size() >= kMostRecords) return false;
    try {
        batch_.records.emplace_back(record);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void clsTraceQueue::Close() {
    const std::lock_guard guard(mutex_);
    batch_.isLast = true;
    changed_.notify_one();
}

clsTraceQueue::Batch clsTraceQueue::Take(std::chrono::milliseconds patience) {
    std::unique_lock guard(mutex_);
    changed_.wait_for(guard, patience, [this] { return !batch_.records.empty() || batch_.isLast; });
    Batch taken;
    std::swap(taken, batch_);
    batch_.isLast = taken.isLast;
    return taken;
}

} // namespace vlm
