/** @file
 * The lists of a profile.
 */
#ifndef VXUT_PROF_LIST_H
#define VXUT_PROF_LIST_H

#include "prof/types.h"

/** Finds a list by its path.
 *
 *  @param job   the job.
 *  @param list  where a relative path starts; null for the root.
 *  @param path  the list. Null for the list itself, exactly ".." for its parent.
 *  @return the list; null if there is none.
 */
VXUT_API HPROFLIST ProfGetListW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API HPROFLIST ProfGetListA(HPROF job, HPROFLIST list, const char* path);

/** Creates a list and the lists on the way to it. If the list exists, it is emptied; lists below it become
 *  invalid.
 *
 *  @param job   the job.
 *  @param list  where a relative path starts; null for the root.
 *  @param path  the list. Null does nothing.
 *  @return the list; null if nothing was done or memory ran out.
 */
VXUT_API HPROFLIST ProfCreateListW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API HPROFLIST ProfCreateListA(HPROF job, HPROFLIST list, const char* path);

/** Adds a new list, even if a list of that name exists, and creates the lists on the way to it.
 *
 *  @param job   the job.
 *  @param list  where a relative path starts; null for the root.
 *  @param path  the list. Null does nothing.
 *  @return the list; null if nothing was done or memory ran out.
 */
VXUT_API HPROFLIST ProfAppendListW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API HPROFLIST ProfAppendListA(HPROF job, HPROFLIST list, const char* path);

/** Deletes all entries of a list; lists below it become invalid.
 *
 *  @param job   the job; null does nothing.
 *  @param list  the list; null for the root.
 */
VXUT_API void ProfEmptyList(HPROF job, HPROFLIST list);

/** Deletes all lists of a path, with everything below them. Follows every list that matches a component,
 *  not only the first.
 *
 *  @param job   the job; null does nothing.
 *  @param list  where the path starts; null for the root.
 *  @param path  the lists. A leading "/" is an empty component here, so that nothing matches. A path of
 *               length 0 empties the list passed. Null deletes the list passed, wherever in the job's tree
 *               it is; if that is null too, the first item of the tree, depth first, is deleted.
 */
VXUT_API void ProfDeleteListW(HPROF job, HPROFLIST list, const wchar_t* path);
VXUT_API void ProfDeleteListA(HPROF job, HPROFLIST list, const char* path);

/** Copies the entries of a list, with everything below them, to the end of another list.
 *
 *  The source may be the target, or contain it: what it contains at the call is copied.
 *
 *  @param targetJob   the job that receives the entries.
 *  @param targetList  the list that receives them; null for the root.
 *  @param sourceJob   the job to copy from, which may be the same. The calling thread must own both jobs.
 *  @param sourceList  the list to copy; null for the root.
 *  @return PROF_OK; PROF_ERR_JOB if a job is null; PROF_ERR_MEMORY if memory ran out, with the target
 *          unchanged.
 */
VXUT_API int32_t ProfCopyList(HPROF targetJob, HPROFLIST targetList, HPROF sourceJob, HPROFLIST sourceList);

/** The function that ProfEnumW() calls for an entry.
 *
 *  It may add entries to the list, which are not enumerated, and delete the entry that it is called for. It
 *  must not delete other entries of the list, and must not throw.
 *
 *  @param job      the job of the enumeration.
 *  @param name     the entry's name; valid until the function returns or deletes the entry.
 *  @param value    the item's value, empty for a list; valid until the function returns, changes the value
 *                  or deletes the entry.
 *  @param sublist  the list, or null for an item.
 *  @param user     the value passed to the enumeration.
 *  @return 0 to stop.
 */
typedef int(CALLBACK* ProfEnumFunctionW)(HPROF job, const wchar_t* name, const wchar_t* value,
                                         HPROFLIST sublist, void* user);
/** The same with narrow text. The texts are copies, valid until the function returns. */
typedef int(CALLBACK* ProfEnumFunctionA)(HPROF job, const char* name, const char* value, HPROFLIST sublist,
                                         void* user);

/** Calls a function once for each entry of a list, in order. Entries of lists below it are not enumerated.
 *
 *  @param job       the job.
 *  @param list      the list; null for the root.
 *  @param function  called on this thread. Null does nothing.
 *  @param user      passed to the function.
 *  @return 1; 0 if the function stopped, nothing was done, or memory for narrow text ran out.
 */
VXUT_API int ProfEnumW(HPROF job, HPROFLIST list, ProfEnumFunctionW function, void* user);
VXUT_API int ProfEnumA(HPROF job, HPROFLIST list, ProfEnumFunctionA function, void* user);

/** Writes a list's entries and everything below them to the debug channel, one line for each entry.
 *
 *  @param job   the job.
 *  @param list  the list; null for the root.
 *  @return PROF_OK, or PROF_ERR_JOB for the null job.
 */
VXUT_API int32_t ProfDebugList(HPROF job, HPROFLIST list);

#endif
