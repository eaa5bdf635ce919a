// The stack of a dump's faulting thread.
#pragma once

#include "host/dump_reader.h"

#include <string>
#include <vector>

namespace vlm {

struct DumpFrame {
    uint64_t address = 0;
    std::wstring module; // file name; empty if the address is in none
    uint64_t offset = 0; // in the module
    std::wstring symbol; // with the displacement; empty if it was not found
    std::wstring source; // "file, line N"; empty if it was not found
};

// Walks the stack with the files of the modules and their symbols where they are found under their paths or
// in the symbol search path. Without a module's file the walk may end early.
std::vector<DumpFrame> WalkDump(const DumpReader& dump);

} // namespace vlm
