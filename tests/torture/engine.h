// Runs the plans of one scenario in the process.
#pragma once

#include "progress.h"
#include "scenario.h"

#include <string>

namespace torture {

struct Options {
    std::string scenario;
    Plan only;           // call 0: all plans
    unsigned most = 0;   // plans of each domain and mode at most, evenly spread; 0: all of them
    unsigned from = 0;   // index of the first plan that is run
    bool isCold = false; // one plan in a process where nothing ran before
};

// Prints complaints and keeps the progress up to date.
void RunScenario(const Options& options, Progress& progress);

} // namespace torture
