// The lines that jobs and heaps write to the debug channel, indented by the nesting of their scopes. Callers
// hold JobLock(), which guards the indent and the one buffer of all lines. While nobody listens nothing is
// formatted.
#pragma once

#include "heap/process_heap.h"

#include <cstdarg>
#include <cstdint>

namespace vxut {

// Writes one line.
void WriteReport(const wchar_t* format, ...);

// Writes the line for a pointer of a host that leads nowhere, or to something else.
void ReportBadPointer(const wchar_t* function, const void* pointer);

// Writes one line, and indents the lines up to the end of the scope by one step.
class clsReportScope {
public:
    explicit clsReportScope(const wchar_t* format, ...);
    ~clsReportScope();
    clsReportScope(const clsReportScope&) = delete;
    clsReportScope& operator=(const clsReportScope&) = delete;
};

// Returns the name of a job or heap as reports print it.
inline const wchar_t* ReportName(const wchar_t* name) noexcept { return name ? name : L"(NULL)"; }

// Writes the entry line of a call, and its result line at the end, if the job is traced and somebody listens.
// Indents the lines in between by one step. A scope for which there is no memory is not open, and writes
// neither.
class clsTraceScope {
public:
    clsTraceScope(uint32_t jobFlags, const wchar_t* format, ...);
    ~clsTraceScope();
    clsTraceScope(const clsTraceScope&) = delete;
    clsTraceScope& operator=(const clsTraceScope&) = delete;

    bool IsOpen() const noexcept { return token_ != nullptr; }
    // Write the result line and return the result.
    int32_t Result(int32_t code) const;
    template <class T>
    T* Result(T* handle) const {
        WriteHandle(handle);
        return handle;
    }

private:
    void WriteHandle(const void* handle) const;

    clsProcessHeapPtr<char> token_; // null if the scope is not open
};

} // namespace vxut
