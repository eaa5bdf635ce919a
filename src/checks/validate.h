// Tests of pointers that callers pass in, and reports on bad ones. The functions may be called from any
// thread.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxut {

// Probes without a report: true if the range or text is good. A null pointer is good. Every pointer is good
// once a debugger has been seen, or if the system has no probes. A text is good if it can be read up to its
// terminator, or for maxUnits units.
bool ProbeRead(const void* pointer, size_t bytes);
bool ProbeWrite(void* pointer, size_t bytes);
bool ProbeStringW(const wchar_t* text, size_t maxUnits);
bool ProbeStringA(const char* text, size_t maxUnits);

// The units of a text that IsStringPtr() looks at; a longer text counts as good.
inline constexpr size_t kMostProbedUnits = 65535;

// Tests that report a bad pointer with a banner. function is the one on whose behalf the test runs, parameter
// the name of the parameter.
bool IsRPtr(const wchar_t* function, const void* pointer, const wchar_t* parameter, uint32_t size);
bool IsWPtr(const wchar_t* function, void* pointer, const wchar_t* parameter, uint32_t size);
bool IsStringPtr(const wchar_t* function, const wchar_t* pointer, const wchar_t* parameter);

// The length of a text, each unit of which is tested before it is read. If the text has no readable
// terminator, reports it and returns one less than its readable units, but at least 0.
int32_t SafeStrlen(const wchar_t* function, const wchar_t* text);

// Writes the first line of a report on a bad parameter.
void WriteBanner(const wchar_t* function, const wchar_t* parameter, const void* pointer, uint32_t lastError);

void ReportError(const wchar_t* function, const wchar_t* text);

// Shows a failed assertion in a message box and ends the process.
void FailAssertion(const wchar_t* expression, const wchar_t* fileName, uint32_t line);

// Forgets whether a debugger was seen. Called at load.
void ResetDebuggerState() noexcept;

// Whether the environment names a developer of the library as the user. Decides about additional debug lines
// only, never about results. The environment is read once.
bool IsDeveloperLogin();

// Makes the checked functions test their parameters. Nothing in the library sets it; it is meant to be set in
// a debugging session.
extern uint32_t parameterCheckSwitch;
inline bool ParameterChecksEnabled() noexcept { return parameterCheckSwitch != 0; }

} // namespace vxut
