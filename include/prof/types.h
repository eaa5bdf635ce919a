/** @file
 * What all headers of the profile store share.
 *
 * Conventions of the profile store, in addition to those of util/types.h:
 *  1. Tree. A profile is a tree of lists. A list holds entries in the order in which they were added: items
 *     (a name and a text value) and lists. Names need not be unique, and an item and a list may have the
 *     same name.
 *  2. Handles. A job handle owns its tree; close it with ProfJobClose(). A list handle belongs to its job
 *     and is valid until the list is deleted or the job is closed. A null list handle means the root.
 *     A null job handle makes a function do nothing and return 0 unless its description says otherwise; any
 *     other invalid handle is an error of the caller that is not detected.
 *  3. Paths. A name is a path with "/" between its components. A leading "/" starts at the root, whatever
 *     list is passed. Comparison is exact. Lookups follow the first list that matches each component;
 *     writers create the lists that are missing. Components before the last are cut at 255 units. An empty
 *     component matches nothing in a lookup.
 *  4. List names. A list name that begins with "[" loses its first and its last unit.
 *  5. Text. Functions with text exist twice. The narrow form (`...A`) converts its arguments from the
 *     default code page (PROF_OPTION_CODE_PAGE) and does what the wide form (`...W`) does; null stays null.
 *  6. Memory. A function that changes a tree makes the whole change, or none if memory runs out. Functions
 *     without a result do not report it.
 *  7. Threads. A job and its tree may be used by one thread at a time; the caller provides the order.
 *     Different jobs may be used on different threads at once. Functions without a job may be called on any
 *     thread.
 *  8. Saving. Nothing is written to a file or stream unless a save function is called.
 */
#ifndef VXUT_PROF_TYPES_H
#define VXUT_PROF_TYPES_H

#include "util/types.h"

#include <windows.h>

#include <objidl.h>

/** A profile job. */
typedef struct ProfJobRecord* HPROF;

/** A list of a profile. */
typedef struct ProfListRecord* HPROFLIST;

#endif
