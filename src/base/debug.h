// Writing to the debug channel, for the library's own code. For use by all threads. The channel is the
// innermost service: any code may write while it holds any lock of the library. A thread that sends a line
// waits for listeners; others wait for it a quarter of a second at most.
#pragma once

namespace vxut {

// Writes one line with the library's name in the module column. Formats are Microsoft's: %s is wide, %hs
// narrow. If nobody listens, nothing is formatted and no lock is taken. Failures are not reported to the
// caller, and the thread's last error is kept.
void DebugWrite(const wchar_t* format, ...);

// The same with a change of the process's indent: a negative one lowers it by one before the line, a positive
// one raises it by one after the line.
void DebugWriteIndented(int indentChange, const wchar_t* format, ...);

// The same with another module column; null omits it. A null format writes no line and changes the indent
// only.
void DebugWriteAs(const wchar_t* module, int indentChange, const wchar_t* format, ...);

// Whether a line written now would reach anybody.
bool DebugIsActive();

// Sets the name that is shown in the lines of the current thread; null removes it. The text is not copied and
// has to stay valid until it is removed.
void DebugSetThreadName(const char* name);

} // namespace vxut
