// The log file of crash reports, and the lines of a report. Uses static buffers and no heap for a line: the
// heap may be what is damaged.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace vxut {

// Where a line of a report goes, added.
inline constexpr uint32_t kOutputDebug = 1; // the debug channel
inline constexpr uint32_t kOutputLog = 2;   // the log file

// The units of a line, with its terminator.
inline constexpr size_t kReportUnits = 4097;

// Writes a line, cut to its units. Used by one thread at a time, under the report lock.
void WriteReportLine(uint32_t mode, const wchar_t* format, va_list arguments);

// The path of the log file, which is decided once: in the folder of the user's application data, or in the
// temp folder if no file can be created there. Under the report lock.
const wchar_t* CrashLogPath();

} // namespace vxut
