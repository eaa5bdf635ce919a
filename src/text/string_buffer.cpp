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

StringBuffer* StringBuffer::Make(uint64_t capacity) {
    void* memory = ::operator new(sizeof(StringBuffer) + capacity * sizeof(wchar_t));
    auto* buffer = new (memory) StringBuffer{capacity, 1};
    buffer->Text()[0] = L'\0';
    return buffer;
}

void StringBuffer::Release(StringBuffer* buffer) noexcept {
    const LONG usage = InterlockedDecrement(&buffer->usage);
    if (usage == 0) {
        ::operator delete(buffer);
    } else if (usage < 0) {
        ReportDoubleRelease(usage);
    }
}

} // namespace vxut
