#include "heap/report.h"

#include "base/debug.h"
#include "base/line_buffer.h"
#include "util/frame.h"

namespace vxut {
namespace {

constexpr wchar_t kModuleName[] = L""; // the lines are known with an empty module column

// Guarded by JobLock().
int indent = 0;
clsLineBuffer reportText;

void WriteReportV(const wchar_t* format, va_list arguments) {
    if (!DebugIsActive()) return;
    reportText.Clear();
    reportText.AppendV(format, arguments);
    DebugWriteAs(nullptr, 0, L"%-8s:%*s%s\n", kModuleName, indent, L"", reportText.Text());
}

} // namespace

void WriteReport(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WriteReportV(format, arguments);
    va_end(arguments);
}

void ReportBadPointer(const wchar_t* function, const void* pointer) {
    WriteReport(L"Error: %s(%#p): bad pointer", function, pointer);
}

clsReportScope::clsReportScope(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WriteReportV(format, arguments);
    va_end(arguments);
    ++indent;
}

clsReportScope::~clsReportScope() { --indent; }

clsTraceScope::clsTraceScope(uint32_t jobFlags, const wchar_t* format, ...) {
    if ((jobFlags & UTIL_JOB_TRACE) == 0 || !DebugIsActive()) return;
    token_ = MakeInProcessHeap<char>();
    if (!token_) return;
    va_list arguments;
    va_start(arguments, format);
    WriteReportV(format, arguments);
    va_end(arguments);
    ++indent;
}

clsTraceScope::~clsTraceScope() {
    if (IsOpen()) --indent;
}

int32_t clsTraceScope::Result(int32_t code) const {
    if (IsOpen()) WriteReport(L"->%d", code);
    return code;
}

void clsTraceScope::WriteHandle(const void* handle) const {
    if (IsOpen()) WriteReport(L"->%#p", handle);
}

} // namespace vxut
