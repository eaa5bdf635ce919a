#include "util/environment.h"

#include "base/guard.h"
#include "system/environment_policy.h"

using namespace vxut;

VXUT_API int UtilGetUIInteractionAllowed(void) {
    return Guarded(0, [] { return clsEnvironmentPolicy::Instance().IsInteractionAllowed(); });
}

VXUT_API uint32_t UtilGetOSEnvironmentType(void) {
    return Guarded<uint32_t>(UTIL_ENVIRONMENT_NONINTERACTIVE,
                             [] { return clsEnvironmentPolicy::Instance().Type(); });
}

VXUT_API void UtilGetGDIThreadingCS(struct _RTL_CRITICAL_SECTION** section) {
    if (section) *section = GdiThreadingSection().Native();
}

VXUT_API void UtilGetDBGHELPThreadingCS(struct _RTL_CRITICAL_SECTION** section) {
    if (section) *section = DebugHelpThreadingSection().Native();
}
