// Folders of files inside a profile: each file is a list "File.Entry" with the items "Name" and "Contents".
#pragma once

#include "profile/item_list.h"
#include "profile/outcome.h"
#include "text/string.h"

namespace vxut {

// Appends the files that a path with wildcards matches. Empty files get no list, nor do those that cannot be
// read. Returns the number of matches, and the first of the system's errors. Throws std::bad_alloc, and has
// then changed nothing.
scOutcome AppendFiles(clsItemList& list, const String& pattern, const String& password);

// Writes the files of a list to a folder, which is created; its parent must exist. An entry without name, one
// whose name is not that of a file in the folder, and one that cannot be written are reported and passed
// over, and leave the file of that name as it was. One without contents deletes the file of its name. Returns
// PROF_OK with the first of the system's errors, or PROF_ERR_WRITE if there is no folder. Throws
// std::bad_alloc; what was written up to then stays.
scOutcome ExtractFiles(const clsItemList& list, const String& folder, const String& password);

} // namespace vxut
