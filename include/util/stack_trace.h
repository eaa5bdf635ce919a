/** @file
 * Where the process is: the cheap call stack and the list of modules, on the debug channel.
 */
#ifndef VXUT_UTIL_STACK_TRACE_H
#define VXUT_UTIL_STACK_TRACE_H

#include "util/types.h"

/** Writes the modules of up to 20 callers of the current thread to the debug channel, a line for each, and an
 *  empty line at the end. It needs no symbols.
 *
 *  @param reserved  not used.
 *  @param skip      frames to leave out at the top, the library's own included. More than 256 write nothing.
 *
 *  @code
 *      if (!record) UtilStackTrace(NULL, 1);    // who has passed it?
 *  @endcode
 */
VXUT_API void UtilStackTrace(const void* reserved, uint32_t skip);

/** Writes the modules of the process to the debug channel: the first region of each in memory, in the low 32
 * bits of its addresses, and its path. Nothing happens while nobody listens. */
VXUT_API void UtilListModules(void);

#endif
