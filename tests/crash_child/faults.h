// The faults of vxut_crash_child, and the conditions under which they happen.
#pragma once

namespace crash_child {

// Chooses the fault by its name. Returns false for an unknown one.
bool SetFault(const char* name);
// Dies of the fault that was chosen, or returns if it is one that can be survived.
void Fault();

// Writes a number to the user's settings of the library.
void SetSetting(const wchar_t* name, unsigned long number);

// Prepares a condition, now or for the moment before the fault. Returns false for an unknown one.
bool SetCondition(const char* name);

} // namespace crash_child
