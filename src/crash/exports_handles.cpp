#include "util/handle_tracking.h"

#include "base/guard.h"
#include "base/last_error.h"
#include "crash/handle_lists.h"

#include <windows.h>

using namespace vxut;

uint64_t UtilHandleListMgr(uint32_t type, uint32_t command, void* handle) {
    const clsLastErrorScope lastError;
    // Only for tools that watch calls of GDI functions, and report a handle that is none. The answer does not
    // count: the host says what the type is.
    if (handle) GetObjectType(handle);
    return Guarded<uint64_t>(0, [=] { return clsHandleLists::Instance().Run(type, command, handle); });
}
