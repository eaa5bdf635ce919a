// The loaded modules of a process, from the first source that knows them.
#pragma once

#include "containers/list.h"
#include "crash/debug_help_library.h"
#include "text/string.h"

#include <cstdint>

namespace vxut {

struct scLoadedModule {
    uint64_t base = 0;
    uint32_t size = 0;
    String path; // as good as the source knows it
};

using LoadedModules = WCValSList<scLoadedModule>;

// Asks dbghelp, then a snapshot of the process, then psapi. Returns false if all fail; the list is empty
// then.
bool ListLoadedModules(clsRPDBGHELP& library, HANDLE process, LoadedModules& modules);

// The sources, of which the next is asked if one fails.
bool ListByDebugHelp(clsRPDBGHELP& library, HANDLE process, LoadedModules& modules);
bool ListBySnapshot(LoadedModules& modules);
bool ListByPsapi(HANDLE process, LoadedModules& modules);

// The path of the module at an address of the process; empty if there is none.
String PathOfModule(uint64_t base);

} // namespace vxut
