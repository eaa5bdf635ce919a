// The writing side of the debug channel, for the library's own code. The channel is the innermost service:
// any thread may write at any time, while it holds any lock.
//
// Formats are Microsoft's: %s is wide, %hs narrow. No function throws, changes the last error or reports a
// failure, and nothing is formatted while nobody listens.
#pragma once

namespace vxut {

// Writes one line with the library's name in the module column.
void DebugWrite(const wchar_t* format, ...);

// Writes a line and changes the indent: a negative change lowers it by one before the line, a positive change
// raises it by one after the line.
void DebugWriteIndented(int indentChange, const wchar_t* format, ...);

// Writes a line with another name in the module column; a null module omits the column. A null format changes
// the indent only.
void DebugWriteAs(const wchar_t* module, int indentChange, const wchar_t* format, ...);

// Returns whether a line written now would reach a viewer or a log file.
bool DebugIsActive();

// Sets the name that the lines of the current thread show; null removes it. The text is not copied and must
// stay valid until it is removed.
void DebugSetThreadName(const char* name);

} // namespace vxut
