#include "text/string_buffer.h"

#include "base/debug.h"
#include "base/stack_trace.h"

#include <new>

namespace vxut {
namespace {

void ReportDoubleRelease(LONG usage) noexcept {
    DebugWrite(L"WRN: String buffer released twice (usage=%d)", usage);
    if (IsDebuggerPresent()) {
        DebugBreak();
    } else {
        DebugWriteStackTrace(0);
    }
}

} // namespace

bool StringBuffer::GrowInPlace(uint64_t wanted) noexcept {
    if (wanted > capacity) {
        if (wanted - capacity > reserve) return false;
        reserve -= static_cast<uint32_t>(wanted - capacity);
        capacity = wanted;
    }
    return true;
}

StringBuffer* StringBuffer::Make(uint64_t capacity, uint32_t reserve) {
    constexpr uint64_t kMostUnits = (PTRDIFF_MAX - sizeof(StringBuffer)) / sizeof(wchar_t) - UINT32_MAX;
    if (capacity > kMostUnits) throw std::bad_alloc();
    void* memory =
        ::operator new(sizeof(StringBuffer) + static_cast<size_t>(capacity + reserve) * sizeof(wchar_t));
    auto* buffer = new (memory) StringBuffer{capacity, 1, reserve};
    buffer->Text()[0] = L'\0';
    return buffer;
}

void StringBuffer::Release(StringBuffer* buffer) noexcept {
    // While this is the only reference, nobody else can add or drop one.
    const LONG usage =
        __atomic_load_n(&buffer->usage, __ATOMIC_ACQUIRE) == 1 ? 0 : InterlockedDecrement(&buffer->usage);
    if (usage == 0) {
        buffer->usage = 0; // a further release is noticed as long as the memory is not used again
        ::operator delete(buffer);
    } else if (usage < 0) {
        ReportDoubleRelease(usage);
    }
}

} // namespace vxut
