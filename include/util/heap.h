/** @file
 * Heaps of a job. They count their objects and, as debug heaps, find overruns, underruns, double frees and
 * leaks.
 *
 * A debug heap adds to each object a header of 44 bytes, a fence of 4 bytes after it and, unless
 * UTIL_OBJECT_NO_STACK is set, the call stack of its allocation. What it finds is reported on the debug
 * channel with the first bytes of the object; see UtilDebug(). A plain heap adds 4 bytes to each object.
 * Objects of both kinds are aligned to 4 bytes only. A heap may hold both kinds: the 32-bit word before an
 * object, 0xFAAFFAAF for a plain and 0xAFFEAFFE for a debug object, identifies its form.
 *
 * Conventions:
 *  - Calls on heaps are serialised in the whole process, whatever the flags of a heap. Call on any thread.
 *  - Handles and objects are checked. A pointer that leads nowhere or to anything else results in a code or
 * null and a report on the channel; it never raises an exception and never keeps other threads from their
 * heaps.
 *  - A heap owns its objects. Deleting it, or closing its job, frees them.
 *  - Result codes are UTIL_OK and UTIL_ERR_*; see util/frame.h.
 *
 * @code
 *     HUTILHEAP heap = UtilHeapCreate(job, L"RECORDS", UTIL_HEAP_DEBUG);
 *     RECORD* record = UtilHeapObjectAlloc(heap, sizeof(RECORD), UTIL_OBJECT_ZERO);
 *     ...
 *     if (UtilHeapObjectFree(heap, record) != UTIL_OK) ...    // an overrun, for example
 *     UtilHeapDelete(heap);                                   // UTIL_ERR_LEFT_BEHIND if objects were left
 * @endcode
 */
#ifndef VXUT_UTIL_HEAP_H
#define VXUT_UTIL_HEAP_H

#include "util/frame.h"

/** A heap. It lives until UtilHeapDelete() or the end of its job. */
typedef struct UtilHeapRecord* HUTILHEAP;

/** Flags of UtilHeapCreate(). */
#define UTIL_HEAP_NO_SERIALIZE 0x10u /**< create the system's heap without a lock of its own */
#define UTIL_HEAP_RAISE 0x20u        /**< allocations raise the system's exception if memory is short */
#define UTIL_HEAP_NEVER_DEBUG 0x40u  /**< not a debug heap; overrides the job and UTIL_HEAP_DEBUG */
#define UTIL_HEAP_REFUSED 0x80u      /**< reserved: no heap is created */
#define UTIL_HEAP_NO_WARNING 0x100u  /**< UtilHeapDelete() writes no warning if objects are left */
#define UTIL_HEAP_DEBUG 0x40000000u  /**< a debug heap */

/** Flags of UtilHeapObjectAlloc(). */
#define UTIL_OBJECT_ZERO 1u           /**< fill with zeros */
#define UTIL_OBJECT_FILL 2u           /**< fill with 0xF5, unless with zeros */
#define UTIL_OBJECT_NO_STACK 4u       /**< a debug object without the call stack of its allocation */
#define UTIL_OBJECT_PLAIN 0x40u       /**< a plain object, even on a debug heap */
#define UTIL_OBJECT_DEBUG 0x40000000u /**< a debug object, even on a plain heap, unless UTIL_OBJECT_PLAIN */

/** Creates a heap under a job.
 *
 *  @param job    the owner of the heap.
 *  @param name   for reports. The first 32 units are kept. May be null.
 *  @param flags  UTIL_HEAP_*. Under a job of UTIL_JOB_DEBUG_HEAPS every heap is a debug heap unless it is
 *                UTIL_HEAP_NEVER_DEBUG.
 *  @return the handle. Null if memory is short, if the job is null or invalid, if the name cannot be read,
 * and for UTIL_HEAP_REFUSED.
 */
VXUT_API HUTILHEAP UtilHeapCreate(HUTILJOB job, const wchar_t* name, uint32_t flags);

/** Destroys a heap with all objects in it. The objects of a debug heap are tested first.
 *
 *  @param heap  null does nothing.
 *  @return UTIL_OK, UTIL_ERR_HANDLE if the handle is invalid, or UTIL_ERR_LEFT_BEHIND if there were objects:
 * the heap has been destroyed nevertheless.
 */
VXUT_API int32_t UtilHeapDelete(HUTILHEAP heap);

/** Returns the size of one block of a debug heap: the last busy block of a walk over the heap, not the sum of
 * all. A block is an object with its header and fence.
 *
 *  @param heap  0 is returned for null.
 *  @return bytes, 0 if there is no object, UTIL_ERR_UNAVAILABLE for a plain heap, or UTIL_ERR_HANDLE if the
 * handle is invalid.
 */
VXUT_API int32_t UtilHeapSize(HUTILHEAP heap);

/** Like UtilHeapSize(), but works on plain heaps as well. */
VXUT_API int32_t UtilHeapSizeObjects(HUTILHEAP heap);

/** Allocates an object. It is valid until UtilHeapObjectFree() or the end of the heap.
 *
 *  @param heap   null allocates a loose object from the process heap. It has no debug form, and is preceded
 * by its size in 8 bytes.
 *  @param size   bytes; 0 is allowed. A negative size counts as the unsigned number of the same bits, and is
 * reported if the object is a debug object.
 *  @param flags  UTIL_OBJECT_*. On a loose object only UTIL_OBJECT_ZERO and UTIL_OBJECT_FILL have an effect.
 *  @return the object, or null if memory is short or the handle is invalid. On a heap of UTIL_HEAP_RAISE the
 * system's structured exception is raised instead if memory is short. The heap counts failed calls as
 * objects, too.
 */
VXUT_API void* UtilHeapObjectAlloc(HUTILHEAP heap, int32_t size, uint32_t flags);

/** Like UtilHeapObjectAlloc(), but stores a number of the caller in the header of a debug object.
 *
 *  @param reserved  not used.
 *  @param tag       stored 12 bytes before the object.
 */
VXUT_API void* UtilHeapObjectAllocExt(HUTILHEAP heap, int32_t size, uint32_t flags, uint32_t reserved,
                                      uint32_t tag);

/** Frees an object of any form. A damaged object is reported and not freed.
 *
 *  @param heap    the heap of the object, or null for a loose object.
 *  @param object  the object.
 *  @return UTIL_OK, or UTIL_ERR_OBJECT if the object is damaged, null, or not a live object of the heap, or
 * if the heap is invalid.
 */
VXUT_API int32_t UtilHeapObjectFree(HUTILHEAP heap, void* object);

/** Returns the size of an object.
 *
 *  @param heap    the heap of the object. With null the number before a loose object is returned, and the
 * object is not looked up.
 *  @param object  as for UtilHeapObjectFree().
 *  @return bytes, or UTIL_ERR_OBJECT.
 */
VXUT_API int32_t UtilHeapObjectSize(HUTILHEAP heap, const void* object);

/** Tests the block of an object against the records of the system. On a debug heap all objects are tested as
 * well, and the first damaged one is reported.
 *
 *  @param heap    UTIL_OK is returned for null.
 *  @param object  null skips the first test, which alone decides the result.
 *  @return UTIL_OK, UTIL_ERR_HANDLE if the handle is invalid, UTIL_ERR_CORRUPT, or UTIL_ERR_UNAVAILABLE on a
 * system without the test.
 */
VXUT_API int32_t UtilHeapValidate(HUTILHEAP heap, const void* object);

/** Returns unused memory of a heap to the system.
 *
 *  @param heap  UTIL_OK is returned for null.
 *  @return UTIL_OK, UTIL_ERR_HANDLE on failure or if the handle is invalid, or UTIL_ERR_UNAVAILABLE on a
 * system without the service.
 */
VXUT_API int32_t UtilHeapShrink(HUTILHEAP heap);

#endif
