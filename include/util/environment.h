/** @file
 * The kind of environment that the process runs in, whether a user may be asked anything, and the locks that
 * all components in a process share.
 *
 * The answers are found once and stay for the life of the process.
 *
 * @code
 *     if (UtilGetUIInteractionAllowed()) AskUser(); else TakeDefault();
 * @endcode
 */
#ifndef VXUT_UTIL_ENVIRONMENT_H
#define VXUT_UTIL_ENVIRONMENT_H

#include "util/types.h"

/** What UtilGetOSEnvironmentType() gives. */
enum {
    UTIL_ENVIRONMENT_INTERACTIVE = 1, /**< a user at a session */
    UTIL_ENVIRONMENT_RESERVED = 2,    /**< never given */
    UTIL_ENVIRONMENT_NONINTERACTIVE =
        3,                         /**< a service, the system account, or no access to the user's settings */
    UTIL_ENVIRONMENT_WEBSERVER = 4 /**< a web server's process */
};

/** The system's CRITICAL_SECTION. */
struct _RTL_CRITICAL_SECTION;

/** Gives 1 if the user may be asked, else 0.
 *
 *  Not allowed are processes on an invisible window station, those whose name without extension stands in the
 *  machine's registry ("Software\Velmora", value NonInteractiveApps, names between semicolons), and those
 * that are not interactive.
 */
VXUT_API int UtilGetUIInteractionAllowed(void);

/** Gives the kind of environment, UTIL_ENVIRONMENT_*. */
VXUT_API uint32_t UtilGetOSEnvironmentType(void);

/** Gives the lock under which components of the process call graphics functions that are not safe for
 * threads.
 *
 *  @param section  takes the address, good while the library is loaded; null does nothing.
 */
VXUT_API void UtilGetGDIThreadingCS(struct _RTL_CRITICAL_SECTION** section);

/** Gives the lock for the debug-help library. As UtilGetGDIThreadingCS(). */
VXUT_API void UtilGetDBGHELPThreadingCS(struct _RTL_CRITICAL_SECTION** section);

#endif
