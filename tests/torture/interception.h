// Puts itself between the library and the system: each function of the table in interception.cpp can be made
// to fail, and what it takes and returns is kept in the ledger.
#pragma once

namespace torture {

// Replaces the imports of vxut21.dll, and those of the system libraries that allocate for it. To be called
// once, before the first run. While a plan is armed for a thread, its pauses pass at once and the clock of
// GetTickCount64 goes on by them.
void InterceptCalls();

} // namespace torture
