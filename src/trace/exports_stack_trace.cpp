#include "util/stack_trace.h"

#include "base/guard.h"
#include "base/stack_trace.h"

using namespace vxut;

VXUT_API void UtilStackTrace(const void*, uint32_t skip) {
    Guarded([=] { DebugWriteStackTrace(skip); });
}

VXUT_API void UtilListModules(void) {
    Guarded([] { DebugWriteModules(); });
}
