#include "heap/stack_snapshot.h"

#include "base/shielded_read.h"
#include "base/stack_trace.h"
#include "heap/report.h"

#include <algorithm>
#include <cstddef>
#include <new>

namespace vxut {

clsStackSnapshot::~clsStackSnapshot() { static_cast<volatile uint64_t&>(checkWord) = 0; }

uint64_t clsStackSnapshot::CheckWord(const clsStackSnapshot* snapshot) noexcept {
    constexpr uint64_t kMark = 0x6B636174536C6C61;
    return kMark ^ reinterpret_cast<uintptr_t>(snapshot);
}

bool clsStackSnapshot::IsSnapshot(const clsStackSnapshot* snapshot) {
    const auto address = reinterpret_cast<uintptr_t>(snapshot) + offsetof(clsStackSnapshot, checkWord);
    uint64_t found = 0;
    return ReadShielded(found, reinterpret_cast<const void*>(address)) && found == CheckWord(snapshot);
}

std::unique_ptr<clsStackSnapshot> clsStackSnapshot::Take(uint32_t skip) {
    constexpr uint32_t kCaptured = 40;
    void* frames[kCaptured];
    const uint32_t count = CaptureStack(0, frames, kCaptured);
    skip = std::max(skip, LeadingOwnFrames(frames, count));
    std::unique_ptr<clsStackSnapshot> snapshot(new (std::nothrow) clsStackSnapshot);
    for (uint32_t i = 0; snapshot && i < kEntries && skip + i < count; ++i)
        snapshot->entries[i].address = frames[skip + i];
    return snapshot;
}

void clsStackSnapshot::WriteListing(const wchar_t* title) const {
    const clsReportScope scope(L"%s stack trace:", title);
    WriteCallers(kEntries);
}

void clsStackSnapshot::WriteCallers(uint32_t count) const {
    for (uint32_t i = 0; i < std::min(count, kEntries); ++i) {
        wchar_t module[MAX_PATH] = L"";
        if (entries[i].address && ModuleOfAddress(entries[i].address, module) && module[0])
            WriteReport(L" [called by %s]", module);
    }
}

} // namespace vxut
