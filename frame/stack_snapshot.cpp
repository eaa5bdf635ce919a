#include "frame/stack_snapshot.h"

#include "diagnostics/stack_trace.h"

namespace vxut {

std::unique_ptr<clsStackSnapshot> clsStackSnapshot::Take(uint32_t skip) {
    constexpr uint32_t kCaptured = 40;
    void* frames[kCaptured];
    const uint32_t count = CaptureStack(0, frames, kCaptured);
    auto snapshot = std::make_unique<clsStackSnapshot>();
    for (uint32_t i = 0; i < kEntries && skip + i < count; ++i)
        snapshot->entries[i].address = frames[skip + i];
    return snapshot;
}

} // namespace vxut
