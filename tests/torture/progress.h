// What a child process reports to the process that watches it, in memory that both map.
#pragma once

#include <windows.h>

namespace torture {

struct Progress {
    LONG volatile plan;        // index of the plan that runs
    LONG volatile isDone;      // 1 once the child has ended
    LONG volatile plans;       // how many there are
    LONG volatile runs;        // finished, over all children of the scenario
    LONG volatile faults;      // complaints
    LONG volatile allocations; // of a run without failures
    LONG64 volatile started;   // tick count at the start of the run; 0 between runs
    char planText[32];
    char phase[32]; // what the run is doing
    char firstFailed[64];
};

} // namespace torture
