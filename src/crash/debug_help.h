// The engine of a job: dbghelp, bound to this process.
#pragma once

#include "base/owners.h"
#include "crash/debug_items.h"
#include "crash/minidump.h"
#include "crash/stack_walk.h"
#include "crash/symbol_session.h"

#include <memory>

namespace vxut {

// One for each job, made and destroyed on the same thread, and used by one thread at a time: dbghelp is not
// safe for threads. Loads symbols when a walk or a module list first asks for them.
class clsDBGHELP : public clsRPDBGHELP {
public:
    explicit clsDBGHELP(const scSymbolOptions& options);

    // Whether dbghelp and a process handle of its own are there.
    bool IsUsable() { return process_ && IsLoaded(); }

    // Return null if the work is not possible.
    clsAutoRelease<clsDBGStackTraceList*> Walk(const scStackWalk& walk);
    clsAutoRelease<clsDBGModuleList*> ListModules();
    // Returns what WriteMinidump() returns.
    HRESULT Write(const scMinidump& dump);

private:
    clsAutoCloseHandle process_;
    clsSymbolSession symbols_;
};

} // namespace vxut
