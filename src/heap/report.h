// The lines that jobs and heaps write, indented by how deep their calls are in one another. Callers hold
// JobLock().
#pragma once

#include "heap/process_heap.h"

#include <cstdarg>
#include <cstdint>

namespace vxut {

// Writes one line.
void WriteReport(const wchar_t* format, ...);

// Writes the line for a pointer of a host that leads nowhere, or to something else.
void ReportBadPointer(const wchar_t* function, const void* pointer);

// Writes one line; those up to the end of the scope stand one step further in.
class clsReportScope {
public:
    explicit clsReportScope(const wchar_t* format, ...);
    ~clsReportScope();
    clsReportScope(const clsReportScope&) = delete;
    clsReportScope& operator=(const clsReportScope&) = delete;
};

// The name of a job or heap as reports print it.
inline const wchar_t* ReportName(const wchar_t* name) noexcept { return name ? name : L"(NULL)"; }

// The entry line of a call, and its result line in the end, if the job is traced and anybody listens. The
// lines in between stand one step further in.
class clsTraceScope {
public:
    clsTraceScope(uint32_t jobFlags, const wchar_t* format, ...);
    ~clsTraceScope();
    clsTraceScope(const clsTraceScope&) = delete;
    clsTraceScope& operator=(const clsTraceScope&) = delete;

    bool IsOpen() const noexcept { return token_ != nullptr; }
    // Write the result line, and give the result.
    int32_t Result(int32_t code) const;
    template <class T>
    T* Result(T* handle) const {
        WriteHandle(handle);
        return handle;
    }

private:
    void WriteHandle(const void* handle) const;

    clsProcessHeapPtr<char> token_; // there while the scope is open
};

} // namespace vxut
