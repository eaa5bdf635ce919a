/** @file
 * The kind of environment that the process runs in, whether a user may be asked anything, and the locks that
 * all components in a process share.
 *
 * Both answers are determined at the first call and do not change afterwards. All functions may be called
 * from any thread.
 *
 * @code
 *     if (UtilGetUIInteractionAllowed()) AskUser(); else UseDefault();
 * @endcode
 */
#ifndef VXUT_UTIL_ENVIRONMENT_H
#define VXUT_UTIL_ENVIRONMENT_H

#include "util/types.h"

/** Results of UtilGetOSEnvironmentType(). */
enum {
    UTIL_ENVIRONMENT_INTERACTIVE = 1, /**< a user at a session */
    UTIL_ENVIRONMENT_RESERVED = 2,    /**< never returned */
    /** a service, the system account, or a process that cannot open the user's settings */
    UTIL_ENVIRONMENT_NONINTERACTIVE = 3,
    UTIL_ENVIRONMENT_WEBSERVER = 4 /**< a web server's process */
};

/** The system's CRITICAL_SECTION. */
struct _RTL_CRITICAL_SECTION;

/** Tests whether the user may be asked anything.
 *
 *  The answer is no on an invisible window station, for a process whose name without extension is listed in
 * the registry (key "Software\Velmora" of the machine, value NonInteractiveApps, names separated by
 * semicolons, case ignored), and for a process whose environment is not interactive.
 *
 *  @return 1 if the user may be asked, else 0.
 */
VXUT_API int UtilGetUIInteractionAllowed(void);

/** Returns the kind of environment, UTIL_ENVIRONMENT_*. */
VXUT_API uint32_t UtilGetOSEnvironmentType(void);

/** Returns the lock that all components of the process take around graphics functions that are not safe for
 *  threads.
 *
 *  @param section  receives the address of the lock, which the library owns; valid until the library is
 * unloaded. If it is null, the call does nothing.
 */
VXUT_API void UtilGetGDIThreadingCS(struct _RTL_CRITICAL_SECTION** section);

/** Returns the lock that all components of the process take around calls of the debug-help library.
 *
 *  @param section  as for UtilGetGDIThreadingCS().
 */
VXUT_API void UtilGetDBGHELPThreadingCS(struct _RTL_CRITICAL_SECTION** section);

#endif
