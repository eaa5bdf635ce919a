#include "host/trace_queue.h"

#include <utility>

namespace vlm {

void clsTraceQueue::Add(std::string record) {
    {
        const std::lock_guard guard(mutex_);
        if (batch_.records.size() < kMostRecords)
            batch_.records.push_back(std::move(record));
        else
            ++batch_.lost;
    }
    changed_.notify_one();
}

void clsTraceQueue::Close() {
    {
        const std::lock_guard guard(mutex_);
        batch_.isLast = true;
    }
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
