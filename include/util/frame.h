/** @file
 * The library itself: version, flags, the user's language, and the named jobs of its hosts.
 */
#ifndef VXUT_UTIL_FRAME_H
#define VXUT_UTIL_FRAME_H

#include "util/types.h"

/** The named registration of a host, which owns the heaps of the host. */
typedef struct UtilJobRecord* HUTILJOB;

/** Result codes of jobs and heaps. */
enum {
    UTIL_OK = 0,               /**< success */
    UTIL_ERR_HANDLE = -2,      /**< invalid handle, or a failed shrink */
    UTIL_ERR_CORRUPT = -3,     /**< heap corrupted */
    UTIL_ERR_LEFT_BEHIND = -5, /**< carried out, but heaps or objects were left */
    UTIL_ERR_OBJECT = -6,      /**< bad object pointer, overrun or underrun */
    UTIL_ERR_UNAVAILABLE = -7  /**< not available on this heap or platform */
};

/** Flags of UtilJobOpen(). */
#define UTIL_JOB_TRACE 0x80000000u       /**< each job and heap call writes an entry and a result line */
#define UTIL_JOB_DEBUG_HEAPS 0x40000000u /**< heaps of the job are debug heaps */

/** Returns the version: for selector 0 both numbers (major in the high word), for 1 the major number, for 2
 * the minor number, for 3 zero, for any other 0xFFFFFFFF. */
VXUT_API uint32_t UtilGetVersion(uint32_t selector);

/** Returns 1 if the debug channel has a listener at this moment, else 0. */
VXUT_API int UtilGetFlags(void);

/** Stores the language number of the user in the registry, for all processes of the user.
 *
 *  @param language  one of the library's own numbers, such as 0 for German and 1 for English. It is not
 * checked.
 *  @return 0, or the system's error code if the registry key cannot be opened.
 */
VXUT_API int32_t UtilLanguageSet(uint32_t language);

/** Returns the language number of the user: the stored one or, if there is none, that of the system's user
 * language. A language without a number of its own has 1. */
VXUT_API uint32_t UtilLanguageGet(void);

/** Opens a job, or shares the one that is open under the name. Call on any thread.
 *
 *  @param name   not null. Names that differ in case are different. The first 32 units are stored: a longer
 * name is never found again, so each open creates another job.
 *  @param flags  UTIL_JOB_* of the first open. Those of later opens are ignored.
 *  @return the handle, to be closed once for each open. Null if memory is short, and if the name is null or
 * cannot be read.
 *
 *  Example:
 *  @code
 *      HUTILJOB job = UtilJobOpen(L"IMPORT", 0);
 *      ...
 *      UtilJobClose(job);
 *  @endcode
 */
VXUT_API HUTILJOB UtilJobOpen(const wchar_t* name, uint32_t flags);

/** Closes one open of a job. The last close destroys the job with all its heaps. Call on any thread.
 *
 *  @param job  null does nothing. Never close a handle more often than it was opened: the record is changed
 * before it is looked up, and the memory may by then belong to somebody else.
 *  @return UTIL_OK, UTIL_ERR_HANDLE if the handle is invalid, or UTIL_ERR_LEFT_BEHIND if there were heaps:
 * they have been destroyed nevertheless.
 */
VXUT_API int32_t UtilJobClose(HUTILJOB job);

#endif
