/** @file
 * The library itself: version, flags, the user's language, and the named jobs of its hosts.
 */
#ifndef VXUT_UTIL_FRAME_H
#define VXUT_UTIL_FRAME_H

#include "util/types.h"

/** A host's named registration, the owner of its heaps. */
typedef struct UtilJobRecord* HUTILJOB;

/** Result codes of jobs and heaps. */
enum {
    UTIL_OK = 0,               /**< success */
    UTIL_ERR_HANDLE = -2,      /**< invalid handle, or a failed shrink */
    UTIL_ERR_CORRUPT = -3,     /**< heap corrupted */
    UTIL_ERR_LEFT_BEHIND = -5, /**< done, but heaps or objects were left */
    UTIL_ERR_OBJECT = -6,      /**< bad object pointer, overrun or underrun */
    UTIL_ERR_UNAVAILABLE = -7  /**< not available on this heap or platform */
};

/** Flags of UtilJobOpen(). */
#define UTIL_JOB_TRACE 0x80000000u       /**< each job and heap call writes an entry and a result line */
#define UTIL_JOB_DEBUG_HEAPS 0x40000000u /**< heaps of the job are debug heaps */

/** Gives the version: selector 0 both numbers (major in the high word), 1 the major, 2 the minor number,
 *  3 zero, any other 0xFFFFFFFF. */
VXUT_API uint32_t UtilGetVersion(uint32_t selector);

/** Gives 1 if anybody listens to the debug channel at this moment, else 0. */
VXUT_API int UtilGetFlags(void);

/** Stores the user's language number in the registry, for the user and not for the process.
 *
 *  @param language  one of the library's own numbers, such as 0 for German and 1 for English; not tested.
 *  @return the system's error code of opening the registry key, 0 on success.
 */
VXUT_API int32_t UtilLanguageSet(uint32_t language);

/** Gives the user's language number: the stored one, else that of the system's user language, which is 1 for
 * a language without a number of its own. */
VXUT_API uint32_t UtilLanguageGet(void);

/** Opens the job of a name, or shares the one that is open under it.
 *
 *  @param name   compared with case. Not null. The first 32 units are stored: a longer name is never found
 * again and opens a job of its own each time.
 *  @param flags  UTIL_JOB_* of the first open; those of later opens are ignored.
 *  @return the handle, to be closed once for each open, or null when memory is short or the name is null.
 *
 *  Example:
 *  @code
 *      HUTILJOB job = UtilJobOpen(L"IMPORT", 0);
 *      ...
 *      UtilJobClose(job);
 *  @endcode
 */
VXUT_API HUTILJOB UtilJobOpen(const wchar_t* name, uint32_t flags);

/** Drops one open of a job; the last one destroys the job and all heaps left in it.
 *
 *  @param job  null is allowed and does nothing. The record is touched before it is looked up, so no handle
 * may be closed more often than it was opened.
 *  @return UTIL_OK, UTIL_ERR_HANDLE for an unknown handle, or UTIL_ERR_LEFT_BEHIND if heaps were left;
 *          they have been destroyed all the same.
 */
VXUT_API int32_t UtilJobClose(HUTILJOB job);

#endif
