/** @file
 * What all headers of the profile store share.
 *
 * Conventions of the profile store, beside those of util/types.h:
 *  1. A profile is a tree. A list holds entries in the order in which they were added: items (a name and a
 * value) and lists. Names need not be unique, and an item and a list may bear the same name.
 *  2. A job handle owns its tree. A list handle is good until its list is deleted or its job closed. Where a
 * list is taken, null means the root. The null job does nothing and gives 0 unless a description says
 * otherwise.
 *  3. A name is a path with "/" between its components; a leading "/" starts at the root, whatever list was
 * given. Comparison is exact. Lookups follow the first list that matches each component; writers create lists
 * that are missing. Components before the last count up to 255 units. Empty components match nothing in
 * lookups.
 *  4. A list name that begins with "[" loses its first and its last unit.
 *  5. Functions with text exist twice. The narrow form (`...A`) converts its arguments from the default code
 * page (PROF_OPTION_CODE_PAGE), null staying null, and does what the wide form (`...W`) does.
 *  6. A job and its tree belong to one thread at a time. Different jobs may be used on different threads.
 *  7. Nothing is saved unless a save is called.
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
