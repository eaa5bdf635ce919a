/** @file
 * The lists of a profile.
 */
#ifndef VXUT_PROF_LIST_H
#define VXUT_PROF_LIST_H

#include "prof/types.h"

/** Gives a list by its path.
 *
 *  @param path  null for the list itself, ".." alone for its parent.
 *  @return null if there is no such list.
 */
VXUT_API HPROFLIST ProfGetListW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API HPROFLIST ProfGetListA(HPROF job, HPROFLIST list, const char* path);

/** Creates a list and those on the way to it. A list that is there is emptied.
 *
 *  @param path  null does nothing.
 *  @return the list, or null.
 */
VXUT_API HPROFLIST ProfCreateListW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API HPROFLIST ProfCreateListA(HPROF job, HPROFLIST list, const char* path);

/** Adds a new list, even beside one of the same name, and creates those on the way to it.
 *
 *  @param path  null does nothing.
 *  @return the list, or null.
 */
VXUT_API HPROFLIST ProfAppendListW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API HPROFLIST ProfAppendListA(HPROF job, HPROFLIST list, const char* path);

/** Removes all entries of a list. */
VXUT_API void ProfEmptyList(HPROF job, HPROFLIST list);

/** Deletes all lists of a path, with what is below them. Every list that matches a component is followed.
 *
 *  @param path  a leading "/" is an empty component, so that nothing matches. Of length 0: the list given is
 *               emptied instead. Null: the list given is deleted, wherever in the job's tree it is; a null
 * list then stands for the first item, depth first, which is deleted.
 */
VXUT_API void ProfDeleteListW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API void ProfDeleteListA(HPROF job, HPROFLIST list, const char* path);

/** Copies the entries of a list, with all below them, onto the end of another.
 *
 *  The source may be the target, or hold it: what was there when the call began is copied.
 *
 *  @return PROF_OK, PROF_ERR_JOB for a null job, or PROF_ERR_MEMORY when memory ran out.
 */
VXUT_API int32_t ProfCopyList(HPROF targetJob, HPROFLIST targetList, HPROF sourceJob, HPROFLIST sourceList);

/** What ProfEnumW() calls for an entry.
 *
 *  It may add entries to the list and delete the one that it was called for; these are not enumerated. It
 * must not delete others of the list.
 *
 *  @param name     the entry's name, good until the function returns.
 *  @param value    the item's value, or the empty text for a list.
 *  @param sublist  the list, or null for an item.
 *  @param user     as given to the enumeration.
 *  @return 0 to stop.
 */
typedef int(CALLBACK* ProfEnumFunctionW)(HPROF job, const wchar_t* name, const wchar_t* value,
                                         HPROFLIST sublist, void* user);
/** The same with narrow text. */
typedef int(CALLBACK* ProfEnumFunctionA)(HPROF job, const char* name, const char* value, HPROFLIST sublist,
                                         void* user);

/** Calls a function once for each entry of a list, not for those below.
 *
 *  @param function  null does nothing.
 *  @param user      handed to the function.
 *  @return 1, or 0 if the function stopped or nothing was done.
 */
VXUT_API int ProfEnumW(HPROF job, HPROFLIST list, ProfEnumFunctionW function, void* user);
VXUT_API int ProfEnumA(HPROF job, HPROFLIST list, ProfEnumFunctionA function, void* user);

/** Writes a list's entries and all below them to the debug channel.
 *
 *  @return PROF_OK, or PROF_ERR_JOB for the null job.
 */
VXUT_API int32_t ProfDebugList(HPROF job, HPROFLIST list);

#endif
