/** @file
 * Tracking of GDI handles: a developer's aid against handles that are never deleted.
 *
 * A host that wraps its GDI calls announces each object that it creates and deletes. The library keeps, for
 * each type of object, the live handles, a count of references to each, and the call stack of its first
 * announcement. What was never removed is listed with these stacks on the debug channel: when the library is
 * unloaded, on request, or as the difference of two snapshots.
 *
 * @code
 *     HPEN TrackedCreatePen(int style, int width, COLORREF colour) {
 *         HPEN pen = CreatePen(style, width, colour);
 *         if (pen) UtilHandleListMgr(OBJ_PEN, UTIL_HANDLES_ADD, pen);
 *         return pen;
 *     }
 * @endcode
 */
#ifndef VXUT_UTIL_HANDLE_TRACKING_H
#define VXUT_UTIL_HANDLE_TRACKING_H

#include "util/types.h"

/** Commands of UtilHandleListMgr(). All others do nothing and return 0. */
enum {
    /** Lists the live handles of the type as lost, "LOST PEN HANDLE ...:", each with its stack. The unload
     * does not list the type again. */
    UTIL_HANDLES_LIST = 0,
    /** Adds the handle, or a reference to it if it is live. */
    UTIL_HANDLES_ADD = 1,
    /** Removes a reference to the handle, and with the last one the handle. One that is not live is ignored.
     */
    UTIL_HANDLES_REMOVE = 2,
    UTIL_HANDLES_COUNT = 3,   /**< returns the number of live handles of the type */
    UTIL_HANDLES_IS_LIVE = 4, /**< returns 1 if the handle is live, else 0 */
    /** Puts a snapshot of the live handles of the type on the type's stack of snapshots. */
    UTIL_HANDLES_PUSH_SNAPSHOT = 10,
    /** Takes the two top snapshots off the stack and lists the handles that were added or removed between
     * them: first their numbers, then the same with each handle and its stack. Does nothing if there are
     * fewer than two. */
    UTIL_HANDLES_COMPARE_SNAPSHOTS = 11
};

/** Carries out a command on the handles of one type. May be called on any thread; keeps the last error.
 *
 *  A stack is captured only when a handle becomes live. Listings show frames as
 *  "module!function + 0x...  (file, line n)" if symbols are found, else as addresses; while they look for
 *  symbols they may take seconds. Nobody needs to listen to the debug channel for the counting.
 *
 *  @param type     the type as GetObjectType() numbers it, OBJ_PEN to OBJ_COLORSPACE. Any number up to 14 can
 * be used; for one above the call returns 0.
 *  @param command  UTIL_HANDLES_*.
 *  @param handle   the handle. Ignored by commands on the whole type. The object itself is not touched.
 *  @return a number for UTIL_HANDLES_COUNT and UTIL_HANDLES_IS_LIVE, else 0. A handle that there is no memory
 * for is not tracked.
 */
VXUT_API uint64_t UtilHandleListMgr(uint32_t type, uint32_t command, void* handle);

#endif
