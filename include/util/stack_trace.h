/** @file
 * The call stack of the current thread and the modules of the process, written to the debug channel.
 */
#ifndef VXUT_UTIL_STACK_TRACE_H
#define VXUT_UTIL_STACK_TRACE_H

#include "util/types.h"

/** Writes the modules of up to 20 callers to the debug channel, one line for each frame, and an empty line at
 * the end. No symbols are needed. Frames of the library itself above the caller are left out.
 *
 *  @param reserved  not used.
 *  @param skip      frames to leave out, counted from the function that calls UtilStackTrace(). Nothing is
 * written if it is above 256.
 *
 *  @code
 *      if (!record) UtilStackTrace(NULL, 1);    // who has passed it?
 *  @endcode
 */
VXUT_API void UtilStackTrace(const void* reserved, uint32_t skip);

/** Writes the modules of the process to the debug channel: the addresses of the first region of each, of
 * which the low 32 bits are shown, and its path. Does nothing while nobody listens. */
VXUT_API void UtilListModules(void);

#endif
