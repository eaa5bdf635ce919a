/** @file
 * The items of a profile as text. For typed values see prof/typed.h.
 */
#ifndef VXUT_PROF_ITEM_H
#define VXUT_PROF_ITEM_H

#include "prof/codes.h"
#include "prof/types.h"

/** Adds an item at the end of its list, even if the list contains an item of that name.
 *
 *  @param job    the job; null does nothing.
 *  @param list   where a relative path starts; null for the root.
 *  @param path   the item; missing lists are created. Null for an item with an empty name in the list.
 *  @param value  the value, copied; null does nothing.
 */
VXUT_API void ProfAppendStringW(HPROF job, HPROFLIST list, const wchar_t* path, const wchar_t* value);
VXUT_API void ProfAppendStringA(HPROF job, HPROFLIST list, const char* path, const char* value);

/** Replaces the value of the first item of a name, or adds an item if there is none.
 *
 *  @param job    the job; null does nothing.
 *  @param list   where a relative path starts; null for the root.
 *  @param path   the item; missing lists are created. Null does nothing.
 *  @param value  the value, copied; it may point into the old one. Null does nothing.
 */
VXUT_API void ProfSetStringW(HPROF job, HPROFLIST list, const wchar_t* path, const wchar_t* value);
VXUT_API void ProfSetStringA(HPROF job, HPROFLIST list, const char* path, const char* value);

/** Copies an item's value to a buffer, cut to its capacity and terminated. If the item is missing, the
 *  default is copied instead.
 *
 *  @param job           the job; null leaves the buffer unchanged and returns 0.
 *  @param list          where a relative path starts; null for the root.
 *  @param path          the item; null finds nothing.
 *  @param buffer        receives the text; null to write nothing.
 *  @param capacity      of the buffer, in units with the terminator; 0 to write nothing. The narrow form
 *                       counts bytes and always sets the last byte to 0.
 *  @param defaultValue  null for the empty text. May be the buffer itself, which is then left unchanged.
 *  @return the smaller of the value's length and capacity - 1, in units of the wide value; 0 without a
 *          buffer; PROF_ERR_NOT_FOUND if the item is missing.
 */
VXUT_API int32_t ProfGetStringW(HPROF job, HPROFLIST list, const wchar_t* path, wchar_t* buffer,
                                uint32_t capacity, const wchar_t* defaultValue);
VXUT_API int32_t ProfGetStringA(HPROF job, HPROFLIST list, const char* path, char* buffer, uint32_t capacity,
                                const char* defaultValue);

/** Returns the length of an item's value.
 *
 *  @param job   the job.
 *  @param list  where a relative path starts; null for the root.
 *  @param path  the item; null finds nothing.
 *  @return the length in wide units without the terminator, at most 2147483647, or PROF_ERR_NOT_FOUND.
 */
VXUT_API int32_t ProfGetStringLengthW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API int32_t ProfGetStringLengthA(HPROF job, HPROFLIST list, const char* path);

/** Deletes all items of a path. Follows every list that matches a component, not only the first; lists of
 *  the last name are kept.
 *
 *  @param job   the job; null does nothing.
 *  @param list  where the path starts; null for the root.
 *  @param path  the items. A leading "/" is an empty component here, so that nothing matches. Null does
 *               nothing.
 */
VXUT_API void ProfDeleteItemW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API void ProfDeleteItemA(HPROF job, HPROFLIST list, const char* path);

#endif
