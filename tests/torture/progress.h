// What a child process reports to the process that watches it, in memory that both map.
#pragma once

#include <windows.h>

namespace torture {

// A fault that shows in each of a thousand runs is read once.
inline constexpr LONG kMostPrintedFaults = 20; // of a scenario

struct Progress {
    LONG volatile plan;        // index of the plan that runs
    LONG volatile isDone;      // 1 once the child has ended
    LONG volatile plans;       // how many there are
    LONG volatile runs;        // finished, over all children of the scenario
    LONG volatile faults;      // complaints, crashes and hangs
    LONG volatile allocations; // of a run without failures
    LONG volatile started;     // Now() at the start of the run; 0 between runs
    char planText[32];
    char phase[32]; // what the run is doing
    char firstFailed[64];
};

// Milliseconds, never 0, on the clock that both processes share: the other one runs ahead in the child.
inline LONG Now() { return static_cast<LONG>(GetTickCount() | 1); }

} // namespace torture
