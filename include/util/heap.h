/** @file
 * Heaps of a job, which count their objects and, as debug heaps, find overruns, underruns, double frees and
 * leaks.
 *
 * A debug heap gives each object a header of 44 bytes, a fence of 4 bytes behind it, and, unless it is told
 * not to, the call stack of its allocation. What it finds stands on the debug channel, with the first bytes
 * of the object; see UtilDebug(). A plain heap costs 4 bytes an object. Objects of both kinds are aligned to
 * 4 bytes only. A heap may hold both: the 32-bit word in front of an object, which is 0xFAAFFAAF of a plain
 * and 0xAFFEAFFE of a debug object, tells its form.
 *
 * Calls on heaps are serial in the whole process, whatever the flags of a heap. A handle or an object that
 * leads nowhere, or to something else, gives a result code and a line on the channel. Result codes are
 * UTIL_OK and UTIL_ERR_*, see util/frame.h.
 *
 * @code
 *     HUTILHEAP heap = UtilHeapCreate(job, L"RECORDS", UTIL_HEAP_DEBUG);
 *     RECORD* record = UtilHeapObjectAlloc(heap, sizeof(RECORD), UTIL_OBJECT_ZERO);
 *     ...
 *     if (UtilHeapObjectFree(heap, record) != UTIL_OK) ...    // an overrun, say
 *     UtilHeapDelete(heap);                                   // UTIL_ERR_LEFT_BEHIND if objects were left
 * @endcode
 */
#ifndef VXUT_UTIL_HEAP_H
#define VXUT_UTIL_HEAP_H

#include "util/frame.h"

/** A heap. It ends with UtilHeapDelete(), at the latest with its job. */
typedef struct UtilHeapRecord* HUTILHEAP;

/** Flags of UtilHeapCreate(). */
#define UTIL_HEAP_NO_SERIALIZE 0x10u /**< the system's heap does not lock itself */
#define UTIL_HEAP_RAISE 0x20u        /**< the system's heap raises an exception when memory is short */
#define UTIL_HEAP_NEVER_DEBUG 0x40u  /**< no debug heap, whatever the job or UTIL_HEAP_DEBUG say */
#define UTIL_HEAP_REFUSED 0x80u      /**< no heap is made */
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
 *  @param job    null gives null.
 *  @param name   for the lines on the channel; the first 32 units are kept. May be null.
 *  @param flags  UTIL_HEAP_*. A job of UTIL_JOB_DEBUG_HEAPS makes every heap a debug heap that is not
 * UTIL_HEAP_NEVER_DEBUG.
 *  @return the handle, or null when memory is short, and for UTIL_HEAP_REFUSED.
 */
VXUT_API HUTILHEAP UtilHeapCreate(HUTILJOB job, const wchar_t* name, uint32_t flags);

/** Destroys a heap with all objects in it. On a debug heap objects are tested first.
 *
 *  @param heap  null does nothing.
 *  @return UTIL_OK, UTIL_ERR_HANDLE for what is no heap, or UTIL_ERR_LEFT_BEHIND if objects were left; the
 * heap has been destroyed all the same.
 */
VXUT_API int32_t UtilHeapDelete(HUTILHEAP heap);

/** Gives the bytes of one block of a debug heap: of the busy one that a walk over the heap sees last. It is
 * no sum. A block is an object with what surrounds it.
 *
 *  @param heap  null gives 0.
 *  @return bytes, 0 if there is no object; UTIL_ERR_UNAVAILABLE for a plain heap, UTIL_ERR_HANDLE for what is
 *          no heap.
 */
VXUT_API int32_t UtilHeapSize(HUTILHEAP heap);

/** As UtilHeapSize(), for plain heaps as well. */
VXUT_API int32_t UtilHeapSizeObjects(HUTILHEAP heap);

/** Allocates an object, which belongs to the caller up to UtilHeapObjectFree() or the end of the heap.
 *
 *  @param heap   null takes the object from the process heap: such a loose object has no debug form and its
 *                size, 8 bytes, in front of it.
 *  @param size   bytes, 0 allowed. A size below zero counts as the number without a sign that has the same
 * bits, and is reported if it is one of a debug object.
 *  @param flags  UTIL_OBJECT_*.
 *  @return the object, or null when memory is short or the handle is bad. On a heap of UTIL_HEAP_RAISE the
 *          system may raise a structured exception when memory is short. Either way the heap counts the call
 * as an object.
 */
VXUT_API void* UtilHeapObjectAlloc(HUTILHEAP heap, int32_t size, uint32_t flags);

/** As UtilHeapObjectAlloc(), with a number of the caller's own in the header of a debug object.
 *
 *  @param reserved  not used.
 *  @param tag       stands 12 bytes in front of the object.
 */
VXUT_API void* UtilHeapObjectAllocExt(HUTILHEAP heap, int32_t size, uint32_t flags, uint32_t reserved,
                                      uint32_t tag);

/** Frees an object of any form. One that is damaged is reported and kept.
 *
 *  @param heap    the heap it comes from; null for a loose object.
 *  @param object  null, and whatever is no live object of the heap, gives UTIL_ERR_OBJECT.
 *  @return UTIL_OK or UTIL_ERR_OBJECT.
 */
VXUT_API int32_t UtilHeapObjectFree(HUTILHEAP heap, void* object);

/** Gives the bytes of an object.
 *
 *  @param heap    the heap it comes from. Null gives the size that stands in front of a loose object.
 *  @param object  as for UtilHeapObjectFree(), but a loose one is not looked up.
 *  @return bytes or UTIL_ERR_OBJECT.
 */
VXUT_API int32_t UtilHeapObjectSize(HUTILHEAP heap, const void* object);

/** Tests an object's block against the records of the system and, on a debug heap, all objects, of which the
 * first damaged one is reported.
 *
 *  @param heap    null gives UTIL_OK.
 *  @param object  null leaves out the first test, which alone decides the result.
 *  @return UTIL_OK, UTIL_ERR_HANDLE for what is no heap, UTIL_ERR_CORRUPT, or UTIL_ERR_UNAVAILABLE on a
 * system without the test.
 */
VXUT_API int32_t UtilHeapValidate(HUTILHEAP heap, const void* object);

/** Gives free memory of a heap back to the system.
 *
 *  @param heap  null gives UTIL_OK.
 *  @return UTIL_OK, UTIL_ERR_HANDLE if it failed or for what is no heap, or UTIL_ERR_UNAVAILABLE.
 */
VXUT_API int32_t UtilHeapShrink(HUTILHEAP heap);

#endif
