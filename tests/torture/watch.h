// Runs scenarios in child processes and outlives their crashes and hangs.
#pragma once

#include "engine.h"

namespace torture {

// The first argument of a child process; the others are made and read in watch.cpp.
inline constexpr char kChildOption[] = "--child";

// Runs all plans of a scenario, first in one process, then those of the allocations once more in a fresh
// process each, where no exception was thrown before. Prints a line of totals. Returns the number of faults.
LONG WatchScenario(const Options& options);

// The program of the child process. Returns its exit code.
int RunChild(int count, char** arguments);

} // namespace torture
