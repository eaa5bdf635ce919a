// The writing side of the debug channel, for the library's own code. The channel is the innermost service:
// any code of the library may write while it holds any lock.
#pragma once

namespace vxut {

// Writes one line with the library's name in the module column. Formats are Microsoft's: %s is wide, %hs
// narrow. Formats nothing when nobody listens, and never fails in a way that the caller sees.
void DebugWrite(const wchar_t* format, ...);

// The same with a change of the indent: a negative one lowers it by one before the line, a positive one
// raises it by one after the line.
void DebugWriteIndented(int indentChange, const wchar_t* format, ...);

// The same for another module column, which a null module leaves out. A null format changes the indent only.
void DebugWriteAs(const wchar_t* module, int indentChange, const wchar_t* format, ...);

// Whether a line written now would reach anybody.
bool DebugIsActive();

// Puts a name into the lines that the current thread writes; null takes it out. The text is not copied: it
// stays good until it is taken out.
void DebugSetThreadName(const char* name);

} // namespace vxut
