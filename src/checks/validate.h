// Tests of pointers that the library has been handed, and the reports on bad ones.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxut {

// The system's probes: true of a good range or text, in silence. A null pointer is good, and every pointer is
// while a debugger is or was attached. A text is good if it can be read up to its end, or for so many units.
bool ProbeRead(const void* pointer, size_t bytes);
bool ProbeWrite(void* pointer, size_t bytes);
bool ProbeStringW(const wchar_t* text, size_t maxUnits);
bool ProbeStringA(const char* text, size_t maxUnits);

// The units of a text that IsStringPtr() looks at; a longer text counts as good.
inline constexpr size_t kMostProbedUnits = 65535;

// Each test names the function on whose behalf it runs and the parameter it looks at. A pointer that
// its probe finds bad is reported with a banner.
bool IsRPtr(const wchar_t* function, const void* pointer, const wchar_t* parameter, uint32_t size);
bool IsWPtr(const wchar_t* function, void* pointer, const wchar_t* parameter, uint32_t size);
bool IsStringPtr(const wchar_t* function, const wchar_t* pointer, const wchar_t* parameter);

// The length of a text that is tested unit by unit; one less than its readable units if it has no end.
int32_t SafeStrlen(const wchar_t* function, const wchar_t* text);

// The first line of every report on a bad parameter.
void WriteBanner(const wchar_t* function, const wchar_t* parameter, const void* pointer, uint32_t lastError);

void ReportError(const wchar_t* function, const wchar_t* text);

// Shows the assertion and ends the process.
void FailAssertion(const wchar_t* expression, const wchar_t* fileName, uint32_t line);

// Forgets whether a debugger was seen; a step of load.
void ResetDebuggerState() noexcept;

// Whether a developer of the library is logged in: adds lines to the debug channel and changes no result.
bool IsDeveloperLogin();

// Makes the checked functions test their parameters. Nothing in the library switches it on: it is for a
// debugging session.
extern uint32_t parameterCheckSwitch;
inline bool ParameterChecksEnabled() noexcept { return parameterCheckSwitch != 0; }

} // namespace vxut
