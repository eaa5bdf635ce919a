#include "host/trace_queue.h"

#include <new>
#include <utility>

namespace vlm {

void TraceQueue::Add(std::string_view record) noexcept {
    const std::lock_guard guard(mutex_);
    if (!HasAdded(record)) ++batch_.lost;
    changed_.notify_one();
}

bool TraceQueue::HasAdded(std::string_view record) noexcept {
    const size_t bytes = sizeof(std::string) + record.size();
    if (batch_.bytes + bytes > kMaxBytes) return false;
    try {
        batch_.records.emplace_back(record);
        batch_.bytes += bytes;
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void TraceQueue::Close() {
    const std::lock_guard guard(mutex_);
    batch_.isLast = true;
    changed_.notify_one();
}

TraceQueue::Batch TraceQueue::Take(std::chrono::milliseconds patience) {
    std::unique_lock guard(mutex_);
    changed_.wait_for(guard, patience, [this] { return !batch_.records.empty() || batch_.isLast; });
    Batch taken;
    std::swap(taken, batch_);
    batch_.isLast = taken.isLast;
    return taken;
}

} // namespace vlm
